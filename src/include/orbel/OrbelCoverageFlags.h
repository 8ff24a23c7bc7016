#pragma once

#include "OrbelTypes.h"

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

    /// What of GetInfo.
    enum EInfo : DWORD {
        /// A bit set of EAvailability.
        ciAvailability = 1,
        /// An EKind.
        ciKind = 2
    };

    enum EAvailability : DWORD {
        caCoverage = 0x01,
        caBranchCoverage = 0x02
    };

    enum EKind : DWORD {
        ckHardware = 1,
        ckOffline = 2
    };

    /// Item of SetConfiguration, with the text and value it takes.
    enum EConfigItem : DWORD {
        /// Value: EScopeStep1.
        cciScope = 1,
        /// Value: the first option word.
        cciOption1 = 2,
        /// Value: the second option word.
        cciOption2 = 3,
        /// Text: the rangeset's name. S_OK and S_FALSE are both successes here.
        cciCreateRangeset = 4,
        /// Value: EScopeStep2; after cciScope with cssWithRangeset.
        cciScopeRangeset = 5,
        /// Text: the name of an excluded folder, module, function or item.
        cciExcludeFolder = 6,
        cciExcludeModule = 7,
        cciExcludeFunction = 8,
        cciExcludeItem = 9,
        /// Text: the name of an included folder, module, function or item.
        cciIncludeFolder = 10,
        cciIncludeModule = 11,
        cciIncludeFunction = 12,
        cciIncludeItem = 13,
        /// Text: the rangeset's name, or "" and its index as value.
        cciActiveRangeset = 14,
        cciClear = 16
    };

    /// Value of cciScope.
    enum EScopeStep1 : DWORD {
        cssAllDownloadedCode = 1,
        cssEntireMemory = 2,
        /// Refined by cciScopeRangeset.
        cssWithRangeset = 3
    };

    /// Value of cciScopeRangeset.
    enum EScopeStep2 : DWORD {
        cssDownloadedCodeMinusExcludes = 1,
        cssEntireMemoryMinusExcludes = 2,
        cssIncludesOnly = 3
    };

    /// Kind of GetRanges.
    enum ERangesKind : DWORD {
        /// The active ranges; name "" and range type 0.
        crkActive = 1,
        /// The ranges of a name of an ERangesTypes kind.
        crkResolve = 2
    };

    /// Error class of GetLastError.
    enum EErrorClass : DWORD {
        cecNone = 0,
        cecInternal = 1,
        /// Any other failure: the text tells.
        cecFailure = 2,
        cecIllegalState = 25
    };
};

} // namespace kestrix
