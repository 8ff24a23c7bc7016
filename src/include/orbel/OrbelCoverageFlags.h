#pragma once

namespace kestrix {

/// Enumerations of the coverage interface.
struct OrbelCoverageFlags {
    /// Kind of a range given to range resolution.
    enum ERangesTypes {
        crtFolder = 0,
        crtModule = 1,
        crtFunction = 2,
        crtItem = 3
    };

    /// Kind of a coverage statistic.
    enum EStatisticsFlags {
        csftBytes = 1,
        csftBytesExec = 2,
        csftBranches = 3,
        csftBranchesExec = 4,
        csftBranchesTaken = 5,
        csftBranchesNotTaken = 6,
        csftBranchesBoth = 7
    };
};

} // namespace kestrix
