#pragma once

namespace kestrix {

/// Flag words of the debug interface. Kept apart from the interface itself so that value
/// classes and the logger can name them without it.
struct OrbelDebugFlags {
    /// Access flags, the first argument of most memory operations.
    enum EAccessFlags {
        fMonitor = 0x00,
        fRealTime = 0x01,
        fSFR = 0x04,
        fCacheDefault = 0x10,
        fCacheStop = 0x20,
        fCacheCode = 0x30,
        fCacheMask = 0x30,
        fNoRefresh = 0x40
    };

    enum ESymbolFlags {
        sVariables = 0x01,
        sLabels = 0x02,
        sFunctions = 0x04,
        sLines = 0x08,
        sConstants = 0x10
    };

    enum EGetAddressFlags {
        gafExpression = 0x0000,
        gafVariables = 0x1000,
        gafLabels = 0x2000,
        gafFunctions = 0x4000
    };

    /// Evaluate flags; they share one word with the access flags.
    enum EEvaluate {
        efDefaultMemAreaDisplay = 0x00000000,
        efNoMemAreaDisplay = 0x01000100,
        efValueAsText = 0x01000000
    };
};

} // namespace kestrix
