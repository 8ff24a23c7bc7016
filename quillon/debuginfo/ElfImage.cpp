#include "debuginfo/ElfImage.h"

#include "debuginfo/DebugInfoError.h"

#include <gelf.h>
#include <libelf.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fstream>

namespace quillon::debuginfo {

namespace {

std::string quoted(const std::string& path)
{
    return "'" + path + "'";
}

ElfImage::SymbolKind kindOf(unsigned char type)
{
    switch (type) {
    case STT_FUNC:
        return ElfImage::SymbolKind::Function;
    case STT_OBJECT:
        return ElfImage::SymbolKind::Object;
    default:
        return ElfImage::SymbolKind::Other;
    }
}

// Mapping symbols ($a, $t, $d and their numbered forms) mark code and data, they name nothing.
bool isMappingSymbol(const char* name)
{
    return name[0] == '$';
}

} // namespace

void ElfImage::ElfCloser::operator()(Elf* elf) const
{
    elf_end(elf);
}

ElfImage::ElfImage(ElfImage&&) noexcept = default;
ElfImage& ElfImage::operator=(ElfImage&&) noexcept = default;
ElfImage::~ElfImage() = default;

ElfImage ElfImage::open(const std::string& path)
{
    ElfImage image;
    image.m_path = path;
    std::ifstream in(path, std::ios::binary | std::ios::ate);
    if (!in) {
        throw DebugInfoError("cannot open " + quoted(path) + ": " + std::strerror(errno));
    }
    const std::streamoff size = in.tellg();
    in.seekg(0);
    image.m_bytes.resize(size > 0 ? static_cast<std::size_t>(size) : 0);
    if (!in.read(image.m_bytes.data(), static_cast<std::streamsize>(image.m_bytes.size()))) {
        throw DebugInfoError("cannot read " + quoted(path) + ": " + std::strerror(errno));
    }
    elf_version(EV_CURRENT);
    image.m_elf.reset(elf_memory(image.m_bytes.data(), image.m_bytes.size()));
    if (!image.m_elf || elf_kind(image.m_elf.get()) != ELF_K_ELF) {
        throw DebugInfoError(quoted(path) + " is not an ELF file");
    }
    image.readHeader();
    image.readSegments();
    image.readSymbols();
    return image;
}

void ElfImage::readHeader()
{
    GElf_Ehdr header;
    if (gelf_getehdr(m_elf.get(), &header) == nullptr) {
        throw DebugInfoError(quoted(m_path) + " is not an ELF file: " + elf_errmsg(-1));
    }
    if (header.e_ident[EI_CLASS] != ELFCLASS32 || header.e_ident[EI_DATA] != ELFDATA2LSB) {
        throw DebugInfoError(quoted(m_path) + " is not a 32-bit little-endian ELF file");
    }
    if (header.e_machine != EM_ARM) {
        throw DebugInfoError(quoted(m_path) + " is not an ARM ELF file (machine " +
                             std::to_string(header.e_machine) + ")");
    }
    m_entry = static_cast<std::uint32_t>(header.e_entry);
}

void ElfImage::readSegments()
{
    GElf_Ehdr elfHeader;
    gelf_getehdr(m_elf.get(), &elfHeader);
    size_t count = 0;
    const std::uint64_t tableEnd = elfHeader.e_phoff + std::uint64_t(elfHeader.e_phnum) * elfHeader.e_phentsize;
    if (elf_getphdrnum(m_elf.get(), &count) != 0 || tableEnd > m_bytes.size()) {
        throw DebugInfoError(quoted(m_path) + ": cannot read the program headers");
    }
    for (size_t i = 0; i < count; ++i) {
        GElf_Phdr header;
        if (gelf_getphdr(m_elf.get(), static_cast<int>(i), &header) == nullptr) {
            throw DebugInfoError(quoted(m_path) + ": cannot read the program headers");
        }
        if (header.p_type != PT_LOAD) {
            continue;
        }
        if (header.p_offset > m_bytes.size() || header.p_filesz > m_bytes.size() - header.p_offset ||
            header.p_filesz > header.p_memsz) {
            throw DebugInfoError(quoted(m_path) + ": loadable segment " + std::to_string(i) +
                                 " lies outside the file");
        }
        Segment segment;
        segment.virtualAddress = static_cast<std::uint32_t>(header.p_vaddr);
        segment.physicalAddress = static_cast<std::uint32_t>(header.p_paddr);
        segment.memorySize = static_cast<std::uint32_t>(header.p_memsz);
        segment.readable = (header.p_flags & PF_R) != 0;
        segment.writable = (header.p_flags & PF_W) != 0;
        segment.executable = (header.p_flags & PF_X) != 0;
        const auto* begin = reinterpret_cast<const std::uint8_t*>(m_bytes.data()) + header.p_offset;
        segment.bytes.assign(begin, begin + header.p_filesz);
        m_segments.push_back(std::move(segment));
    }
    if (m_segments.empty()) {
        throw DebugInfoError(quoted(m_path) + " has no loadable segments");
    }
}

void ElfImage::readSymbols()
{
    Elf_Scn* section = nullptr;
    while ((section = elf_nextscn(m_elf.get(), section)) != nullptr) {
        GElf_Shdr header;
        if (gelf_getshdr(section, &header) == nullptr || header.sh_type != SHT_SYMTAB || header.sh_entsize == 0) {
            continue;
        }
        Elf_Data* data = elf_getdata(section, nullptr);
        if (data == nullptr) {
            continue;
        }
        std::string file;
        const size_t count = header.sh_size / header.sh_entsize;
        for (size_t i = 1; i < count; ++i) {
            GElf_Sym raw;
            if (gelf_getsym(data, static_cast<int>(i), &raw) == nullptr) {
                continue;
            }
            const unsigned char type = GELF_ST_TYPE(raw.st_info);
            const char* name = elf_strptr(m_elf.get(), header.sh_link, raw.st_name);
            if (type == STT_FILE) {
                file = name ? name : "";
                continue;
            }
            if (name == nullptr || *name == '\0' || isMappingSymbol(name) || type == STT_SECTION ||
                raw.st_shndx == SHN_UNDEF) {
                continue;
            }
            Symbol symbol;
            symbol.name = name;
            symbol.kind = kindOf(type);
            symbol.size = static_cast<std::uint32_t>(raw.st_size);
            symbol.global = GELF_ST_BIND(raw.st_info) != STB_LOCAL;
            symbol.thumb = symbol.kind == SymbolKind::Function && (raw.st_value & 1) != 0;
            symbol.address = static_cast<std::uint32_t>(raw.st_value) & ~std::uint32_t(symbol.thumb ? 1 : 0);
            if (!symbol.global) {
                symbol.file = file;
            }
            m_symbols.push_back(std::move(symbol));
        }
    }
    std::stable_sort(m_symbols.begin(), m_symbols.end(),
                     [](const Symbol& a, const Symbol& b) { return a.address < b.address; });
}

std::vector<const ElfImage::Symbol*> ElfImage::findSymbols(const std::string& name) const
{
    std::vector<const Symbol*> found;
    for (const Symbol& symbol : m_symbols) {
        if (symbol.name == name) {
            found.push_back(&symbol);
        }
    }
    return found;
}

const ElfImage::Symbol* ElfImage::findSymbol(const std::string& name) const
{
    const Symbol* local = nullptr;
    for (const Symbol& symbol : m_symbols) {
        if (symbol.name != name) {
            continue;
        }
        if (symbol.global) {
            return &symbol;
        }
        if (local == nullptr) {
            local = &symbol;
        }
    }
    return local;
}

const ElfImage::Symbol* ElfImage::symbolAt(std::uint32_t address) const
{
    auto it = std::upper_bound(m_symbols.begin(), m_symbols.end(), address,
                               [](std::uint32_t a, const Symbol& s) { return a < s.address; });
    const Symbol* exact = nullptr;
    while (it != m_symbols.begin()) {
        --it;
        if (it->kind == SymbolKind::Other || it->size == 0) {
            if (it->address == address) {
                exact = &*it;
            }
            continue;
        }
        // Symbols do not overlap: the nearest sized one below either holds the address or none does.
        if (address - it->address < it->size) {
            return &*it;
        }
        break;
    }
    return exact;
}

std::vector<const ElfImage::Symbol*> ElfImage::symbolsAt(std::uint32_t address) const
{
    std::vector<const Symbol*> found;
    auto it = std::lower_bound(m_symbols.begin(), m_symbols.end(), address,
                               [](const Symbol& s, std::uint32_t a) { return s.address < a; });
    for (; it != m_symbols.end() && it->address == address; ++it) {
        found.push_back(&*it);
    }
    return found;
}

bool ElfImage::hasSymbolAt(std::uint32_t address, SymbolKind kind) const
{
    const std::vector<const Symbol*> found = symbolsAt(address);
    return std::any_of(found.begin(), found.end(), [kind](const Symbol* s) { return s->kind == kind; });
}

} // namespace quillon::debuginfo
