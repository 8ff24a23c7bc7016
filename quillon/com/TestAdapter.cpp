#include "com/TestAdapter.h"

namespace quillon::com {

HRESULT TestAdapter::GetLastError(DWORD, DWORD*, char*, DWORD)
{
    return notImplemented("OrbelTest::GetLastError");
}

HRESULT TestAdapter::CreateTest(DWORD*, const char*)
{
    return notImplemented("OrbelTest::CreateTest");
}

HRESULT TestAdapter::DestroyTest(DWORD)
{
    return notImplemented("OrbelTest::DestroyTest");
}

HRESULT TestAdapter::CreateParameter(DWORD, DWORD, const char*)
{
    return notImplemented("OrbelTest::CreateParameter");
}

HRESULT TestAdapter::CreateReturnValue(DWORD, const char*)
{
    return notImplemented("OrbelTest::CreateReturnValue");
}

HRESULT TestAdapter::CreateVariable(DWORD*, const char*, const char*)
{
    return notImplemented("OrbelTest::CreateVariable");
}

HRESULT TestAdapter::DestroyVariable(DWORD)
{
    return notImplemented("OrbelTest::DestroyVariable");
}

HRESULT TestAdapter::CreateStub(DWORD*, const char*)
{
    return notImplemented("OrbelTest::CreateStub");
}

HRESULT TestAdapter::DestroyStub(DWORD)
{
    return notImplemented("OrbelTest::DestroyStub");
}

HRESULT TestAdapter::CreateStubParameter(DWORD, DWORD, const char*)
{
    return notImplemented("OrbelTest::CreateStubParameter");
}

HRESULT TestAdapter::CreateStubReturnValue(DWORD, const char*)
{
    return notImplemented("OrbelTest::CreateStubReturnValue");
}

HRESULT TestAdapter::Evaluate(DWORD, const char*, char*, DWORD)
{
    return notImplemented("OrbelTest::Evaluate");
}

HRESULT TestAdapter::Modify(DWORD, const char*, char*, DWORD, const char*)
{
    return notImplemented("OrbelTest::Modify");
}

HRESULT TestAdapter::Control(DWORD, DWORD)
{
    return notImplemented("OrbelTest::Control");
}

HRESULT TestAdapter::GetStatus(DWORD, DWORD, DWORD*)
{
    return notImplemented("OrbelTest::GetStatus");
}

} // namespace quillon::com
