#include "debuginfo/LineTableReader.h"

#include "debuginfo/SourcePath.h"

#include <dwarf.h>
#include <gelf.h>
#include <libelf.h>

#include <cstring>
#include <functional>
#include <optional>

namespace quillon::debuginfo {

namespace {

Elf_Data* sectionData(Elf* elf, const char* wanted)
{
    size_t names = 0;
    if (elf == nullptr || elf_getshdrstrndx(elf, &names) != 0) {
        return nullptr;
    }
    for (Elf_Scn* section = elf_nextscn(elf, nullptr); section; section = elf_nextscn(elf, section)) {
        GElf_Shdr header;
        const char* name = gelf_getshdr(section, &header) ? elf_strptr(elf, names, header.sh_name) : nullptr;
        if (name == nullptr || std::strcmp(name, wanted) != 0) {
            continue;
        }
        if ((header.sh_flags & SHF_COMPRESSED) != 0 && elf_compress(section, 0, 0) < 0) {
            return nullptr;
        }
        return elf_getdata(section, nullptr);
    }
    return nullptr;
}

// Bounds-checked little-endian reads; a read past the end marks the cursor as failed.
class Cursor {
public:
    Cursor(const std::uint8_t* begin, const std::uint8_t* end) : m_p(begin), m_end(end) {}

    bool ok() const { return m_ok; }
    bool atEnd() const { return !m_ok || m_p >= m_end; }
    const std::uint8_t* position() const { return m_p; }
    const std::uint8_t* limit() const { return m_end; }
    void fail() { m_ok = false; }
    void seek(const std::uint8_t* p)
    {
        if (p > m_end) {
            m_ok = false;
        } else {
            m_p = p;
        }
    }

    std::uint64_t fixed(unsigned size)
    {
        if (static_cast<size_t>(m_end - m_p) < size) {
            m_ok = false;
            m_p = m_end;
            return 0;
        }
        std::uint64_t value = 0;
        for (unsigned i = 0; i < size; ++i) {
            value |= std::uint64_t(m_p[i]) << (8 * i);
        }
        m_p += size;
        return value;
    }

    std::uint64_t uleb()
    {
        std::uint64_t value = 0;
        for (unsigned shift = 0;; shift += 7) {
            const std::uint64_t byte = fixed(1);
            if (shift < 64) {
                value |= (byte & 0x7f) << shift;
            }
            if ((byte & 0x80) == 0 || !m_ok) {
                return value;
            }
        }
    }

    std::int64_t sleb()
    {
        std::int64_t value = 0;
        unsigned shift = 0;
        std::uint64_t byte = 0;
        do {
            byte = fixed(1);
            if (shift < 64) {
                value |= static_cast<std::int64_t>((byte & 0x7f) << shift);
            }
            shift += 7;
        } while ((byte & 0x80) != 0 && m_ok);
        if (shift < 64 && (byte & 0x40) != 0) {
            value |= -(std::int64_t(1) << shift);
        }
        return value;
    }

private:
    const std::uint8_t* m_p;
    const std::uint8_t* m_end;
    bool m_ok = true;
};

} // namespace

// One unit's line program: its header, then the state machine over its opcodes.
class LineTableReader::Program {
public:
    using FileId = std::function<std::uint32_t(std::uint64_t)>;

    Program(const LineTableReader& reader, Cursor cursor, FileId fileId)
        : m_reader(reader), m_in(cursor), m_fileId(std::move(fileId))
    {
    }

    void run(LineTable& table)
    {
        if (!readHeader()) {
            return;
        }
        reset();
        while (!m_in.atEnd()) {
            const auto opcode = static_cast<std::uint8_t>(m_in.fixed(1));
            if (opcode >= m_opcodeBase) {
                const unsigned adjusted = opcode - m_opcodeBase;
                m_address += (adjusted / m_lineRange) * m_minimumLength;
                m_line += m_lineBase + static_cast<int>(adjusted % m_lineRange);
                emit();
            } else if (opcode == 0) {
                extended(table);
            } else {
                standard(opcode);
            }
        }
    }

private:
    bool readHeader()
    {
        std::uint64_t length = m_in.fixed(4);
        unsigned offsetSize = 4;
        if (length == 0xffffffff) {
            length = m_in.fixed(8);
            offsetSize = 8;
        }
        const std::uint8_t* end =
            length < static_cast<std::uint64_t>(m_in.limit() - m_in.position()) ? m_in.position() + length : m_in.limit();
        m_version = static_cast<unsigned>(m_in.fixed(2));
        if (m_version < 2 || m_version > 5) {
            return false;
        }
        if (m_version >= 5) {
            m_in.fixed(2); // address size, segment selector size
        }
        const std::uint64_t headerLength = m_in.fixed(offsetSize);
        if (!m_in.ok() || m_in.position() > end || headerLength > static_cast<std::uint64_t>(end - m_in.position())) {
            return false;
        }
        const std::uint8_t* program = m_in.position() + headerLength;
        m_minimumLength = static_cast<unsigned>(m_in.fixed(1));
        if (m_version >= 4) {
            m_in.fixed(1); // maximum operations per instruction: 1 on ARM
        }
        m_defaultIsStatement = m_in.fixed(1) != 0;
        m_lineBase = static_cast<std::int8_t>(m_in.fixed(1));
        m_lineRange = static_cast<unsigned>(m_in.fixed(1));
        m_opcodeBase = static_cast<unsigned>(m_in.fixed(1));
        for (unsigned i = 1; i < m_opcodeBase; ++i) {
            m_standardLengths.push_back(static_cast<unsigned>(m_in.fixed(1)));
        }
        if (!m_in.ok() || m_lineRange == 0 || m_opcodeBase == 0) {
            return false;
        }
        m_in = Cursor(m_in.position(), end);
        m_in.seek(program);
        return m_in.ok();
    }

    void extended(LineTable& table)
    {
        const std::uint64_t length = m_in.uleb();
        if (length > static_cast<std::uint64_t>(m_in.limit() - m_in.position())) {
            m_in.fail();
            return;
        }
        const std::uint8_t* next = m_in.position() + length;
        if (length == 0) {
            return;
        }
        switch (m_in.fixed(1)) {
        case DW_LNE_end_sequence:
            m_sequence.end = static_cast<std::uint32_t>(m_address);
            if (!m_sequence.rows.empty() && !m_reader.isDiscarded(m_sequence.rows.front().address)) {
                table.addSequence(std::move(m_sequence));
            }
            reset();
            break;
        case DW_LNE_set_address:
            if (length - 1 <= 8) {
                m_address = m_in.fixed(static_cast<unsigned>(length - 1));
            }
            break;
        default:
            break; // define_file, set_discriminator, vendor ones: nothing a row needs
        }
        m_in.seek(next);
    }

    void standard(std::uint8_t opcode)
    {
        switch (opcode) {
        case DW_LNS_copy:
            emit();
            break;
        case DW_LNS_advance_pc:
            m_address += m_in.uleb() * m_minimumLength;
            break;
        case DW_LNS_advance_line:
            m_line += m_in.sleb();
            break;
        case DW_LNS_set_file:
            m_file = m_in.uleb();
            break;
        case DW_LNS_negate_stmt:
            m_isStatement = !m_isStatement;
            break;
        case DW_LNS_const_add_pc:
            m_address += ((255 - m_opcodeBase) / m_lineRange) * m_minimumLength;
            break;
        case DW_LNS_fixed_advance_pc:
            m_address += m_in.fixed(2);
            break;
        default:
            // set_column, set_basic_block, prologue_end, epilogue_begin, set_isa and unknown ones:
            // skip their operands.
            for (unsigned i = 0; i < m_standardLengths[opcode - 1]; ++i) {
                m_in.uleb();
            }
            break;
        }
    }

    void emit()
    {
        LineTable::Row row;
        row.address = static_cast<std::uint32_t>(m_address);
        row.file = m_fileId(m_file);
        row.line = m_line > 0 ? static_cast<unsigned>(m_line) : 0;
        row.isStatement = m_isStatement;
        m_sequence.rows.push_back(row);
    }

    void reset()
    {
        m_sequence = LineTable::Sequence();
        m_address = 0;
        m_file = 1;
        m_line = 1;
        m_isStatement = m_defaultIsStatement;
    }

    const LineTableReader& m_reader;
    Cursor m_in;
    FileId m_fileId;
    unsigned m_version = 0;
    unsigned m_minimumLength = 1;
    bool m_defaultIsStatement = true;
    int m_lineBase = 0;
    unsigned m_lineRange = 1;
    unsigned m_opcodeBase = 1;
    std::vector<unsigned> m_standardLengths;

    LineTable::Sequence m_sequence;
    std::uint64_t m_address = 0;
    std::uint64_t m_file = 1;
    std::int64_t m_line = 1;
    bool m_isStatement = true;
};

LineTableReader::LineTableReader(Dwarf* dwarf, const ElfImage& elf) : m_dwarf(dwarf), m_elf(elf)
{
    if (Elf_Data* data = sectionData(dwarf_getelf(dwarf), ".debug_line")) {
        m_section = static_cast<const std::uint8_t*>(data->d_buf);
        m_sectionSize = data->d_size;
    }
}

LineTable LineTableReader::read() const
{
    LineTable table;
    Dwarf_CU* cu = nullptr;
    Dwarf_Die unit;
    while (dwarf_get_units(m_dwarf, cu, &cu, nullptr, nullptr, &unit, nullptr) == 0) {
        readUnit(&unit, table);
    }
    table.finish();
    return table;
}

void LineTableReader::readUnit(Dwarf_Die* unit, LineTable& table) const
{
    Dwarf_Attribute attr;
    Dwarf_Word offset = 0;
    if (m_section == nullptr || dwarf_attr(unit, DW_AT_stmt_list, &attr) == nullptr ||
        dwarf_formudata(&attr, &offset) != 0 || offset >= m_sectionSize) {
        return; // a unit without line information
    }
    Dwarf_Files* files = nullptr;
    size_t fileCount = 0;
    if (dwarf_getsrcfiles(unit, &files, &fileCount) != 0) {
        fileCount = 0;
    }
    Dwarf_Attribute dirAttr;
    const char* dir = dwarf_formstring(dwarf_attr(unit, DW_AT_comp_dir, &dirAttr));
    const std::string compDir = dir ? dir : "";
    // The file register indexes libdw's file list directly, for DWARF 2 to 5 alike.
    std::vector<std::optional<std::uint32_t>> ids(fileCount);
    auto fileId = [&](std::uint64_t index) {
        if (index >= fileCount) {
            return table.addFile("");
        }
        if (!ids[index]) {
            const char* name = dwarf_filesrc(files, index, nullptr, nullptr);
            ids[index] = table.addFile(SourcePath::full(compDir, name ? name : ""));
        }
        return *ids[index];
    };
    Program(*this, Cursor(m_section + offset, m_section + m_sectionSize), fileId).run(table);
}

// The linker relocates the addresses of code it drops to 0.
bool LineTableReader::isDiscarded(std::uint32_t start) const
{
    return start == 0 && !m_elf.hasSymbolAt(start, ElfImage::SymbolKind::Function);
}

} // namespace quillon::debuginfo
