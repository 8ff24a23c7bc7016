#pragma once

#include <string>

#include "OrbelTypes.h"

namespace kestrix {

/// A source file and a line in it.
class CLineLocation {
public:
    CLineLocation(const std::string& fileName, DWORD lineNumber) : m_fileName(fileName), m_lineNumber(lineNumber) {}

    std::string getFileName() const { return m_fileName; }
    DWORD getLineNumber() const { return m_lineNumber; }
    std::string toString() const;

private:
    std::string m_fileName;
    DWORD m_lineNumber;
};

} // namespace kestrix
