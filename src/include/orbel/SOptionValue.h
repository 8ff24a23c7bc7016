#pragma once

#include "OrbelTypes.h"

namespace kestrix {

class IDescriptor;

/// Value of OrbelIDE3::Option. Holds pointers, so it has the natural layout of the platform;
/// the field order and widths are those of the interface, and m_dwSize carries the real size of
/// the record. A new record is zero but for its size. A separator of 0 stands for its default
/// (PathSeparator, ValueSeparator, OptionSeparator).
struct SOptionValue {
    DWORD m_dwSize = sizeof(SOptionValue);
    char m_cPathSeparator = 0;
    char m_cValueSeparator = 0;
    char m_cOptionSeparator = 0;
    /// In: the text value.
    const char* m_pszStringIn = nullptr;
    /// Out: buffer of m_dwStringOutSize bytes for a text read.
    char* m_pszStringOut = nullptr;
    DWORD m_dwStringOutSize = 0;
    /// Integer value, in or out; index or size of a dynamic option.
    DWORD m_dwInteger = 0;
    double m_dFloat = 0.0;
    /// Out: descriptor of the option, if the library gives one.
    IDescriptor* m_pIDescriptor = nullptr;
};

/// The separator between the parts of an option path: c, or '.' for 0.
inline char PathSeparator(char c)
{
    return c != 0 ? c : '.';
}

/// The separator between an option's name and its value: c, or ':' for 0.
inline char ValueSeparator(char c)
{
    return c != 0 ? c : ':';
}

/// The separator between two options of one text: c, or a line feed for 0.
inline char OptionSeparator(char c)
{
    return c != 0 ? c : '\n';
}

} // namespace kestrix
