#pragma once

#include <string>
#include <vector>

namespace kestrix {

/// One file of a download list of the workspace, with its download options.
struct DownloadListMember {
    std::string fileName;
    std::string options;
};

typedef std::vector<DownloadListMember> DownloadListVector;

} // namespace kestrix
