#include "com/HilDescriptor.h"

#include "OrbelIdentifiers.h"
#include "OrbelResults.h"

namespace quillon::com {

HilDescriptor::HilDescriptor(kestrix::IUnknown& owner, const std::vector<services::HilChannel>& channels)
    : m_owner(owner)
{
    for (const services::HilChannel& channel : channels) {
        m_variables.push_back(std::make_unique<HilVariable>(channel));
    }
}

HRESULT HilDescriptor::QueryInterface(const kestrix::GUID& iid, void** object)
{
    if (object != nullptr && iid == kestrix::IID_IDescriptor) {
        *object = static_cast<kestrix::IDescriptor*>(this);
        AddRef();
        return kestrix::S_OK;
    }
    return m_owner.QueryInterface(iid, object);
}

kestrix::IVariableDescriptor* HilDescriptor::at(DWORD index)
{
    return index < m_variables.size() ? m_variables[index].get() : nullptr;
}

} // namespace quillon::com
