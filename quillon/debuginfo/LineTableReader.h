#pragma once

#include "debuginfo/ElfImage.h"
#include "debuginfo/LineTable.h"

#include <elfutils/libdw.h>

#include <cstddef>
#include <cstdint>
#include <vector>

namespace quillon::debuginfo {

/// Reads the line programs of all compile units into a LineTable. The rows come from decoding
/// .debug_line here, sequence by sequence as written: libdw 0.188 sorts a unit's rows by address,
/// which interleaves the sequences of code the linker dropped (relocated to address 0) with real
/// ones. Dropped sequences are left out. File names come from libdw.
class LineTableReader {
public:
    LineTableReader(Dwarf* dwarf, const ElfImage& elf);

    LineTable read() const;

private:
    class Program;

    void readUnit(Dwarf_Die* unit, LineTable& table) const;
    bool isDiscarded(std::uint32_t start) const;

    Dwarf* m_dwarf;
    const ElfImage& m_elf;
    const std::uint8_t* m_section = nullptr; ///< .debug_line
    std::size_t m_sectionSize = 0;
};

} // namespace quillon::debuginfo
