#pragma once

#include "OrbelTypes.h"

namespace quillon::com {

/// The version that the simulated Quillon reports, through `orbel_GetInfo` and
/// `OrbelIDE3::GetQuillonVersion`: newer than every version a client checks.
struct QuillonVersion {
    static constexpr BYTE kMajor = 9;
    static constexpr BYTE kMinor = 10;
    static constexpr WORD kBuild = 99;
    static constexpr BYTE kSubbuild = 0;

    /// As `SOrbelInfo::m_dwVersion`: bits 27 to 31 major, 22 to 26 minor, 12 to 21 build,
    /// 2 to 8 subbuild.
    static constexpr DWORD packed()
    {
        return (DWORD(kMajor) << 27) | (DWORD(kMinor) << 22) | (DWORD(kBuild) << 12)
               | (DWORD(kSubbuild) << 2);
    }
};

static_assert(QuillonVersion::kMajor < 32 && QuillonVersion::kMinor < 32 && QuillonVersion::kBuild < 1024
                  && QuillonVersion::kSubbuild < 128,
              "the version fits its packed fields");

} // namespace quillon::com
