#include "services/Loader.h"

#include <algorithm>
#include <cstdio>

#include "services/ServiceError.h"
#include "target/TargetError.h"

namespace quillon::services {

namespace {

std::string hex(std::uint64_t value)
{
    char text[24];
    std::snprintf(text, sizeof text, "0x%08llx", static_cast<unsigned long long>(value));
    return text;
}

} // namespace

std::vector<Program> Loader::download(const std::vector<std::string>& files, std::uint32_t codeOffset)
{
    if (files.empty()) {
        throw ServiceError(ServiceError::Kind::InvalidArgument, "nothing to download: the download list is empty");
    }
    std::vector<Program> programs;
    for (const std::string& file : files) {
        programs.push_back(Program::load(file));
        check(programs.back(), codeOffset);
    }
    for (const Program& program : programs) {
        write(program, codeOffset);
    }
    start(programs, codeOffset);
    return programs;
}

// A segment whose load address is its run address is written whole, zeros beyond the file's bytes included; one
// that the startup code copies (.data in flash) only with the file's bytes: the zeros are the startup's job.
std::uint64_t Loader::loadSize(const debuginfo::ElfImage::Segment& segment)
{
    if (segment.physicalAddress == segment.virtualAddress) {
        return std::max<std::uint64_t>(segment.memorySize, segment.bytes.size());
    }
    return segment.bytes.size();
}

void Loader::check(const Program& program, std::uint32_t codeOffset) const
{
    for (const auto& segment : program.elf().segments()) {
        std::uint64_t address = std::uint64_t(segment.physicalAddress) + codeOffset;
        std::uint64_t size = loadSize(segment);
        if (size != 0 && !m_target.memory().isMapped(address, size)) {
            throw ServiceError(ServiceError::Kind::BadFile, "download file '" + program.path() + "': segment at " +
                                                                hex(address) + " (" + std::to_string(size) +
                                                                " bytes) is outside the target's memory");
        }
    }
}

void Loader::write(const Program& program, std::uint32_t codeOffset)
{
    for (const auto& segment : program.elf().segments()) {
        std::vector<std::uint8_t> bytes = segment.bytes;
        bytes.resize(loadSize(segment), 0);
        if (!bytes.empty()) {
            m_target.writeMemory(segment.physicalAddress + codeOffset, bytes);
        }
    }
}

void Loader::start(const std::vector<Program>& programs, std::uint32_t codeOffset)
{
    bool hasVectors = std::any_of(programs.begin(), programs.end(), [&](const Program& program) {
        const auto& segments = program.elf().segments();
        return std::any_of(segments.begin(), segments.end(), [&](const auto& segment) {
            return segment.physicalAddress + codeOffset == 0 && loadSize(segment) >= 8;
        });
    });
    if (m_target.memory().isMapped(0, 8)) {
        m_target.reset();
    }
    if (!hasVectors) {
        m_target.writeRegister(target::Register::PC, (programs.front().elf().entry() & ~1u) + codeOffset);
    }
}

} // namespace quillon::services
