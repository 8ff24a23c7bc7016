#include "debuginfo/Location.h"

#include <algorithm>
#include <cstdio>

namespace quillon::debuginfo {

namespace {

std::string hex(std::uint64_t value)
{
    char text[24];
    std::snprintf(text, sizeof text, "0x%llx", static_cast<unsigned long long>(value));
    return text;
}

std::string registerName(unsigned dwarfRegister)
{
    switch (dwarfRegister) {
    case 13:
        return "sp";
    case 14:
        return "lr";
    case 15:
        return "pc";
    default:
        return dwarfRegister < 13 ? "r" + std::to_string(dwarfRegister) : "dwarf register " + std::to_string(dwarfRegister);
    }
}

} // namespace

Location Location::memory(std::uint32_t address)
{
    Location location(Kind::Memory);
    location.m_address = address;
    return location;
}

Location Location::inRegister(unsigned dwarfRegister)
{
    Location location(Kind::Register);
    location.m_register = dwarfRegister;
    return location;
}

Location Location::value(std::vector<std::uint8_t> bytes)
{
    Location location(Kind::Value);
    location.m_bytes = std::move(bytes);
    return location;
}

Location Location::optimizedOut()
{
    return Location(Kind::OptimizedOut);
}

Location Location::composite(std::vector<Location> pieces)
{
    Location location(Kind::Composite);
    location.m_pieces = std::move(pieces);
    return location;
}

std::string Location::describe() const
{
    switch (m_kind) {
    case Kind::Memory:
        return "at " + hex(m_address);
    case Kind::Register:
        return "in " + registerName(m_register);
    case Kind::Value: {
        std::uint64_t value = 0;
        for (size_t i = std::min<size_t>(m_bytes.size(), 8); i-- > 0;) {
            value = value << 8 | m_bytes[i];
        }
        return "value " + hex(value);
    }
    case Kind::OptimizedOut:
        return "optimized out";
    case Kind::Composite:
        break;
    }
    std::string text;
    for (const Location& piece : m_pieces) {
        text += (text.empty() ? "" : ", ") + piece.describe() + " (" + std::to_string(piece.m_pieceSize) + " bytes)";
    }
    return text;
}

} // namespace quillon::debuginfo
