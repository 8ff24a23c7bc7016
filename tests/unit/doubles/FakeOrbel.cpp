// A recording double of the automation library: one object with the interfaces the client
// fetches, answers scripted per operation, and a record of every call. Built whole, without
// orbel_GetInfo (FAKE_ORBEL_NO_GET_INFO) and without orbel_CreateObject (FAKE_ORBEL_NO_CREATE_OBJECT).

#include "FakeOrbel.h"
#include "FakeTestService.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <string>

#include "Orbel.h"
#include "OrbelCoverage.h"
#include "OrbelDebug2.h"
#include "OrbelEclipse.h"
#include "OrbelEntryPoints.h"
#include "OrbelHIL.h"
#include "OrbelIDE3.h"
#include "OrbelIdentifiers.h"
#include "OrbelProfiler2.h"
#include "OrbelProject.h"
#include "OrbelTest.h"
#include "OrbelBetaExtra.h"

using namespace kestrix;

namespace {

fakeorbel::State g_state;

void record(const std::string& call)
{
    g_state.record.calls.push_back(call);
}

std::string hex(DWORD value)
{
    char text[16];
    std::snprintf(text, sizeof(text), "0x%X", value);
    return text;
}

std::string textOf(const char* text)
{
    return text != nullptr ? text : "NULL";
}

/// Copies `text` into a buffer of `size` bytes, cut and terminated.
void copyOut(const std::string& text, char* buffer, DWORD size)
{
    if (buffer != nullptr && size > 0) {
        std::snprintf(buffer, size, "%s", text.c_str());
    }
}

HRESULT queryObject(const GUID& iid, void** object);

/// IUnknown of every interface: references counted over the whole object, each Release recorded.
template <class I>
class Fake : public I {
public:
    explicit Fake(const char* name) : m_name(name) {}

    HRESULT QueryInterface(const GUID& iid, void** object) override { return queryObject(iid, object); }
    ULONG AddRef() override { return static_cast<ULONG>(++g_state.record.references); }
    ULONG Release() override
    {
        record(std::string("Release(") + m_name + ")");
        return static_cast<ULONG>(--g_state.record.references);
    }

private:
    const char* m_name;
};

class FakeOrbel : public Fake<Orbel> {
public:
    FakeOrbel() : Fake<Orbel>("Orbel") {}

    HRESULT Attach(const char* address, DWORD port, SAttachInfo* info) override
    {
        record("Attach(" + textOf(address) + ", " + std::to_string(port) + ", code " + hex(info->m_dwClientCode) +
               ", channel " + std::to_string(info->m_dwChannel) + ", pid " + std::to_string(info->m_dwServerPID) +
               ")");
        std::vector<HRESULT>& results = g_state.script.attachResults;
        HRESULT hr = S_OK;
        if (!results.empty()) {
            hr = results.front();
            results.erase(results.begin());
        }
        if (hr < 0) {
            copyOut(g_state.script.attachMessage, info->m_szMessage, sizeof(info->m_szMessage));
        }
        return hr;
    }

    HRESULT Detach(DWORD flags) override
    {
        record("Detach(" + std::to_string(flags) + ")");
        return S_OK;
    }

    HRESULT Launch(DWORD flags, SLaunchInfo* info) override
    {
        fakeorbel::LaunchRequest& request = g_state.record.launch;
        request.flags = flags;
        request.address = textOf(info->m_pszAddress);
        request.instanceId = textOf(info->m_pszInstanceId);
        request.workspace = textOf(info->m_pszWorkspace);
        request.cmdLineParams = textOf(info->m_pszCmdLineParams);
        request.udpPort = info->m_wUdpDiscoveryPort;
        request.hasEnumerator = info->m_pfnInstanceEnumerator != nullptr;
        record("Launch(" + hex(flags) + ")");

        const fakeorbel::Script& script = g_state.script;
        if (script.launchResult < 0) {
            return script.launchResult;
        }
        if ((flags & OrbelFlags::lfModeMask) == OrbelFlags::lfEnumerate && info->m_pfnInstanceEnumerator != nullptr) {
            for (const fakeorbel::Instance& instance : script.instances) {
                SInstanceEnumInfo found;
                found.m_pszInstanceId = instance.id.c_str();
                found.m_pszWorkspace = instance.workspace.c_str();
                found.m_wTcpPort = instance.port;
                info->m_pfnInstanceEnumerator(info->m_pContext, &found);
            }
        }
        info->m_wTcpPort = script.launchPort;
        info->m_dwProcessId = script.launchPid;
        return script.launchResult;
    }

    HRESULT GetLastError(DWORD reserved, char* buffer, DWORD size) override
    {
        record("GetLastError(" + std::to_string(reserved) + ", " + std::to_string(size) + ")");
        copyOut(g_state.script.lastErrorText, buffer, size);
        return g_state.script.lastErrorResult;
    }
};

class FakeIDE3 : public Fake<OrbelIDE3> {
public:
    explicit FakeIDE3(const char* name) : Fake<OrbelIDE3>(name) {}

    HRESULT GetQuillonVersion(DWORD size, SQuillonVersionInfo* info) override
    {
        record("GetQuillonVersion(" + std::to_string(size) + ", " + hex(info->m_dwFlags) + ")");
        const fakeorbel::Script& script = g_state.script;
        info->m_dwFlags = script.versionPresent ? DWORD(OrbelIDEFlags::vrVersion) : DWORD(0);
        info->m_byMajor = script.major;
        info->m_byMinor = script.minor;
        info->m_wBuild = script.build;
        return script.versionResult;
    }

    HRESULT Document(DWORD, const char*, const char*, DWORD) override { return E_NOTIMPL; }
    HRESULT Workspace(DWORD, const char*) override { return E_NOTIMPL; }
    HRESULT Application(DWORD, SApplicationData*) override { return E_NOTIMPL; }
    HRESULT ServiceCall(DWORD, const GUID*, DWORD, const void*, DWORD, void*, DWORD) override { return E_NOTIMPL; }
    HRESULT Reserved6() override { return E_NOTIMPL; }
    HRESULT Reserved7() override { return E_NOTIMPL; }
    HRESULT Reserved8() override { return E_NOTIMPL; }
    HRESULT Option(DWORD, const char*, const char*, SOptionValue*) override { return E_NOTIMPL; }
    HRESULT ServiceCallData(DWORD, const GUID*, DWORD, const void*, DWORD, const void*, DWORD, void*, DWORD, void*,
                            DWORD) override
    {
        return E_NOTIMPL;
    }
};

class FakeDebug2 : public Fake<OrbelDebug2> {
public:
    explicit FakeDebug2(const char* name) : Fake<OrbelDebug2>(name) {}

    HRESULT LaunchCore(DWORD kind, DWORD index, char* buffer, DWORD size) override
    {
        record("LaunchCore(" + std::to_string(kind) + ", " + std::to_string(index) + ", " + std::to_string(size) + ")");
        copyOut(g_state.script.launchCoreText, buffer, size);
        return g_state.script.launchCoreResult;
    }

    HRESULT GetCPUInfo(CCPUInfo*) override { return E_NOTIMPL; }
    HRESULT GetAddress(DWORD, const char*, BYTE*, ADDRESS*, DWORD*, SType*) override { return E_NOTIMPL; }
    HRESULT GetSymbolAtAddress(DWORD, BYTE, ADDRESS, char*, DWORD) override { return E_NOTIMPL; }
    HRESULT GetAddressOfSourceLine(DWORD, const char*, int, ADDRESS*, DWORD*) override { return E_NOTIMPL; }
    HRESULT GetSourceLineAtAddress(DWORD, ADDRESS, char*, DWORD, DWORD*) override { return E_NOTIMPL; }
    HRESULT ReadMemory(DWORD, BYTE, ADDRESS, DWORD, BYTE*, BYTE, BYTE*) override { return E_NOTIMPL; }
    HRESULT WriteMemory(DWORD, BYTE, ADDRESS, DWORD, BYTE*, BYTE, BYTE*) override { return E_NOTIMPL; }
    HRESULT ReadRegister(DWORD, const char*, SValue*, SType*) override { return E_NOTIMPL; }
    HRESULT WriteRegister(DWORD, const char*, const SValue*, const SType*) override { return E_NOTIMPL; }
    HRESULT ReadValue(DWORD, BYTE, ADDRESS, SValue*, const SType*) override { return E_NOTIMPL; }
    HRESULT WriteValue(DWORD, BYTE, ADDRESS, const SValue*, const SType*) override { return E_NOTIMPL; }
    HRESULT Evaluate(DWORD, const char*, char*, DWORD, SValue*, SType*) override { return E_NOTIMPL; }
    HRESULT Modify(DWORD, const char*, char*, DWORD, const SValue*, const SType*) override { return E_NOTIMPL; }
    HRESULT GetCPUStatus(DWORD, SCPUStatus*) override { return E_NOTIMPL; }
    HRESULT Breakpoint(DWORD, DWORD, ADDRESS, const char*, DWORD) override { return E_NOTIMPL; }
    HRESULT RunControl(DWORD, DWORD, DWORD) override { return E_NOTIMPL; }
    HRESULT Reserved17() override { return E_NOTIMPL; }
    HRESULT BatchAccess(DWORD, const SBatchAccessHeader*, const SBatchAccessItem*, SBatchAccessItemResult*) override
    {
        return E_NOTIMPL;
    }
    HRESULT Reserved19() override { return E_NOTIMPL; }
    HRESULT Download(DWORD, char*, DWORD, void*, char*, DWORD) override { return E_NOTIMPL; }
    HRESULT SetBP(DWORD, DWORD, ADDRESS, const char*, DWORD, int, const char*) override { return E_NOTIMPL; }
};

class FakeProfiler2 : public Fake<OrbelProfiler2> {
public:
    FakeProfiler2() : Fake<OrbelProfiler2>("OrbelProfiler2") {}

    HRESULT GetCapabilities(DWORD, SProfilerCapabilities*) override { return E_NOTIMPL; }
    HRESULT StartConfiguration(DWORD, SProfilerStartingPoint*) override { return E_NOTIMPL; }
    HRESULT AddArea(DWORD, SProfilerArea*, const char*, DWORD, DWORD, DWORD, DWORD, const DWORD*) override
    {
        return E_NOTIMPL;
    }
    HRESULT Control(DWORD) override { return E_NOTIMPL; }
    HRESULT GetStatus(DWORD, SProfilerStatus*) override { return E_NOTIMPL; }
    HRESULT GetStatistics(DWORD, DWORD, DWORD, DWORD, DWORD*, SProfilerStatistic*) override { return E_NOTIMPL; }
    HRESULT GetHistory(DWORD, DWORD, DWORD, DWORD, DWORD, DWORD*, SProfilerHistory*) override { return E_NOTIMPL; }
    HRESULT GetAreaInfo(DWORD, DWORD, DWORD*) override { return E_NOTIMPL; }
    HRESULT GetArea(DWORD, DWORD, SProfilerArea*) override { return E_NOTIMPL; }
};

class FakeProject : public Fake<OrbelProject> {
public:
    FakeProject() : Fake<OrbelProject>("OrbelProject") {}

    HRESULT Reserved1() override { return E_NOTIMPL; }
    HRESULT ProjectCommand(DWORD, const char*, const char*) override { return E_NOTIMPL; }
    HRESULT GetBuildStatus(DWORD, CBuildStatus*) override { return E_NOTIMPL; }
    HRESULT BuildOption(DWORD, const char*, const char*, char*, DWORD) override { return E_NOTIMPL; }
};

class FakeCoverage : public Fake<OrbelCoverage> {
public:
    FakeCoverage() : Fake<OrbelCoverage>("OrbelCoverage") {}

    HRESULT GetLastError(const char*, DWORD, DWORD*, char*, DWORD) override { return E_NOTIMPL; }
    HRESULT GetInfo(const char*, DWORD, DWORD*) override { return E_NOTIMPL; }
    HRESULT SetConfiguration(const char*, DWORD, const char*, DWORD) override { return E_NOTIMPL; }
    HRESULT Reserved4() override { return E_NOTIMPL; }
    HRESULT Reserved5() override { return E_NOTIMPL; }
    HRESULT GetRanges(const char*, DWORD, DWORD*, SCoverageRange*, const char*, DWORD) override { return E_NOTIMPL; }
    HRESULT GetBitmap(const char*, DWORD, DWORD, DWORD, DWORD, BYTE*) override { return E_NOTIMPL; }
    HRESULT GetStatistics(const char*, DWORD, DWORD, DWORD, DWORD*) override { return E_NOTIMPL; }
};

class FakeTest : public Fake<OrbelTest> {
public:
    FakeTest() : Fake<OrbelTest>("OrbelTest") {}

    HRESULT GetLastError(DWORD reserved, DWORD* errorClass, char* text, DWORD textSize) override
    {
        record("Test.GetLastError(" + std::to_string(reserved) + ", " + std::to_string(textSize) + ")");
        return answer(answers().getLastError, reserved, errorClass, text, textSize);
    }
    HRESULT CreateTest(DWORD* handle, const char* functionName) override
    {
        record("Test.CreateTest(" + textOf(functionName) + ")");
        return answer(answers().createTest, handle, functionName);
    }
    HRESULT DestroyTest(DWORD handle) override
    {
        record("Test.DestroyTest(" + std::to_string(handle) + ")");
        return answer(answers().destroyTest, handle);
    }
    HRESULT CreateParameter(DWORD handle, DWORD index, const char* name) override
    {
        record("Test.CreateParameter(" + std::to_string(handle) + ", " + std::to_string(index) + ", " + textOf(name) +
               ")");
        return answer(answers().createParameter, handle, index, name);
    }
    HRESULT CreateReturnValue(DWORD handle, const char* name) override
    {
        record("Test.CreateReturnValue(" + std::to_string(handle) + ", " + textOf(name) + ")");
        return answer(answers().createReturnValue, handle, name);
    }
    HRESULT CreateVariable(DWORD* handle, const char* name, const char* type) override
    {
        record("Test.CreateVariable(" + textOf(name) + ", " + textOf(type) + ")");
        return answer(answers().createVariable, handle, name, type);
    }
    HRESULT DestroyVariable(DWORD handle) override
    {
        record("Test.DestroyVariable(" + std::to_string(handle) + ")");
        return answer(answers().destroyVariable, handle);
    }
    HRESULT CreateStub(DWORD* handle, const char* functionName) override
    {
        record("Test.CreateStub(" + textOf(functionName) + ")");
        return answer(answers().createStub, handle, functionName);
    }
    HRESULT DestroyStub(DWORD handle) override
    {
        record("Test.DestroyStub(" + std::to_string(handle) + ")");
        return answer(answers().destroyStub, handle);
    }
    HRESULT CreateStubParameter(DWORD stubHandle, DWORD index, const char* name) override
    {
        record("Test.CreateStubParameter(" + std::to_string(stubHandle) + ", " + std::to_string(index) + ", " +
               textOf(name) + ")");
        return answer(answers().createStubParameter, stubHandle, index, name);
    }
    HRESULT CreateStubReturnValue(DWORD stubHandle, const char* name) override
    {
        record("Test.CreateStubReturnValue(" + std::to_string(stubHandle) + ", " + textOf(name) + ")");
        return answer(answers().createStubReturnValue, stubHandle, name);
    }
    HRESULT Evaluate(DWORD accessFlags, const char* expression, char* result, DWORD resultSize) override
    {
        record("Test.Evaluate(" + std::to_string(accessFlags) + ", " + textOf(expression) + ", " +
               std::to_string(resultSize) + ")");
        return answer(answers().evaluate, accessFlags, expression, result, resultSize);
    }
    HRESULT Modify(DWORD accessFlags, const char* expression, char* result, DWORD resultSize,
                   const char* value) override
    {
        record("Test.Modify(" + std::to_string(accessFlags) + ", " + textOf(expression) + ", " +
               std::to_string(resultSize) + ", " + textOf(value) + ")");
        return answer(answers().modify, accessFlags, expression, result, resultSize, value);
    }
    HRESULT Control(DWORD command, DWORD handle) override
    {
        record("Test.Control(" + std::to_string(command) + ", " + std::to_string(handle) + ")");
        return answer(answers().control, command, handle);
    }
    HRESULT GetStatus(DWORD kind, DWORD handle, DWORD* value) override
    {
        record("Test.GetStatus(" + std::to_string(kind) + ", " + std::to_string(handle) + ")");
        return answer(answers().getStatus, kind, handle, value);
    }

private:
    static fakeorbel::TestAnswers& answers() { return *fakeorbel_test_answers(); }

    /// The test's answer, or E_NOTIMPL while it gave none.
    template <class Answer, class... Args>
    static HRESULT answer(const Answer& function, Args... args)
    {
        return function ? function(args...) : E_NOTIMPL;
    }
};

class FakeHIL : public Fake<OrbelHIL> {
public:
    FakeHIL() : Fake<OrbelHIL>("OrbelHIL") {}

    HRESULT Read(DWORD, DWORD, const char*, char*, DWORD) override { return E_NOTIMPL; }
    HRESULT Write(DWORD, DWORD, const char*) override { return E_NOTIMPL; }
    HRESULT GetInfo(DWORD, SHILInfo*) override { return E_NOTIMPL; }
};

FakeOrbel g_orbel;
FakeIDE3 g_ide("OrbelIDE");
FakeDebug2 g_debug("OrbelDebug");
FakeProfiler2 g_profiler;
FakeProject g_project;
FakeDebug2 g_debug2("OrbelDebug2");
FakeIDE3 g_ide2("OrbelIDE2");
FakeIDE3 g_ide3("OrbelIDE3");
FakeCoverage g_coverage;
FakeTest g_test;
FakeHIL g_hil;
Fake<OrbelBetaExtra> g_betaExtra("OrbelBetaExtra");
Fake<OrbelEclipse> g_eclipse("OrbelEclipse");

/// One interface of the object: its identifier, name, and the pointer QueryInterface gives.
struct Entry {
    const GUID* iid;
    const char* name;
    IUnknown* unknown;
    void* pointer;
};

template <class I>
Entry entry(const GUID& iid, const char* name, I* pointer)
{
    return Entry{&iid, name, pointer, pointer};
}

const Entry ENTRIES[] = {
    entry<Orbel>(IID_Orbel, "Orbel", &g_orbel),
    entry<OrbelIDE>(IID_OrbelIDE, "OrbelIDE", &g_ide),
    entry<OrbelDebug>(IID_OrbelDebug, "OrbelDebug", &g_debug),
    entry<OrbelProfiler2>(IID_OrbelProfiler2, "OrbelProfiler2", &g_profiler),
    entry<OrbelProject>(IID_OrbelProject, "OrbelProject", &g_project),
    entry<OrbelDebug2>(IID_OrbelDebug2, "OrbelDebug2", &g_debug2),
    entry<OrbelIDE2>(IID_OrbelIDE2, "OrbelIDE2", &g_ide2),
    entry<OrbelIDE3>(IID_OrbelIDE3, "OrbelIDE3", &g_ide3),
    entry<OrbelCoverage>(IID_OrbelCoverage, "OrbelCoverage", &g_coverage),
    entry<OrbelTest>(IID_OrbelTest, "OrbelTest", &g_test),
    entry<OrbelHIL>(IID_OrbelHIL, "OrbelHIL", &g_hil),
    entry<OrbelBetaExtra>(IID_OrbelBetaExtra, "OrbelBetaExtra", &g_betaExtra),
    entry<OrbelEclipse>(IID_OrbelEclipse, "OrbelEclipse", &g_eclipse),
};

HRESULT queryObject(const GUID& iid, void** object)
{
    *object = nullptr;
    for (const Entry& candidate : ENTRIES) {
        if (*candidate.iid != iid) {
            continue;
        }
        record(std::string("QueryInterface(") + candidate.name + ")");
        const std::vector<std::string>& missing = g_state.script.missing;
        if (std::find(missing.begin(), missing.end(), candidate.name) != missing.end()) {
            return E_NOINTERFACE;
        }
        candidate.unknown->AddRef();
        *object = candidate.pointer;
        return S_OK;
    }
    record("QueryInterface(unknown)");
    return E_NOINTERFACE;
}

} // namespace

extern "C" [[gnu::visibility("default")]] fakeorbel::State* fakeorbel_state()
{
    return &g_state;
}

#ifndef FAKE_ORBEL_NO_CREATE_OBJECT
HRESULT orbel_CreateObject(const GUID* clsid, IUnknown** object)
{
    record(std::string("CreateObject(") + (clsid != nullptr && *clsid == CLSID_ORBEL ? "CLSID_ORBEL" : "other") + ")");
    *object = nullptr;
    if (g_state.script.createResult < 0) {
        return g_state.script.createResult;
    }
    g_orbel.AddRef();
    *object = &g_orbel;
    return g_state.script.createResult;
}
#endif

#ifndef FAKE_ORBEL_NO_GET_INFO
HRESULT orbel_GetInfo(SOrbelInfo* info)
{
    record("GetInfo(" + std::to_string(info->m_dwSize) + ", " + std::to_string(info->m_dwVersion) + ")");
    info->m_dwVersion = g_state.script.infoVersion;
    return S_OK;
}
#endif
