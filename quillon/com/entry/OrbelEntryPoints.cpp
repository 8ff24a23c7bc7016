// The two C entry points of liborbel.so; nothing else leaves the library (orbel.map).

#include "OrbelEntryPoints.h"

#include "OrbelIdentifiers.h"
#include "OrbelResults.h"
#include "com/OrbelObject.h"
#include "com/QuillonVersion.h"
#include "instance/InstanceRegistry.h"

using namespace kestrix;

extern "C" HRESULT orbel_CreateObject(const GUID* clsid, IUnknown** object)
{
    if (object == nullptr) {
        return E_INVALIDARG;
    }
    *object = nullptr;
    if (clsid == nullptr || *clsid != CLSID_ORBEL) {
        return E_INVALIDARG;
    }
    try {
        *object = quillon::com::OrbelObject::create(quillon::InstanceRegistry::global());
        return S_OK;
    } catch (...) {
        return E_FAIL;
    }
}

extern "C" HRESULT orbel_GetInfo(SOrbelInfo* info)
{
    if (info == nullptr) {
        return E_INVALIDARG;
    }
    if (info->m_dwSize < sizeof(SOrbelInfo)) {
        return ORBEL_E_SIZE;
    }
    info->m_dwVersion = quillon::com::QuillonVersion::packed();
    return S_OK;
}
