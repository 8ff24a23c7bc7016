#pragma once

#include <optional>
#include <string>

#include "debuginfo/DebugInfo.h"
#include "debuginfo/ElfImage.h"

namespace quillon::services {

/// One downloaded ELF file: its segments and symbols, and its DWARF when it has any. A file without debug
/// information still downloads; then symbols come from its symbol table alone.
class Program {
public:
    /// Reads the file. A missing file is a ServiceError of kind FileNotFound, a file that is no 32-bit ARM ELF one
    /// of kind BadFile; both name the file.
    static Program load(const std::string& path);

    const std::string& path() const { return m_path; }
    const debuginfo::ElfImage& elf() const;
    /// Null for a file without DWARF.
    const debuginfo::DebugInfo* debugInfo() const { return m_debug ? &*m_debug : nullptr; }

private:
    explicit Program(std::string path) : m_path(std::move(path)) {}

    std::string m_path;
    std::optional<debuginfo::DebugInfo> m_debug;
    std::optional<debuginfo::ElfImage> m_elf; ///< only when there is no DebugInfo, which holds its own
};

} // namespace quillon::services
