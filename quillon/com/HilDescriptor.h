#pragma once

#include <memory>
#include <vector>

#include "IDescriptor.h"
#include "IVectorVariableDescriptors.h"
#include "com/HilVariable.h"
#include "services/HilChannel.h"

namespace quillon::com {

/// The descriptor of an instance's HIL channels, and its list of them in the workspace's order. It belongs to an
/// automation object, to which its IUnknown operations go, and lives as long as that object: the list and the
/// texts it gives stay valid while the client holds the object.
class HilDescriptor final : public kestrix::IDescriptor, public kestrix::IVectorVariableDescriptors {
public:
    HilDescriptor(kestrix::IUnknown& owner, const std::vector<services::HilChannel>& channels);
    virtual ~HilDescriptor() = default;
    HilDescriptor(const HilDescriptor&) = delete;
    HilDescriptor& operator=(const HilDescriptor&) = delete;

    HRESULT QueryInterface(const kestrix::GUID& iid, void** object) override;
    ULONG AddRef() override { return m_owner.AddRef(); }
    ULONG Release() override { return m_owner.Release(); }

    kestrix::IVectorVariableDescriptors* VariableDescriptors() override { return this; }

    DWORD size() override { return static_cast<DWORD>(m_variables.size()); }
    kestrix::IVariableDescriptor* at(DWORD index) override;

private:
    kestrix::IUnknown& m_owner;
    std::vector<std::unique_ptr<HilVariable>> m_variables;
};

} // namespace quillon::com
