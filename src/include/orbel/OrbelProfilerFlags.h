#pragma once

#include "OrbelTypes.h"

namespace kestrix {

/// Enumerations of the profiler interface.
struct OrbelProfilerFlags {
    /// Time stamp source of a profiler configuration.
    enum EConfigFlags {
        cfTimeStampCycles = 0x00,
        cfTimeStampTime = 0x01,
        cfTimeStampM0 = 0x10,
        cfTimeStampM1 = 0x11,
        cfTimeStampM2 = 0x12,
        cfTimeStampM3 = 0x13,
        cfTimeStampM4 = 0x14,
        cfTimeStampM5 = 0x15,
        cfTimeStampM6 = 0x16,
        cfTimeStampM7 = 0x17,
        cfTimeStampM8 = 0x18,
        cfTimeStampM9 = 0x19
    };

    /// Which number of samples a status query returns.
    enum EStatusFlags {
        gsfNumRecorded = 0,
        gsfNumAnalyzed = 1
    };

    /// Bits of SProfilerCapabilities::m_dwCapabilities.
    enum ECapabilities : DWORD {
        capAvailable = 0x01,
        capStartingPoint = 0x02,
        capProfileExec = 0x04,
        capProfileFuncLines = 0x08,
        capProfileData = 0x10,
        capSingleData = 0x20,
        capSingleDataAddress = 0x40,
        capSingleDataSize = 0x80
    };

    /// Flags of AddArea: the kind in the low byte, two further bits.
    enum EAreaFlags : DWORD {
        areaFunction = 0x10,
        areaRoutine = 0x20,
        areaVariable = 0x30,
        areaRegion = 0x40,
        areaKindMask = 0xFF,
        areaBit8 = 0x100,
        areaBit9 = 0x200
    };

    /// What of Control.
    enum EControl : DWORD {
        ctrlStart = 1,
        /// S_FALSE: was not running.
        ctrlStop = 2
    };

    /// SProfilerStatus::m_byState.
    enum EState : BYTE {
        stateMustInit = 0,
        stateIdle = 1,
        stateWaiting = 2,
        stateActive = 3
    };

    /// Bits of SProfilerStatus::m_byFlags.
    enum EStatusBits : BYTE {
        sbErrorInBuffer = 0x01,
        sbBufferOverrun = 0x02,
        /// Recording or analysis still goes on; cleared when the results can be read.
        sbLoading = 0x04,
        sbRecordingError = 0x08,
        sbErrorMask = 0x0B
    };

    /// Kind of GetStatistics and GetHistory: what selects the records.
    enum ESelector : DWORD {
        selHandle = 0x01,
        selAll = 0x02,
        selTask = 0x10,
        selHandleAndTask = 0x11,
        /// Task alone; statistics only.
        selTaskOnly = 0x12,
        selHandleAndValue = 0x21
    };

    /// Key of GetArea; keyAddress may carry further key bits.
    enum EAreaKey : DWORD {
        keyHandle = 0,
        keyName = 1,
        keyAddress = 2
    };

    /// What of GetAreaInfo.
    enum EAreaInfo : DWORD {
        aiNumAreas = 0
    };
};

} // namespace kestrix
