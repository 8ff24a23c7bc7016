#pragma once

#include <string>

#include "OrbelTypes.h"

namespace kestrix {

/// Version of a Quillon installation or of the automation library: major.minor.build, with an
/// optional subbuild.
class CQuillonVersion {
public:
    /// Subbuild value that stands for "none".
    static constexpr WORD NO_SUBBUILD = 0xFFFF;

    CQuillonVersion(BYTE major, BYTE minor, WORD build);
    CQuillonVersion(BYTE major, BYTE minor, WORD build, WORD subbuild);

    BYTE getMajor() const { return m_major; }
    BYTE getMinor() const { return m_minor; }
    WORD getBuild() const { return m_build; }
    WORD getSubbuild() const { return m_subbuild; }

    /// `major.minor.build`, and `.subbuild` behind it unless there is none.
    std::string toString() const;

private:
    BYTE m_major;
    BYTE m_minor;
    WORD m_build;
    WORD m_subbuild;
};

} // namespace kestrix
