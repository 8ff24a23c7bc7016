// The project interface on an instance whose workspace builds a small firmware written here.
#include <gtest/gtest.h>

#include <chrono>
#include <cstring>
#include <filesystem>
#include <string>
#include <vector>

#include "ComFixture.h"
#include "OrbelDebug2.h"
#include "OrbelFlags.h"
#include "OrbelProject.h"
#include "OrbelProjectFlags.h"

namespace quillon::com::test {
namespace {

using namespace kestrix;
using P = OrbelProjectFlags;

const char* const kStartup = "extern int main(void);\n"
                             "static void reset(void) { main(); for (;;) {} }\n"
                             "__attribute__((section(\".vectors\"))) void (*const vectors[2])(void) =\n"
                             "    {(void (*)(void))0x20001000, reset};\n";
const char* const kScript = "SECTIONS {\n"
                            "  .text 0x0 : { KEEP(*(.vectors)) *(.text*) *(.rodata*) }\n"
                            "  .data 0x20000000 : { *(.data*) *(.bss*) }\n"
                            "}\n";

std::string mainWith(const char* function)
{
    return std::string("int ") + function + "(int x) { return x + 1; }\nint main(void) { return " + function +
           "(1); }\n";
}

class ProjectAdapterTest : public ComFixture {
protected:
    ProjectAdapterTest()
        : project(query<OrbelProject>(object, IID_OrbelProject)), debug(query<OrbelDebug2>(object, IID_OrbelDebug2))
    {
    }
    ~ProjectAdapterTest() override
    {
        project->Release();
        debug->Release();
    }

    /// An instance of a workspace with the firmware's sources and `build` (none if empty), attached.
    void start(const std::string& build)
    {
        dir.write("startup.c", kStartup);
        dir.write("main.c", mainWith("first"));
        dir.write("fw.ld", kScript);
        WORD port = 0;
        ASSERT_EQ(S_OK, launch(OrbelFlags::lfStartNew,
                               workspaceFile("ws.yaml", std::string(kWorkspace) + "download:\n  - file: build/fw.elf\n"
                                                            + build),
                               &port));
        ASSERT_EQ(S_OK, attach(port));
    }

    CBuildStatus status()
    {
        CBuildStatus record;
        EXPECT_EQ(S_OK, project->GetBuildStatus(0, &record));
        return record;
    }

    HRESULT read(DWORD word, const char* scope, const char* option, std::string& value, DWORD size = 4100)
    {
        std::vector<char> buffer(size + 1, 'x'); // unterminated within `size`: a read must terminate it
        buffer[size] = '\0';
        const HRESULT result = project->BuildOption(word, scope, option, buffer.data(), size);
        value = buffer.data();
        return result;
    }

    HRESULT write(DWORD word, const char* scope, const char* option, const std::string& value)
    {
        std::vector<char> copy(value.c_str(), value.c_str() + value.size() + 1);
        return project->BuildOption(word, scope, option, copy.data(), DWORD(copy.size()));
    }

    bool hasFunction(const char* name)
    {
        BYTE area = 0;
        ADDRESS at = 0;
        DWORD size = 0;
        SType type;
        return debug->GetAddress(OrbelDebugFlags::gafFunctions, name, &area, &at, &size, &type) == S_OK;
    }

    OrbelProject* project;
    OrbelDebug2* debug;
};

const char* const kBuild = "build:\n"
                           "  sources: [startup.c, main.c]\n"
                           "  flags: [-mcpu=cortex-m3, -mthumb, -g, -O0, -ffreestanding]\n"
                           "  linkFlags: [-nostdlib, -nostartfiles]\n"
                           "  linkerScript: fw.ld\n"
                           "  output: build/fw.elf\n"
                           "  custom:\n"
                           "    - {name: echo, command: echo}\n";

TEST_F(ProjectAdapterTest, BuildWithTheFlagAnswersWhenDoneAndADownloadLoadsTheNewProgram)
{
    start(kBuild);
    ASSERT_EQ(S_OK, project->ProjectCommand(P::pcBuild | P::pcFlag, nullptr, nullptr)) << lastError().second;
    CBuildStatus now = status();
    ASSERT_TRUE(now.isIdle()) << lastError().second;
    ASSERT_EQ(S_OK, debug->RunControl(OrbelDebugFlags::rcDownload, 0, 0)) << lastError().second;
    EXPECT_TRUE(hasFunction("first"));

    dir.write("main.c", mainWith("second"));
    std::filesystem::last_write_time(dir.path() / "main.c", std::filesystem::last_write_time(dir.path() / "build/fw.elf")
                                                                + std::chrono::seconds(1));
    ASSERT_EQ(S_OK, project->ProjectCommand(P::pcMake | P::pcFlag, nullptr, nullptr));
    ASSERT_TRUE(status().isIdle());
    ASSERT_EQ(S_OK, debug->RunControl(OrbelDebugFlags::rcDownload, 0, 0)) << lastError().second;
    EXPECT_TRUE(hasFunction("second")) << "the download reads the ELF as it is now";
    EXPECT_FALSE(hasFunction("first"));
}

TEST_F(ProjectAdapterTest, WithoutTheFlagACommandAnswersAtOnceAndTheStatusFollows)
{
    start(kBuild + std::string("    - {name: slow, command: sleep 20}\n"));
    ASSERT_EQ(S_OK, project->ProjectCommand(P::pcCustom, "slow", nullptr));
    EXPECT_TRUE(status().isActive());
    EXPECT_EQ(ORBEL_E_ERROR, project->ProjectCommand(P::pcMake, nullptr, nullptr)) << "refused while active";
    EXPECT_EQ(ORBEL_E_ERROR, write(P::boSet, "", "output", "x.elf")) << "no changes while active";
    std::string value;
    EXPECT_EQ(S_OK, read(P::boGet, "", "output", value)) << "reading is fine";
    ASSERT_EQ(S_OK, project->ProjectCommand(P::pcStop | P::pcFlag, nullptr, nullptr));
    EXPECT_TRUE(status().isIdleWError());

    // A syntax error: idle with one error, the compiler's text as the status's warning.
    dir.write("main.c", "int main(void) { return 0 }\n");
    ASSERT_EQ(S_OK, project->ProjectCommand(P::pcCompile | P::pcFlag, nullptr, "main.c"));
    const CBuildStatus failed = status();
    EXPECT_TRUE(failed.isIdleWError());
    EXPECT_EQ(1u, failed.getNumErrors());
    const auto [code, text] = lastError();
    EXPECT_EQ(ORBEL_S_WARNING, code);
    EXPECT_NE(std::string::npos, text.find("main.c:1:")) << text;
}

TEST_F(ProjectAdapterTest, CommandsThatAreRefused)
{
    start(kBuild);
    const std::vector<std::pair<HRESULT, std::function<HRESULT()>>> cases = {
        {ORBEL_E_FILE_NOT_FOUND, [&] { return project->ProjectCommand(P::pcCompile, nullptr, "other.c"); }},
        {ORBEL_E_BAD_ID, [&] { return project->ProjectCommand(P::pcCustom, "nothing", ""); }},
        {ORBEL_E_BAD_ID, [&] { return project->ProjectCommand(7, nullptr, nullptr); }},
        {ORBEL_E_BAD_ID, [&] { return project->ProjectCommand(0x25, nullptr, nullptr); }},
        {E_INVALIDARG, [&] { return project->GetBuildStatus(0, nullptr); }},
    };
    for (std::size_t i = 0; i < cases.size(); ++i) {
        SCOPED_TRACE(i);
        EXPECT_EQ(cases[i].first, cases[i].second());
        EXPECT_EQ(ORBEL_S_MSG_FAIL, lastError().first);
    }
}

TEST_F(ProjectAdapterTest, BuildOptionsAnswerTheirResultCodes)
{
    start(kBuild);
    std::string value;
    EXPECT_EQ(S_OK, read(P::boGet, "/", "sources", value));
    EXPECT_EQ("startup.c\nmain.c", value);
    EXPECT_EQ(S_OK, read(P::boGetByIndex | 1, "", "sources", value));
    EXPECT_EQ("main.c", value);
    EXPECT_EQ(S_FALSE, read(P::boGetByIndex | 2, "", "sources", value));
    EXPECT_EQ(ORBEL_S_SIZE, read(P::boGet, "", "sources", value, 5));
    EXPECT_EQ("star", value) << "cut and terminated";

    EXPECT_EQ(ORBEL_E_FILE_NOT_FOUND, read(P::boGet, "uart.c", "defines", value));
    EXPECT_EQ(ORBEL_E_BAD_ID, read(P::boGet, "", "speed", value));
    EXPECT_EQ(ORBEL_E_NOT_AVAILABLE, read(P::boGetByIndex, "", "output", value));
    EXPECT_EQ(ORBEL_E_NOT_AVAILABLE, write(P::boSet, "main.c", "output", "a.elf"));
    EXPECT_EQ(ORBEL_E_BAD_ID, write(P::boMove, "", "sources", "0,5"));
    EXPECT_EQ(ORBEL_E_BAD_ID, write(0x70000, "", "sources", ""));

    ASSERT_EQ(S_OK, write(P::boAdd, "main.c", "defines", "EXTRA=1"));
    ASSERT_EQ(S_OK, write(P::boMove, "", "sources", "1,0"));
    EXPECT_EQ(S_OK, read(P::boGet, "", "sources", value));
    EXPECT_EQ("main.c\nstartup.c", value);
    EXPECT_EQ(S_OK, read(P::boGet, "main.c", "defines", value));
    EXPECT_EQ("EXTRA=1", value);
    char empty[1] = "";
    ASSERT_EQ(S_OK, project->BuildOption(P::boRemove, "main.c", "defines", empty, 0));
    EXPECT_EQ(S_OK, read(P::boGet, "main.c", "defines", value));
    EXPECT_EQ("", value);
}

TEST_F(ProjectAdapterTest, WithoutBuildSectionTheConfigurationIsInvalid)
{
    start("");
    std::string value;
    EXPECT_EQ(ORBEL_E_ERROR, read(P::boGet, "", "sources", value));
    ASSERT_EQ(S_OK, project->ProjectCommand(P::pcBuild | P::pcFlag, nullptr, nullptr));
    EXPECT_TRUE(status().isConfigError());
    EXPECT_EQ(std::make_pair(ORBEL_S_WARNING, std::string("the workspace has no build section\n")), lastError());
}

} // namespace
} // namespace quillon::com::test
