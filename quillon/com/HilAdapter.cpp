#include "com/HilAdapter.h"

namespace quillon::com {

HRESULT HilAdapter::Read(DWORD, DWORD, const char*, char*, DWORD)
{
    return notImplemented("OrbelHIL::Read");
}

HRESULT HilAdapter::Write(DWORD, DWORD, const char*)
{
    return notImplemented("OrbelHIL::Write");
}

HRESULT HilAdapter::GetInfo(DWORD, kestrix::SHILInfo*)
{
    return notImplemented("OrbelHIL::GetInfo");
}

} // namespace quillon::com
