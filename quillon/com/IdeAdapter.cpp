#include "com/IdeAdapter.h"

#include <cstring>

#include "OrbelIDEFlags.h"
#include "OrbelIdentifiers.h"
#include "com/QuillonVersion.h"

namespace quillon::com {

using kestrix::SQuillonVersionInfo;

HRESULT IdeAdapter::Document(DWORD, const char*, const char*, DWORD)
{
    return notImplemented("OrbelIDE::Document");
}

HRESULT IdeAdapter::Workspace(DWORD, const char*)
{
    return notImplemented("OrbelIDE::Workspace");
}

HRESULT IdeAdapter::Application(DWORD, kestrix::SApplicationData*)
{
    return notImplemented("OrbelIDE::Application");
}

HRESULT IdeAdapter::ServiceCall(DWORD, const kestrix::GUID* service, DWORD inSize, const void* in, DWORD, void*,
                                DWORD)
{
    if (service == nullptr || !(*service == kestrix::SERVICE_Flash)) {
        return notImplemented("OrbelIDE2::ServiceCall");
    }
    return call("OrbelIDE2::ServiceCall", [&] {
        const char* name = "OrbelIDE2::ServiceCall";
        if (!m_session.instance()) {
            return fail(kestrix::ORBEL_E_NOT_CONNECTED, std::string(name) + ": not attached to a Quillon instance");
        }
        DWORD command = 0;
        if (in != nullptr && inSize >= sizeof command) {
            std::memcpy(&command, in, sizeof command);
        }
        return fail(kestrix::ORBEL_E_NOT_AVAILABLE, std::string(name) + ": flash command " + std::to_string(command)
                                                        + ": the simulated target has no flash controller");
    });
}

HRESULT IdeAdapter::GetQuillonVersion(DWORD size, SQuillonVersionInfo* info)
{
    return call("OrbelIDE3::GetQuillonVersion", [&] { return quillonVersion(size, info); });
}

HRESULT IdeAdapter::quillonVersion(DWORD size, SQuillonVersionInfo* info)
{
    if (info == nullptr) {
        return fail(kestrix::E_INVALIDARG, "OrbelIDE3::GetQuillonVersion: no SQuillonVersionInfo given");
    }
    if (size < sizeof(SQuillonVersionInfo)) {
        return fail(kestrix::ORBEL_E_SIZE, "OrbelIDE3::GetQuillonVersion: the block has " + std::to_string(size)
                                               + " bytes, not " + std::to_string(sizeof(SQuillonVersionInfo)));
    }
    const auto instance = m_session.instance();
    if (!instance) {
        return fail(kestrix::ORBEL_E_NOT_CONNECTED, "OrbelIDE3::GetQuillonVersion: not attached to a Quillon instance");
    }
    const DWORD requested = info->m_dwFlags;
    DWORD answered = 0;
    if (requested & kestrix::OrbelIDEFlags::vrVersion) {
        info->m_byMajor = QuillonVersion::kMajor;
        info->m_byMinor = QuillonVersion::kMinor;
        info->m_wBuild = QuillonVersion::kBuild;
        answered |= kestrix::OrbelIDEFlags::vrVersion;
    }
    if (requested & kestrix::OrbelIDEFlags::vrNumClients) {
        info->m_dwNumClients = DWORD(instance->clients());
        answered |= kestrix::OrbelIDEFlags::vrNumClients;
    }
    info->m_dwFlags = answered;
    return kestrix::S_OK;
}

HRESULT IdeAdapter::Reserved6()
{
    return notImplemented("OrbelIDE3::Reserved6");
}

HRESULT IdeAdapter::Reserved7()
{
    return notImplemented("OrbelIDE3::Reserved7");
}

HRESULT IdeAdapter::Reserved8()
{
    return notImplemented("OrbelIDE3::Reserved8");
}

HRESULT IdeAdapter::Option(DWORD, const char*, const char*, kestrix::SOptionValue*)
{
    return notImplemented("OrbelIDE3::Option");
}

HRESULT IdeAdapter::ServiceCallData(DWORD, const kestrix::GUID*, DWORD, const void*, DWORD, const void*, DWORD,
                                    void*, DWORD, void*, DWORD)
{
    return notImplemented("OrbelIDE3::ServiceCallData");
}

} // namespace quillon::com
