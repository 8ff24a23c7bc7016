#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace quillon::debuginfo {

/// Where a variable's value is in one frame at one program counter: at a memory address, in a
/// register, a value computed by the DWARF (no storage), optimized out, or in pieces of these.
class Location {
public:
    enum class Kind { Memory, Register, Value, OptimizedOut, Composite };

    static Location memory(std::uint32_t address);
    static Location inRegister(unsigned dwarfRegister);
    /// Little-endian bytes of the value.
    static Location value(std::vector<std::uint8_t> bytes);
    static Location optimizedOut();
    /// Pieces in order from the value's first byte; each carries its size.
    static Location composite(std::vector<Location> pieces);

    Kind kind() const { return m_kind; }
    std::uint32_t address() const { return m_address; }
    unsigned dwarfRegister() const { return m_register; }
    const std::vector<std::uint8_t>& bytes() const { return m_bytes; }
    const std::vector<Location>& pieces() const { return m_pieces; }
    /// Bytes this location holds as a piece of a composite; 0 when it is not a piece.
    std::uint32_t pieceSize() const { return m_pieceSize; }
    void setPieceSize(std::uint32_t size) { m_pieceSize = size; }

    /// "at 0x20000010", "in r3", "value 0x2a", "optimized out", pieces joined by ", ".
    std::string describe() const;

private:
    explicit Location(Kind kind) : m_kind(kind) {}

    Kind m_kind;
    std::uint32_t m_address = 0;
    unsigned m_register = 0;
    std::uint32_t m_pieceSize = 0;
    std::vector<std::uint8_t> m_bytes;
    std::vector<Location> m_pieces;
};

} // namespace quillon::debuginfo
