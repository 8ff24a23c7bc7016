#pragma once

#include <functional>
#include <memory>
#include <string>

#include "CQuillonVersion.h"
#include "OrbelTypes.h"

namespace kestrix {

class CLogger;
class COrbelClient;
class ConnectionMgr;
class Orbel;
class OrbelCoverage;
class OrbelDebug;
class OrbelDebug2;
class OrbelHIL;
class OrbelIDE;
class OrbelIDE2;
class OrbelIDE3;
class OrbelProfiler2;
class OrbelProject;
class OrbelTest;

/// Base of every controller: ties it to its `ConnectionMgr`, is the gate to the automation
/// interfaces (a missing one raises a fixed text), and turns result codes into text. It
/// fetches the version of the connected Quillon on construction.
class WrapperBase {
public:
    /// Text of the gates of the two debug interfaces.
    static const char* const DEBUG_NOT_AVAILABLE;

    /// Needs a live connection: the version is asked through `OrbelIDE3`.
    explicit WrapperBase(std::shared_ptr<ConnectionMgr> connectionMgr);
    virtual ~WrapperBase();

    OrbelDebug* getOrbelDebug() const;
    OrbelDebug2* getOrbelDebug2() const;
    OrbelIDE* getOrbelIDE() const;
    OrbelIDE2* getOrbelIDE2() const;
    OrbelIDE3* getOrbelIDE3() const;
    OrbelCoverage* getOrbelCoverage() const;
    OrbelProfiler2* getOrbelProfiler() const;
    OrbelProject* getOrbelProject() const;
    OrbelTest* getOrbelTest() const;
    OrbelHIL* getOrbelHIL() const;

    /// The logger of the `ConnectionMgr`, null if none is active.
    CLogger* getLogger() const;
    bool isLogging() const;

    /// Refuses a Quillon older than 9.10.`build` with `VersionConflictException`.
    void checkQuillonVersion(int build) const;

    /// The text of `hr`, and the server's message behind " / " if it holds an error or warning.
    std::string getResultText(HRESULT hr) const;
    /// The server's error message; empty if it holds none, or only a warning.
    std::string getLastErrorText() const;

    /// The fixed text of a result code, without the server's message.
    static std::string resultCodeText(HRESULT hr);

protected:
    /// For a destructor: logs `dtorName`, runs `destroy` and logs a failure of it; nothing escapes.
    void destroyForDestructor(const char* dtorName, const std::function<void()>& destroy) const noexcept;

    COrbelClient* m_client;
    std::shared_ptr<ConnectionMgr> m_connectionMgr;
    /// Name of this object in the call logger's script; set by each controller.
    std::string instanceId;
    std::shared_ptr<CQuillonVersion> m_quillonVersion;

private:
    void fetchQuillonVersion();
    Orbel* getOrbel() const;
};

} // namespace kestrix
