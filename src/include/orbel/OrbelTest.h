#pragma once

#include "IUnknown.h"
#include "OrbelTestFlags.h"

namespace kestrix {

/// Quillon's test service: runs one function of the target as a test, with parameters, local
/// variables and stubs. 0 is success; a failure keeps a class and a text for GetLastError.
class OrbelTest : public IUnknown {
public:
    /// Class (OrbelTestFlags::EErrorClass) and text of the last failure.
    virtual HRESULT GetLastError(DWORD reserved, DWORD* errorClass, char* text, DWORD textSize) = 0;
    virtual HRESULT CreateTest(DWORD* handle, const char* functionName) = 0;
    virtual HRESULT DestroyTest(DWORD handle) = 0;
    /// Names the parameter at index of the function under test.
    virtual HRESULT CreateParameter(DWORD handle, DWORD index, const char* name) = 0;
    /// Names the return value; "" for none.
    virtual HRESULT CreateReturnValue(DWORD handle, const char* name) = 0;
    /// A test-local variable of a C type.
    virtual HRESULT CreateVariable(DWORD* handle, const char* name, const char* type) = 0;
    virtual HRESULT DestroyVariable(DWORD handle) = 0;
    /// A stub of a function; its handle is not 0.
    virtual HRESULT CreateStub(DWORD* handle, const char* functionName) = 0;
    virtual HRESULT DestroyStub(DWORD handle) = 0;
    virtual HRESULT CreateStubParameter(DWORD stubHandle, DWORD index, const char* name) = 0;
    /// Names the stub's return value; "" for none.
    virtual HRESULT CreateStubReturnValue(DWORD stubHandle, const char* name) = 0;
    /// Evaluates in the test that the target is stopped in; the text of the value into result.
    virtual HRESULT Evaluate(DWORD accessFlags, const char* expression, char* result, DWORD resultSize) = 0;
    /// Assigns the value text to the expression in the test that the target is stopped in.
    virtual HRESULT Modify(DWORD accessFlags, const char* expression, char* result, DWORD resultSize,
                           const char* value) = 0;
    /// command: OrbelTestFlags::EControl.
    virtual HRESULT Control(DWORD command, DWORD handle) = 0;
    /// kind: OrbelTestFlags::EStatusKind.
    virtual HRESULT GetStatus(DWORD kind, DWORD handle, DWORD* value) = 0;

protected:
    ~OrbelTest() = default;
};

} // namespace kestrix
