#pragma once

#include <cstddef>

#include "OrbelTypes.h"

namespace kestrix {

/// Block given to Orbel::Attach. The client zeroes it and fills the client code, the channel
/// and, for shared memory, the server's process id; the library writes a message on failure.
struct SAttachInfo {
    enum EChannel {
        channelTcp = 0,
        channelSharedMemory = 1
    };

    /// Bits ORed into the client code by every client.
    static constexpr DWORD CLIENT_CODE = 0x11100;

    BYTE m_abyReserved1[4] = {};
    /// The client's flags (low word) ORed with CLIENT_CODE.
    DWORD m_dwClientCode = 0;
    BYTE m_abyReserved2[12] = {};
    /// Zero-terminated message of a failed attach.
    char m_szMessage[256] = {};
    DWORD m_dwChannel = channelTcp;
    DWORD m_dwServerPID = 0;
};

static_assert(sizeof(SAttachInfo) == 284, "SAttachInfo is 284 bytes on the interface");
static_assert(offsetof(SAttachInfo, m_dwClientCode) == 4, "SAttachInfo client code at byte 4");
static_assert(offsetof(SAttachInfo, m_szMessage) == 20, "SAttachInfo message at byte 20");
static_assert(offsetof(SAttachInfo, m_dwChannel) == 276, "SAttachInfo channel at byte 276");
static_assert(offsetof(SAttachInfo, m_dwServerPID) == 280, "SAttachInfo process id at byte 280");

} // namespace kestrix
