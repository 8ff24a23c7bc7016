#pragma once

#include "OrbelDebug2.h"
#include "com/Adapter.h"
#include "com/Session.h"
#include "services/BreakpointLocation.h"
#include "services/DebugService.h"

namespace quillon::com {

/// `OrbelDebug2` over the debug service of the attached instance: memory, registers, expressions, run control,
/// breakpoints, symbols and download. A failure of the service answers the code of its kind and leaves its text as
/// the last error; without an instance every operation answers ORBEL_E_NOT_CONNECTED.
class DebugAdapter final : public Adapter<kestrix::OrbelDebug2> {
public:
    DebugAdapter(kestrix::IUnknown& owner, LastError& lastError, Session& session)
        : Adapter(owner, lastError), m_session(session)
    {
    }

    HRESULT GetCPUInfo(kestrix::CCPUInfo*) override;
    HRESULT GetAddress(DWORD, const char*, BYTE*, ADDRESS*, DWORD*, kestrix::SType*) override;
    HRESULT GetSymbolAtAddress(DWORD, BYTE, ADDRESS, char*, DWORD) override;
    HRESULT GetAddressOfSourceLine(DWORD, const char*, int, ADDRESS*, DWORD*) override;
    HRESULT GetSourceLineAtAddress(DWORD, ADDRESS, char*, DWORD, DWORD*) override;
    HRESULT ReadMemory(DWORD, BYTE, ADDRESS, DWORD, BYTE*, BYTE, BYTE*) override;
    HRESULT WriteMemory(DWORD, BYTE, ADDRESS, DWORD, BYTE*, BYTE, BYTE*) override;
    HRESULT ReadRegister(DWORD, const char*, kestrix::SValue*, kestrix::SType*) override;
    HRESULT WriteRegister(DWORD, const char*, const kestrix::SValue*, const kestrix::SType*) override;
    HRESULT ReadValue(DWORD, BYTE, ADDRESS, kestrix::SValue*, const kestrix::SType*) override;
    HRESULT WriteValue(DWORD, BYTE, ADDRESS, const kestrix::SValue*, const kestrix::SType*) override;
    HRESULT Evaluate(DWORD, const char*, char*, DWORD, kestrix::SValue*, kestrix::SType*) override;
    HRESULT Modify(DWORD, const char*, char*, DWORD, const kestrix::SValue*, const kestrix::SType*) override;
    HRESULT GetCPUStatus(DWORD, kestrix::SCPUStatus*) override;
    HRESULT Breakpoint(DWORD, DWORD, ADDRESS, const char*, DWORD) override;
    HRESULT RunControl(DWORD, DWORD, DWORD) override;
    HRESULT Reserved17() override;
    HRESULT BatchAccess(DWORD, const kestrix::SBatchAccessHeader*, const kestrix::SBatchAccessItem*,
                        kestrix::SBatchAccessItemResult*) override;
    HRESULT Reserved19() override;
    HRESULT Download(DWORD, char*, DWORD, void*, char*, DWORD) override;
    HRESULT LaunchCore(DWORD, DWORD, char*, DWORD) override;
    HRESULT SetBP(DWORD, DWORD, ADDRESS, const char*, DWORD, int, const char*) override;

private:
    /// Runs `operation(service)` for the attached instance; a ServiceError becomes its code, its text the last
    /// error and, with `reason`, the text in that buffer too.
    template <class F>
    HRESULT serve(const char* name, F&& operation, char* reason = nullptr, DWORD reasonSize = 0);
    HRESULT invalid(const char* name, const std::string& what);

    HRESULT breakpointCommand(services::DebugService& debug, DWORD command, DWORD memArea, ADDRESS address,
                              const char* symbolOrFile, DWORD line);
    HRESULT runCommand(services::DebugService& debug, DWORD command, DWORD second, DWORD third);
    HRESULT downloadCommand(services::DebugService& debug, DWORD command, char* fileName, DWORD fileNameSize,
                            const kestrix::SDownload* download, char* options, DWORD optionsSize);
    HRESULT downloadFile(services::DebugService& debug, const std::string& file, const kestrix::SDownload* download);
    HRESULT listMember(services::DebugService& debug, unsigned list, bool alternate, std::size_t index,
                       char* fileName, DWORD fileNameSize, char* options, DWORD optionsSize);

    Session& m_session;
};

} // namespace quillon::com
