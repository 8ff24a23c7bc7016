#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "ComFixture.h"
#include "OrbelFlags.h"
#include "OrbelIDE3.h"
#include "OrbelIDEFlags.h"
#include "services/OptionTree.h"

namespace quillon::com::test {
namespace {

using namespace kestrix;
using F = OrbelIDEFlags;
using services::OptionTree;

const char* const kOptionWorkspace = "target:\n"
                                     "  memory:\n"
                                     "    - {name: flash, start: 0, size: 0x40000, access: rx}\n"
                                     "options:\n"
                                     "  /IDE/Debug/StopAtMain: 1\n";

class IdeOptionTest : public ComFixture {
protected:
    void SetUp() override
    {
        WORD port = 0;
        ASSERT_EQ(S_OK, launch(OrbelFlags::lfStartNew, workspaceFile("ws.yaml", kOptionWorkspace), &port));
        ASSERT_EQ(S_OK, attach(port));
        ide = query<OrbelIDE3>(object, IID_OrbelIDE3);
        ASSERT_NE(nullptr, ide);
    }
    void TearDown() override
    {
        if (ide) {
            ide->Release();
        }
    }

    OptionTree& options() { return registry.instances().at(0)->options(); }

    HRESULT setText(DWORD flags, const char* scope, const char* name, const char* text, char valueSep = 0,
                    char optionSep = 0)
    {
        SOptionValue value;
        value.m_pszStringIn = text;
        value.m_cValueSeparator = valueSep;
        value.m_cOptionSeparator = optionSep;
        return ide->Option(flags, scope, name, &value);
    }
    HRESULT readText(DWORD flags, const char* scope, const char* name, std::string& text, DWORD size = 256)
    {
        std::string buffer(size, 'x');
        SOptionValue value;
        value.m_pszStringOut = buffer.data();
        value.m_dwStringOutSize = size;
        const HRESULT hr = ide->Option(flags | F::ofRead | F::ofString, scope, name, &value);
        text = hr == S_OK ? std::string(buffer.c_str()) : "";
        return hr;
    }
    SOptionValue integerRecord(DWORD number)
    {
        SOptionValue value;
        value.m_dwInteger = number;
        return value;
    }

    OrbelIDE3* ide = nullptr;
};

TEST_F(IdeOptionTest, NameValueTextSetsOneOrMoreOptions)
{
    ASSERT_EQ(S_OK, setText(F::ofNameValue, "Debug", "", "StopOnReset:0"));
    EXPECT_FALSE(options().flag(OptionTree::kStopOnReset));
    ASSERT_EQ(S_OK, setText(F::ofNameValue, "Debug", "", "StopOnReset=true;StopAtMain=0", '=', ';'));
    EXPECT_TRUE(options().flag(OptionTree::kStopOnReset));
    EXPECT_FALSE(options().flag(OptionTree::kStopAtMain));
    ASSERT_EQ(S_OK, setText(F::ofNameValue, "Test", "", "MaxInstructions:0x20"));
    EXPECT_EQ(32u, options().integer(OptionTree::kMaxInstructions));
}

TEST_F(IdeOptionTest, WorkspaceOptionsAreInPlaceAtAttach)
{
    EXPECT_TRUE(options().flag(OptionTree::kStopAtMain));
    SOptionValue value;
    ASSERT_EQ(S_OK, ide->Option(F::ofRead | F::ofInteger, "Debug", "StopAtMain", &value));
    EXPECT_EQ(1u, value.m_dwInteger);
}

TEST_F(IdeOptionTest, ValuesOfEachKindGoBothWays)
{
    SOptionValue number = integerRecord(1234);
    ASSERT_EQ(S_OK, ide->Option(F::ofInteger, "Test", "MaxInstructions", &number));
    SOptionValue read;
    ASSERT_EQ(S_OK, ide->Option(F::ofRead | F::ofFloat, "Test", "MaxInstructions", &read));
    EXPECT_EQ(1234.0, read.m_dFloat);
    SOptionValue real;
    real.m_dFloat = 99.0;
    ASSERT_EQ(S_OK, ide->Option(F::ofFloat, "Test", "MaxInstructions", &real));
    std::string text;
    ASSERT_EQ(S_OK, readText(0, "Test", "MaxInstructions", text));
    EXPECT_EQ("99", text);
    ASSERT_EQ(S_OK, setText(F::ofString, "Debug", "SourcePaths", "src\nlib"));
    ASSERT_EQ(S_OK, readText(0, "Debug", "SourcePaths", text));
    EXPECT_EQ("src\nlib", text);
    ASSERT_EQ(S_OK, readText(0, "Debug", "SourcePaths[1]", text));
    EXPECT_EQ("lib", text);
}

TEST_F(IdeOptionTest, FailuresGiveTheirCodeAndNameTheOption)
{
    struct Case {
        DWORD flags;
        const char* scope;
        const char* name;
        const char* text;
        HRESULT code;
        const char* message;
    };
    const Case cases[] = {
        {F::ofString, "Debug", "Nope", "1", ORBEL_E_BAD_ID, "OrbelIDE3::Option: unknown option '/IDE/Debug/Nope'"},
        {F::ofNameValue, "Debug", "", "Nope:1", ORBEL_E_BAD_ID, "OrbelIDE3::Option: unknown option '/IDE/Debug/Nope'"},
        {F::ofString | F::ofModuleHIL, "", "StopOnReset", "1", ORBEL_E_BAD_ID,
         "OrbelIDE3::Option: unknown option '/HIL/StopOnReset'"},
        {F::ofString, "Debug", "StopOnReset", "2", E_INVALIDARG,
         "OrbelIDE3::Option: bad value '2' for option '/IDE/Debug/StopOnReset' (0, 1, true or false)"},
        {F::ofNameValue, "Debug", "", "StopOnReset", E_INVALIDARG,
         "OrbelIDE3::Option: 'StopOnReset' is not of the form name:value"},
        {F::ofString | 0x50, "Debug", "StopOnReset", "1", E_INVALIDARG,
         "OrbelIDE3::Option: no module has the bits 0x50"},
        {F::ofString, "Debug", "", "1", E_INVALIDARG, "OrbelIDE3::Option: no option name given"},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(c.code, setText(c.flags, c.scope, c.name, c.text)) << c.message;
        EXPECT_EQ(std::make_pair(ORBEL_S_MSG_FAIL, std::string(c.message)), lastError());
    }
    SOptionValue fraction;
    fraction.m_dFloat = 2.5;
    EXPECT_EQ(E_INVALIDARG, ide->Option(F::ofFloat, "Test", "MaxInstructions", &fraction));
    EXPECT_EQ("OrbelIDE3::Option: bad value '2.5' for option '/IDE/Test/MaxInstructions' (a number, decimal or 0x hex)",
              lastError().second);
    EXPECT_TRUE(options().flag(OptionTree::kStopOnReset)) << "no failure changed a value";
}

TEST_F(IdeOptionTest, ValuesThatDoNotFitTheRecordAreRefused)
{
    options().set(OptionTree::kMaxInstructions, "0x100000000");
    SOptionValue value;
    EXPECT_EQ(ORBEL_E_SIZE, ide->Option(F::ofRead | F::ofInteger, "Test", "MaxInstructions", &value));
    std::string text;
    EXPECT_EQ(ORBEL_E_SIZE, readText(0, "Test", "MaxInstructions", text, 10));
    EXPECT_EQ(S_OK, readText(0, "Test", "MaxInstructions", text, 11));
    EXPECT_EQ("4294967296", text);
}

TEST_F(IdeOptionTest, DynamicOptionsAndCommit)
{
    SOptionValue at0 = integerRecord(0);
    ASSERT_EQ(S_OK, ide->Option(F::ofAddDynamic, "Debug", "SourcePaths", &at0));
    ASSERT_EQ(S_OK, ide->Option(F::ofAddDynamic, "Debug", "SourcePaths", &at0));
    ASSERT_EQ(S_OK, setText(F::ofString, "Debug", "SourcePaths[1]", "lib"));
    SOptionValue size;
    ASSERT_EQ(S_OK, ide->Option(F::ofDynamicSize, "Debug", "SourcePaths", &size));
    EXPECT_EQ(2u, size.m_dwInteger);
    ASSERT_EQ(S_OK, ide->Option(F::ofRemoveDynamic, "Debug", "SourcePaths", &at0));
    EXPECT_EQ((std::vector<std::string>{"lib"}), options().list(OptionTree::kSourcePaths));
    SOptionValue at5 = integerRecord(5);
    EXPECT_EQ(E_INVALIDARG, ide->Option(F::ofRemoveDynamic, "Debug", "SourcePaths", &at5));
    EXPECT_EQ(E_INVALIDARG, ide->Option(F::ofAddDynamic, "Debug", "StopOnReset", &at0));

    char out[16] = "untouched";
    SOptionValue commit;
    commit.m_pszStringOut = out;
    commit.m_dwStringOutSize = sizeof(out);
    EXPECT_EQ(S_OK, ide->Option(F::ofCommit, nullptr, nullptr, &commit));
    EXPECT_STREQ("", out);
}

TEST_F(IdeOptionTest, WorkspaceFolderIsTheFirstPath)
{
    SQuillonVersionInfo info;
    info.m_dwFlags = F::vrPath0;
    ASSERT_EQ(S_OK, ide->GetQuillonVersion(sizeof(info), &info));
    EXPECT_EQ(DWORD(F::vrPath0), info.m_dwFlags);
    EXPECT_EQ(dir.path().string(), std::string(info.m_szPath));
    info.m_dwFlags = F::vrPath2;
    ASSERT_EQ(S_OK, ide->GetQuillonVersion(sizeof(info), &info));
    EXPECT_EQ(0u, info.m_dwFlags);
}

TEST(IdeOptionDetached, OptionsNeedAnInstance)
{
    InstanceRegistry registry(7100);
    OrbelObject* object = OrbelObject::create(registry);
    void* pointer = nullptr;
    ASSERT_EQ(S_OK, object->QueryInterface(IID_OrbelIDE3, &pointer));
    auto* ide = static_cast<OrbelIDE3*>(pointer);
    SOptionValue value;
    EXPECT_EQ(ORBEL_E_NOT_CONNECTED, ide->Option(F::ofRead | F::ofInteger, "Test", "MaxInstructions", &value));
    EXPECT_EQ(E_INVALIDARG, ide->Option(0, "Test", "MaxInstructions", nullptr));
    ide->Release();
    object->Release();
}

} // namespace
} // namespace quillon::com::test
