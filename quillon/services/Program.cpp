#include "services/Program.h"

#include <filesystem>
#include <system_error>

#include "debuginfo/DebugInfoError.h"
#include "services/ServiceError.h"

namespace quillon::services {

Program Program::load(const std::string& path)
{
    std::error_code error;
    if (path.empty() || !std::filesystem::is_regular_file(path, error)) {
        throw ServiceError(ServiceError::Kind::FileNotFound, "download file '" + path + "' not found");
    }
    Program program(path);
    try {
        program.m_debug.emplace(debuginfo::DebugInfo::open(path));
        return program;
    } catch (const debuginfo::DebugInfoError&) {
        // no usable DWARF: fall back to the ELF alone, which says what is wrong if it is no ELF either
    }
    try {
        program.m_elf.emplace(debuginfo::ElfImage::open(path));
    } catch (const debuginfo::DebugInfoError& e) {
        throw ServiceError(ServiceError::Kind::BadFile, "download file '" + path + "': " + e.what());
    }
    return program;
}

const debuginfo::ElfImage& Program::elf() const
{
    return m_debug ? m_debug->elf() : *m_elf;
}

} // namespace quillon::services
