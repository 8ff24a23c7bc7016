#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

typedef struct Elf Elf;

namespace quillon::debuginfo {

/// A 32-bit ARM ELF file read into memory: its loadable segments for download, its entry and its
/// symbol table. Move-only; owns the file's bytes and the libelf descriptor over them.
class ElfImage {
public:
    /// A PT_LOAD segment.
    struct Segment {
        std::uint32_t virtualAddress = 0;
        std::uint32_t physicalAddress = 0; ///< load address (LMA): where download writes the bytes
        std::uint32_t memorySize = 0;      ///< file bytes, then zeros up to this size
        bool readable = false;
        bool writable = false;
        bool executable = false;
        std::vector<std::uint8_t> bytes; ///< the file's bytes of the segment
    };

    enum class SymbolKind { Function, Object, Other };

    /// An entry of the ELF symbol table. Mapping symbols ($t, $d, ...), section and file symbols
    /// are left out.
    struct Symbol {
        std::string name;
        std::uint32_t address = 0; ///< without the Thumb bit
        std::uint32_t size = 0;
        SymbolKind kind = SymbolKind::Other;
        bool global = false; ///< global or weak binding; false for a file's local symbol
        bool thumb = false;  ///< the symbol's value had bit 0 set
        std::string file;    ///< local symbols: the source file named by the preceding file symbol
    };

    /// Reads and checks the file: an ELF, 32-bit, little-endian, ARM. Throws DebugInfoError naming
    /// the file otherwise.
    static ElfImage open(const std::string& path);

    ElfImage(ElfImage&&) noexcept;
    ElfImage& operator=(ElfImage&&) noexcept;
    ~ElfImage();

    const std::string& path() const { return m_path; }
    /// The ELF entry as written in the header (bit 0 set for a Thumb entry).
    std::uint32_t entry() const { return m_entry; }
    const std::vector<Segment>& segments() const { return m_segments; }
    const std::vector<Symbol>& symbols() const { return m_symbols; }

    /// Symbols of the name; a file's local symbols too.
    std::vector<const Symbol*> findSymbols(const std::string& name) const;
    /// The global symbol of the name, else the first local one; nullptr if none.
    const Symbol* findSymbol(const std::string& name) const;
    /// The function or object symbol whose [address, address + size) holds the address; else a
    /// label (a symbol without size or kind) at exactly that address; nullptr if none.
    const Symbol* symbolAt(std::uint32_t address) const;
    /// Symbols that start at the address.
    std::vector<const Symbol*> symbolsAt(std::uint32_t address) const;
    /// Whether a symbol of the kind starts at the address.
    bool hasSymbolAt(std::uint32_t address, SymbolKind kind) const;

    /// The libelf descriptor, valid as long as this image.
    Elf* elf() const { return m_elf.get(); }

private:
    struct ElfCloser {
        void operator()(Elf* elf) const;
    };

    ElfImage() = default;
    void readHeader();
    void readSegments();
    void readSymbols();

    std::string m_path;
    std::vector<char> m_bytes;
    std::unique_ptr<Elf, ElfCloser> m_elf;
    std::uint32_t m_entry = 0;
    std::vector<Segment> m_segments;
    std::vector<Symbol> m_symbols; ///< sorted by address
};

} // namespace quillon::debuginfo
