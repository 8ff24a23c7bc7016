#pragma once

#include "OrbelDebug.h"
#include "SBatchAccessHeader.h"
#include "SBatchAccessItem.h"
#include "SBatchAccessItemResult.h"
#include "SDownload.h"

namespace kestrix {

/// OrbelDebug with batched accesses, downloads, further cores and breakpoints with conditions.
class OrbelDebug2 : public OrbelDebug {
public:
    /// Slot kept free; answers E_NOTIMPL.
    virtual HRESULT Reserved17() = 0;
    /// Runs header->m_dwNumItems accesses; results has room for as many. S_FALSE: not done;
    /// E_FAIL: one access failed.
    virtual HRESULT BatchAccess(DWORD batchFlags, const SBatchAccessHeader* header,
                                const SBatchAccessItem* items, SBatchAccessItemResult* results) = 0;
    /// Slot kept free; answers E_NOTIMPL.
    virtual HRESULT Reserved19() = 0;
    /// Downloads and download lists (OrbelDebugFlags::EDownloadCommand). download points at an
    /// SDownload. fileName and options are zero-terminated, in or (get member) out buffers of
    /// the given sizes, and may be null.
    virtual HRESULT Download(DWORD command, char* fileName, DWORD fileNameSize, void* download,
                             char* options, DWORD optionsSize) = 0;
    /// Starts another core (kind OrbelDebugFlags::lckCore); 0: buffer holds a text for the caller.
    virtual HRESULT LaunchCore(DWORD kind, DWORD index, char* buffer, DWORD size) = 0;
    /// Sets a software breakpoint (OrbelDebugFlags::ESetBPKind). symbolOrFile is null for an
    /// address; condition is "" for none, never null.
    virtual HRESULT SetBP(DWORD kind, DWORD memArea, ADDRESS address, const char* symbolOrFile, DWORD line,
                          int hitCount, const char* condition) = 0;

protected:
    ~OrbelDebug2() = default;
};

} // namespace kestrix
