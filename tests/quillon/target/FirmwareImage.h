#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

namespace quillon::target {
class Target;
}

/// The loadable segments and symbols of a firmware ELF, as a flash programmer sees them; the tests' own loader
/// (the library reads ELF files in a higher layer).
class FirmwareImage {
public:
    struct Segment {
        uint32_t address; ///< load address (LMA)
        std::vector<uint8_t> bytes;
    };

    /// Throws std::runtime_error if the file cannot be read.
    explicit FirmwareImage(const std::string& path);

    const std::vector<Segment>& segments() const { return m_segments; }
    /// Address of a function or object, without the Thumb bit; throws for an unknown name.
    uint32_t symbol(const std::string& name) const;
    uint32_t symbolSize(const std::string& name) const;
    /// Writes every segment at its load address.
    void load(quillon::target::Target& target) const;

private:
    struct Symbol {
        uint32_t address;
        uint32_t size;
    };

    std::vector<Segment> m_segments;
    std::map<std::string, Symbol> m_symbols;
};
