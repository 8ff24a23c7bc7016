#include "expr/Value.h"

#include "expr/ExprError.h"

#include "target/Target.h"
#include "target/TargetError.h"

#include <cstring>
#include <cstdio>

namespace quillon::expr {
namespace {

using debuginfo::Type;

std::string hex(std::uint32_t address)
{
    char text[16];
    std::snprintf(text, sizeof text, "0x%08x", address);
    return text;
}

std::uint64_t littleEndian(const std::vector<std::uint8_t>& bytes, std::size_t size)
{
    std::uint64_t bits = 0;
    for (std::size_t i = 0; i < size && i < 8; ++i) {
        bits |= std::uint64_t(bytes[i]) << (8 * i);
    }
    return bits;
}

std::uint64_t extend(std::uint64_t bits, unsigned width, bool isSigned)
{
    if (width >= 64) {
        return bits;
    }
    const std::uint64_t mask = (std::uint64_t(1) << width) - 1;
    bits &= mask;
    if (isSigned && width > 0 && (bits >> (width - 1)) & 1) {
        bits |= ~mask;
    }
    return bits;
}

std::vector<std::uint8_t> toBytes(std::uint64_t bits, std::size_t size)
{
    std::vector<std::uint8_t> bytes(size, 0);
    for (std::size_t i = 0; i < size && i < 8; ++i) {
        bytes[i] = static_cast<std::uint8_t>(bits >> (8 * i));
    }
    return bytes;
}

} // namespace

Value Value::ofBytes(const Type* type, std::vector<std::uint8_t> bytes)
{
    Value value(type, Storage::Bytes);
    value.m_bytes = std::move(bytes);
    value.m_loaded = true;
    return value;
}

Value Value::ofInteger(const Type* type, std::uint64_t bits)
{
    return ofBytes(type, toBytes(bits, type->size()));
}

Value Value::ofFloating(const Type* type, double number)
{
    std::vector<std::uint8_t> bytes(type->size(), 0);
    if (type->size() == 4) {
        const float single = static_cast<float>(number);
        std::memcpy(bytes.data(), &single, 4);
    } else {
        std::memcpy(bytes.data(), &number, bytes.size() < 8 ? bytes.size() : 8);
    }
    return ofBytes(type, std::move(bytes));
}

Value Value::inMemory(const Type* type, std::uint32_t address)
{
    Value value(type, Storage::Memory);
    value.m_address = address;
    return value;
}

Value Value::inRegister(const Type* type, target::Register reg)
{
    Value value(type, Storage::Register);
    value.m_register = reg;
    return value;
}

Value Value::bitField(const Type* type, std::uint32_t address, unsigned bitOffset, unsigned bitSize)
{
    Value value = inMemory(type, address + bitOffset / 8);
    value.m_bitOffset = bitOffset % 8;
    value.m_bitSize = bitSize;
    return value;
}

std::optional<std::uint32_t> Value::address() const
{
    if (m_storage == Storage::Memory && m_bitSize == 0) {
        return m_address;
    }
    return std::nullopt;
}

std::optional<target::Register> Value::reg() const
{
    return m_storage == Storage::Register ? std::optional<target::Register>(m_register) : std::nullopt;
}

std::vector<std::uint8_t> Value::load(const target::Target& target) const
{
    const std::size_t size = m_type->size();
    if (size > maxBytes) {
        throw ExprError("'" + m_type->name() + "' is too large to read (" + std::to_string(size) + " bytes)");
    }
    if (m_storage == Storage::Register) {
        return toBytes(target.readRegister(m_register), size);
    }
    const std::size_t span = m_bitSize ? (m_bitOffset + m_bitSize + 7) / 8 : size;
    std::vector<std::uint8_t> raw(span, 0);
    try {
        target.readMemory(m_address, raw.data(), span);
    } catch (const target::TargetError&) {
        throw ExprError("memory not readable at " + hex(m_address));
    }
    if (m_bitSize == 0) {
        return raw;
    }
    const std::uint64_t bits = littleEndian(raw, span) >> m_bitOffset;
    return toBytes(extend(bits, m_bitSize, m_type->isSigned()), size);
}

const std::vector<std::uint8_t>& Value::bytes(const target::Target& target) const
{
    if (!m_loaded) {
        m_bytes = load(target);
        m_loaded = true;
    }
    return m_bytes;
}

std::uint64_t Value::integer(const target::Target& target) const
{
    const std::vector<std::uint8_t>& raw = bytes(target);
    const unsigned width = static_cast<unsigned>(raw.size() * 8);
    const Type* plain = plainType();
    const bool isSigned = plain->kind() != Type::Kind::Pointer && plain->isSigned();
    return extend(littleEndian(raw, raw.size()), width, isSigned);
}

double Value::floating(const target::Target& target) const
{
    const Type* plain = plainType();
    if (plain->isFloat()) {
        const std::vector<std::uint8_t>& raw = bytes(target);
        if (raw.size() == 4) {
            float single;
            std::memcpy(&single, raw.data(), 4);
            return single;
        }
        double number = 0;
        std::memcpy(&number, raw.data(), raw.size() < 8 ? raw.size() : 8);
        return number;
    }
    const std::uint64_t bits = integer(target);
    return plain->isSigned() ? static_cast<double>(static_cast<std::int64_t>(bits)) : static_cast<double>(bits);
}

void Value::store(target::Target& target, const std::vector<std::uint8_t>& bytes) const
{
    const std::size_t size = m_type->size();
    try {
        if (m_storage == Storage::Bytes) {
            throw ExprError("not an lvalue");
        }
        if (m_storage == Storage::Register) {
            const std::uint64_t bits = extend(littleEndian(bytes, size), static_cast<unsigned>(size * 8), m_type->isSigned());
            target.writeRegister(m_register, static_cast<std::uint32_t>(bits));
        } else if (m_bitSize == 0) {
            target.writeMemory(m_address, bytes.data(), size);
        } else {
            const std::size_t span = (m_bitOffset + m_bitSize + 7) / 8;
            std::vector<std::uint8_t> raw(span, 0);
            target.readMemory(m_address, raw.data(), span);
            const std::uint64_t mask = ((m_bitSize >= 64 ? ~std::uint64_t(0) : (std::uint64_t(1) << m_bitSize) - 1))
                                       << m_bitOffset;
            std::uint64_t word = littleEndian(raw, span);
            word = (word & ~mask) | ((littleEndian(bytes, size) << m_bitOffset) & mask);
            const std::vector<std::uint8_t> merged = toBytes(word, span);
            target.writeMemory(m_address, merged.data(), span);
        }
    } catch (const target::TargetError& error) {
        if (error.kind() == target::TargetError::Kind::BadAddress) {
            throw ExprError("memory not writable at " + hex(m_address));
        }
        throw ExprError(error.what());
    }
    m_bytes.clear();
    m_loaded = false;
}

} // namespace quillon::expr
