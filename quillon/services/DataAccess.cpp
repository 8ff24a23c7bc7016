#include "services/DataAccess.h"

#include <cstdio>
#include <cstring>

#include "services/ServiceError.h"
#include "target/RegisterTable.h"
#include "target/TargetError.h"

namespace quillon::services {

namespace {

std::string hex(std::uint64_t value)
{
    char text[24];
    std::snprintf(text, sizeof text, "0x%08llx", static_cast<unsigned long long>(value));
    return text;
}

} // namespace

void DataAccess::checkArea(std::uint8_t area)
{
    if (area != 0) {
        throw ServiceError(ServiceError::Kind::CannotAccess,
                           "no memory area " + std::to_string(area) + ": the core has memory area 0 only");
    }
}

void DataAccess::read(std::uint32_t address, void* out, std::size_t size) const
{
    if (std::uint64_t(address) + size > (std::uint64_t(1) << 32)) {
        throw ServiceError(ServiceError::Kind::CannotAccess,
                           "cannot read " + std::to_string(size) + " bytes at " + hex(address) + ": beyond 0xffffffff");
    }
    try {
        m_target.readMemory(address, out, size);
    } catch (const target::TargetError& e) {
        throw ServiceError(ServiceError::Kind::CannotAccess,
                           "cannot read " + std::to_string(size) + " bytes at " + hex(address) + ": " + e.what());
    }
}

void DataAccess::write(std::uint32_t address, const void* data, std::size_t size)
{
    if (std::uint64_t(address) + size > (std::uint64_t(1) << 32)) {
        throw ServiceError(ServiceError::Kind::CannotAccess, "cannot write " + std::to_string(size) + " bytes at " +
                                                                 hex(address) + ": beyond 0xffffffff");
    }
    try {
        m_target.writeMemory(address, data, size);
    } catch (const target::TargetError& e) {
        throw ServiceError(ServiceError::Kind::CannotAccess,
                           "cannot write " + std::to_string(size) + " bytes at " + hex(address) + ": " + e.what());
    }
}

std::vector<std::uint8_t> DataAccess::readMemory(std::uint8_t area, std::uint32_t address, std::uint32_t numMAUs,
                                                 std::uint8_t bytesPerMAU) const
{
    checkArea(area);
    if (bytesPerMAU != 1) {
        throw ServiceError(ServiceError::Kind::BadSize, "memory area 0 has 1 byte per MAU, not " +
                                                            std::to_string(bytesPerMAU));
    }
    std::vector<std::uint8_t> bytes(numMAUs);
    read(address, bytes.data(), bytes.size());
    return bytes;
}

void DataAccess::writeMemory(std::uint8_t area, std::uint32_t address, std::uint32_t numMAUs, std::uint8_t bytesPerMAU,
                             const std::vector<std::uint8_t>& data)
{
    checkArea(area);
    if (bytesPerMAU != 1) {
        throw ServiceError(ServiceError::Kind::BadSize, "memory area 0 has 1 byte per MAU, not " +
                                                            std::to_string(bytesPerMAU));
    }
    if (data.size() < numMAUs) {
        throw ServiceError(ServiceError::Kind::BadSize, "write of " + std::to_string(numMAUs) + " bytes with only " +
                                                            std::to_string(data.size()) + " given");
    }
    write(address, data.data(), numMAUs);
}

TypedBits DataAccess::readRegister(const std::string& name) const
{
    auto reg = target::RegisterTable::find(name);
    if (!reg) {
        throw ServiceError(ServiceError::Kind::NotFound, "no register '" + name + "'");
    }
    try {
        return TypedBits{ScalarType{ScalarType::Unsigned, 32}, m_target.readRegister(*reg)};
    } catch (const target::TargetError& e) {
        throw ServiceError(ServiceError::Kind::CannotAccess, "cannot read register '" + name + "': " + e.what());
    }
}

void DataAccess::writeRegister(const std::string& name, const TypedBits& value)
{
    auto reg = target::RegisterTable::find(name);
    if (!reg) {
        throw ServiceError(ServiceError::Kind::NotFound, "no register '" + name + "'");
    }
    if (value.type.bits != 32 || value.type.code == ScalarType::Float || value.type.code == ScalarType::Compound) {
        throw ServiceError(ServiceError::Kind::BadSize, "register '" + name + "' holds a 32-bit integer, not " +
                                                            std::to_string(value.type.bits) + " bits of type code " +
                                                            std::to_string(value.type.code));
    }
    try {
        m_target.writeRegister(*reg, static_cast<std::uint32_t>(value.bits));
    } catch (const target::TargetError& e) {
        throw ServiceError(ServiceError::Kind::CannotAccess, "cannot write register '" + name + "': " + e.what());
    }
}

unsigned DataAccess::valueBytes(const ScalarType& type)
{
    bool integer = type.code == ScalarType::Unsigned || type.code == ScalarType::Signed ||
                   type.code == ScalarType::Address;
    bool fits = integer ? (type.bits == 8 || type.bits == 16 || type.bits == 32 || type.bits == 64)
                        : (type.code == ScalarType::Float && (type.bits == 32 || type.bits == 64));
    if (!fits) {
        throw ServiceError(ServiceError::Kind::BadSize, "cannot access a value of type code " +
                                                            std::to_string(type.code) + " with " +
                                                            std::to_string(type.bits) + " bits");
    }
    return type.bits / 8;
}

std::uint64_t DataAccess::readValue(std::uint8_t area, std::uint32_t address, const ScalarType& type) const
{
    checkArea(area);
    unsigned size = valueBytes(type);
    std::uint8_t bytes[8] = {};
    read(address, bytes, size);
    std::uint64_t value = 0;
    for (unsigned i = 0; i < size; ++i) {
        value |= std::uint64_t(bytes[i]) << (8 * i);
    }
    return value;
}

void DataAccess::writeValue(std::uint8_t area, std::uint32_t address, const TypedBits& value)
{
    checkArea(area);
    unsigned size = valueBytes(value.type);
    std::uint8_t bytes[8];
    for (unsigned i = 0; i < size; ++i) {
        bytes[i] = static_cast<std::uint8_t>(value.bits >> (8 * i));
    }
    write(address, bytes, size);
}

std::vector<BatchResult> DataAccess::batch(const std::vector<BatchItem>& items)
{
    std::vector<BatchResult> results;
    for (const BatchItem& item : items) {
        BatchResult result;
        result.timeStamp = m_target.cycles();
        try {
            if (item.size == 0 || item.size > 8) {
                throw ServiceError(ServiceError::Kind::BadSize, "batch item of " + std::to_string(item.size) + " bytes");
            }
            checkArea(item.area);
            if (item.write) {
                write(item.address, item.data.data(), item.size);
                result.data = item.data;
            } else {
                read(item.address, result.data.data(), item.size);
            }
            result.ok = true;
        } catch (const ServiceError&) {
            result.ok = false;
        }
        results.push_back(result);
    }
    return results;
}

} // namespace quillon::services
