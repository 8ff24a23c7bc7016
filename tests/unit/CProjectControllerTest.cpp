#include <gtest/gtest.h>

#include <cstring>
#include <functional>
#include <string>
#include <vector>

#include "CProjectController.h"
#include "ControllerTestSupport.h"
#include "Exceptions.h"

using namespace kestrix;

namespace {

class CProjectControllerTest : public ControllerTest {
protected:
    fakeorbel::ProjectAnswers& project() { return script().project; }
    std::vector<std::string> projectCalls() const { return calls("Project."); }

    /// Every build option operation answers `result`, a read with `text` in its buffer.
    void optionAnswers(HRESULT result, const std::string& text = "")
    {
        project().buildOption = [result, text](DWORD, const char*, const char*, char* value, DWORD size) {
            if (size > 0 && !text.empty()) {
                std::snprintf(value, size, "%s", text.c_str());
            }
            return result;
        };
    }
};

TEST_F(CProjectControllerTest, CommandsSendTheirWordsAndArguments)
{
    CProjectController ctrl(mgr());
    project().projectCommand = [](DWORD, const char*, const char*) { return S_OK; };
    const std::vector<std::pair<std::function<void()>, std::string>> cases = {
        {[&] { ctrl.compile("src/main.c"); }, "Project.ProjectCommand(0x2, NULL, src/main.c)"},
        {[&] { ctrl.link(); }, "Project.ProjectCommand(0x3, NULL, NULL)"},
        {[&] { ctrl.link(true); }, "Project.ProjectCommand(0x13, NULL, NULL)"},
        {[&] { ctrl.make(); }, "Project.ProjectCommand(0x4, NULL, NULL)"},
        {[&] { ctrl.make(true); }, "Project.ProjectCommand(0x14, NULL, NULL)"},
        {[&] { ctrl.build(); }, "Project.ProjectCommand(0x5, NULL, NULL)"},
        {[&] { ctrl.build(true); }, "Project.ProjectCommand(0x15, NULL, NULL)"},
        {[&] { ctrl.dependencies(); }, "Project.ProjectCommand(0x6, NULL, NULL)"},
        {[&] { ctrl.stop(); }, "Project.ProjectCommand(0xF, NULL, NULL)"},
        {[&] { ctrl.customOperation("size", "-A"); }, "Project.ProjectCommand(0x1, size, -A)"},
        {[&] { ctrl.customOperation("", ""); }, "Project.ProjectCommand(0x1, , )"},
    };
    for (const auto& [action, expected] : cases) {
        SCOPED_TRACE(expected);
        const size_t before = projectCalls().size();
        action();
        ASSERT_EQ(before + 1, projectCalls().size());
        EXPECT_EQ(expected, projectCalls().back());
    }
}

TEST_F(CProjectControllerTest, AnyResultButOkRaisesTheTextOfItsOperation)
{
    CProjectController ctrl(mgr());
    serverError("busy");
    const std::vector<std::pair<std::function<void()>, std::string>> cases = {
        {[&] { ctrl.compile("a b.c"); }, "kestrix::CProjectController::compile failed for file: 'a b.c'."},
        {[&] { ctrl.link(true); }, "kestrix::CProjectController::link failed!"},
        {[&] { ctrl.make(); }, "kestrix::CProjectController::make failed!"},
        {[&] { ctrl.build(); }, "kestrix::CProjectController::build failed!"},
        {[&] { ctrl.dependencies(); }, "kestrix::CProjectController::dependencies failed!"},
        {[&] { ctrl.stop(); }, "kestrix::CProjectController::stop failed!"},
        {[&] { ctrl.customOperation("size", "-A x"); },
         "kestrix::CProjectController::customOperation failed for operation: 'size', parameters: '-A x'"},
        {[&] { ctrl.getStatus(); }, "kestrix::CProjectController::getStatus failed!"},
    };
    for (HRESULT result : {S_FALSE, ORBEL_E_ERROR}) {
        project().projectCommand = [result](DWORD, const char*, const char*) { return result; };
        project().getBuildStatus = [result](DWORD, CBuildStatus*) { return result; };
        const std::string resultText = result == S_FALSE ? "Operation failed with error code S_FALSE. / busy"
                                                         : "ORBEL_E_ERROR: Error occurred while performing the "
                                                           "requested operation. / busy";
        for (const auto& [action, text] : cases) {
            SCOPED_TRACE(text);
            const IOException e = thrownBy<IOException>(action);
            EXPECT_EQ(text + resultText, e.getDesc());
        }
    }
}

TEST_F(CProjectControllerTest, StatusReadsEachStateAndTheCounts)
{
    CProjectController ctrl(mgr());
    struct Case {
        DWORD state;
        bool idle, idleWError, configError, active;
    };
    for (const Case& c : {Case{0, true, false, false, false}, Case{1, false, true, false, false},
                          Case{2, false, false, true, false}, Case{3, false, false, false, true},
                          Case{4, false, false, false, false}}) {
        SCOPED_TRACE(c.state);
        project().getBuildStatus = [&c](DWORD, CBuildStatus* status) {
            status->m_dwState = c.state;
            status->m_dwNumErrors = 7 + c.state;
            status->m_dwNumWarnings = 70000 + c.state;
            return S_OK;
        };
        const CBuildStatus status = ctrl.getStatus();
        EXPECT_EQ(c.idle, status.isIdle());
        EXPECT_EQ(c.idleWError, status.isIdleWError());
        EXPECT_EQ(c.configError, status.isConfigError());
        EXPECT_EQ(c.active, status.isActive());
        EXPECT_EQ(7 + c.state, status.getNumErrors());
        EXPECT_EQ(70000 + c.state, status.getNumWarnings());
    }
    EXPECT_EQ("Project.GetBuildStatus(0)", projectCalls().back());
}

TEST_F(CProjectControllerTest, OptionsSendTheirWordsAndBuffers)
{
    CProjectController ctrl(mgr());
    CBuildOptions& options = ctrl.options();
    EXPECT_EQ(&options, &ctrl.options()) << "one object, made with the controller";
    optionAnswers(S_OK, "main.c");
    EXPECT_EQ("main.c", options.get(2, "/", "sources"));
    EXPECT_EQ("main.c", options.get("", "sources"));
    options.set("main.c", "defines", "A=1\nB");
    options.add("", "flags", "-O2");
    options.remove("", "flags");
    options.move("", "sources", "2,0");
    options.set("", "linkerScript", "");
    EXPECT_EQ((std::vector<std::string>{
                  "Project.BuildOption(0x20002, /, sources, '', 4100)",
                  "Project.BuildOption(0x10000, , sources, '', 4100)",
                  "Project.BuildOption(0x30000, main.c, defines, 'A=1\nB', 6)",
                  "Project.BuildOption(0x40000, , flags, '-O2', 4)",
                  "Project.BuildOption(0x50000, , flags, '', 0)",
                  "Project.BuildOption(0x60000, , sources, '2,0', 4)",
                  "Project.BuildOption(0x30000, , linkerScript, '', 1)",
              }),
              projectCalls());
}

TEST_F(CProjectControllerTest, AReadEndsAtTheFirstZeroOrAtTheBufferEnd)
{
    CProjectController ctrl(mgr());
    project().buildOption = [](DWORD, const char*, const char*, char* value, DWORD size) {
        std::memset(value, 'x', size); // no terminator at all
        return S_OK;
    };
    EXPECT_EQ(std::string(4100, 'x'), ctrl.options().get("", "flags"));
    project().buildOption = [](DWORD, const char*, const char*, char* value, DWORD) {
        std::memcpy(value, "ab\0cd", 6);
        return S_OK;
    };
    EXPECT_EQ("ab", ctrl.options().get(0, "", "flags"));
}

TEST_F(CProjectControllerTest, OptionFailuresNameTheMethodAndTheResult)
{
    CProjectController ctrl(mgr());
    CBuildOptions& options = ctrl.options();
    const std::vector<std::pair<HRESULT, std::string>> results = {
        {ORBEL_E_FILE_NOT_FOUND, ": The pszScope does not identify a valid option.ORBEL_E_FILE_NOT_FOUND: File not found."},
        {ORBEL_E_BAD_ID, ": Invalid option specified by the 'value' parameter.ORBEL_E_BAD_ID: Expression could not be "
                         "evaluated."},
        {ORBEL_E_ERROR, ": The current build manager configuration is not valid for this operation.ORBEL_E_ERROR: Error "
                        "occurred while performing the requested operation."},
        {ORBEL_E_NOT_AVAILABLE, ": Requested operation is not available.ORBEL_E_NOT_AVAILABLE: The requested operation "
                                "is not available."},
        {E_FAIL, ": Build manager option operation failed!E_FAIL: kestrix.orbel call failed."},
        {S_FALSE, ": Build manager option operation failed!Operation failed with error code S_FALSE."},
    };
    const std::vector<std::pair<std::string, std::function<void()>>> operations = {
        {"get", [&] { options.get("", "x"); }},
        {"set", [&] { options.set("", "x", "v"); }},
        {"add", [&] { options.add("", "x", "v"); }},
        {"remove", [&] { options.remove("", "x"); }},
        {"move", [&] { options.move("", "x", "0,1"); }},
    };
    for (const auto& [result, suffix] : results) {
        optionAnswers(result);
        for (const auto& [name, action] : operations) {
            SCOPED_TRACE(name + suffix);
            EXPECT_EQ("kestrix::CBuildOptions::" + name + suffix, thrownBy<IOException>(action).getDesc());
        }
    }
    // By index, S_FALSE is the end of the list; the other results fail as above.
    optionAnswers(S_FALSE);
    EXPECT_EQ("Index out out of range.", thrownBy<IllegalStateException>([&] { options.get(2, "", "defines"); }).getDesc());
    optionAnswers(ORBEL_E_NOT_AVAILABLE);
    EXPECT_EQ("kestrix::CBuildOptions::get: Requested operation is not available.ORBEL_E_NOT_AVAILABLE: The "
              "requested operation is not available.",
              thrownBy<IOException>([&] { options.get(0, "", "output"); }).getDesc());
}

TEST_F(CProjectControllerTest, ScriptShowsEveryCallEvenAFailedOne)
{
    startLogger();
    {
        CProjectController ctrl(mgr());
        project().projectCommand = [](DWORD, const char*, const char*) { return S_OK; };
        project().getBuildStatus = [](DWORD, CBuildStatus*) { return S_OK; };
        ctrl.compile("main.c");
        ctrl.link(true);
        ctrl.make();
        ctrl.build(true);
        ctrl.dependencies();
        ctrl.stop();
        ctrl.customOperation("size", "-A");
        ctrl.getStatus();
        CBuildOptions& options = ctrl.options();
        optionAnswers(ORBEL_E_BAD_ID);
        EXPECT_THROW(options.get(3, "/", "sources"), IOException);
        EXPECT_THROW(options.get("main.c", "flags"), IOException);
        EXPECT_THROW(options.set("", "output", "a.elf"), IOException);
        EXPECT_THROW(options.add("", "defines", "X"), IOException);
        EXPECT_THROW(options.remove("", "defines"), IOException);
        EXPECT_THROW(options.move("", "sources", "1,0"), IOException);
    }
    const std::vector<std::string> lines = scriptLines();
    const std::vector<std::string> expected = {
        "projectCtrl = obFactory.getProjectCtrl()",
        "projectCtrl.compile(\"main.c\");",
        "projectCtrl.link(1);",
        "projectCtrl.make(0);",
        "projectCtrl.build(1);",
        "projectCtrl.dependencies();",
        "projectCtrl.stop();",
        "projectCtrl.customOperation(\"size\", \"-A\");",
        "projectCtrl.getStatus();",
        "buildOptions = projectCtrl.options();",
        "buildOptions.get(3, \"/\", \"sources\");",
        "buildOptions.get(\"main.c\", \"flags\");",
        "buildOptions.set(\"\", \"output\", \"a.elf\");",
        "buildOptions.add(\"\", \"defines\", \"X\");",
        "buildOptions.remove(\"\", \"defines\");",
        "buildOptions.move(\"\", \"sources\", \"1,0\");",
        "# Dtor: ~CProjectController",
    };
    ASSERT_GE(lines.size(), expected.size());
    EXPECT_EQ(expected, std::vector<std::string>(lines.end() - std::ptrdiff_t(expected.size()), lines.end()));
}

} // namespace
