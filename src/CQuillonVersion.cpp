#include "CQuillonVersion.h"

namespace kestrix {

CQuillonVersion::CQuillonVersion(BYTE major, BYTE minor, WORD build)
    : CQuillonVersion(major, minor, build, NO_SUBBUILD)
{
}

CQuillonVersion::CQuillonVersion(BYTE major, BYTE minor, WORD build, WORD subbuild)
    : m_major(major), m_minor(minor), m_build(build), m_subbuild(subbuild)
{
}

std::string CQuillonVersion::toString() const
{
    std::string text = std::to_string(m_major) + "." + std::to_string(m_minor) + "." + std::to_string(m_build);
    if (m_subbuild != NO_SUBBUILD) {
        text += "." + std::to_string(m_subbuild);
    }
    return text;
}

} // namespace kestrix
