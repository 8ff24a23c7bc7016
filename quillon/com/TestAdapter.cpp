#include "com/TestAdapter.h"

#include <algorithm>
#include <cstring>

#include "OrbelTestFlags.h"

namespace quillon::com {
namespace {

using Flags = kestrix::OrbelTestFlags;
using services::TestError;

TestError badArgument(const std::string& message)
{
    return TestError(TestError::Kind::IllegalArgument, message);
}

} // namespace

template <class F> HRESULT TestAdapter::serve(const char* name, F&& operation) noexcept
{
    return call(name, [&]() -> HRESULT {
        const std::shared_ptr<Instance> instance = m_session.instance();
        if (!instance) {
            m_testError.set(Flags::tecIllegalState, "not attached to a Quillon instance");
            return fail(kestrix::ORBEL_E_NOT_CONNECTED, std::string(name) + ": not attached to a Quillon instance");
        }
        try {
            operation(instance->workbench()->test());
            return kestrix::S_OK;
        } catch (const TestError& error) {
            m_testError.set(static_cast<DWORD>(error.kind()), error.what());
            return fail(kestrix::E_FAIL, std::string(name) + ": " + error.what());
        } catch (const std::exception& error) {
            m_testError.set(Flags::tecIO, error.what());
            return fail(kestrix::E_FAIL, std::string(name) + ": " + error.what());
        }
    });
}

std::string TestAdapter::text(const char* value, const char* what)
{
    if (value == nullptr) {
        throw badArgument(std::string("no ") + what + " given");
    }
    return value;
}

void TestAdapter::copy(const std::string& text, char* buffer, DWORD size)
{
    if (buffer == nullptr || size == 0) {
        throw badArgument("no buffer for the result");
    }
    const std::size_t length = std::min<std::size_t>(text.size(), size - 1);
    std::memcpy(buffer, text.data(), length);
    buffer[length] = '\0';
}

HRESULT TestAdapter::GetLastError(DWORD, DWORD* errorClass, char* text, DWORD textSize)
{
    if (errorClass == nullptr || text == nullptr || textSize == 0) {
        return kestrix::E_INVALIDARG;
    }
    try {
        *errorClass = m_testError.errorClass();
        copy(m_testError.text(), text, textSize);
        return kestrix::S_OK;
    } catch (...) {
        return kestrix::E_FAIL;
    }
}

HRESULT TestAdapter::CreateTest(DWORD* handle, const char* functionName)
{
    return serve("OrbelTest::CreateTest", [&](services::TestService& tests) {
        if (handle == nullptr) {
            throw badArgument("no place for the test handle");
        }
        *handle = tests.createTest(text(functionName, "function name"));
    });
}

HRESULT TestAdapter::DestroyTest(DWORD handle)
{
    return serve("OrbelTest::DestroyTest", [&](services::TestService& tests) { tests.destroyTest(handle); });
}

HRESULT TestAdapter::CreateParameter(DWORD handle, DWORD index, const char* name)
{
    return serve("OrbelTest::CreateParameter", [&](services::TestService& tests) {
        tests.createParameter(handle, index, text(name, "parameter name"));
    });
}

HRESULT TestAdapter::CreateReturnValue(DWORD handle, const char* name)
{
    return serve("OrbelTest::CreateReturnValue", [&](services::TestService& tests) {
        tests.createReturnValue(handle, name == nullptr ? "" : name);
    });
}

HRESULT TestAdapter::CreateVariable(DWORD* handle, const char* name, const char* type)
{
    return serve("OrbelTest::CreateVariable", [&](services::TestService& tests) {
        if (handle == nullptr) {
            throw badArgument("no place for the variable handle");
        }
        *handle = tests.createVariable(text(name, "variable name"), text(type, "variable type"));
    });
}

HRESULT TestAdapter::DestroyVariable(DWORD handle)
{
    return serve("OrbelTest::DestroyVariable", [&](services::TestService& tests) { tests.destroyVariable(handle); });
}

HRESULT TestAdapter::CreateStub(DWORD* handle, const char* functionName)
{
    return serve("OrbelTest::CreateStub", [&](services::TestService& tests) {
        if (handle == nullptr) {
            throw badArgument("no place for the stub handle");
        }
        *handle = tests.createStub(text(functionName, "function name"));
    });
}

HRESULT TestAdapter::DestroyStub(DWORD handle)
{
    return serve("OrbelTest::DestroyStub", [&](services::TestService& tests) { tests.destroyStub(handle); });
}

HRESULT TestAdapter::CreateStubParameter(DWORD stubHandle, DWORD index, const char* name)
{
    return serve("OrbelTest::CreateStubParameter", [&](services::TestService& tests) {
        tests.createStubParameter(stubHandle, index, text(name, "stub parameter name"));
    });
}

HRESULT TestAdapter::CreateStubReturnValue(DWORD stubHandle, const char* name)
{
    return serve("OrbelTest::CreateStubReturnValue", [&](services::TestService& tests) {
        tests.createStubReturnValue(stubHandle, name == nullptr ? "" : name);
    });
}

HRESULT TestAdapter::Evaluate(DWORD, const char* expression, char* result, DWORD resultSize)
{
    return serve("OrbelTest::Evaluate", [&](services::TestService& tests) {
        if (result == nullptr || resultSize == 0) {
            throw badArgument("no buffer for the result");
        }
        copy(tests.evaluate(text(expression, "expression")), result, resultSize);
    });
}

HRESULT TestAdapter::Modify(DWORD, const char* expression, char* result, DWORD resultSize, const char* value)
{
    return serve("OrbelTest::Modify", [&](services::TestService& tests) {
        if (result == nullptr || resultSize == 0) {
            throw badArgument("no buffer for the result");
        }
        copy(tests.modify(text(expression, "expression"), text(value, "value")), result, resultSize);
    });
}

HRESULT TestAdapter::Control(DWORD command, DWORD handle)
{
    return serve("OrbelTest::Control", [&](services::TestService& tests) {
        switch (command) {
        case Flags::tcClearAll:
            tests.clearAll();
            break;
        case Flags::tcInit:
            tests.init(handle);
            break;
        case Flags::tcClean:
            tests.clean(handle);
            break;
        case Flags::tcRun:
            tests.run(handle);
            break;
        case Flags::tcAbort:
            tests.abort(handle);
            break;
        case Flags::tcPause:
            tests.pause(handle);
            break;
        default:
            throw badArgument("unknown test command " + std::to_string(command));
        }
    });
}

HRESULT TestAdapter::GetStatus(DWORD kind, DWORD handle, DWORD* value)
{
    return serve("OrbelTest::GetStatus", [&](services::TestService& tests) {
        if (value == nullptr) {
            throw badArgument("no place for the status");
        }
        if (kind == Flags::tskTestState) {
            const services::TestState state = tests.state(handle);
            if (state == services::TestState::UnexpectedStop) {
                m_testError.set(Flags::tecIO, tests.problem(handle));
            }
            *value = static_cast<DWORD>(state);
        } else if (kind == Flags::tskActiveStub && handle == 0) {
            *value = tests.activeStub();
        } else {
            throw badArgument("unknown status kind " + std::to_string(kind) + " with handle " +
                              std::to_string(handle));
        }
    });
}

} // namespace quillon::com
