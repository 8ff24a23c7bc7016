#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "ComFixture.h"
#include "IDataDescriptor.h"
#include "IDescriptor.h"
#include "IVariableDescriptor.h"
#include "IVectorVariableDescriptors.h"
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

// A descriptor of each kind of option, read through the lists a client walks.
TEST_F(IdeOptionTest, OperationsOnOneOptionGiveItsDescriptor)
{
    options().set(OptionTree::kSourcePaths, "src\nlib\ninc");
    struct Case {
        const char* scope;
        const char* name;
        const char* path;
        const char* info;
        DWORD type;
        DWORD size;
        DWORD dimension;
        DWORD container;
    };
    const Case cases[] = {
        {"Debug", "StopOnReset", "/IDE/Debug/StopOnReset", "bool", SType::tUnsigned, 1, 0, 0},
        {"Test", "MaxInstructions", "/IDE/Test/MaxInstructions", "integer", SType::tUnsigned, 8, 0, 0},
        {"Debug", "SourcePaths", "/IDE/Debug/SourcePaths", "list", SType::tUndefined, 0, 3, 1},
        {"Debug", "SourcePaths[2]", "/IDE/Debug/SourcePaths[2]", "list item", SType::tUndefined, 0, 0, 0},
    };
    for (const Case& c : cases) {
        std::string buffer(64, '\0');
        SOptionValue value;
        value.m_pszStringOut = buffer.data();
        value.m_dwStringOutSize = DWORD(buffer.size());
        ASSERT_EQ(S_OK, ide->Option(F::ofRead | F::ofString, c.scope, c.name, &value)) << c.path;
        ASSERT_NE(nullptr, value.m_pIDescriptor) << c.path;
        IVectorVariableDescriptors* list = value.m_pIDescriptor->VariableDescriptors();
        ASSERT_EQ(1u, list->size()) << c.path;
        EXPECT_EQ(nullptr, list->at(1)) << c.path;
        IVariableDescriptor* variable = list->at(0);
        EXPECT_STREQ(c.path, variable->Name());
        EXPECT_STREQ(c.info, variable->Info()) << c.path;
        EXPECT_EQ(c.dimension, variable->Dimension()) << c.path;
        IDataDescriptor* data = variable->DataDescriptor();
        EXPECT_EQ(c.type, data->Type()) << c.path;
        EXPECT_EQ(c.size, data->Size()) << c.path;
        EXPECT_EQ(c.container, data->Container()) << c.path;
        EXPECT_EQ(nullptr, data->Struct()) << c.path;
        EXPECT_EQ(nullptr, data->Enum()) << c.path;
    }
}

TEST_F(IdeOptionTest, OptionDescriptorLivesWithTheObjectAndFollowsTheList)
{
    SOptionValue size;
    ASSERT_EQ(S_OK, ide->Option(F::ofDynamicSize, "Debug", "SourcePaths", &size));
    IDescriptor* first = size.m_pIDescriptor;
    ASSERT_NE(nullptr, first);
    EXPECT_EQ(0u, first->VariableDescriptors()->at(0)->Dimension());

    SOptionValue at0 = integerRecord(0);
    ASSERT_EQ(S_OK, ide->Option(F::ofAddDynamic, "Debug", "SourcePaths", &at0));
    EXPECT_EQ(first, at0.m_pIDescriptor) << "one descriptor per option";
    EXPECT_EQ(1u, first->VariableDescriptors()->at(0)->Dimension());

    IDescriptor* asked = nullptr;
    ASSERT_EQ(S_OK, first->QueryInterface(IID_IDescriptor, reinterpret_cast<void**>(&asked)));
    EXPECT_EQ(first, asked);
    asked->Release();

    SOptionValue failed;
    EXPECT_EQ(ORBEL_E_BAD_ID, ide->Option(F::ofRead | F::ofInteger, "Debug", "Nope", &failed));
    EXPECT_EQ(nullptr, failed.m_pIDescriptor);
    SOptionValue pairs;
    pairs.m_pszStringIn = "StopOnReset:0";
    ASSERT_EQ(S_OK, ide->Option(F::ofNameValue, "Debug", "", &pairs));
    EXPECT_EQ(nullptr, pairs.m_pIDescriptor) << "a text of several options has no one descriptor";
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
