#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "services/ScalarType.h"
#include "target/Target.h"

namespace quillon::services {

/// One access of a batch.
struct BatchItem {
    bool write = false;
    std::uint8_t size = 0; ///< bytes, 1 to 8
    std::uint8_t area = 0;
    std::uint32_t address = 0;
    std::array<std::uint8_t, 8> data{}; ///< what a write writes
};

struct BatchResult {
    bool ok = false;
    std::array<std::uint8_t, 8> data{}; ///< what a read read
    std::uint64_t timeStamp = 0;        ///< cycles of the core at the access
};

/// A register's or a memory value's bits in host order (low bytes) with its kind.
struct TypedBits {
    ScalarType type;
    std::uint64_t bits = 0;
};

/// The debugger's access to target memory and registers. The core has one memory area, 0, of 8-bit MAUs over the
/// whole address space; what lies outside the target's memory areas cannot be accessed. The debugger's accesses
/// ignore the areas' access rights, which bind the core only. Memory is read at any time, also while the core
/// runs; writes and registers need a stopped core.
class DataAccess {
public:
    explicit DataAccess(target::Target& target) : m_target(target) {}

    std::vector<std::uint8_t> readMemory(std::uint8_t area, std::uint32_t address, std::uint32_t numMAUs,
                                         std::uint8_t bytesPerMAU) const;
    /// Writes bytesPerMAU * numMAUs bytes of `data`, which must hold at least that many.
    void writeMemory(std::uint8_t area, std::uint32_t address, std::uint32_t numMAUs, std::uint8_t bytesPerMAU,
                     const std::vector<std::uint8_t>& data);

    /// Core registers by name (r0 to r12, sp, lr, pc, xpsr, msp, psp, primask, control; any case): 32-bit unsigned.
    TypedBits readRegister(const std::string& name) const;
    /// The value's width must be the register's: a ServiceError BadSize otherwise.
    void writeRegister(const std::string& name, const TypedBits& value);

    /// A scalar of the type's width (8, 16, 32 or 64 bits) at the address, little-endian in the target.
    std::uint64_t readValue(std::uint8_t area, std::uint32_t address, const ScalarType& type) const;
    void writeValue(std::uint8_t area, std::uint32_t address, const TypedBits& value);

    /// Every item, in order; a failing item fails alone.
    std::vector<BatchResult> batch(const std::vector<BatchItem>& items);

private:
    static void checkArea(std::uint8_t area);
    static unsigned valueBytes(const ScalarType& type);
    void read(std::uint32_t address, void* out, std::size_t size) const;
    void write(std::uint32_t address, const void* data, std::size_t size);

    target::Target& m_target;
};

} // namespace quillon::services
