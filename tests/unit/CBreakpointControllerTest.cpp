#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "CBreakpointController.h"
#include "ControllerTestSupport.h"
#include "Exceptions.h"

using namespace kestrix;

namespace {

class CBreakpointControllerTest : public ControllerTest {
protected:
    void SetUp() override
    {
        ControllerTest::SetUp();
        answerWith(S_OK);
    }
    void answerWith(HRESULT hr)
    {
        answers().breakpoint = [hr](DWORD, DWORD, ADDRESS, const char*, DWORD) { return hr; };
        answers().setBP = [hr](DWORD, DWORD, ADDRESS, const char*, DWORD, int, const char*) { return hr; };
    }
};

} // namespace

TEST_F(CBreakpointControllerTest, SetBPFormsAndDefaults)
{
    startLogger();
    CBreakpointController bp(mgr());
    EXPECT_EQ(0, bp.setBP("main"));
    EXPECT_EQ(0, bp.setBP(42, "main.c", 3, "i == 2"));
    EXPECT_EQ(0, bp.setBP(BYTE{0}, ADDRESS{0x1000}));
    EXPECT_EQ((std::vector<std::string>{"OrbelDebug2.SetBP(1, 0, 0x0, main, 0, 0, '')",
                                        "OrbelDebug2.SetBP(2, 0, 0x0, main.c, 42, 3, 'i == 2')",
                                        "OrbelDebug2.SetBP(0, 0, 0x1000, NULL, 0, 0, '')"}),
              debugCalls());
    EXPECT_EQ((std::vector<std::string>{"breakpointCtrl.setBP(0, 4096, 0, \"\");"}), loggedLines("setBP(0, "))
        << loggedScript();
}

TEST_F(CBreakpointControllerTest, CommandWords)
{
    CBreakpointController bp(mgr());
    bp.setEnabled(true, "f");
    bp.setEnabled(false, "f");
    bp.setEnabled(true, 2, 0x100);
    bp.setEnabled(false, "a.c", 7);
    bp.setEnabledAll(false);
    bp.setHWEnabledAll(false);
    bp.setHWEnabledAll(true);
    bp.setHWEnabled(true, "s");
    bp.setHWEnabled(false, 1, 8);
    bp.deleteAll();
    bp.deleteBP("f");
    bp.deleteBP("a.c", 9);
    bp.deleteBP(1, 0x40);
    bp.deleteHWBP("s");
    bp.deleteHWBP(1, 0x40);
    EXPECT_EQ((std::vector<std::string>{
                  "OrbelDebug.Breakpoint(0x21, 0, 0x0, f, 0)",     "OrbelDebug.Breakpoint(0x31, 0, 0x0, f, 0)",
                  "OrbelDebug.Breakpoint(0x20, 2, 0x100, NULL, 0)", "OrbelDebug.Breakpoint(0x32, 0, 0x0, a.c, 7)",
                  "OrbelDebug.Breakpoint(0x70, 0, 0x0, NULL, 0)",   "OrbelDebug.Breakpoint(0x78, 0, 0x0, NULL, 0)",
                  "OrbelDebug.Breakpoint(0x68, 0, 0x0, NULL, 0)",   "OrbelDebug.Breakpoint(0x29, 0, 0x0, s, 0)",
                  "OrbelDebug.Breakpoint(0x38, 1, 0x8, NULL, 0)",   "OrbelDebug.Breakpoint(0x50, 0, 0x0, NULL, 0)",
                  "OrbelDebug.Breakpoint(0x11, 0, 0x0, f, 0)",     "OrbelDebug.Breakpoint(0x12, 0, 0x0, a.c, 9)",
                  "OrbelDebug.Breakpoint(0x10, 1, 0x40, NULL, 0)",  "OrbelDebug.Breakpoint(0x19, 0, 0x0, s, 0)",
                  "OrbelDebug.Breakpoint(0x18, 1, 0x40, NULL, 0)"}),
              debugCalls());
}

TEST_F(CBreakpointControllerTest, HardwareBreakpointsGoThroughTheSecondInterface)
{
    CBreakpointController bp(mgr());
    bp.setHWBP(1, 2, 4, true, "g_flag", 5);
    bp.setHWBP(1, 2, 4, false, "g_flag", 5);
    bp.setHWBP(0x100, 0, 0, 1, 0x2000, 6);
    EXPECT_EQ((std::vector<std::string>{"OrbelDebug2.Breakpoint(0x8000F, 0, 0x0, g_flag, 5)",
                                        "OrbelDebug2.Breakpoint(0xF, 0, 0x0, g_flag, 5)",
                                        "OrbelDebug2.Breakpoint(0x108, 1, 0x2000, NULL, 6)"}),
              debugCalls());
}

TEST_F(CBreakpointControllerTest, ResultsAndContexts)
{
    serverError("no code at line 9");
    CBreakpointController bp(mgr());
    answerWith(S_FALSE);
    EXPECT_EQ(1, bp.deleteBP("f"));
    EXPECT_EQ(1, bp.setBP("f"));

    answerWith(ORBEL_E_NO_BREAKPOINT);
    EXPECT_EQ("No breakpoint was found at the specified location (ORBEL_E_NO_BREAKPOINT).delete line breakpoint: "
              "a.c, line = 9\nno code at line 9",
              thrownBy<IOException>([&] { bp.deleteBP("a.c", 9); }).getDesc());
    answerWith(ORBEL_E_ERROR);
    EXPECT_EQ("Breakpoint could not be set (ORBEL_E_ERROR).\nMem area: 2,  address: ff0\nno code at line 9",
              thrownBy<IOException>([&] { bp.setBP(2, 0xFF0); }).getDesc());
    EXPECT_EQ("Breakpoint could not be set (ORBEL_E_ERROR).\nLine breakpoint: a.c, line = 9\nno code at line 9",
              thrownBy<IOException>([&] { bp.setBP(9, "a.c"); }).getDesc());
    answerWith(ORBEL_E_BAD_ID);
    EXPECT_EQ("The address does not evaluate to a location (ORBEL_E_BAD_ID).no code at line 9",
              thrownBy<IOException>([&] { bp.deleteBP(1, 0x40); }).getDesc());
    answerWith(E_FAIL);
    EXPECT_EQ("Error when handling breakpoints: E_FAIL: kestrix.orbel call failed. / no code at line 9",
              thrownBy<IOException>([&] { bp.setEnabledAll(true); }).getDesc());
}
