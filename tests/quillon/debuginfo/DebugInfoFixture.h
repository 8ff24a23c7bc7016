#pragma once

#include "debuginfo/DebugInfo.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <fstream>
#include <map>
#include <string>

namespace quillon::debuginfo::test {

inline std::string firmwarePath(const std::string& name)
{
    return std::string(FIRMWARE_DIR) + "/" + name;
}

inline std::string sourcePath(const std::string& file)
{
    return std::string(KESTRIX_SOURCE_DIR) + "/tests/firmware/debuginfo/" + file;
}

/// The test firmware's debug information, read once for all tests (they only read it).
inline const DebugInfo& firmware()
{
    static const DebugInfo info = DebugInfo::open(firmwarePath("debuginfo.elf"));
    return info;
}

/// The line of a source file that holds `marker` (a comment such as "@loop"); 0 if none.
inline unsigned markerLine(const std::string& file, const std::string& marker)
{
    std::ifstream in(sourcePath(file));
    std::string text;
    for (unsigned line = 1; std::getline(in, text); ++line) {
        if (text.find(marker) != std::string::npos) {
            return line;
        }
    }
    return 0;
}

/// Registers and memory that a test sets up by hand.
class FakeFrame : public FrameContext {
public:
    std::optional<std::uint32_t> readRegister(unsigned reg) const override
    {
        auto found = registers.find(reg);
        return found == registers.end() ? std::nullopt : std::optional<std::uint32_t>(found->second);
    }

    bool readMemory(std::uint32_t address, void* buffer, std::size_t length) const override
    {
        auto* out = static_cast<std::uint8_t*>(buffer);
        for (std::size_t i = 0; i < length; ++i) {
            auto found = memory.find(address + static_cast<std::uint32_t>(i));
            if (found == memory.end()) {
                return false;
            }
            out[i] = found->second;
        }
        return true;
    }

    void writeWord(std::uint32_t address, std::uint32_t value)
    {
        for (unsigned i = 0; i < 4; ++i) {
            memory[address + i] = static_cast<std::uint8_t>(value >> (8 * i));
        }
    }

    std::map<unsigned, std::uint32_t> registers;
    std::map<std::uint32_t, std::uint8_t> memory;
};

} // namespace quillon::debuginfo::test
