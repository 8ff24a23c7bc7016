#pragma once

#include <gtest/gtest.h>

#include <string>

#include "IUnknown.h"
#include "Orbel.h"
#include "OrbelIdentifiers.h"
#include "OrbelResults.h"
#include "com/OrbelObject.h"
#include "instance/InstanceRegistry.h"
#include "instance/TempDir.h"

namespace quillon::com::test {

/// A workspace with flash and RAM given, as the connection tests use.
inline const char* const kWorkspace = "target:\n"
                                      "  memory:\n"
                                      "    - {name: flash, start: 0, size: 0x40000, access: rx}\n"
                                      "    - {name: sram, start: 0x20000000, size: 0x10000}\n";

/// An automation object on a registry of its own, with its `Orbel` interface at hand.
class ComFixture : public ::testing::Test {
protected:
    static constexpr std::uint16_t kBasePort = 7000;

    ComFixture() : registry(kBasePort), object(OrbelObject::create(registry))
    {
        orbel = query<kestrix::Orbel>(object, kestrix::IID_Orbel);
    }
    ~ComFixture() override
    {
        if (orbel) {
            orbel->Release();
        }
        object->Release();
    }

    /// The interface of `iid` with a reference of its own, or null.
    template <class I>
    static I* query(kestrix::IUnknown* from, const kestrix::GUID& iid)
    {
        void* pointer = nullptr;
        return from->QueryInterface(iid, &pointer) == kestrix::S_OK ? static_cast<I*>(pointer) : nullptr;
    }

    /// Launch through the interface with the workspace (null when empty) and an id.
    HRESULT launch(DWORD flags, const std::string& workspace, WORD* port = nullptr, const char* id = nullptr)
    {
        kestrix::SLaunchInfo info;
        info.m_pszWorkspace = workspace.empty() ? nullptr : workspace.c_str();
        info.m_pszInstanceId = id;
        const HRESULT result = orbel->Launch(flags, &info);
        if (port) {
            *port = info.m_wTcpPort;
        }
        return result;
    }

    HRESULT attach(DWORD port, const char* address = nullptr)
    {
        kestrix::SAttachInfo info;
        info.m_dwClientCode = kestrix::SAttachInfo::CLIENT_CODE;
        const HRESULT result = orbel->Attach(address, port, &info);
        attachMessage = info.m_szMessage;
        return result;
    }

    /// Code and text of GetLastError.
    std::pair<HRESULT, std::string> lastError(kestrix::Orbel* from = nullptr)
    {
        char buffer[1024];
        const HRESULT code = (from ? from : orbel)->GetLastError(0, buffer, sizeof buffer);
        return {code, buffer};
    }

    std::string workspaceFile(const std::string& name, const std::string& text = kWorkspace)
    {
        return dir.write(name, text).string();
    }

    TempDir dir;
    InstanceRegistry registry;
    OrbelObject* object;
    kestrix::Orbel* orbel = nullptr;
    std::string attachMessage;
};

} // namespace quillon::com::test
