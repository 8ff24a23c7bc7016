// A recording double of the automation library: one object with the interfaces the client
// fetches, answers scripted per operation, and a record of every call. Built whole, without
// orbel_GetInfo (FAKE_ORBEL_NO_GET_INFO) and without orbel_CreateObject (FAKE_ORBEL_NO_CREATE_OBJECT).

#include "FakeOrbel.h"
#include "FakeTestService.h"
#include "FakeProfiler.h"

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
#include "SDownload.h"

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

/// The answer of an operation, or E_NOTIMPL while the test gave none.
template <class Answer, class... Args>
HRESULT answer(const Answer& function, Args... args)
{
    return function ? function(args...) : E_NOTIMPL;
}

std::string pointer(const void* p)
{
    return p != nullptr ? "data" : "NULL";
}

std::string serviceName(const GUID* service)
{
    if (service == nullptr) {
        return "NULL";
    }
    if (*service == SERVICE_Line) {
        return "SERVICE_Line";
    }
    if (*service == SERVICE_Scan) {
        return "SERVICE_Scan";
    }
    return *service == SERVICE_Flash ? "SERVICE_Flash" : "other";
}

/// Type and value of a typed argument: "t<type>/<bits>=<hex>", "null" for none.
std::string typed(const SValue* value, const SType* type)
{
    if (type == nullptr) {
        return value == nullptr ? "null" : "value without type";
    }
    std::string text = "t" + std::to_string(type->m_byType) + "/" + std::to_string(type->m_byBitSize);
    if (value != nullptr) {
        char digits[24];
        std::snprintf(digits, sizeof(digits), "=0x%llX", static_cast<unsigned long long>(value->m_qwValue));
        text += digits;
    }
    return text;
}

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
    explicit FakeIDE3(const char* name) : Fake<OrbelIDE3>(name), m_ownName(name) {}

    HRESULT GetQuillonVersion(DWORD size, SQuillonVersionInfo* info) override
    {
        record("GetQuillonVersion(" + std::to_string(size) + ", " + hex(info->m_dwFlags) + ")");
        const fakeorbel::Script& script = g_state.script;
        if (info->m_dwFlags != OrbelIDEFlags::vrVersion && script.ide.information) {
            return script.ide.information(info);
        }
        info->m_dwFlags = script.versionPresent ? DWORD(OrbelIDEFlags::vrVersion) : DWORD(0);
        info->m_byMajor = script.major;
        info->m_byMinor = script.minor;
        info->m_wBuild = script.build;
        return script.versionResult;
    }

    HRESULT Document(DWORD flags, const char* fileName, const char* strParameter, DWORD dwParameter) override
    {
        record(std::string(m_ownName) + ".Document(" + hex(flags) + ", " + textOf(fileName) + ", " +
               textOf(strParameter) + ", " + std::to_string(dwParameter) + ")");
        return answer(g_state.script.ide.document, flags, fileName, strParameter, dwParameter);
    }
    HRESULT Workspace(DWORD command, const char* fileName) override
    {
        record(std::string(m_ownName) + ".Workspace(" + std::to_string(command) + ", " + textOf(fileName) + ")");
        return answer(g_state.script.ide.workspace, command, fileName);
    }
    HRESULT Application(DWORD command, SApplicationData* data) override
    {
        record(std::string(m_ownName) + ".Application(" + hex(command) + ", " + std::to_string(data->m_dwLeft) + ", " +
               std::to_string(data->m_dwTop) + ", " + std::to_string(data->m_dwRight) + ", " +
               std::to_string(data->m_dwBottom) + ", " + std::to_string(data->m_dwPID) + ")");
        return answer(g_state.script.ide.application, command, data);
    }
    HRESULT ServiceCall(DWORD flags, const GUID* service, DWORD inSize, const void* in, DWORD outSize, void* out,
                        DWORD reserved) override
    {
        record(std::string(m_ownName) + ".ServiceCall(" + hex(flags) + ", " + serviceName(service) + ", " +
               std::to_string(inSize) + ", " + std::to_string(outSize) + ", " + std::to_string(reserved) + ")");
        return answer(g_state.script.debug.serviceCall, flags, service, inSize, in, outSize, out);
    }
    HRESULT Reserved6() override { return E_NOTIMPL; }
    HRESULT Reserved7() override { return E_NOTIMPL; }
    HRESULT Reserved8() override { return E_NOTIMPL; }
    /// Recorded as Option(flags, scope, name, separators, text in, integer, float, output size).
    HRESULT Option(DWORD flags, const char* scope, const char* name, SOptionValue* value) override
    {
        record(std::string(m_ownName) + ".Option(" + hex(flags) + ", " + textOf(scope) + ", " + textOf(name) + ", " +
               std::to_string(int{value->m_cPathSeparator}) + "/" + std::to_string(int{value->m_cValueSeparator}) +
               "/" + std::to_string(int{value->m_cOptionSeparator}) + ", " + textOf(value->m_pszStringIn) + ", " +
               std::to_string(value->m_dwInteger) + ", " + std::to_string(value->m_dFloat) + ", " +
               std::to_string(value->m_dwStringOutSize) + ")");
        return answer(g_state.script.ide.option, flags, scope, name, value);
    }
    HRESULT ServiceCallData(DWORD flags, const GUID* service, DWORD inSize, const void* in, DWORD inDataSize,
                            const void* inData, DWORD outSize, void* out, DWORD outDataSize, void* outData,
                            DWORD reserved) override
    {
        record(std::string(m_ownName) + ".ServiceCallData(" + hex(flags) + ", " + serviceName(service) + ", " +
               std::to_string(inSize) + ", " + std::to_string(inDataSize) + ", " + pointer(inData) + ", " +
               std::to_string(outSize) + ", " + std::to_string(outDataSize) + ", " + pointer(outData) + ", " +
               std::to_string(reserved) + ")");
        return answer(g_state.script.debug.serviceCallData, flags, service, inSize, in, inDataSize, inData, outSize,
                      out, outDataSize, outData);
    }

private:
    const char* m_ownName;
};

class FakeDebug2 : public Fake<OrbelDebug2> {
public:
    explicit FakeDebug2(const char* name) : Fake<OrbelDebug2>(name), m_ownName(name) {}

    HRESULT LaunchCore(DWORD kind, DWORD index, char* buffer, DWORD size) override
    {
        record("LaunchCore(" + std::to_string(kind) + ", " + std::to_string(index) + ", " + std::to_string(size) + ")");
        copyOut(g_state.script.launchCoreText, buffer, size);
        return g_state.script.launchCoreResult;
    }

    HRESULT GetCPUInfo(CCPUInfo* info) override
    {
        call("GetCPUInfo()");
        return answer(g_state.script.debug.getCPUInfo, info);
    }
    HRESULT GetAddress(DWORD flags, const char* name, BYTE* memArea, ADDRESS* address, DWORD* size,
                       SType* type) override
    {
        call("GetAddress(" + hex(flags) + ", " + textOf(name) + ")");
        return answer(g_state.script.debug.getAddress, flags, name, memArea, address, size, type);
    }
    HRESULT GetSymbolAtAddress(DWORD flags, BYTE memArea, ADDRESS address, char* buffer, DWORD size) override
    {
        call("GetSymbolAtAddress(" + hex(flags) + ", " + std::to_string(memArea) + ", " + hex(address) + ", " +
             std::to_string(size) + ")");
        return answer(g_state.script.debug.getSymbolAtAddress, flags, memArea, address, buffer, size);
    }
    HRESULT GetAddressOfSourceLine(DWORD reserved, const char* fileName, int line, ADDRESS* addresses,
                                   DWORD* count) override
    {
        call("GetAddressOfSourceLine(" + std::to_string(reserved) + ", " + textOf(fileName) + ", " +
             std::to_string(line) + ", " + std::to_string(*count) + ")");
        return answer(g_state.script.debug.getAddressOfSourceLine, fileName, line, addresses, count);
    }
    HRESULT GetSourceLineAtAddress(DWORD reserved, ADDRESS address, char* fileName, DWORD size, DWORD* line) override
    {
        call("GetSourceLineAtAddress(" + std::to_string(reserved) + ", " + hex(address) + ", " +
             std::to_string(size) + ")");
        return answer(g_state.script.debug.getSourceLineAtAddress, address, fileName, size, line);
    }
    HRESULT ReadMemory(DWORD flags, BYTE memArea, ADDRESS address, DWORD numMAUs, BYTE* data, BYTE bytesPerMAU,
                       BYTE* results) override
    {
        call("ReadMemory(" + hex(flags) + ", " + std::to_string(memArea) + ", " + hex(address) + ", " +
             std::to_string(numMAUs) + ", " + std::to_string(bytesPerMAU) + ")");
        return answer(g_state.script.debug.readMemory, flags, memArea, address, numMAUs, data, bytesPerMAU, results);
    }
    HRESULT WriteMemory(DWORD flags, BYTE memArea, ADDRESS address, DWORD numMAUs, BYTE* data, BYTE bytesPerMAU,
                        BYTE* results) override
    {
        call("WriteMemory(" + hex(flags) + ", " + std::to_string(memArea) + ", " + hex(address) + ", " +
             std::to_string(numMAUs) + ", " + std::to_string(bytesPerMAU) + ")");
        return answer(g_state.script.debug.writeMemory, flags, memArea, address, numMAUs, data, bytesPerMAU, results);
    }
    HRESULT ReadRegister(DWORD flags, const char* name, SValue* value, SType* type) override
    {
        call("ReadRegister(" + hex(flags) + ", " + textOf(name) + ")");
        return answer(g_state.script.debug.readRegister, flags, name, value, type);
    }
    HRESULT WriteRegister(DWORD flags, const char* name, const SValue* value, const SType* type) override
    {
        call("WriteRegister(" + hex(flags) + ", " + textOf(name) + ", " + typed(value, type) + ")");
        return answer(g_state.script.debug.writeRegister, flags, name, value, type);
    }
    HRESULT ReadValue(DWORD flags, BYTE memArea, ADDRESS address, SValue* value, const SType* type) override
    {
        call("ReadValue(" + hex(flags) + ", " + std::to_string(memArea) + ", " + hex(address) + ", " +
             typed(nullptr, type) + ")");
        return answer(g_state.script.debug.readValue, flags, memArea, address, value, type);
    }
    HRESULT WriteValue(DWORD flags, BYTE memArea, ADDRESS address, const SValue* value, const SType* type) override
    {
        call("WriteValue(" + hex(flags) + ", " + std::to_string(memArea) + ", " + hex(address) + ", " +
             typed(value, type) + ")");
        return answer(g_state.script.debug.writeValue, flags, memArea, address, value, type);
    }
    HRESULT Evaluate(DWORD flags, const char* expression, char* buffer, DWORD size, SValue* value,
                     SType* type) override
    {
        call("Evaluate(" + hex(flags) + ", " + textOf(expression) + ", " + std::to_string(size) + ")");
        return answer(g_state.script.debug.evaluate, flags, expression, buffer, size, value, type);
    }
    HRESULT Modify(DWORD flags, const char* expression, char* buffer, DWORD size, const SValue* value,
                   const SType* type) override
    {
        call("Modify(" + hex(flags) + ", " + textOf(expression) + ", '" + textOf(buffer) + "', " +
             std::to_string(size) + ", " + typed(value, type) + ")");
        return answer(g_state.script.debug.modify, flags, expression, buffer, size, value, type);
    }
    HRESULT GetCPUStatus(DWORD flags, SCPUStatus* status) override
    {
        call("GetCPUStatus(" + hex(flags) + ")");
        return answer(g_state.script.debug.getCPUStatus, flags, status);
    }
    HRESULT Breakpoint(DWORD command, DWORD memArea, ADDRESS address, const char* name, DWORD lineOrData) override
    {
        call("Breakpoint(" + hex(command) + ", " + std::to_string(memArea) + ", " + hex(address) + ", " +
             textOf(name) + ", " + std::to_string(lineOrData) + ")");
        return answer(g_state.script.debug.breakpoint, command, memArea, address, name, lineOrData);
    }
    HRESULT RunControl(DWORD command, DWORD second, DWORD third) override
    {
        call("RunControl(" + hex(command) + ", " + std::to_string(second) + ", " + hex(third) + ")");
        return answer(g_state.script.debug.runControl, command, second, third);
    }
    HRESULT Reserved17() override { return E_NOTIMPL; }
    HRESULT BatchAccess(DWORD flags, const SBatchAccessHeader* header, const SBatchAccessItem* items,
                        SBatchAccessItemResult* results) override
    {
        call("BatchAccess(" + hex(flags) + ", " + std::to_string(header->m_dwNumItems) + ")");
        return answer(g_state.script.debug.batchAccess, flags, header, items, results);
    }
    HRESULT Reserved19() override { return E_NOTIMPL; }
    HRESULT Download(DWORD command, char* fileName, DWORD fileNameSize, void* download, char* options,
                     DWORD optionsSize) override
    {
        const auto* record = static_cast<const SDownload*>(download);
        call("Download(" + hex(command) + ", " + textOf(fileName) + ", " + std::to_string(fileNameSize) + ", {" +
             std::to_string(record->m_dwSize) + ", " + hex(record->m_dwFlags) + ", " + hex(record->m_aCodeOffset) +
             ", " + hex(record->m_aSymbolsOffset) + ", " + std::to_string(record->m_byMemArea) + "}, " +
             textOf(options) + ", " + std::to_string(optionsSize) + ")");
        return answer(g_state.script.debug.download, command, fileName, fileNameSize, download, options, optionsSize);
    }
    HRESULT SetBP(DWORD kind, DWORD memArea, ADDRESS address, const char* name, DWORD line, int hitCount,
                  const char* condition) override
    {
        call("SetBP(" + std::to_string(kind) + ", " + std::to_string(memArea) + ", " + hex(address) + ", " +
             textOf(name) + ", " + std::to_string(line) + ", " + std::to_string(hitCount) + ", '" +
             textOf(condition) + "')");
        return answer(g_state.script.debug.setBP, kind, memArea, address, name, line, hitCount, condition);
    }

private:
    /// Recorded with the name of the interface that was called.
    void call(const std::string& text) { record(std::string(m_ownName) + "." + text); }

    const char* m_ownName;
};

class FakeProfiler2 : public Fake<OrbelProfiler2> {
public:
    FakeProfiler2() : Fake<OrbelProfiler2>("OrbelProfiler2") {}

    HRESULT GetCapabilities(DWORD size, SProfilerCapabilities* capabilities) override
    {
        record("Profiler.GetCapabilities(" + std::to_string(size) + ", version " +
               (capabilities != nullptr ? std::to_string(capabilities->m_dwVersion) : std::string("NULL")) + ")");
        return answer(answers().getCapabilities, size, capabilities);
    }
    HRESULT StartConfiguration(DWORD flags, SProfilerStartingPoint* startingPoint) override
    {
        std::string point = "NULL";
        if (startingPoint != nullptr) {
            point = "event " + std::to_string(startingPoint->m_byEvent) + ", area " +
                    std::to_string(startingPoint->m_byMemArea) + ", " + hex(startingPoint->m_aAddress);
        }
        record("Profiler.StartConfiguration(" + std::to_string(flags) + ", " + point + ")");
        return answer(answers().startConfiguration, flags, startingPoint);
    }
    HRESULT AddArea(DWORD flags, SProfilerArea* area, const char* name, DWORD memArea, DWORD start, DWORD extent,
                    DWORD exitCount, const DWORD* exits) override
    {
        std::string call = "Profiler.AddArea(" + hex(flags) + ", " + pointer(area) + ", " + textOf(name) + ", " +
                           std::to_string(memArea) + ", " + hex(start) + ", " + hex(extent) + ", " +
                           std::to_string(exitCount);
        for (DWORD i = 0; exits != nullptr && i < exitCount; ++i) {
            call += ", " + hex(exits[i]);
        }
        record(call + ")");
        return answer(answers().addArea, flags, area, name, memArea, start, extent, exitCount, exits);
    }
    HRESULT Control(DWORD what) override
    {
        record("Profiler.Control(" + std::to_string(what) + ")");
        return answer(answers().control, what);
    }
    HRESULT GetStatus(DWORD flags, SProfilerStatus* status) override
    {
        record("Profiler.GetStatus(" + std::to_string(flags) + ")");
        return answer(answers().getStatus, flags, status);
    }
    HRESULT GetStatistics(DWORD kind, DWORD handle, DWORD task, DWORD value, DWORD* count,
                          SProfilerStatistic* records) override
    {
        record("Profiler.GetStatistics(" + hex(kind) + ", " + std::to_string(handle) + ", " + std::to_string(task) +
               ", " + std::to_string(value) + ", room " +
               (count != nullptr ? std::to_string(*count) : std::string("NULL")) + ")");
        return answer(answers().getStatistics, kind, handle, task, value, count, records);
    }
    HRESULT GetHistory(DWORD kind, DWORD handle, DWORD task, DWORD value, DWORD startIndex, DWORD* count,
                       SProfilerHistory* records) override
    {
        record("Profiler.GetHistory(" + hex(kind) + ", " + std::to_string(handle) + ", " + std::to_string(task) +
               ", " + std::to_string(value) + ", from " + std::to_string(startIndex) + ", room " +
               (count != nullptr ? std::to_string(*count) : std::string("NULL")) + ")");
        return answer(answers().getHistory, kind, handle, task, value, startIndex, count, records);
    }
    HRESULT GetAreaInfo(DWORD what, DWORD size, DWORD* value) override
    {
        record("Profiler.GetAreaInfo(" + std::to_string(what) + ", " + std::to_string(size) + ")");
        return answer(answers().getAreaInfo, what, size, value);
    }
    HRESULT GetArea(DWORD key, DWORD size, SProfilerArea* area) override
    {
        std::string fields = "NULL";
        if (area != nullptr) {
            fields = "'" + std::string(area->m_szName) + "', " + std::to_string(area->m_dwHandle) + ", " +
                     hex(area->m_aAddress);
        }
        record("Profiler.GetArea(" + std::to_string(key) + ", " + std::to_string(size) + ", " + fields + ")");
        return answer(answers().getArea, key, size, area);
    }

private:
    static fakeorbel::ProfilerAnswers& answers() { return *fakeorbel_profiler_answers(); }
};

class FakeProject : public Fake<OrbelProject> {
public:
    FakeProject() : Fake<OrbelProject>("OrbelProject") {}

    HRESULT Reserved1() override { return E_NOTIMPL; }
    HRESULT ProjectCommand(DWORD word, const char* second, const char* third) override
    {
        record("Project.ProjectCommand(" + hex(word) + ", " + textOf(second) + ", " + textOf(third) + ")");
        return answer(answers().projectCommand, word, second, third);
    }
    HRESULT GetBuildStatus(DWORD reserved, CBuildStatus* status) override
    {
        record("Project.GetBuildStatus(" + std::to_string(reserved) + ")");
        return answer(answers().getBuildStatus, reserved, status);
    }
    /// The value is recorded as far as its size reaches, with the size.
    HRESULT BuildOption(DWORD word, const char* scope, const char* option, char* value, DWORD size) override
    {
        std::string given = "NULL";
        if (value != nullptr) {
            given = "'" + std::string(value, strnlen(value, size)) + "'";
        }
        record("Project.BuildOption(" + hex(word) + ", " + textOf(scope) + ", " + textOf(option) + ", " + given +
               ", " + std::to_string(size) + ")");
        return answer(answers().buildOption, word, scope, option, value, size);
    }

private:
    static fakeorbel::ProjectAnswers& answers() { return g_state.script.project; }
};

class FakeCoverage : public Fake<OrbelCoverage> {
public:
    FakeCoverage() : Fake<OrbelCoverage>("OrbelCoverage") {}

    HRESULT GetLastError(const char* fileName, DWORD reserved, DWORD* errorClass, char* text, DWORD size) override
    {
        record("Coverage.GetLastError(" + textOf(fileName) + ", " + std::to_string(reserved) + ", " +
               std::to_string(size) + ")");
        return answer(answers().getLastError, errorClass, text, size);
    }
    HRESULT GetInfo(const char* fileName, DWORD what, DWORD* value) override
    {
        record("Coverage.GetInfo(" + textOf(fileName) + ", " + std::to_string(what) + ")");
        return answer(answers().getInfo, what, value);
    }
    HRESULT SetConfiguration(const char* fileName, DWORD item, const char* text, DWORD value) override
    {
        record("Coverage.SetConfiguration(" + textOf(fileName) + ", " + std::to_string(item) + ", '" + textOf(text) +
               "', " + std::to_string(value) + ")");
        return answer(answers().setConfiguration, item, text, value);
    }
    HRESULT Reserved4() override { return E_NOTIMPL; }
    HRESULT Reserved5() override { return E_NOTIMPL; }
    HRESULT GetRanges(const char* fileName, DWORD kind, DWORD* count, SCoverageRange* ranges, const char* name,
                      DWORD rangeType) override
    {
        record("Coverage.GetRanges(" + textOf(fileName) + ", " + std::to_string(kind) + ", " +
               std::to_string(*count) + ", '" + textOf(name) + "', " + std::to_string(rangeType) + ")");
        return answer(answers().getRanges, kind, count, ranges, name, rangeType);
    }
    HRESULT GetBitmap(const char* fileName, DWORD reserved, DWORD start, DWORD end, DWORD size, BYTE* bitmap) override
    {
        record("Coverage.GetBitmap(" + textOf(fileName) + ", " + std::to_string(reserved) + ", " + hex(start) + ", " +
               hex(end) + ", " + std::to_string(size) + ")");
        return answer(answers().getBitmap, start, end, size, bitmap);
    }
    HRESULT GetStatistics(const char* fileName, DWORD type, DWORD start, DWORD end, DWORD* value) override
    {
        record("Coverage.GetStatistics(" + textOf(fileName) + ", " + std::to_string(type) + ", " + hex(start) + ", " +
               hex(end) + ")");
        return answer(answers().getStatistics, type, start, end, value);
    }

private:
    static fakeorbel::CoverageAnswers& answers() { return g_state.script.coverage; }
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

    HRESULT Read(DWORD flags1, DWORD flags2, const char* paths, char* buffer, DWORD size) override
    {
        record("HIL.Read(" + hex(flags1) + ", " + hex(flags2) + ", " + textOf(paths) + ", " + std::to_string(size) +
               ")");
        return answer(answers().read, flags1, flags2, paths, buffer, size);
    }
    HRESULT Write(DWORD flags1, DWORD flags2, const char* values) override
    {
        record("HIL.Write(" + hex(flags1) + ", " + hex(flags2) + ", " + textOf(values) + ")");
        return answer(answers().write, flags1, flags2, values);
    }
    HRESULT GetInfo(DWORD size, SHILInfo* info) override
    {
        record("HIL.GetInfo(" + std::to_string(size) + ", " + hex(info->m_dwFlags) + ")");
        return answer(answers().getInfo, size, info);
    }

private:
    static fakeorbel::HilAnswers& answers() { return g_state.script.hil; }
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
