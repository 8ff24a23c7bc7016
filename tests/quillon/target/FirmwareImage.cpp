#include "FirmwareImage.h"

#include <fcntl.h>
#include <gelf.h>
#include <libelf.h>
#include <unistd.h>

#include <memory>
#include <stdexcept>

#include "target/Target.h"

namespace {

struct FileCloser {
    void operator()(int* fd) const
    {
        close(*fd);
        delete fd;
    }
};

struct ElfCloser {
    void operator()(Elf* e) const { elf_end(e); }
};

} // namespace

FirmwareImage::FirmwareImage(const std::string& path)
{
    elf_version(EV_CURRENT);
    int fd = open(path.c_str(), O_RDONLY);
    if (fd < 0) {
        throw std::runtime_error("cannot open " + path);
    }
    std::unique_ptr<int, FileCloser> file(new int(fd));
    std::unique_ptr<Elf, ElfCloser> elf(elf_begin(fd, ELF_C_READ, nullptr));
    if (!elf || elf_kind(elf.get()) != ELF_K_ELF) {
        throw std::runtime_error("not an ELF file: " + path);
    }
    size_t rawSize = 0;
    const char* raw = elf_rawfile(elf.get(), &rawSize);
    size_t count = 0;
    elf_getphdrnum(elf.get(), &count);
    for (size_t i = 0; i < count; ++i) {
        GElf_Phdr ph;
        if (gelf_getphdr(elf.get(), static_cast<int>(i), &ph) != nullptr && ph.p_type == PT_LOAD && ph.p_filesz > 0) {
            m_segments.push_back({static_cast<uint32_t>(ph.p_paddr),
                                  std::vector<uint8_t>(raw + ph.p_offset, raw + ph.p_offset + ph.p_filesz)});
        }
    }
    for (Elf_Scn* scn = nullptr; (scn = elf_nextscn(elf.get(), scn)) != nullptr;) {
        GElf_Shdr sh;
        if (gelf_getshdr(scn, &sh) == nullptr || sh.sh_type != SHT_SYMTAB) {
            continue;
        }
        Elf_Data* data = elf_getdata(scn, nullptr);
        for (size_t j = 0; j < sh.sh_size / sh.sh_entsize; ++j) {
            GElf_Sym s;
            gelf_getsym(data, static_cast<int>(j), &s);
            int type = GELF_ST_TYPE(s.st_info);
            if (type == STT_FUNC || type == STT_OBJECT) {
                m_symbols[elf_strptr(elf.get(), sh.sh_link, s.st_name)] = {
                    static_cast<uint32_t>(s.st_value) & ~1u, static_cast<uint32_t>(s.st_size)};
            }
        }
    }
}

uint32_t FirmwareImage::symbol(const std::string& name) const
{
    auto it = m_symbols.find(name);
    if (it == m_symbols.end()) {
        throw std::runtime_error("no symbol " + name);
    }
    return it->second.address;
}

uint32_t FirmwareImage::symbolSize(const std::string& name) const
{
    symbol(name);
    return m_symbols.at(name).size;
}

void FirmwareImage::load(quillon::target::Target& target) const
{
    for (const Segment& s : m_segments) {
        target.writeMemory(s.address, s.bytes);
    }
}
