#pragma once

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
};

} // namespace kestrix
