#pragma once

#include "OrbelHIL.h"
#include "com/Adapter.h"

namespace quillon::com {

/// `OrbelHIL`: hardware-in-the-loop channels. Every operation answers E_NOTIMPL with a message that names it
/// until the service behind it exists.
class HilAdapter final : public Adapter<kestrix::OrbelHIL> {
public:
    using Adapter::Adapter;

    HRESULT Read(DWORD, DWORD, const char*, char*, DWORD) override;
    HRESULT Write(DWORD, DWORD, const char*) override;
    HRESULT GetInfo(DWORD, kestrix::SHILInfo*) override;
};

} // namespace quillon::com
