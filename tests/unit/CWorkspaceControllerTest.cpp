#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "CWorkspaceController.h"
#include "ControllerTestSupport.h"
#include "Exceptions.h"

using namespace kestrix;

namespace {

class CWorkspaceControllerTest : public ControllerTest {
protected:
    std::vector<std::string> workspaceCalls() const
    {
        std::vector<std::string> found;
        for (const std::string& call : seen().calls) {
            if (call.find(".Workspace(") != std::string::npos) {
                found.push_back(call);
            }
        }
        return found;
    }
    void answer(HRESULT hr)
    {
        script().ide.workspace = [hr](DWORD, const char*) { return hr; };
    }
};

/// One operation of the controller with the call it must make.
struct Operation {
    const char* name;
    std::function<void(CWorkspaceController&)> run;
    const char* call;
    const char* logged;
};

const std::vector<Operation>& operations()
{
    static const std::vector<Operation> all = {
        {"newWS", [](CWorkspaceController& c) { c.newWS("a\\new.ws"); }, "OrbelIDE.Workspace(7, a\\new.ws)",
         "workspaceCtrl.newWS(\"a\\new.ws\");"},
        {"open", [](CWorkspaceController& c) { c.open("C:\\ws\\x.yaml"); }, "OrbelIDE.Workspace(9, C:\\ws\\x.yaml)",
         "workspaceCtrl.open(r\"C:\\ws\\x.yaml\");"},
        {"save", [](CWorkspaceController& c) { c.save(); }, "OrbelIDE.Workspace(3, )", "workspaceCtrl.save();"},
        {"saveAs", [](CWorkspaceController& c) { c.saveAs("b.yaml"); }, "OrbelIDE.Workspace(4, b.yaml)",
         "workspaceCtrl.saveAs(r\"b.yaml\");"},
        {"close", [](CWorkspaceController& c) { c.close(); }, "OrbelIDE.Workspace(1, )", "workspaceCtrl.close();"},
        {"closeDiscard", [](CWorkspaceController& c) { c.closeDiscard(); }, "OrbelIDE.Workspace(11, )",
         "workspaceCtrl.closeDiscard();"},
    };
    return all;
}

} // namespace

TEST_F(CWorkspaceControllerTest, EachOperationSendsItsCommandAndFileName)
{
    answer(S_OK);
    CWorkspaceController ctrl(mgr());
    std::vector<std::string> expected;
    for (const Operation& op : operations()) {
        op.run(ctrl);
        expected.push_back(op.call);
    }
    EXPECT_EQ(expected, workspaceCalls());
}

TEST_F(CWorkspaceControllerTest, OnlyOpenTellsSFalse)
{
    answer(S_OK);
    CWorkspaceController ctrl(mgr());
    EXPECT_TRUE(ctrl.open("x"));
    answer(S_FALSE);
    EXPECT_FALSE(ctrl.open("x"));
    for (const Operation& op : operations()) {
        EXPECT_NO_THROW(op.run(ctrl)) << op.name;
    }
}

TEST_F(CWorkspaceControllerTest, FailuresRaiseIOExceptionWithTheCommandAndFile)
{
    struct Case {
        HRESULT hr;
        const char* desc;
        const char* resultText;
    };
    const Case cases[] = {
        {ORBEL_E_ERROR, "An error occurred when performing operation on workspace:!",
         "ORBEL_E_ERROR: Error occurred while performing the requested operation. / ws.yaml:3: unknown key 'x'"},
        {E_FAIL, "Error in CWorkspaceController::workspace()!", "E_FAIL: kestrix.orbel call failed. / ws.yaml:3: unknown key 'x'"},
        {E_NOTIMPL, "Error in CWorkspaceController::workspace()!",
         "E_NOTIMPL: The requested operation is not implemented. / ws.yaml:3: unknown key 'x'"},
    };
    serverError("ws.yaml:3: unknown key 'x'");
    CWorkspaceController ctrl(mgr());
    for (const Case& c : cases) {
        answer(c.hr);
        const auto opened = thrownBy<IOException>([&] { ctrl.open("ws.yaml"); });
        EXPECT_EQ(c.desc, opened.getDesc());
        EXPECT_EQ(std::string("  data:\n    description: ") + c.resultText + "\n    flags: 9\n    workspaceFile: ws.yaml\n",
                  opened.getData());
        const auto closed = thrownBy<IOException>([&] { ctrl.closeDiscard(); });
        EXPECT_EQ(c.desc, closed.getDesc());
        EXPECT_EQ(std::string("  data:\n    description: ") + c.resultText + "\n    flags: 11\n    workspaceFile: \n",
                  closed.getData());
    }
}

TEST_F(CWorkspaceControllerTest, CallsAreLoggedBeforeTheyAreSent)
{
    startLogger();
    answer(E_FAIL);
    {
        CWorkspaceController ctrl(mgr());
        for (const Operation& op : operations()) {
            EXPECT_THROW(op.run(ctrl), IOException) << op.name;
        }
    }
    std::vector<std::string> expected = {"workspaceCtrl = obFactory.getWorkspaceCtrl()"};
    for (const Operation& op : operations()) {
        expected.push_back(op.logged);
    }
    expected.push_back("# Dtor: ~CWorkspaceController");
    EXPECT_EQ(expected, scriptLines());
}

