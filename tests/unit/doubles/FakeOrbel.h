#pragma once

// Control of the recording double of the automation library (doubles/FakeOrbel.cpp, built as
// liborbel.so in its own folder). A test opens the same file the client loads and reaches the
// double's state through `fakeorbel_state`.

#include <string>
#include <vector>

#include "OrbelResults.h"
#include "OrbelTypes.h"

namespace fakeorbel {

/// One instance that an enumeration reports.
struct Instance {
    std::string id;
    std::string workspace;
    WORD port;
};

/// What the double answers.
struct Script {
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
