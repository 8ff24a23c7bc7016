#include "services/CodeMap.h"

#include <gelf.h>

#include <algorithm>
#include <map>

#include "services/AnalyzerError.h"

namespace quillon::services {

namespace {

/// An executable section: where it lies and its bytes in the file.
struct CodeSection {
    std::uint32_t address = 0;
    const std::uint8_t* bytes = nullptr;
    std::size_t size = 0;
    std::map<std::uint32_t, bool> marks; ///< mapping symbols by address: true for code ($t), false for data ($d)
};

bool isMappingSymbol(const char* name, char kind)
{
    return name[0] == '$' && name[1] == kind && (name[2] == '\0' || name[2] == '.');
}

std::map<std::size_t, CodeSection> executableSections(Elf* elf, const std::string& path)
{
    std::map<std::size_t, CodeSection> sections;
    Elf_Scn* scn = nullptr;
    while ((scn = elf_nextscn(elf, scn)) != nullptr) {
        GElf_Shdr header;
        if (gelf_getshdr(scn, &header) == nullptr) {
            throw AnalyzerError(AnalyzerError::Kind::Failed, "cannot read the sections of '" + path + "'");
        }
        const bool isCode = header.sh_type == SHT_PROGBITS && (header.sh_flags & SHF_ALLOC)
                            && (header.sh_flags & SHF_EXECINSTR) && header.sh_size > 0;
        Elf_Data* data = isCode ? elf_getdata(scn, nullptr) : nullptr;
        if (data == nullptr || data->d_buf == nullptr) {
            continue;
        }
        CodeSection section;
        section.address = static_cast<std::uint32_t>(header.sh_addr);
        section.bytes = static_cast<const std::uint8_t*>(data->d_buf);
        section.size = std::min<std::size_t>(data->d_size, header.sh_size);
        sections.emplace(elf_ndxscn(scn), section);
    }
    return sections;
}

void readMappingSymbols(Elf* elf, std::map<std::size_t, CodeSection>& sections)
{
    Elf_Scn* scn = nullptr;
    while ((scn = elf_nextscn(elf, scn)) != nullptr) {
        GElf_Shdr header;
        if (gelf_getshdr(scn, &header) == nullptr || header.sh_type != SHT_SYMTAB || header.sh_entsize == 0) {
            continue;
        }
        Elf_Data* data = elf_getdata(scn, nullptr);
        const std::size_t count = header.sh_size / header.sh_entsize;
        for (std::size_t i = 0; data != nullptr && i < count; ++i) {
            GElf_Sym symbol;
            if (gelf_getsym(data, static_cast<int>(i), &symbol) == nullptr) {
                continue;
            }
            const char* name = elf_strptr(elf, header.sh_link, symbol.st_name);
            auto section = sections.find(symbol.st_shndx);
            if (name == nullptr || section == sections.end()) {
                continue;
            }
            const auto address = static_cast<std::uint32_t>(symbol.st_value);
            if (isMappingSymbol(name, 't')) {
                section->second.marks[address] = true;
            } else if (isMappingSymbol(name, 'd') || isMappingSymbol(name, 'a')) {
                section->second.marks[address] = false; // data, or ARM code that a Cortex-M cannot run
            }
        }
    }
}

} // namespace

CodeMap CodeMap::of(const std::vector<Program>& programs, const ThumbDecoder& decoder)
{
    CodeMap map;
    for (const Program& program : programs) {
        map.addProgram(program, decoder);
    }
    std::sort(map.m_instructions.begin(), map.m_instructions.end(),
              [](const ThumbInstruction& a, const ThumbInstruction& b) { return a.address < b.address; });
    return map;
}

void CodeMap::addProgram(const Program& program, const ThumbDecoder& decoder)
{
    Elf* elf = program.elf().elf();
    std::map<std::size_t, CodeSection> sections = executableSections(elf, program.path());
    readMappingSymbols(elf, sections);
    for (auto& [index, section] : sections) {
        (void)index;
        const std::uint64_t end = std::uint64_t(section.address) + section.size;
        m_sections.add(section.address, end);
        if (section.marks.empty()) {
            section.marks[section.address] = true;
        }
        for (auto mark = section.marks.begin(); mark != section.marks.end(); ++mark) {
            const auto next = std::next(mark);
            const std::uint64_t stop = next == section.marks.end() ? end : std::min<std::uint64_t>(next->first, end);
            if (!mark->second || mark->first < section.address || mark->first >= stop) {
                continue;
            }
            const std::size_t offset = mark->first - section.address;
            std::vector<ThumbInstruction> code =
                decoder.decode(section.bytes + offset, std::size_t(stop - mark->first), mark->first);
            m_instructions.insert(m_instructions.end(), code.begin(), code.end());
        }
    }
}

std::vector<ThumbInstruction> CodeMap::instructionsIn(std::uint64_t begin, std::uint64_t end) const
{
    auto first = std::lower_bound(m_instructions.begin(), m_instructions.end(), begin,
                                  [](const ThumbInstruction& i, std::uint64_t at) { return i.address < at; });
    auto last = std::lower_bound(first, m_instructions.end(), end,
                                 [](const ThumbInstruction& i, std::uint64_t at) { return i.address < at; });
    return std::vector<ThumbInstruction>(first, last);
}

} // namespace quillon::services
