#pragma once

// Answers of the test service of the recording double (FakeOrbel.cpp records each call as
// "Test.<operation>(...)" and then asks the answer here). An operation without an answer
// returns E_NOTIMPL. The answers live in the double; a test reaches them through
// `fakeorbel_test_answers` and resets them with the rest of the double's state.

#include <functional>

#include "OrbelResults.h"
#include "OrbelTypes.h"

namespace fakeorbel {

struct TestAnswers {
    std::function<HRESULT(DWORD reserved, DWORD* errorClass, char* text, DWORD textSize)> getLastError;
    std::function<HRESULT(DWORD* handle, const char* functionName)> createTest;
    std::function<HRESULT(DWORD handle)> destroyTest;
    std::function<HRESULT(DWORD handle, DWORD index, const char* name)> createParameter;
    std::function<HRESULT(DWORD handle, const char* name)> createReturnValue;
    std::function<HRESULT(DWORD* handle, const char* name, const char* type)> createVariable;
    std::function<HRESULT(DWORD handle)> destroyVariable;
    std::function<HRESULT(DWORD* handle, const char* functionName)> createStub;
    std::function<HRESULT(DWORD handle)> destroyStub;
    std::function<HRESULT(DWORD stubHandle, DWORD index, const char* name)> createStubParameter;
    std::function<HRESULT(DWORD stubHandle, const char* name)> createStubReturnValue;
    std::function<HRESULT(DWORD accessFlags, const char* expression, char* result, DWORD resultSize)> evaluate;
    std::function<HRESULT(DWORD accessFlags, const char* expression, char* result, DWORD resultSize,
                          const char* value)>
        modify;
    std::function<HRESULT(DWORD command, DWORD handle)> control;
    std::function<HRESULT(DWORD kind, DWORD handle, DWORD* value)> getStatus;
};

typedef TestAnswers* (*TestAnswersFunction)();

} // namespace fakeorbel

extern "C" fakeorbel::TestAnswers* fakeorbel_test_answers();
