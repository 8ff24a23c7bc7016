#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#include "CIDEController.h"
#include "ControllerTestSupport.h"
#include "Exceptions.h"

using namespace kestrix;

namespace {

class CIDEControllerTest : public ControllerTest {
protected:
    fakeorbel::IdeAnswers& ide() { return script().ide; }
    std::vector<std::string> optionCalls() const { return callsWith("OrbelIDE3.Option("); }
    std::vector<std::string> applicationCalls() const { return callsWith("OrbelIDE.Application("); }
    std::vector<std::string> callsWith(const std::string& prefix) const
    {
        std::vector<std::string> found;
        for (const std::string& call : seen().calls) {
            if (call.compare(0, prefix.size(), prefix) == 0) {
                found.push_back(call);
            }
        }
        return found;
    }
    void optionsAnswer(HRESULT hr)
    {
        ide().option = [hr](DWORD, const char*, const char*, SOptionValue*) { return hr; };
    }
};

struct UrlCase {
    const char* url;
    DWORD module;
    const char* scope;
    const char* name;
};

struct BadUrlCase {
    const char* url;
    const char* message;
};

} // namespace

TEST_F(CIDEControllerTest, UrlsSplitIntoModuleScopeAndName)
{
    const UrlCase cases[] = {
        {"/IDE/a/b.c", 0x00, "a", "b.c"},   {"/IDE/b", 0x00, "", "b"},       {"/Document/s/o", 0x10, "s", "o"},
        {"/VALKE/x/y", 0x20, "x", "y"},     {"/Plugin/s/o/p", 0x30, "s", "o/p"}, {"/HIL/o", 0x40, "", "o"},
        {"/IDE//o", 0x00, "", "o"},
    };
    for (const UrlCase& c : cases) {
        const CIDEController::OptionUrl parts = CIDEController::parseOptionUrl(c.url);
        EXPECT_EQ(c.module, parts.module) << c.url;
        EXPECT_EQ(c.scope, parts.scope) << c.url;
        EXPECT_EQ(c.name, parts.name) << c.url;
    }
}

TEST_F(CIDEControllerTest, MalformedUrlsAreNamed)
{
    const BadUrlCase cases[] = {
        {"", "Empty option URL is not allowed!"},
        {"IDE/a", "Option URL should start with '/'!"},
        {"/IDE", "Option URL without module type is not allowed!"},
        {"/IDE/", "Option URL without 'option' part is not allowed!"},
        {"/IDE/s/", "Option URL without 'option' part is not allowed!"},
        {"/X/b", "Unknown module type when setting option!"},
        {"/ide/b", "Unknown module type when setting option!"},
    };
    for (const BadUrlCase& c : cases) {
        const auto e = thrownBy<IllegalArgumentException>([&] { CIDEController::parseOptionUrl(c.url); });
        EXPECT_EQ(c.message, e.getDesc()) << c.url;
        EXPECT_NE(std::string::npos, e.getData().find(std::string("url: ") + c.url)) << e.getData();
    }
    EXPECT_NE(std::string::npos,
              thrownBy<IllegalArgumentException>([] { CIDEController::parseOptionUrl("/X/b"); }).getData().find("module: X"));
}

TEST_F(CIDEControllerTest, SettersSendTheirKindAndValue)
{
    std::vector<std::string> texts;
    ide().option = [&](DWORD, const char*, const char*, SOptionValue* value) {
        texts.push_back(value->m_pszStringIn != nullptr ? value->m_pszStringIn : "NULL");
        return S_OK;
    };
    CIDEController ctrl(mgr());
    ctrl.setOption("/Document/s/o", std::string("v"));
    ctrl.setOption("/Plugin/s/o", DWORD(5));
    ctrl.setOption("/VALKE/o", 2.5);
    ctrl.setOption(0x10, "sc", "nm", std::string("a:b"));
    ctrl.setOption(0x40, "sc", "nm", DWORD(7));
    ctrl.setOption(0, "", "nm", -1.5);
    EXPECT_EQ((std::vector<std::string>{
                  "OrbelIDE3.Option(0x1E, s, , 0/0/0, o:v, 0, 0.000000, 0)",
                  "OrbelIDE3.Option(0x32, s, o, 0/0/0, NULL, 5, 0.000000, 0)",
                  "OrbelIDE3.Option(0x23, , o, 0/0/0, NULL, 0, 2.500000, 0)",
                  "OrbelIDE3.Option(0x1E, sc, , 0/0/0, nm:a:b, 0, 0.000000, 0)",
                  "OrbelIDE3.Option(0x42, sc, nm, 0/0/0, NULL, 7, 0.000000, 0)",
                  "OrbelIDE3.Option(0x3, , nm, 0/0/0, NULL, 0, -1.500000, 0)",
              }),
              optionCalls());
}

TEST_F(CIDEControllerTest, ReadersTakeTheirAnswerFromTheRecord)
{
    ide().option = [](DWORD flags, const char*, const char*, SOptionValue* value) {
        switch (flags & 0x0F) {
        case 1:
            std::memcpy(value->m_pszStringOut, "text\0rest", 10);
            break;
        case 2:
            value->m_dwInteger = 0xFFFFFFF0u;
            break;
        case 3:
            value->m_dFloat = 0.125;
            break;
        default:
            value->m_dwInteger = 4;
        }
        return S_OK;
    };
    CIDEController ctrl(mgr());
    EXPECT_EQ("text", ctrl.getOptionStr("/IDE/s/o"));
    EXPECT_EQ(0xFFFFFFF0u, ctrl.getOptionInt(0x20, "s", "o"));
    EXPECT_EQ(0.125, ctrl.getOptionFloat("/HIL/o"));
    EXPECT_EQ(4u, ctrl.getDynamicOptionSize("/Plugin/s/list"));
    EXPECT_EQ(4u, ctrl.getDynamicOptionSize(0x10, "s", "list"));
    EXPECT_EQ((std::vector<std::string>{
                  "OrbelIDE3.Option(0x80000001, s, o, 0/0/0, NULL, 0, 0.000000, 4096)",
                  "OrbelIDE3.Option(0x80000022, s, o, 0/0/0, NULL, 0, 0.000000, 0)",
                  "OrbelIDE3.Option(0x80000043, , o, 0/0/0, NULL, 0, 0.000000, 0)",
                  "OrbelIDE3.Option(0x3000030, s, list, 0/0/0, NULL, 0, 0.000000, 0)",
                  "OrbelIDE3.Option(0x3000010, s, list, 0/0/0, NULL, 0, 0.000000, 0)",
              }),
              optionCalls());
}

TEST_F(CIDEControllerTest, DynamicOptionsCarryTheIndexAndNeedBuild98)
{
    optionsAnswer(S_OK);
    CIDEController ctrl(mgr());
    ctrl.addDynamicOption("/IDE/s/list", 3);
    ctrl.removeDynamicOption(0x30, "s", "list");
    ctrl.commitOptions(0x10);
    EXPECT_EQ((std::vector<std::string>{
                  "OrbelIDE3.Option(0x1000000, s, list, 0/0/0, NULL, 3, 0.000000, 0)",
                  "OrbelIDE3.Option(0x2000030, s, list, 0/0/0, NULL, 0, 0.000000, 0)",
                  "OrbelIDE3.Option(0x40000010, NULL, NULL, 0/0/0, NULL, 0, 0.000000, 1024)",
              }),
              optionCalls());

    script().build = 97;
    CIDEController old(mgr());
    EXPECT_THROW(old.addDynamicOption("/IDE/s/list"), VersionConflictException);
    EXPECT_THROW(old.removeDynamicOption(0, "s", "list"), VersionConflictException);
    EXPECT_THROW(old.getDynamicOptionSize("/IDE/s/list"), VersionConflictException);
    EXPECT_NO_THROW(old.getDynamicOptionSize(0, "s", "list"));
    EXPECT_EQ(4u, optionCalls().size());
}

TEST_F(CIDEControllerTest, FailedOptionNamesTheWholeRequest)
{
    serverError("unknown option 'x'");
    ide().option = [](DWORD, const char*, const char*, SOptionValue* value) {
        if (value->m_pszStringOut != nullptr) {
            std::snprintf(value->m_pszStringOut, value->m_dwStringOutSize, "why");
        }
        return ORBEL_E_ERROR;
    };
    CIDEController ctrl(mgr());
    COptionValue value(std::string("v"));
    value.setSeparators('/', '=', ';');
    const auto e = thrownBy<IOException>([&] { ctrl.option(0x21, "s", "n", value); });
    EXPECT_EQ("'IDE3::Option()' command failed!", e.getDesc());
    const std::string stdError = ctrl.getResultText(ORBEL_E_ERROR);
    EXPECT_EQ("  data:\n    stdError: " + stdError +
                  "\n    m_pszStringOut: NULL\n    flags: 33\n    scope: s\n    option: n\n"
                  "    optPathSeparator: 47\n    optValSeparator: 61\n    optOptSeparator: 59\n    optValStr: v\n"
                  "    optValInt: 0\n    optValFloat: 0\n",
              e.getData());
    EXPECT_NE(std::string::npos, stdError.find("unknown option 'x'"));

    const auto read = thrownBy<IOException>([&] { ctrl.getOptionFloat(0, "s", "f"); });
    EXPECT_NE(std::string::npos, read.getData().find("optValStr: NULL")) << read.getData();
    const auto text = thrownBy<IOException>([&] { ctrl.getOptionStr(0, "s", "t"); });
    EXPECT_NE(std::string::npos, text.getData().find("m_pszStringOut: why\n")) << text.getData();

    const auto commit = thrownBy<IOException>([&] { ctrl.commitOptions(0); });
    EXPECT_EQ("'commitOptions' command failed!", commit.getDesc());
    EXPECT_EQ("  data:\n    stdError: " + stdError + "\n    outStr: why\n", commit.getData());
}

TEST_F(CIDEControllerTest, WindowCommandsReturnTheFiveWords)
{
    ide().application = [](DWORD command, SApplicationData* data) {
        data->m_dwLeft += command;
        data->m_dwPID = 4242;
        return S_OK;
    };
    CIDEController ctrl(mgr());
    ctrl.activate();
    ctrl.minimize();
    ctrl.restore();
    EXPECT_EQ(4242u, ctrl.maximize().getPID());
    const CIDEData moved = ctrl.move(10, 20, 30, 40);
    EXPECT_EQ((std::vector<DWORD>{15, 20, 30, 40}),
              (std::vector<DWORD>{moved.getLeft(), moved.getTop(), moved.getRight(), moved.getBottom()}));
    EXPECT_EQ((std::vector<std::string>{
                  "OrbelIDE.Application(0x1, 0, 0, 0, 0, 0)", "OrbelIDE.Application(0x2, 0, 0, 0, 0, 0)",
                  "OrbelIDE.Application(0x3, 0, 0, 0, 0, 0)", "OrbelIDE.Application(0x4, 0, 0, 0, 0, 0)",
                  "OrbelIDE.Application(0x5, 10, 20, 30, 40, 0)"}),
              applicationCalls());
    ide().application = [](DWORD, SApplicationData*) { return E_FAIL; };
    EXPECT_EQ("CIDEController::application() failed!" + ctrl.getResultText(E_FAIL),
              thrownBy<IOException>([&] { ctrl.activate(); }).getDesc());
}

TEST_F(CIDEControllerTest, MessageBoxHookCommands)
{
    HRESULT hookAnswer = S_OK;
    ide().application = [&](DWORD command, SApplicationData*) { return command == 0x30 ? hookAnswer : S_OK; };
    CIDEController ctrl(mgr());
    ctrl.setMsgBoxHook(true);
    ctrl.setMsgBoxHook(false);
    ctrl.setMsgBoxHookMode(0);
    ctrl.setMsgBoxHookMode(1);
    ctrl.setMsgBoxHookMode(2);
    ctrl.setMsgBoxHookMode(7);
    std::vector<std::string> commands;
    for (const std::string& call : applicationCalls()) {
        commands.push_back(call.substr(std::strlen("OrbelIDE.Application("), call.find(',') - std::strlen("OrbelIDE.Application(")));
    }
    EXPECT_EQ((std::vector<std::string>{"0x10", "0x20", "0x20", "0x50", "0x10", "0x40", "0x0"}), commands);

    EXPECT_TRUE(ctrl.isMsgBoxHookOn());
    hookAnswer = S_FALSE;
    EXPECT_FALSE(ctrl.isMsgBoxHookOn());
    hookAnswer = E_FAIL;
    EXPECT_EQ("'Set Message Box Hook' command failed: " + ctrl.getResultText(E_FAIL),
              thrownBy<IOException>([&] { ctrl.isMsgBoxHookOn(); }).getDesc());
    EXPECT_EQ("Not yet implemented - call method isMsgBoxHookOn() instead!",
              thrownBy<FeatureNotImplementedException>([&] { ctrl.getMsgBoxHookMode(); }).getDesc());
}

TEST_F(CIDEControllerTest, InformationRequestsAndAnswers)
{
    DWORD answerBits = 0;
    std::vector<DWORD> requests;
    ide().information = [&](SQuillonVersionInfo* info) {
        requests.push_back(info->m_dwFlags);
        info->m_dwFlags = answerBits;
        std::snprintf(info->m_szPath, sizeof(info->m_szPath), "/opt/quillon");
        info->m_dwNumClients = 3;
        info->m_dwMainWindow = 0;
        return S_OK;
    };
    script().major = 10;
    script().minor = 2;
    script().build = 300;
    CIDEController ctrl(mgr());
    const CQuillonVersion version = ctrl.getQuillonVersion();
    EXPECT_EQ(10, version.getMajor());
    EXPECT_EQ(2, version.getMinor());
    EXPECT_EQ(300, version.getBuild());
    EXPECT_EQ(0xFFFF, version.getSubbuild());

    answerBits = 0x10;
    EXPECT_EQ("/opt/quillon", ctrl.getPath(0));
    EXPECT_EQ("/opt/quillon", ctrl.getPath(1));
    answerBits = 0x30;
    EXPECT_EQ("/opt/quillon", ctrl.getPath(2));
    answerBits = 0;
    EXPECT_EQ("F. getPath() is not implemented for this version of quillon!",
              thrownBy<IOException>([&] { ctrl.getPath(2); }).getDesc());
    EXPECT_EQ(3u, ctrl.getNumClients());
    ctrl.bringQuillonToTop();
    EXPECT_EQ((std::vector<DWORD>{0x10, 0x30, 0x20, 0x20, 0x4, 0x2}), requests);

    const size_t before = seen().calls.size();
    const auto e = thrownBy<IllegalArgumentException>([&] { ctrl.getPath(3); });
    EXPECT_EQ("Invalid path type!", e.getDesc());
    EXPECT_EQ("  data:\n    pathType: 3\n", e.getData());
    EXPECT_EQ(before, seen().calls.size());

    ide().information = [](SQuillonVersionInfo*) { return E_FAIL; };
    EXPECT_EQ("'bringQuillonToTop' command failed: " + ctrl.getResultText(E_FAIL),
              thrownBy<IOException>([&] { ctrl.bringQuillonToTop(); }).getDesc());
    EXPECT_EQ("F. getQuillonVersion() failed. " + ctrl.getResultText(E_FAIL),
              thrownBy<IOException>([&] { ctrl.getPath(1); }).getDesc());
    script().versionPresent = false;
    EXPECT_EQ("F. getQuillonVersion() did not return version info.",
              thrownBy<IOException>([&] { ctrl.getQuillonVersion(); }).getDesc());
}

TEST_F(CIDEControllerTest, OptionValueOwnsItsTextAndBuffer)
{
    std::string source = "abc";
    COptionValue text(source);
    source[0] = 'x';
    EXPECT_STREQ("abc", text.getOptionValue()->m_pszStringIn);
    EXPECT_EQ("", text.getOutputBuffer());
    text.allocOutputBuffer(8);
    std::memcpy(text.getOptionValue()->m_pszStringOut, "12345678", 8);
    EXPECT_EQ("12345678", text.getOutputBuffer()) << "a full buffer ends at its size";
}
