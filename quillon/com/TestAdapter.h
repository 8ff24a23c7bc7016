#pragma once

#include <memory>
#include <string>

#include "OrbelTest.h"
#include "com/Adapter.h"
#include "com/Session.h"
#include "com/TestLastError.h"
#include "services/TestService.h"

namespace quillon::com {

/// `OrbelTest`: the test service of the attached instance. A failure answers E_FAIL and keeps its class and text
/// for `OrbelTest::GetLastError` (and the text for `Orbel::GetLastError`); a state read that finds a test ended
/// unexpectedly keeps what happened there too.
class TestAdapter final : public Adapter<kestrix::OrbelTest> {
public:
    TestAdapter(kestrix::IUnknown& owner, LastError& lastError, Session& session)
        : Adapter(owner, lastError), m_session(session)
    {
    }

    HRESULT GetLastError(DWORD reserved, DWORD* errorClass, char* text, DWORD textSize) override;
    HRESULT CreateTest(DWORD* handle, const char* functionName) override;
    HRESULT DestroyTest(DWORD handle) override;
    HRESULT CreateParameter(DWORD handle, DWORD index, const char* name) override;
    HRESULT CreateReturnValue(DWORD handle, const char* name) override;
    HRESULT CreateVariable(DWORD* handle, const char* name, const char* type) override;
    HRESULT DestroyVariable(DWORD handle) override;
    HRESULT CreateStub(DWORD* handle, const char* functionName) override;
    HRESULT DestroyStub(DWORD handle) override;
    HRESULT CreateStubParameter(DWORD stubHandle, DWORD index, const char* name) override;
    HRESULT CreateStubReturnValue(DWORD stubHandle, const char* name) override;
    HRESULT Evaluate(DWORD accessFlags, const char* expression, char* result, DWORD resultSize) override;
    HRESULT Modify(DWORD accessFlags, const char* expression, char* result, DWORD resultSize,
                   const char* value) override;
    HRESULT Control(DWORD command, DWORD handle) override;
    HRESULT GetStatus(DWORD kind, DWORD handle, DWORD* value) override;

private:
    /// Runs `operation` on the attached instance's test service; a failure keeps its class and text.
    template <class F> HRESULT serve(const char* name, F&& operation) noexcept;
    static std::string text(const char* value, const char* what);
    static void copy(const std::string& text, char* buffer, DWORD size);

    Session& m_session;
    TestLastError m_testError;
};

} // namespace quillon::com
