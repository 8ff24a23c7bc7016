#include "com/OrbelObject.h"

#include "OrbelIdentifiers.h"
#include "OrbelResults.h"

namespace quillon::com {

using namespace kestrix;

OrbelObject* OrbelObject::create(InstanceRegistry& registry)
{
    return new OrbelObject(registry);
}

OrbelObject::OrbelObject(InstanceRegistry& registry) : m_session(registry) {}

HRESULT OrbelObject::QueryInterface(const GUID& iid, void** object)
{
    if (object == nullptr) {
        return E_INVALIDARG;
    }
    *object = find(iid);
    if (*object == nullptr) {
        return E_NOINTERFACE;
    }
    AddRef();
    return S_OK;
}

void* OrbelObject::find(const GUID& iid)
{
    const struct {
        const GUID& iid;
        void* pointer;
    } table[] = {
        {IID_IUnknown, static_cast<kestrix::IUnknown*>(this)},
        {IID_Orbel, static_cast<Orbel*>(&m_orbel)},
        {IID_OrbelIDE, static_cast<OrbelIDE*>(&m_ide)},
        {IID_OrbelIDE2, static_cast<OrbelIDE2*>(&m_ide)},
        {IID_OrbelIDE3, static_cast<OrbelIDE3*>(&m_ide)},
        {IID_OrbelDebug, static_cast<OrbelDebug*>(&m_debug)},
        {IID_OrbelDebug2, static_cast<OrbelDebug2*>(&m_debug)},
        {IID_OrbelProfiler, static_cast<OrbelProfiler*>(&m_profiler)},
        {IID_OrbelProfiler2, static_cast<OrbelProfiler2*>(&m_profiler)},
        {IID_OrbelProject, static_cast<OrbelProject*>(&m_project)},
        {IID_OrbelCoverage, static_cast<OrbelCoverage*>(&m_coverage)},
        {IID_OrbelTest, static_cast<OrbelTest*>(&m_test)},
        {IID_OrbelHIL, static_cast<OrbelHIL*>(&m_hil)},
        {IID_OrbelEclipse, static_cast<OrbelEclipse*>(&m_eclipse)},
        {IID_OrbelSink, static_cast<OrbelSink*>(&m_sink)},
        {IID_OrbelBetaExtra, static_cast<OrbelBetaExtra*>(&m_betaExtra)},
    };
    for (const auto& entry : table) {
        if (entry.iid == iid) {
            return entry.pointer;
        }
    }
    return nullptr;
}

ULONG OrbelObject::AddRef()
{
    return ++m_references;
}

ULONG OrbelObject::Release()
{
    const ULONG left = --m_references;
    if (left == 0) {
        delete this;
    }
    return left;
}

} // namespace quillon::com
