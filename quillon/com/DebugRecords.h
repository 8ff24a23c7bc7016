#pragma once

#include <string>

#include "CCPUInfo.h"
#include "OrbelResults.h"
#include "SCPUStatus.h"
#include "SType.h"
#include "SValue.h"
#include "services/CpuStatus.h"
#include "services/DataAccess.h"
#include "services/ExpressionEngine.h"
#include "services/ServiceError.h"

namespace quillon::com {

/// Conversions between the debug service's values and the records of the debug interface.
class DebugRecords {
public:
    /// CPU code of the ARM family: one area, "Physical", of 8-bit MAUs over the 32-bit address space.
    static constexpr WORD kCpuCode = 22;

    /// The result code that tells a failure of this kind.
    static HRESULT codeOf(services::ServiceError::Kind kind);

    static kestrix::SType toSType(const services::ScalarType& type);
    static services::ScalarType toScalarType(const kestrix::SType& type);
    static services::TypedBits toTypedBits(const kestrix::SValue& value, const kestrix::SType& type);
    static services::ExpressionValue toExpressionValue(const kestrix::SValue& value, const kestrix::SType& type);

    /// State in bits 0 to 2 and, when `withReason`, the stop reason in bits 4 to 6; area 0 and the pc.
    static kestrix::SCPUStatus toCpuStatus(const services::CpuStatus& status, bool withReason);

    /// Copies `text` and its terminator into `buffer` of `size` bytes; false (and nothing copied) when it has no
    /// room for them. A null buffer has no room.
    static bool copyText(const std::string& text, char* buffer, DWORD size);
    /// As copyText, but cuts the text to the room there is.
    static void copyTextCut(const std::string& text, char* buffer, DWORD size);
};

} // namespace quillon::com
