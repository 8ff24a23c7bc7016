#pragma once

#include "OrbelTypes.h"
#include "SApplicationData.h"

namespace kestrix {

/// The answer of a window command: Quillon's main window rectangle and its process id.
class CIDEData {
public:
    CIDEData() = default;
#ifndef SWIG
    explicit CIDEData(const SApplicationData& data)
        : m_left(data.m_dwLeft), m_top(data.m_dwTop), m_right(data.m_dwRight), m_bottom(data.m_dwBottom),
          m_pid(data.m_dwPID)
    {
    }
#endif

    DWORD getLeft() const { return m_left; }
    DWORD getTop() const { return m_top; }
    DWORD getRight() const { return m_right; }
    DWORD getBottom() const { return m_bottom; }
    DWORD getPID() const { return m_pid; }

private:
    DWORD m_left = 0;
    DWORD m_top = 0;
    DWORD m_right = 0;
    DWORD m_bottom = 0;
    DWORD m_pid = 0;
};

} // namespace kestrix
