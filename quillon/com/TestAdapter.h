#pragma once

#include "OrbelTest.h"
#include "com/Adapter.h"

namespace quillon::com {

/// `OrbelTest`: the test service. Every operation answers E_NOTIMPL with a message that names it
/// until the service behind it exists.
class TestAdapter final : public Adapter<kestrix::OrbelTest> {
public:
    using Adapter::Adapter;

    HRESULT GetLastError(DWORD, DWORD*, char*, DWORD) override;
    HRESULT CreateTest(DWORD*, const char*) override;
    HRESULT DestroyTest(DWORD) override;
    HRESULT CreateParameter(DWORD, DWORD, const char*) override;
    HRESULT CreateReturnValue(DWORD, const char*) override;
    HRESULT CreateVariable(DWORD*, const char*, const char*) override;
    HRESULT DestroyVariable(DWORD) override;
    HRESULT CreateStub(DWORD*, const char*) override;
    HRESULT DestroyStub(DWORD) override;
    HRESULT CreateStubParameter(DWORD, DWORD, const char*) override;
    HRESULT CreateStubReturnValue(DWORD, const char*) override;
    HRESULT Evaluate(DWORD, const char*, char*, DWORD) override;
    HRESULT Modify(DWORD, const char*, char*, DWORD, const char*) override;
    HRESULT Control(DWORD, DWORD) override;
    HRESULT GetStatus(DWORD, DWORD, DWORD*) override;
};

} // namespace quillon::com
