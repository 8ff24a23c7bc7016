#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace quillon::services {

/// A make rule as gcc writes it with -MMD or -MM: "target: prerequisite ...", continued over lines that end
/// in a backslash, with "\ " for a blank inside a name and "$$" for a dollar.
class DependencyFile {
public:
    /// The prerequisites of the first rule of `text`; none for a text without rule.
    static std::vector<std::string> parse(const std::string& text);
    /// Reads the prerequisites of `file`; false, and `prerequisites` untouched, if it cannot be read.
    static bool read(const std::filesystem::path& file, std::vector<std::string>& prerequisites);
};

} // namespace quillon::services
