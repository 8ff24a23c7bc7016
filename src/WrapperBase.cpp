#include "WrapperBase.h"

#include <string>

#include "CLogger.h"
#include "COrbelClientBeta.h"
#include "ConnectionMgr.h"
#include "IException.h"
#include "IOException.h"
#include "OrbelResults.h"
#include "VersionConflictException.h"

namespace kestrix {

namespace {

const char* const IDE_NOT_AVAILABLE =
    "IDE interface is not available. Make sure that application is connected to quillon (see "
    "ConnectionMgr.connect...())!";
const char* const IDE3_NOT_AVAILABLE =
    "IDE3 interface is not available. Make sure that application is connected to quillon (see "
    "ConnectionMgr.connect...()), and that quillon is at least versin 9.9!";
const char* const COVERAGE_NOT_AVAILABLE =
    "Coverage interface is not available. Make sure that application is connected to quillon (see "
    "ConnectionMgr.connect...())!";
const char* const PROFILER_NOT_AVAILABLE =
    "Profiler interface is not available. Make sure that application is connected to quillon (see "
    "ConnectionMgr.connect...())!";
const char* const PROJECT_NOT_AVAILABLE =
    "'Project' interface is not available. Make sure that application is connected to quillon (see "
    "ConnectionMgr.connect...())!";
const char* const TEST_NOT_AVAILABLE =
    "'Test' interface is not available. Make sure that application is connected to quillon (see "
    "ConnectionMgr.connect...())!";
const char* const HIL_NOT_AVAILABLE =
    "HIL interface is not available. Make sure that application is connected to quillon (see "
    "ConnectionMgr.connect...())!";

// Sizes of the blocks given to the server.
const DWORD VERSION_INFO_SIZE = sizeof(SQuillonVersionInfo);
const DWORD RESULT_TEXT_BUFFER = 1024;
const DWORD ERROR_TEXT_BUFFER = 512;

// The version that every check compares with is 9.10.<build>.
const int REQUIRED_MAJOR = 9;
const int REQUIRED_MINOR = 10;

/// The interface, or `IOException` with the gate's text if it is missing.
template <class I>
I* gate(I* pointer, const char* text)
{
    if (pointer == nullptr) {
        throw IOException(KX_POS, text);
    }
    return pointer;
}

/// The server's last message into a buffer of `size` bytes; its result code.
HRESULT lastError(Orbel* orbel, DWORD size, std::string& text)
{
    std::string buffer(size, '\0');
    const HRESULT hr = orbel->GetLastError(0, &buffer[0], size);
    buffer[size - 1] = '\0';
    text = buffer.c_str();
    return hr;
}

} // namespace

const char* const WrapperBase::DEBUG_NOT_AVAILABLE =
    "Debug interface is not available. Make sure that application is connected to quillon (see "
    "ConnectionMgr.connect...())!";

WrapperBase::WrapperBase(std::shared_ptr<ConnectionMgr> connectionMgr)
    : m_client(connectionMgr ? connectionMgr->getConnection() : nullptr), m_connectionMgr(std::move(connectionMgr))
{
    fetchQuillonVersion();
}

WrapperBase::~WrapperBase() = default;

void WrapperBase::fetchQuillonVersion()
{
    OrbelIDE3* ide3 = getOrbelIDE3();
    SQuillonVersionInfo info;
    info.m_dwFlags = OrbelIDEFlags::vrVersion;
    const HRESULT hr = ide3->GetQuillonVersion(VERSION_INFO_SIZE, &info);
    if (hr != S_OK) {
        throw IOException(KX_POS, "F. getQuillonVersion() failed. ", getResultText(hr));
    }
    if ((info.m_dwFlags & OrbelIDEFlags::vrVersion) == 0) {
        throw IOException(KX_POS, "F. getQuillonVersion() did not return version info.");
    }
    m_quillonVersion = std::make_shared<CQuillonVersion>(info.m_byMajor, info.m_byMinor, info.m_wBuild);
}

Orbel* WrapperBase::getOrbel() const
{
    return m_client != nullptr ? m_client->getOrbel() : nullptr;
}

OrbelDebug* WrapperBase::getOrbelDebug() const
{
    return gate(m_client != nullptr ? m_client->getDebug() : nullptr, DEBUG_NOT_AVAILABLE);
}

OrbelDebug2* WrapperBase::getOrbelDebug2() const
{
    return gate(m_client != nullptr ? m_client->getDebug2() : nullptr, DEBUG_NOT_AVAILABLE);
}

OrbelIDE* WrapperBase::getOrbelIDE() const
{
    return gate(m_client != nullptr ? m_client->getIDE() : nullptr, IDE_NOT_AVAILABLE);
}

OrbelIDE2* WrapperBase::getOrbelIDE2() const
{
    return gate(m_client != nullptr ? m_client->getIDE2() : nullptr, IDE_NOT_AVAILABLE);
}

OrbelIDE3* WrapperBase::getOrbelIDE3() const
{
    return gate(m_client != nullptr ? m_client->getIDE3() : nullptr, IDE3_NOT_AVAILABLE);
}

OrbelProfiler2* WrapperBase::getOrbelProfiler() const
{
    return gate(m_client != nullptr ? m_client->getProfiler() : nullptr, PROFILER_NOT_AVAILABLE);
}

OrbelProject* WrapperBase::getOrbelProject() const
{
    return gate(m_client != nullptr ? m_client->getProject() : nullptr, PROJECT_NOT_AVAILABLE);
}

// Coverage, test and HIL are interfaces of the beta client; a plain client has none of them.
OrbelCoverage* WrapperBase::getOrbelCoverage() const
{
    const auto* beta = dynamic_cast<const COrbelClientBeta*>(m_client);
    return gate(beta != nullptr ? beta->getCoverage() : nullptr, COVERAGE_NOT_AVAILABLE);
}

OrbelTest* WrapperBase::getOrbelTest() const
{
    const auto* beta = dynamic_cast<const COrbelClientBeta*>(m_client);
    return gate(beta != nullptr ? beta->getTest() : nullptr, TEST_NOT_AVAILABLE);
}

OrbelHIL* WrapperBase::getOrbelHIL() const
{
    const auto* beta = dynamic_cast<const COrbelClientBeta*>(m_client);
    return gate(beta != nullptr ? beta->getHIL() : nullptr, HIL_NOT_AVAILABLE);
}

CLogger* WrapperBase::getLogger() const
{
    return m_connectionMgr ? m_connectionMgr->getLogger() : nullptr;
}

bool WrapperBase::isLogging() const
{
    return getLogger() != nullptr;
}

void WrapperBase::checkQuillonVersion(int build) const
{
    if (!m_quillonVersion) {
        return;
    }
    const CQuillonVersion& version = *m_quillonVersion;
    bool passes;
    if (version.getMajor() != REQUIRED_MAJOR) {
        passes = version.getMajor() > REQUIRED_MAJOR;
    } else if (version.getMinor() != REQUIRED_MINOR) {
        passes = version.getMinor() > REQUIRED_MINOR;
    } else {
        passes = version.getBuild() >= build;
    }
    if (!passes) {
        throw VersionConflictException(KX_POS, "Invalid quillon version!")
            .add("yourVersion", version.toString())
            .add("minRequiredVersion", "9.10." + std::to_string(build));
    }
}

std::string WrapperBase::resultCodeText(HRESULT hr)
{
    switch (hr) {
    case S_FALSE:
        return "Operation failed with error code S_FALSE.";
    case ORBEL_S_MSG_FAIL:
        return "ORBEL_S_MSG_FAIL: No exact error code. See error message for more information.";
    case ORBEL_S_SIZE:
        return "ORBEL_S_SIZE: Function succeeded but could not return all the data due to output buffer size "
               "limitation.";
    case E_NOTIMPL:
        return "E_NOTIMPL: The requested operation is not implemented.";
    case E_FAIL:
        return "E_FAIL: kestrix.orbel call failed.";
    case ORBEL_E_CONNECT_FAILED:
        return "ORBEL_E_CONNECT_FAILED: The server is not reachable on the specified IP address and port.";
    case ORBEL_E_VERSION_CONFLICT:
        return "ORBEL_E_VERSION_CONFLICT: The client and server versions are incompatible.";
    case ORBEL_E_ALREADY_CONNECTED:
        return "ORBEL_E_ALREADY_CONNECTED: The ORBEL object is already attached.";
    case ORBEL_E_NOT_CONNECTED:
        return "ORBEL_E_NOT_CONNECTED: The ORBEL object is not attached.";
    case ORBEL_E_FILE_NOT_FOUND:
        return "ORBEL_E_FILE_NOT_FOUND: File not found.";
    case ORBEL_E_CAN_NOT_ACCESS:
        return "ORBEL_E_CAN_NOT_ACCESS: Evaluation required a memory access which could not be performed.";
    case ORBEL_E_BAD_ID:
        return "ORBEL_E_BAD_ID: Expression could not be evaluated.";
    case ORBEL_E_NOT_SIMPLE_TYPE:
        return "ORBEL_E_NOT_SIMPLE_TYPE: Expression does not evaluate to a simple type.";
    case ORBEL_E_ERROR:
        return "ORBEL_E_ERROR: Error occurred while performing the requested operation.";
    case ORBEL_E_NO_BREAKPOINT:
        return "ORBEL_E_NO_BREAKPOINT: No breakpoint was found at the specified address.";
    case ORBEL_E_NOT_AVAILABLE:
        return "ORBEL_E_NOT_AVAILABLE: The requested operation is not available.";
    case ORBEL_E_SIZE:
        return "ORBEL_E_SIZE: Parameter size invalid.";
    case ORBEL_E_ALREADY_EXISTS:
        return "ORBEL_E_ALREADY_EXISTS: Operation failed because an object with the same name already exists.";
    case E_INVALIDARG:
        return "E_INVALIDARG: Invalid parameter.";
    default:
        // ORBEL_S_WARNING has no text of its own either.
        return "UNKNOWN ERROR CODE: " + std::to_string(hr);
    }
}

std::string WrapperBase::getResultText(HRESULT hr) const
{
    std::string text = resultCodeText(hr);
    if (Orbel* orbel = getOrbel()) {
        std::string message;
        const HRESULT held = lastError(orbel, RESULT_TEXT_BUFFER, message);
        if (held == ORBEL_S_MSG_FAIL || held == ORBEL_S_WARNING) {
            text += " / " + message;
        }
    }
    return text;
}

std::string WrapperBase::getLastErrorText() const
{
    std::string message;
    if (Orbel* orbel = getOrbel()) {
        if (lastError(orbel, ERROR_TEXT_BUFFER, message) == ORBEL_S_MSG_FAIL) {
            return message;
        }
    }
    return "";
}

void WrapperBase::destroyForDestructor(const char* dtorName, const std::function<void()>& destroy) const noexcept
{
    CLogger* logger = getLogger();
    if (logger != nullptr) {
        logger->log(instanceId, dtorName);
    }
    try {
        destroy();
    } catch (const IException& e) {
        if (logger != nullptr) {
            logger->log(instanceId, dtorName, e.what());
        }
    } catch (...) {
    }
}

} // namespace kestrix
