#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include "CHILController.h"
#include "ControllerTestSupport.h"
#include "Exceptions.h"
#include "IDescriptor.h"
#include "IVariableDescriptor.h"
#include "IVectorVariableDescriptors.h"

using namespace kestrix;

namespace {

/// A list of channels with names only; what the descriptor interface hands out.
class FakeChannels : public IVectorVariableDescriptors {
public:
    DWORD size() override { return 2; }
    IVariableDescriptor* at(DWORD) override { return nullptr; }
};

class FakeDescriptor : public IDescriptor {
public:
    HRESULT QueryInterface(const GUID&, void** object) override
    {
        *object = nullptr;
        return E_NOINTERFACE;
    }
    ULONG AddRef() override { return 1; }
    ULONG Release() override { return 1; }
    IVectorVariableDescriptors* VariableDescriptors() override
    {
        ++asked;
        return &channels;
    }

    FakeChannels channels;
    int asked = 0;
};

class CHILControllerTest : public ControllerTest {
protected:
    fakeorbel::HilAnswers& hil() { return script().hil; }
    std::vector<std::string> hilCalls() const { return calls("HIL."); }

    /// Read answers with `text` copied into the buffer as far as it fits, unterminated if it fills it.
    void readAnswers(const std::string& text)
    {
        hil().read = [text](DWORD, DWORD, const char*, char* buffer, DWORD size) {
            std::memcpy(buffer, text.data(), std::min<size_t>(size, text.size()));
            return S_OK;
        };
    }
};

} // namespace

TEST_F(CHILControllerTest, ReadGivesTheTextOfItsBuffer)
{
    CHILController ctrl(mgr());
    readAnswers(std::string("a:1\nb:2.5\0rest", 14));
    EXPECT_EQ("a:1\nb:2.5", ctrl.read("a,b"));
    EXPECT_EQ("a:1\nb:2.5", ctrl.read("a,b", 64, 2, 3));
    // A text that fills the buffer to its last byte still ends there.
    readAnswers("abcdefgh");
    EXPECT_EQ("abcd", ctrl.read("x", 4));
    EXPECT_EQ("", ctrl.read("x", 0));
    EXPECT_EQ((std::vector<std::string>{
                  "HIL.Read(0x0, 0x0, a,b, 4096)",
                  "HIL.Read(0x2, 0x3, a,b, 64)",
                  "HIL.Read(0x0, 0x0, x, 4)",
                  "HIL.Read(0x0, 0x0, x, 0)",
              }),
              hilCalls());
}

TEST_F(CHILControllerTest, ReadFailuresTellSizeFromOtherCauses)
{
    CHILController ctrl(mgr());
    hil().read = [](DWORD, DWORD, const char*, char*, DWORD size) { return size < 16 ? ORBEL_E_SIZE : E_FAIL; };
    const auto small = thrownBy<IllegalSizeException>([&] { ctrl.read("big", 8); });
    EXPECT_EQ("Data size exceeds buffer size!", small.getDesc());
    EXPECT_EQ("  data:\n    bufferSize: 8\n", small.getData());
    const auto other = thrownBy<IOException>([&] { ctrl.read("a/b c", 16); });
    EXPECT_EQ("Can not read from HIL!", other.getDesc());
    EXPECT_EQ("  data:\n    paths: a/b c\n", other.getData());
    hil().read = [](DWORD, DWORD, const char*, char*, DWORD) { return S_FALSE; };
    EXPECT_THROW(ctrl.read("a"), IOException);
}

TEST_F(CHILControllerTest, WritePassesItsTextUnchanged)
{
    CHILController ctrl(mgr());
    hil().write = [](DWORD, DWORD, const char*) { return S_OK; };
    ctrl.write("a:1");
    ctrl.write(" b : 2.5\nc:3 ", 1, 0x80000000);
    EXPECT_EQ((std::vector<std::string>{
                  "HIL.Write(0x0, 0x0, a:1)",
                  "HIL.Write(0x1, 0x80000000,  b : 2.5\nc:3 )",
              }),
              hilCalls());
    const HRESULT failures[] = {S_FALSE, E_FAIL, ORBEL_E_SIZE};
    for (HRESULT hr : failures) {
        hil().write = [hr](DWORD, DWORD, const char*) { return hr; };
        const auto e = thrownBy<IOException>([&] { ctrl.write("a:x"); });
        EXPECT_EQ("Can not write to HIL!", e.getDesc());
        EXPECT_EQ("  data:\n    values: a:x\n", e.getData());
    }
}

TEST_F(CHILControllerTest, DescriptorsComeFromTheInformationRecord)
{
    FakeDescriptor descriptor;
    hil().getInfo = [&](DWORD, SHILInfo* info) {
        info->m_pIDescriptor = &descriptor;
        return S_OK;
    };
    CHILController ctrl(mgr());
    IVectorVariableDescriptors* list = ctrl.getDescriptors();
    EXPECT_EQ(&descriptor.channels, list);
    EXPECT_EQ(1, descriptor.asked);
    EXPECT_EQ(std::vector<std::string>{"HIL.GetInfo(" + std::to_string(sizeof(SHILInfo)) + ", 0x1)"}, hilCalls());
}

TEST_F(CHILControllerTest, DescriptorsThatAreNotThereAreAFailure)
{
    FakeDescriptor descriptor;
    const struct {
        HRESULT hr;
        DWORD flags;
        IDescriptor* pointer;
    } cases[] = {
        {E_FAIL, 1, &descriptor}, {S_FALSE, 1, &descriptor}, {S_OK, 0, &descriptor},
        {S_OK, 2, &descriptor},   {S_OK, 1, nullptr},
    };
    CHILController ctrl(mgr());
    for (const auto& c : cases) {
        hil().getInfo = [&](DWORD, SHILInfo* info) {
            info->m_dwFlags = c.flags;
            info->m_pIDescriptor = c.pointer;
            return c.hr;
        };
        EXPECT_EQ("Can not get HIL parameters!", thrownBy<IOException>([&] { ctrl.getDescriptors(); }).getDesc())
            << c.hr << "/" << c.flags;
    }
    EXPECT_EQ(0, descriptor.asked);
}

TEST_F(CHILControllerTest, AMissingHilInterfaceNamesTheGate)
{
    script().missing = {"OrbelHIL"};
    auto fresh = std::make_shared<ConnectionMgr>();
    fresh->connect("", 1234);
    useConnection(fresh);
    CHILController ctrl(mgr());
    const std::string gate = "HIL interface is not available. Make sure that application is connected to quillon "
                             "(see ConnectionMgr.connect...())!";
    EXPECT_EQ(gate, thrownBy<IOException>([&] { ctrl.read("a"); }).getDesc());
    EXPECT_THROW(ctrl.write("a:1"), IOException);
    EXPECT_THROW(ctrl.getDescriptors(), IOException);
}
