#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "services/Program.h"
#include "target/Target.h"

namespace quillon::services {

/// Downloads ELF files into a stopped target: their loadable segments at their load addresses, then a reset, so
/// that the core starts from the vector table (or at the ELF entry when no file has one at address 0).
class Loader {
public:
    explicit Loader(target::Target& target) : m_target(target) {}

    /// Reads every file first and checks that every segment fits the target's memory, then writes them in file
    /// order: nothing is written when a file is missing or bad. `codeOffset` moves every segment.
    std::vector<Program> download(const std::vector<std::string>& files, std::uint32_t codeOffset = 0);

private:
    static std::uint64_t loadSize(const debuginfo::ElfImage::Segment& segment);
    void check(const Program& program, std::uint32_t codeOffset) const;
    void write(const Program& program, std::uint32_t codeOffset);
    void start(const std::vector<Program>& programs, std::uint32_t codeOffset);

    target::Target& m_target;
};

} // namespace quillon::services
