#include "com/DebugRecords.h"

#include <algorithm>
#include <cstring>

#include "OrbelDebugFlags.h"

namespace quillon::com {

using Kind = services::ServiceError::Kind;
using Flags = kestrix::OrbelDebugFlags;

HRESULT DebugRecords::codeOf(Kind kind)
{
    switch (kind) {
    case Kind::InvalidArgument:
        return kestrix::E_INVALIDARG;
    case Kind::NotFound:
    case Kind::Expression:
        return kestrix::ORBEL_E_BAD_ID;
    case Kind::CannotAccess:
        return kestrix::ORBEL_E_CAN_NOT_ACCESS;
    case Kind::BadSize:
        return kestrix::ORBEL_E_SIZE;
    case Kind::NoBreakpoint:
        return kestrix::ORBEL_E_NO_BREAKPOINT;
    case Kind::FileNotFound:
        return kestrix::ORBEL_E_FILE_NOT_FOUND;
    case Kind::NotAvailable:
        return kestrix::ORBEL_E_NOT_AVAILABLE;
    case Kind::BadFile:
    case Kind::Running:
    case Kind::Failed:
        break;
    }
    return kestrix::ORBEL_E_ERROR;
}

kestrix::SType DebugRecords::toSType(const services::ScalarType& type)
{
    kestrix::SType record;
    record.m_byType = static_cast<BYTE>(type.code);
    record.m_byBitSize = static_cast<BYTE>(std::min(type.bits, 255u));
    return record;
}

services::ScalarType DebugRecords::toScalarType(const kestrix::SType& type)
{
    services::ScalarType scalar;
    scalar.code = static_cast<services::ScalarType::Code>(type.m_byType);
    scalar.bits = type.m_byBitSize;
    return scalar;
}

services::TypedBits DebugRecords::toTypedBits(const kestrix::SValue& value, const kestrix::SType& type)
{
    return services::TypedBits{toScalarType(type), value.m_qwValue};
}

services::ExpressionValue DebugRecords::toExpressionValue(const kestrix::SValue& value, const kestrix::SType& type)
{
    services::ExpressionValue result;
    result.type = toScalarType(type);
    result.bits = value.m_qwValue;
    return result;
}

namespace {

BYTE stopReason(services::StopCause cause)
{
    switch (cause) {
    case services::StopCause::Breakpoint:
    case services::StopCause::UntilReached:
        return Flags::srBreakpoint;
    case services::StopCause::Step:
        return Flags::srStep;
    case services::StopCause::StopRequest:
    case services::StopCause::InstructionLimit:
        return Flags::srExplicit;
    case services::StopCause::Fault:
        return Flags::srHardware;
    case services::StopCause::None:
    case services::StopCause::Reset:
        break;
    }
    return Flags::srNone;
}

} // namespace

kestrix::SCPUStatus DebugRecords::toCpuStatus(const services::CpuStatus& status, bool withReason)
{
    kestrix::SCPUStatus record;
    if (status.running) {
        record.m_byStatus = Flags::cpuRunning;
    } else {
        record.m_byStatus = Flags::cpuStopped;
        if (withReason) {
            record.m_byStatus |= stopReason(status.cause);
        }
    }
    record.m_byExecArea = 0;
    record.m_aExecPoint = status.pc;
    return record;
}

bool DebugRecords::copyText(const std::string& text, char* buffer, DWORD size)
{
    if (buffer == nullptr || text.size() >= size) {
        return false;
    }
    std::memcpy(buffer, text.c_str(), text.size() + 1);
    return true;
}

void DebugRecords::copyTextCut(const std::string& text, char* buffer, DWORD size)
{
    if (buffer == nullptr || size == 0) {
        return;
    }
    const std::size_t length = std::min<std::size_t>(text.size(), size - 1);
    std::memcpy(buffer, text.data(), length);
    buffer[length] = '\0';
}

} // namespace quillon::com
