#include "com/OrbelAdapter.h"

#include <cstdio>
#include <cstring>

#include "OrbelFlags.h"

namespace quillon::com {

using kestrix::OrbelFlags;
using kestrix::SAttachInfo;
using kestrix::SLaunchInfo;

namespace {

constexpr DWORD kKnownLaunchBits = OrbelFlags::lfModeMask | OrbelFlags::lfWaitTimeMask
                                   | OrbelFlags::lfIPCDiscovery | OrbelFlags::lfVisibilityMask;

std::string textOf(const char* text)
{
    return text ? std::string(text) : std::string();
}

std::string hex(DWORD value)
{
    char text[16];
    std::snprintf(text, sizeof text, "0x%X", unsigned(value));
    return text;
}

} // namespace

HRESULT OrbelAdapter::Attach(const char* address, DWORD port, SAttachInfo* info)
{
    return call("Orbel::Attach", [&] {
        return info ? attach(address, port, *info)
                    : fail(kestrix::E_INVALIDARG, "Orbel::Attach: no SAttachInfo given");
    });
}

HRESULT OrbelAdapter::attach(const char* address, DWORD port, SAttachInfo& info)
{
    if (info.m_dwChannel == SAttachInfo::channelSharedMemory) {
        return attachFailed(kestrix::ORBEL_E_CONNECT_FAILED, info,
                            "the shared memory channel is not served: attach over TCP by port");
    }
    if (info.m_dwChannel != SAttachInfo::channelTcp) {
        return attachFailed(kestrix::E_INVALIDARG, info,
                            "unknown channel " + std::to_string(info.m_dwChannel) + " (0 TCP, 1 shared memory)");
    }
    if (!isLocal(address)) {
        return attachFailed(kestrix::ORBEL_E_CONNECT_FAILED, info,
                            "no Quillon instance at '" + std::string(address)
                                + "': only the instances of this process are reached, at the local host");
    }
    if (const auto instance = m_session.instance()) {
        return attachFailed(kestrix::ORBEL_E_ALREADY_CONNECTED, info,
                            "already attached to Quillon instance '" + instance->id() + "' on port "
                                + std::to_string(instance->port()) + "; detach first");
    }
    const std::string problem = m_session.attach(port);
    return problem.empty() ? kestrix::S_OK : attachFailed(kestrix::ORBEL_E_CONNECT_FAILED, info, problem);
}

HRESULT OrbelAdapter::attachFailed(HRESULT code, SAttachInfo& info, const std::string& message)
{
    std::snprintf(info.m_szMessage, sizeof info.m_szMessage, "%s", message.c_str());
    return fail(code, message);
}

bool OrbelAdapter::isLocal(const char* address)
{
    if (address == nullptr) {
        return true;
    }
    for (const char* local : {"", "localhost", "127.0.0.1", "::1"}) {
        if (std::strcmp(address, local) == 0) {
            return true;
        }
    }
    return false;
}

HRESULT OrbelAdapter::Detach(DWORD /*flags*/)
{
    return call("Orbel::Detach", [&] {
        return m_session.detach() ? kestrix::S_OK
                                  : fail(kestrix::ORBEL_E_NOT_CONNECTED, "Orbel::Detach: not attached");
    });
}

HRESULT OrbelAdapter::Launch(DWORD flags, SLaunchInfo* info)
{
    return call("Orbel::Launch", [&] {
        return info ? launch(flags, *info) : fail(kestrix::E_INVALIDARG, "Orbel::Launch: no SLaunchInfo given");
    });
}

HRESULT OrbelAdapter::launch(DWORD flags, SLaunchInfo& info)
{
    if ((flags & ~kKnownLaunchBits) != 0) {
        return fail(kestrix::E_INVALIDARG, "Orbel::Launch: unknown flag bits " + hex(flags & ~kKnownLaunchBits));
    }
    const int mode = int(flags & OrbelFlags::lfModeMask);
    if (mode == InstanceRegistry::Enumerate) {
        return enumerate(info);
    }
    InstanceRegistry::LaunchRequest request;
    request.mode = mode;
    request.instanceId = textOf(info.m_pszInstanceId);
    request.workspace = textOf(info.m_pszWorkspace);
    request.commandLine = textOf(info.m_pszCmdLineParams);
    const InstanceRegistry::LaunchResult result = m_session.registry().launch(request);
    switch (result.status) {
    case InstanceRegistry::Status::Ok:
        info.m_wTcpPort = result.port;
        info.m_dwProcessId = 0;
        return kestrix::S_OK;
    case InstanceRegistry::Status::BadMode:
        return fail(kestrix::E_INVALIDARG, "Orbel::Launch: " + result.message);
    case InstanceRegistry::Status::IdInUse:
        return fail(kestrix::ORBEL_E_ALREADY_EXISTS, result.message);
    default:
        return fail(kestrix::E_FAIL, result.message);
    }
}

HRESULT OrbelAdapter::enumerate(const SLaunchInfo& info)
{
    if (info.m_pfnInstanceEnumerator == nullptr) {
        return fail(kestrix::ORBEL_E_BAD_ID, "Orbel::Launch: enumeration needs m_pfnInstanceEnumerator");
    }
    InstanceRegistry::LaunchRequest request;
    request.mode = InstanceRegistry::Enumerate;
    request.enumerator = [&info](const std::string& id, const std::string& workspace, std::uint16_t port) {
        kestrix::SInstanceEnumInfo record;
        record.m_pszInstanceId = id.c_str();
        record.m_pszWorkspace = workspace.c_str();
        record.m_wTcpPort = port;
        info.m_pfnInstanceEnumerator(info.m_pContext, &record);
    };
    const InstanceRegistry::LaunchResult result = m_session.registry().launch(request);
    return result.ok() ? kestrix::S_OK : fail(kestrix::E_FAIL, result.message);
}

HRESULT OrbelAdapter::GetLastError(DWORD /*reserved*/, char* buffer, DWORD size)
{
    // Reads the message without clearing it.
    try {
        return lastError().copyTo(buffer, size);
    } catch (...) {
        return kestrix::E_FAIL;
    }
}

} // namespace quillon::com
