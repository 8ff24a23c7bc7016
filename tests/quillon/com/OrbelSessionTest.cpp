#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "ComFixture.h"
#include "OrbelFlags.h"
#include "OrbelIDE3.h"
#include "OrbelIDEFlags.h"

namespace quillon::com::test {
namespace {

using namespace kestrix;

class OrbelSessionTest : public ComFixture {
protected:
    void SetUp() override { ASSERT_EQ(S_OK, launch(OrbelFlags::lfStartNew, workspaceFile("ws.yaml"), &port)); }

    std::shared_ptr<Instance> instance() { return registry.instances().at(0); }

    /// GetQuillonVersion through a fresh OrbelIDE3 interface of `from`.
    HRESULT version(IUnknown* from, SQuillonVersionInfo& info, DWORD size = sizeof(SQuillonVersionInfo))
    {
        auto* ide3 = query<OrbelIDE3>(from, IID_OrbelIDE3);
        const HRESULT result = ide3->GetQuillonVersion(size, &info);
        ide3->Release();
        return result;
    }

    WORD port = 0;
};

TEST_F(OrbelSessionTest, AttachAndDetachCountClients)
{
    EXPECT_EQ(ORBEL_E_NOT_CONNECTED, orbel->Detach(0));
    EXPECT_EQ(std::make_pair(ORBEL_S_MSG_FAIL, std::string("Orbel::Detach: not attached")), lastError());

    for (const char* address : {static_cast<const char*>(nullptr), "", "localhost", "127.0.0.1", "::1"}) {
        SCOPED_TRACE(address ? address : "null");
        ASSERT_EQ(S_OK, attach(port, address));
        EXPECT_EQ(1, instance()->clients());
        EXPECT_EQ(std::make_pair(S_OK, std::string()), lastError()) << "a success leaves no message";
        EXPECT_EQ(S_OK, orbel->Detach(0x5));
        EXPECT_EQ(0, instance()->clients());
    }
}

TEST_F(OrbelSessionTest, AttachFailuresGiveTheirMessageInTheRecordAndAsLastError)
{
    ASSERT_EQ(S_OK, launch(OrbelFlags::lfStartNew, "", nullptr, "other"));
    struct Case {
        DWORD port;
        const char* address;
        DWORD channel;
        HRESULT result;
        std::string message;
    };
    const Case cases[] = {
        {1, nullptr, 0, ORBEL_E_CONNECT_FAILED, "no Quillon instance listens on port 1"},
        {0, nullptr, 0, ORBEL_E_CONNECT_FAILED, "no Quillon instance listens on port 0"},
        {port + 0x10000u, nullptr, 0, ORBEL_E_CONNECT_FAILED,
         "no Quillon instance listens on port " + std::to_string(port + 0x10000u)},
        {port, "10.0.0.7", 0, ORBEL_E_CONNECT_FAILED,
         "no Quillon instance at '10.0.0.7': only the instances of this process are reached, at the local host"},
        {0, nullptr, 1, ORBEL_E_CONNECT_FAILED, "the shared memory channel is not served: attach over TCP by port"},
        {port, nullptr, 2, E_INVALIDARG, "unknown channel 2 (0 TCP, 1 shared memory)"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.message);
        SAttachInfo info;
        info.m_dwChannel = c.channel;
        EXPECT_EQ(c.result, orbel->Attach(c.address, c.port, &info));
        EXPECT_EQ(c.message, info.m_szMessage);
        EXPECT_EQ(std::make_pair(ORBEL_S_MSG_FAIL, c.message), lastError());
    }
    EXPECT_EQ(0, instance()->clients());

    ASSERT_EQ(S_OK, attach(port));
    EXPECT_EQ(ORBEL_E_ALREADY_CONNECTED, attach(port + 1));
    const std::string already = "already attached to Quillon instance 'quillon-1' on port " + std::to_string(port)
                                + "; detach first";
    EXPECT_EQ(already, attachMessage);
    EXPECT_EQ(1, instance()->clients());
    EXPECT_EQ(0, registry.find("other")->clients());

    EXPECT_EQ(E_INVALIDARG, orbel->Attach(nullptr, port, nullptr));
    EXPECT_EQ(std::make_pair(ORBEL_S_MSG_FAIL, std::string("Orbel::Attach: no SAttachInfo given")), lastError());
}

TEST_F(OrbelSessionTest, AttachMessageIsCutToTheRecord)
{
    SAttachInfo info;
    const std::string address(400, 'h');
    EXPECT_EQ(ORBEL_E_CONNECT_FAILED, orbel->Attach(address.c_str(), port, &info));
    EXPECT_EQ(sizeof info.m_szMessage - 1, std::strlen(info.m_szMessage));
    EXPECT_EQ(0, std::strncmp(info.m_szMessage, "no Quillon instance at 'hhh", 27));
}

TEST_F(OrbelSessionTest, GetLastErrorCopiesWithoutClearing)
{
    ASSERT_EQ(ORBEL_E_CONNECT_FAILED, attach(1));
    const std::string message = "no Quillon instance listens on port 1";
    char small[8];
    std::memset(small, 'x', sizeof small);
    EXPECT_EQ(ORBEL_S_MSG_FAIL, orbel->GetLastError(0, small, sizeof small));
    EXPECT_EQ(message.substr(0, 7), small);
    EXPECT_EQ(std::make_pair(ORBEL_S_MSG_FAIL, message), lastError()) << "still there after a read";
    EXPECT_EQ(E_INVALIDARG, orbel->GetLastError(0, nullptr, 10));
    EXPECT_EQ(E_INVALIDARG, orbel->GetLastError(0, small, 0));

    // Any later operation starts afresh.
    ASSERT_EQ(S_OK, attach(port));
    char buffer[16] = "left over";
    EXPECT_EQ(S_OK, orbel->GetLastError(0, buffer, sizeof buffer));
    EXPECT_STREQ("", buffer);
}

TEST_F(OrbelSessionTest, TheLastErrorBelongsToItsObject)
{
    OrbelObject* other = OrbelObject::create(registry);
    auto* otherOrbel = query<Orbel>(other, IID_Orbel);
    ASSERT_EQ(ORBEL_E_CONNECT_FAILED, attach(1));
    EXPECT_EQ(S_OK, lastError(otherOrbel).first);
    otherOrbel->Release();
    other->Release();
    EXPECT_EQ(ORBEL_S_MSG_FAIL, lastError().first);
}

TEST_F(OrbelSessionTest, QuillonVersionOfTheAttachedInstance)
{
    SQuillonVersionInfo info;
    info.m_dwFlags = OrbelIDEFlags::vrVersion;
    EXPECT_EQ(ORBEL_E_NOT_CONNECTED, version(object, info));
    EXPECT_EQ(std::make_pair(ORBEL_S_MSG_FAIL,
                             std::string("OrbelIDE3::GetQuillonVersion: not attached to a Quillon instance")),
              lastError());

    ASSERT_EQ(S_OK, attach(port));
    ASSERT_EQ(S_OK, version(object, info));
    EXPECT_EQ(DWORD(OrbelIDEFlags::vrVersion), info.m_dwFlags);
    // At least 9.10.98: every version check of a client passes.
    EXPECT_EQ(9, info.m_byMajor);
    EXPECT_EQ(10, info.m_byMinor);
    EXPECT_GE(info.m_wBuild, 98);

    // Two clients on the instance; no window and no folder of a headless instance.
    OrbelObject* second = OrbelObject::create(registry);
    auto* secondOrbel = query<Orbel>(second, IID_Orbel);
    SAttachInfo attachInfo;
    ASSERT_EQ(S_OK, secondOrbel->Attach(nullptr, port, &attachInfo));
    SQuillonVersionInfo all;
    all.m_dwFlags = OrbelIDEFlags::vrVersion | OrbelIDEFlags::vrMainWindow | OrbelIDEFlags::vrNumClients
                    | OrbelIDEFlags::vrPathMask;
    ASSERT_EQ(S_OK, version(second, all));
    EXPECT_EQ(DWORD(OrbelIDEFlags::vrVersion | OrbelIDEFlags::vrNumClients), all.m_dwFlags);
    EXPECT_EQ(2u, all.m_dwNumClients);
    EXPECT_EQ(0u, all.m_dwMainWindow);
    secondOrbel->Release();
    second->Release();
    EXPECT_EQ(1, instance()->clients());

    EXPECT_EQ(ORBEL_E_SIZE, version(object, info, 8));
    EXPECT_EQ(std::make_pair(ORBEL_S_MSG_FAIL, std::string("OrbelIDE3::GetQuillonVersion: the block has 8 bytes, "
                                                           "not 528")),
              lastError());
}

} // namespace
} // namespace quillon::com::test
