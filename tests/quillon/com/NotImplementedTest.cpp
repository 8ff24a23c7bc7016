#include <gtest/gtest.h>

#include <cstring>
#include <functional>
#include <string>
#include <vector>

#include "ComFixture.h"
#include "OrbelCoverage.h"
#include "OrbelDebug2.h"
#include "OrbelHIL.h"
#include "OrbelIDE3.h"
#include "OrbelProfiler2.h"
#include "OrbelProject.h"
#include "OrbelTest.h"

namespace quillon::com::test {
namespace {

using namespace kestrix;

class NotImplementedTest : public ComFixture {
protected:
    NotImplementedTest()
        : ide(query<OrbelIDE3>(object, IID_OrbelIDE3)), debug(query<OrbelDebug2>(object, IID_OrbelDebug2)),
          profiler(query<OrbelProfiler2>(object, IID_OrbelProfiler2)),
          project(query<OrbelProject>(object, IID_OrbelProject)),
          coverage(query<OrbelCoverage>(object, IID_OrbelCoverage)), test(query<OrbelTest>(object, IID_OrbelTest)),
          hil(query<OrbelHIL>(object, IID_OrbelHIL))
    {
    }
    ~NotImplementedTest() override
    {
        for (IUnknown* unknown : std::vector<IUnknown*>{ide, debug, profiler, project, coverage, test, hil}) {
            unknown->Release();
        }
    }

    OrbelIDE3* ide;
    OrbelDebug2* debug;
    OrbelProfiler2* profiler;
    OrbelProject* project;
    OrbelCoverage* coverage;
    OrbelTest* test;
    OrbelHIL* hil;
};

// Every operation that a later step brings answers E_NOTIMPL and names itself, with arguments
// that a real call would pass as well as null ones, and touches none of its outputs.
TEST_F(NotImplementedTest, EveryOtherOperationAnswersNotImplementedAndNamesIt)
{
    char text[64] = "";
    DWORD word = 0;
    const std::vector<std::pair<std::string, std::function<HRESULT()>>> operations = {
        {"OrbelIDE::Application", [&] { return ide->Application(1, nullptr); }},
        {"OrbelIDE2::ServiceCall", [&] { return ide->ServiceCall(0x10000000, &SERVICE_Line, 4, &word, 4, &word, 0); }},
        {"OrbelIDE3::Reserved6", [&] { return ide->Reserved6(); }},
        {"OrbelIDE3::Reserved7", [&] { return ide->Reserved7(); }},
        {"OrbelIDE3::Reserved8", [&] { return ide->Reserved8(); }},
        {"OrbelIDE3::ServiceCallData",
         [&] { return ide->ServiceCallData(0x10000000, &SERVICE_Scan, 0, nullptr, 0, nullptr, 0, nullptr, 0, nullptr, 0); }},
        {"OrbelDebug2::Reserved17", [&] { return debug->Reserved17(); }},
        {"OrbelDebug2::Reserved19", [&] { return debug->Reserved19(); }},
        {"OrbelProject::Reserved1", [&] { return project->Reserved1(); }},
        {"OrbelCoverage::Reserved4", [&] { return coverage->Reserved4(); }},
        {"OrbelCoverage::Reserved5", [&] { return coverage->Reserved5(); }},
    };
    EXPECT_EQ(11u, operations.size()) << "every operation of the interfaces but Orbel's, GetQuillonVersion, Option, Document, "
                                         "Workspace, the debug, test, profiler, coverage, HIL and project ones";
    for (const auto& [name, operation] : operations) {
        SCOPED_TRACE(name);
        word = 0x5A5A5A5A;
        std::strcpy(text, "untouched");
        EXPECT_EQ(E_NOTIMPL, operation());
        EXPECT_EQ(std::make_pair(ORBEL_S_MSG_FAIL, name + " is not implemented"), lastError());
        EXPECT_EQ(0x5A5A5A5Au, word);
        EXPECT_STREQ("untouched", text);
    }
}

} // namespace
} // namespace quillon::com::test
