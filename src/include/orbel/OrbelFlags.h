#pragma once

#include "OrbelTypes.h"

namespace kestrix {

/// Flag words of the Orbel interface.
struct OrbelFlags {
    /// Flags of Launch: a mode in the low bits, then wait time, discovery and visibility.
    enum ELaunchFlags : DWORD {
        lfFindOrStart = 0x001,
        lfStartNew = 0x002,
        lfFindExisting = 0x003,
        lfEnumerate = 0x004,
        lfModeMask = 0x00F,
        /// Wait time; its values are the library's.
        lfWaitTimeMask = 0x070,
        /// IPC discovery instead of UDP.
        lfIPCDiscovery = 0x080,
        /// Visibility of a started instance; its values are the library's.
        lfVisibilityMask = 0x300,
        /// The visibility that the client's own launch asks for.
        lfVisibility1 = 0x100
    };
};

} // namespace kestrix
