#pragma once

// Control of the recording double of the automation library (doubles/FakeOrbel.cpp, built as
// liborbel.so in its own folder). A test opens the same file the client loads and reaches the
// double's state through `fakeorbel_state`.

#include <functional>
#include <string>
#include <vector>

#include "CBuildStatus.h"
#include "CCPUInfo.h"
#include "GUID.h"
#include "OrbelResults.h"
#include "OrbelTypes.h"
#include "SBatchAccessHeader.h"
#include "SBatchAccessItem.h"
#include "SApplicationData.h"
#include "SBatchAccessItemResult.h"
#include "SCPUStatus.h"
#include "SCoverageRange.h"
#include "SHILInfo.h"
#include "SOptionValue.h"
#include "SQuillonVersionInfo.h"
#include "SType.h"
#include "SValue.h"

namespace fakeorbel {

using kestrix::CCPUInfo;
using kestrix::GUID;
using kestrix::SBatchAccessHeader;
using kestrix::SBatchAccessItem;
using kestrix::SBatchAccessItemResult;
using kestrix::SCPUStatus;
using kestrix::SType;
using kestrix::SValue;

/// One instance that an enumeration reports.
struct Instance {
    std::string id;
    std::string workspace;
    WORD port;
};

/// Answers of the debug operations and service calls, each with the arguments of its
/// operation. An operation without an answer returns E_NOTIMPL; every call is recorded first.
struct DebugAnswers {
    std::function<HRESULT(CCPUInfo*)> getCPUInfo;
    std::function<HRESULT(DWORD, const char*, BYTE*, ADDRESS*, DWORD*, SType*)> getAddress;
    std::function<HRESULT(DWORD, BYTE, ADDRESS, char*, DWORD)> getSymbolAtAddress;
    std::function<HRESULT(const char*, int, ADDRESS*, DWORD*)> getAddressOfSourceLine;
    std::function<HRESULT(ADDRESS, char*, DWORD, DWORD*)> getSourceLineAtAddress;
    std::function<HRESULT(DWORD, BYTE, ADDRESS, DWORD, BYTE*, BYTE, BYTE*)> readMemory;
    std::function<HRESULT(DWORD, BYTE, ADDRESS, DWORD, BYTE*, BYTE, BYTE*)> writeMemory;
    std::function<HRESULT(DWORD, const char*, SValue*, SType*)> readRegister;
    std::function<HRESULT(DWORD, const char*, const SValue*, const SType*)> writeRegister;
    std::function<HRESULT(DWORD, BYTE, ADDRESS, SValue*, const SType*)> readValue;
    std::function<HRESULT(DWORD, BYTE, ADDRESS, const SValue*, const SType*)> writeValue;
    std::function<HRESULT(DWORD, const char*, char*, DWORD, SValue*, SType*)> evaluate;
    std::function<HRESULT(DWORD, const char*, char*, DWORD, const SValue*, const SType*)> modify;
    std::function<HRESULT(DWORD, SCPUStatus*)> getCPUStatus;
    std::function<HRESULT(DWORD, DWORD, ADDRESS, const char*, DWORD)> breakpoint;
    std::function<HRESULT(DWORD, DWORD, DWORD)> runControl;
    std::function<HRESULT(DWORD, const SBatchAccessHeader*, const SBatchAccessItem*, SBatchAccessItemResult*)> batchAccess;
    std::function<HRESULT(DWORD, char*, DWORD, void*, char*, DWORD)> download;
    std::function<HRESULT(DWORD, DWORD, ADDRESS, const char*, DWORD, int, const char*)> setBP;
    std::function<HRESULT(DWORD, const GUID*, DWORD, const void*, DWORD, void*)> serviceCall;
    std::function<HRESULT(DWORD, const GUID*, DWORD, const void*, DWORD, const void*, DWORD, void*, DWORD, void*)>
        serviceCallData;
};

/// Answers of the IDE operations. GetQuillonVersion answers a request for the version alone
/// from the Script's version fields; any other request goes to `information` when given.
struct IdeAnswers {
    std::function<HRESULT(DWORD, kestrix::SApplicationData*)> application;
    std::function<HRESULT(DWORD, const char*, const char*, kestrix::SOptionValue*)> option;
    std::function<HRESULT(kestrix::SQuillonVersionInfo*)> information;
    /// Document(flags, fileName, strParameter, dwParameter).
    std::function<HRESULT(DWORD, const char*, const char*, DWORD)> document;
    /// Workspace(command, fileName).
    std::function<HRESULT(DWORD, const char*)> workspace;
};

/// Answers of the coverage operations, without the document's file name that each one takes.
struct CoverageAnswers {
    /// (error class, text buffer, its size).
    std::function<HRESULT(DWORD*, char*, DWORD)> getLastError;
    std::function<HRESULT(DWORD, DWORD*)> getInfo;
    /// (item, text, value).
    std::function<HRESULT(DWORD, const char*, DWORD)> setConfiguration;
    /// (kind, count in and out, ranges, name, range type).
    std::function<HRESULT(DWORD, DWORD*, kestrix::SCoverageRange*, const char*, DWORD)> getRanges;
    /// (start, end, size, bitmap).
    std::function<HRESULT(DWORD, DWORD, DWORD, BYTE*)> getBitmap;
    /// (type, start, end, value).
    std::function<HRESULT(DWORD, DWORD, DWORD, DWORD*)> getStatistics;
};

/// Answers of the HIL operations.
struct HilAnswers {
    /// (flags1, flags2, paths, buffer, size).
    std::function<HRESULT(DWORD, DWORD, const char*, char*, DWORD)> read;
    /// (flags1, flags2, values).
    std::function<HRESULT(DWORD, DWORD, const char*)> write;
    /// (size, record).
    std::function<HRESULT(DWORD, kestrix::SHILInfo*)> getInfo;
};

/// Answers of the project operations.
struct ProjectAnswers {
    /// (word, second, third).
    std::function<HRESULT(DWORD, const char*, const char*)> projectCommand;
    /// (reserved, status).
    std::function<HRESULT(DWORD, kestrix::CBuildStatus*)> getBuildStatus;
    /// (word, scope, option, value buffer, size).
    std::function<HRESULT(DWORD, const char*, const char*, char*, DWORD)> buildOption;
};

/// What the double answers.
struct Script {
    DebugAnswers debug;
    IdeAnswers ide;
    CoverageAnswers coverage;
    HilAnswers hil;
    ProjectAnswers project;
    HRESULT createResult = kestrix::S_OK;
    /// Interfaces (by name, "Orbel", "OrbelIDE3", ...) that QueryInterface refuses.
    std::vector<std::string> missing;
    /// Results of the next Attach calls, in order; S_OK once they are used up.
    std::vector<HRESULT> attachResults;
    /// Written into SAttachInfo by a failing Attach.
    std::string attachMessage;
    HRESULT launchResult = kestrix::S_OK;
    WORD launchPort = 0;
    DWORD launchPid = 0;
    std::vector<Instance> instances;
    /// Answer of GetLastError and the message it copies.
    HRESULT lastErrorResult = kestrix::S_OK;
    std::string lastErrorText;
    HRESULT versionResult = kestrix::S_OK;
    bool versionPresent = true;
    BYTE major = 9;
    BYTE minor = 10;
    WORD build = 98;
    HRESULT launchCoreResult = kestrix::S_OK;
    std::string launchCoreText;
    /// Packed version given by orbel_GetInfo.
    DWORD infoVersion = 0;
};

/// The fields of the last SLaunchInfo, as the double saw them.
struct LaunchRequest {
    DWORD flags = 0;
    std::string address;
    std::string instanceId;
    std::string workspace;
    std::string cmdLineParams;
    WORD udpPort = 0;
    bool hasEnumerator = false;
};

/// What the double saw: one line per call, in order.
struct Record {
    std::vector<std::string> calls;
    LaunchRequest launch;
    /// References held over all interfaces of the object.
    int references = 0;
};

struct State {
    Script script;
    Record record;

    /// Calls whose line starts with `prefix`.
    std::vector<std::string> callsStartingWith(const std::string& prefix) const
    {
        std::vector<std::string> found;
        for (const std::string& call : record.calls) {
            if (call.compare(0, prefix.size(), prefix) == 0) {
                found.push_back(call);
            }
        }
        return found;
    }
};

typedef State* (*StateFunction)();

} // namespace fakeorbel
