#pragma once

#include "OrbelTypes.h"

namespace kestrix {

class IDescriptor;

/// Record of OrbelHIL::GetInfo. The caller writes m_dwFlags = OrbelHILFlags::hiDescriptor;
/// the answer's bit 0 says that m_pIDescriptor is valid. Holds a pointer, so it has the natural
/// layout of the platform; the size passed with it is sizeof(SHILInfo).
struct SHILInfo {
    DWORD m_dwFlags = 0;
    IDescriptor* m_pIDescriptor = nullptr;
};

} // namespace kestrix
