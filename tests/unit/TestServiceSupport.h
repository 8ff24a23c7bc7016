#pragma once

// Fixture of the tests of the test controllers and the test run: a connected ConnectionMgr over
// the recording double, whose test service is a small scripted simulation: handles, a list of
// stops that each run reaches, values of expressions, failures on request.

#include <dlfcn.h>
#include <gtest/gtest.h>

#include <cstdio>
#include <deque>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "ConnectionMgr.h"
#include "FakeOrbelSupport.h"
#include "FakeTestService.h"
#include "OrbelTestFlags.h"

/// Where a run of the simulated target stops: a final state, or the entry of a stubbed function.
struct Stop {
    DWORD state;
    std::string stub;
};

inline Stop stubStop(const std::string& function)
{
    return Stop{kestrix::OrbelTestFlags::stateStub, function};
}
inline Stop ended()
{
    return Stop{kestrix::OrbelTestFlags::stateEnded, ""};
}

/// The simulation behind the double's test service; its fields are the script.
struct SimulatedTestService {
    DWORD testHandle = 7;
    DWORD nextHandle = 100;
    /// Stops of the runs, in order; a run with none left ends the test.
    std::deque<Stop> stops;
    /// Answers of GetStatus(3) while the target still runs after each run command.
    int runningPolls = 0;
    /// Values by expression text; an unknown expression fails with class 2.
    std::map<std::string, std::string> values;
    /// Result codes of failing operations: "CreateTest", "Control:3", "Evaluate:a", ...
    std::map<std::string, HRESULT> failing;
    DWORD errorClass = kestrix::OrbelTestFlags::tecIllegalState;
    std::string errorText = "simulated failure";
    bool lastErrorFails = false;

    // What the simulation reached.
    DWORD state = kestrix::OrbelTestFlags::stateInitialized;
    std::string activeStub;
    int pollsLeft = 0;
    std::map<std::string, DWORD> stubHandles;

    HRESULT failure(const std::string& key)
    {
        const auto found = failing.find(key);
        if (found == failing.end()) {
            return kestrix::S_OK;
        }
        return found->second;
    }

    void install(fakeorbel::TestAnswers& answers)
    {
        using namespace kestrix;
        answers.getLastError = [this](DWORD, DWORD* cls, char* text, DWORD size) -> HRESULT {
            if (lastErrorFails) {
                return E_FAIL;
            }
            *cls = errorClass;
            std::snprintf(text, size, "%s", errorText.c_str());
            return S_OK;
        };
        answers.createTest = [this](DWORD* handle, const char*) {
            *handle = testHandle;
            return failure("CreateTest");
        };
        answers.destroyTest = [this](DWORD) { return failure("DestroyTest"); };
        answers.createParameter = [this](DWORD, DWORD, const char*) { return failure("CreateParameter"); };
        answers.createReturnValue = [this](DWORD, const char*) { return failure("CreateReturnValue"); };
        answers.createVariable = [this](DWORD* handle, const char*, const char*) {
            *handle = nextHandle++;
            return failure("CreateVariable");
        };
        answers.destroyVariable = [this](DWORD) { return failure("DestroyVariable"); };
        answers.createStub = [this](DWORD* handle, const char* name) {
            *handle = nextHandle++;
            stubHandles[name] = *handle;
            return failure("CreateStub");
        };
        answers.destroyStub = [this](DWORD) { return failure("DestroyStub"); };
        answers.createStubParameter = [this](DWORD, DWORD, const char*) { return failure("CreateStubParameter"); };
        answers.createStubReturnValue = [this](DWORD, const char*) { return failure("CreateStubReturnValue"); };
        answers.evaluate = [this](DWORD, const char* expression, char* result, DWORD size) -> HRESULT {
            const HRESULT hr = failure(std::string("Evaluate:") + expression);
            const auto found = values.find(expression);
            if (hr != S_OK || found == values.end()) {
                if (hr == S_OK) {
                    errorClass = OrbelTestFlags::tecIllegalArgument;
                    errorText = std::string("no symbol '") + expression + "'";
                }
                return hr != S_OK ? hr : ORBEL_E_BAD_ID;
            }
            std::snprintf(result, size, "%s", found->second.c_str());
            return S_OK;
        };
        answers.modify = [this](DWORD, const char* expression, char* result, DWORD size, const char* value) {
            std::snprintf(result, size, "%s", value);
            return failure(std::string("Modify:") + expression);
        };
        answers.control = [this](DWORD command, DWORD) {
            if (command == OrbelTestFlags::tcRun) {
                pollsLeft = runningPolls;
                state = OrbelTestFlags::stateRunning;
            }
            return failure("Control:" + std::to_string(command));
        };
        answers.getStatus = [this](DWORD kind, DWORD, DWORD* value) -> HRESULT {
            if (kind == OrbelTestFlags::tskActiveStub) {
                const auto found = stubHandles.find(activeStub);
                *value = found != stubHandles.end() ? found->second : 0;
                return failure("GetStatus:2");
            }
            if (state == OrbelTestFlags::stateRunning && pollsLeft-- <= 0) {
                reachNextStop();
            }
            *value = state;
            return failure("GetStatus:" + std::to_string(kind));
        };
    }

    void reachNextStop()
    {
        if (stops.empty()) {
            state = kestrix::OrbelTestFlags::stateEnded;
            activeStub.clear();
            return;
        }
        state = stops.front().state;
        activeStub = stops.front().stub;
        stops.pop_front();
    }
};

class TestServiceTest : public FakeOrbelTest {
protected:
    void SetUp() override
    {
        FakeOrbelTest::SetUp();
        m_library = dlopen(library("whole").c_str(), RTLD_NOW | RTLD_LOCAL);
        ASSERT_NE(nullptr, m_library) << dlerror();
        auto answersOf = reinterpret_cast<fakeorbel::TestAnswersFunction>(dlsym(m_library, "fakeorbel_test_answers"));
        ASSERT_NE(nullptr, answersOf);
        m_answers = answersOf();
        *m_answers = fakeorbel::TestAnswers();
        service.install(*m_answers);
    }

    void TearDown() override
    {
        // Everything that may still call the double goes first.
        mgr.reset();
        if (m_answers != nullptr) {
            *m_answers = fakeorbel::TestAnswers();
        }
        if (m_library != nullptr) {
            dlclose(m_library);
        }
        FakeOrbelTest::TearDown();
    }

    std::shared_ptr<kestrix::ConnectionMgr> connected()
    {
        if (!mgr) {
            mgr = std::make_shared<kestrix::ConnectionMgr>();
            mgr->connect("", 1234);
        }
        return mgr;
    }

    /// The calls of the test service since the last `forgetCalls`, without the "Test." prefix.
    std::vector<std::string> testCalls() const
    {
        std::vector<std::string> found;
        const std::vector<std::string>& all = seen().calls;
        for (size_t i = m_mark; i < all.size(); ++i) {
            if (all[i].compare(0, 5, "Test.") == 0) {
                found.push_back(all[i].substr(5));
            }
        }
        return found;
    }

    void forgetCalls() { m_mark = seen().calls.size(); }

    fakeorbel::TestAnswers& answers() { return *m_answers; }

    SimulatedTestService service;
    std::shared_ptr<kestrix::ConnectionMgr> mgr;

private:
    size_t m_mark = 0;
    void* m_library = nullptr;
    fakeorbel::TestAnswers* m_answers = nullptr;
};
