#pragma once

#include "SScan_IN.h"

namespace kestrix {
namespace DebugService_JTAG {

/// Sizes of the data bytes that go with a JTAG scan.
struct Scan {
    /// Bits of SScan_IN::m_dwScanFlags.
    enum EScanFlags : DWORD {
        /// No data bytes go in.
        scanNoTDI = 0x200,
        /// No data bytes come back.
        scanNoTDO = 0x400
    };

    /// Bytes of TDI data behind the record: 0 with scanNoTDI, else (m_dwNumBits + 7) / 8.
    static DWORD IN_Size(const SScan_IN& scan)
    {
        return (scan.m_dwScanFlags & scanNoTDI) != 0 ? 0 : dataBytes(scan);
    }

    /// Bytes of TDO data behind the output record: 0 with scanNoTDO, else as IN_Size.
    static DWORD OUT_Size(const SScan_IN& scan)
    {
        return (scan.m_dwScanFlags & scanNoTDO) != 0 ? 0 : dataBytes(scan);
    }

private:
    static DWORD dataBytes(const SScan_IN& scan)
    {
        return static_cast<DWORD>((QWORD{scan.m_dwNumBits} + 7) / 8);
    }
};

} // namespace DebugService_JTAG
} // namespace kestrix
