#pragma once

#include <string>

namespace quillon::debuginfo {

/// Source file paths as the DWARF gives them, made full: relative ones joined to the compile
/// directory, "." and ".." resolved by text (no file system access).
class SourcePath {
public:
    static std::string full(const std::string& compDir, const std::string& path);
    /// Whether `query` names `path`: the whole path, or its trailing components ("main.c",
    /// "src/main.c").
    static bool names(const std::string& query, const std::string& path);
};

} // namespace quillon::debuginfo
