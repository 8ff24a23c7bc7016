// The project controller against the simulated Quillon of liborbel.so: build options through the library, a
// build and its status. Skipped while liborbel.so is not built.

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <memory>
#include <string>

#include "CProjectController.h"
#include "ConnectionMgr.h"
#include "Exceptions.h"
#include "LiveOrbelTest.h"

using namespace kestrix;

namespace {

const char* const WORKSPACE = "target:\n"
                              "  memory:\n"
                              "    - {name: flash, start: 0, size: 0x40000, access: rx}\n"
                              "    - {name: sram, start: 0x20000000, size: 0x10000}\n"
                              "build:\n"
                              "  sources: [main.c]\n"
                              "  flags: [-mcpu=cortex-m3, -mthumb]\n"
                              "  linkFlags: [-nostdlib, -nostartfiles]\n"
                              "  output: out/fw.elf\n";

class CProjectControllerLiveTest : public LiveOrbelTest {
protected:
    void SetUp() override
    {
        LiveOrbelTest::SetUp();
        if (IsSkipped()) {
            return;
        }
        folder = testFolder("kx_project_live_");
        std::ofstream(folder + "/ws.yaml", std::ios::binary) << WORKSPACE;
        std::ofstream(folder + "/main.c", std::ios::binary) << "#ifndef LEVEL\n#error no level\n#else\n"
                                                               "int main(void) { return LEVEL; }\n#endif\n";
        mgr = std::make_shared<ConnectionMgr>();
        mgr->connectMRU(folder + "/ws.yaml");
    }

    std::string folder;
    std::shared_ptr<ConnectionMgr> mgr;
};

} // namespace

TEST_F(CProjectControllerLiveTest, OptionsChangeWhatTheBuildDoes)
{
    CProjectController project(mgr);
    CBuildOptions& options = project.options();
    EXPECT_EQ("main.c", options.get("/", "sources"));
    EXPECT_EQ("-mthumb", options.get(1, "", "flags"));
    EXPECT_EQ("Index out out of range.", [&] {
        try {
            options.get(2, "", "flags");
        } catch (const IllegalStateException& e) {
            return e.getDesc();
        }
        return std::string("nothing thrown");
    }());

    // Without LEVEL main.c stops at its #error.
    project.build(true);
    CBuildStatus status = project.getStatus();
    EXPECT_TRUE(status.isIdleWError());
    EXPECT_EQ(1u, status.getNumErrors());

    options.add("main.c", "defines", "LEVEL=3");
    options.set("", "flags", "-mcpu=cortex-m3\n-mthumb\n-O1");
    options.move("", "flags", "2,0");
    EXPECT_EQ("-O1\n-mcpu=cortex-m3\n-mthumb", options.get("", "flags"));
    project.build(true);
    status = project.getStatus();
    EXPECT_TRUE(status.isIdle());
    EXPECT_EQ(0u, status.getNumErrors());
    EXPECT_TRUE(std::filesystem::exists(folder + "/out/fw.elf"));

    struct Case {
        std::string scope, option, suffix;
    };
    for (const Case& c : {Case{"uart.c", "defines", ": The pszScope does not identify a valid option."},
                          Case{"", "speed", ": Invalid option specified by the 'value' parameter."},
                          Case{"main.c", "output", ": Requested operation is not available."}}) {
        SCOPED_TRACE(c.scope + "/" + c.option);
        try {
            options.set(c.scope, c.option, "x");
            ADD_FAILURE() << "accepted";
        } catch (const IOException& e) {
            EXPECT_EQ(0u, e.getDesc().find("kestrix::CBuildOptions::set" + c.suffix)) << e.getDesc();
        }
    }
    try {
        project.compile("other.c");
        ADD_FAILURE() << "a file that is no source was compiled";
    } catch (const IOException& e) {
        EXPECT_EQ(0u, e.getDesc().find("kestrix::CProjectController::compile failed for file: 'other.c'.ORBEL_E_FILE_"
                                       "NOT_FOUND"))
            << e.getDesc();
    }
}
