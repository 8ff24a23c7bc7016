#include "com/HilVariable.h"

#include <cstdio>

#include "SType.h"

namespace quillon::com {

namespace {

DWORD typeOf(services::HilChannel::Kind kind)
{
    switch (kind) {
    case services::HilChannel::Kind::Digital:
        return kestrix::SType::tUnsigned;
    case services::HilChannel::Kind::Analog:
        return kestrix::SType::tFloat;
    case services::HilChannel::Kind::Integer:
        break;
    }
    return kestrix::SType::tSigned;
}

std::string infoOf(const services::HilChannel& channel)
{
    char address[16];
    std::snprintf(address, sizeof address, "0x%08x", channel.address);
    return std::string(services::HilChannel::kindName(channel.kind)) + " at " + address;
}

} // namespace

HilVariable::HilVariable(const services::HilChannel& channel)
    : m_name(channel.name), m_info(infoOf(channel)), m_address(channel.address), m_type(typeOf(channel.kind))
{
}

} // namespace quillon::com
