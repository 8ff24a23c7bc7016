#include "debuginfo/SourcePath.h"

#include <sstream>
#include <vector>

namespace quillon::debuginfo {

std::string SourcePath::full(const std::string& compDir, const std::string& path)
{
    if (path.empty()) {
        return path;
    }
    const std::string joined = path.front() == '/' || compDir.empty() ? path : compDir + "/" + path;
    const bool absolute = joined.front() == '/';
    std::vector<std::string> parts;
    std::istringstream in(joined);
    for (std::string part; std::getline(in, part, '/');) {
        if (part.empty() || part == ".") {
            continue;
        }
        if (part == ".." && !parts.empty() && parts.back() != "..") {
            parts.pop_back();
        } else if (part != ".." || !absolute) {
            parts.push_back(part);
        }
    }
    std::string result = absolute ? "/" : "";
    for (size_t i = 0; i < parts.size(); ++i) {
        result += (i ? "/" : "") + parts[i];
    }
    return result;
}

bool SourcePath::names(const std::string& query, const std::string& path)
{
    if (query.empty() || query.size() > path.size()) {
        return false;
    }
    if (query.size() == path.size()) {
        return query == path;
    }
    return path.compare(path.size() - query.size(), query.size(), query) == 0 &&
           path[path.size() - query.size() - 1] == '/';
}

} // namespace quillon::debuginfo
