#pragma once

#include "debuginfo/Type.h"
#include "target/RegisterTable.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace quillon::target {
class Target;
}

namespace quillon::expr {

/// A typed value of an expression: bytes of its own (an rvalue), or an lvalue in target memory,
/// in a core register or in a bit field of memory. An lvalue's bytes are read when first needed,
/// so that `&x` and `sizeof` touch no memory. Bytes are in target order (little-endian).
class Value {
public:
    enum class Storage { Bytes, Memory, Register };

    /// The largest value read or made as a whole.
    static constexpr std::size_t maxBytes = 16u << 20;

    /// An rvalue; `bytes` holds the type's size.
    static Value ofBytes(const debuginfo::Type* type, std::vector<std::uint8_t> bytes);
    /// An integer or pointer rvalue of the type's size from the low bytes of `bits`.
    static Value ofInteger(const debuginfo::Type* type, std::uint64_t bits);
    /// A float or double rvalue.
    static Value ofFloating(const debuginfo::Type* type, double value);
    static Value inMemory(const debuginfo::Type* type, std::uint32_t address);
    static Value inRegister(const debuginfo::Type* type, target::Register reg);
    /// A bit field of `bitSize` bits from bit `bitOffset` of the little-endian bytes at `address`.
    static Value bitField(const debuginfo::Type* type, std::uint32_t address, unsigned bitOffset, unsigned bitSize);

    const debuginfo::Type* type() const { return m_type; }
    /// The type without typedefs and qualifiers.
    const debuginfo::Type* plainType() const { return m_type->unqualified(); }
    Storage storage() const { return m_storage; }
    bool isLvalue() const { return m_storage != Storage::Bytes; }
    bool isBitField() const { return m_bitSize != 0; }
    /// Memory lvalues that are not bit fields: their address.
    std::optional<std::uint32_t> address() const;
    std::optional<target::Register> reg() const;
    unsigned bitSize() const { return m_bitSize; }
    /// A name for messages, set by the evaluator ("'x'").
    const std::string& label() const { return m_label; }
    void setLabel(std::string label) { m_label = std::move(label); }

    /// The value's bytes (the type's size); lvalues read them from the target once. Throws
    /// ExprError "memory not readable at 0x..." where the target has no memory.
    const std::vector<std::uint8_t>& bytes(const target::Target& target) const;
    /// Integers, enums, bools and pointers: the bits, sign- or zero-extended to 64 bits.
    std::uint64_t integer(const target::Target& target) const;
    /// Integers and floats as a double.
    double floating(const target::Target& target) const;

    /// Writes `bytes` (the type's size) to the lvalue. Throws ExprError if it is none.
    void store(target::Target& target, const std::vector<std::uint8_t>& bytes) const;

private:
    Value(const debuginfo::Type* type, Storage storage) : m_type(type), m_storage(storage) {}
    std::vector<std::uint8_t> load(const target::Target& target) const;

    const debuginfo::Type* m_type;
    Storage m_storage;
    std::uint32_t m_address = 0;
    target::Register m_register = target::Register::R0;
    unsigned m_bitOffset = 0;
    unsigned m_bitSize = 0;
    std::string m_label;
    mutable bool m_loaded = false;
    mutable std::vector<std::uint8_t> m_bytes;
};

} // namespace quillon::expr
