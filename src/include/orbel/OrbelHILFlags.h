#pragma once

#include "OrbelTypes.h"

namespace kestrix {

/// Flag bits of OrbelHIL.
struct OrbelHILFlags {
    /// SHILInfo::m_dwFlags: asks for the descriptor in, says it is valid out.
    enum EInfoFlags : DWORD {
        hiDescriptor = 0x01
    };
};

} // namespace kestrix
