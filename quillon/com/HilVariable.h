#pragma once

#include <string>

#include "IDataDescriptor.h"
#include "IVariableDescriptor.h"
#include "services/HilChannel.h"

namespace quillon::com {

/// The descriptor of one HIL channel, with the type of its data: the channel's name, its register's address as
/// `Data`, its kind and address as `Info` ("analog at 0x40020004"); a 4-byte scalar of the SType code of its
/// kind (digital tUnsigned, integer tSigned, analog tFloat), no array, structure or enumeration.
class HilVariable final : public kestrix::IVariableDescriptor, public kestrix::IDataDescriptor {
public:
    explicit HilVariable(const services::HilChannel& channel);
    virtual ~HilVariable() = default;
    HilVariable(const HilVariable&) = delete;
    HilVariable& operator=(const HilVariable&) = delete;

    const char* Name() override { return m_name.c_str(); }
    kestrix::IDataDescriptor* DataDescriptor() override { return this; }
    DWORD Dimension() override { return 0; }
    DWORD ArrayIndex() override { return 0; }
    const char* Info() override { return m_info.c_str(); }
    DWORD Options() override { return 0; }
    DWORD Data() override { return m_address; }

    DWORD Type() override { return m_type; }
    DWORD Size() override { return 4; }
    kestrix::IVectorElementDescriptors* Struct() override { return nullptr; }
    kestrix::IVectorEnumMaps* Enum() override { return nullptr; }
    DWORD Container() override { return 0; }

private:
    std::string m_name;
    std::string m_info;
    DWORD m_address;
    DWORD m_type;
};

} // namespace quillon::com
