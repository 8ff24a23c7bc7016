#include <gtest/gtest.h>

#include <filesystem>
#include <stdexcept>
#include <string>
#include <tuple>
#include <vector>

#include "ComFixture.h"
#include "OrbelFlags.h"

namespace quillon::com::test {
namespace {

using namespace kestrix;

using OrbelLaunchTest = ComFixture;

using Listing = std::vector<std::tuple<std::string, std::string, WORD>>;

void collect(void* context, const SInstanceEnumInfo* info)
{
    static_cast<Listing*>(context)->emplace_back(info->m_pszInstanceId, info->m_pszWorkspace, info->m_wTcpPort);
}

TEST_F(OrbelLaunchTest, ModesStartFindOrBoth)
{
    const std::string a = workspaceFile("a/ws.yaml");
    const std::string b = workspaceFile("b/ws.yaml");
    const std::string aWrittenOtherwise = (dir.path() / "b" / ".." / "a" / "ws.yaml").string();
    struct Step {
        DWORD flags;
        std::string workspace;
        const char* id;
        HRESULT result;
        WORD port;
        std::size_t instances; // afterwards
    };
    const Step steps[] = {
        {OrbelFlags::lfFindExisting, a, nullptr, E_FAIL, 0, 0},
        {OrbelFlags::lfStartNew, a, nullptr, S_OK, kBasePort, 1},
        {OrbelFlags::lfStartNew, a, nullptr, S_OK, kBasePort + 1, 2},      // mode 2 always starts
        {OrbelFlags::lfFindExisting, aWrittenOtherwise, nullptr, S_OK, kBasePort, 2},
        {OrbelFlags::lfFindOrStart, a, nullptr, S_OK, kBasePort, 2},
        {OrbelFlags::lfFindOrStart, b, nullptr, S_OK, kBasePort + 2, 3},
        {OrbelFlags::lfFindExisting, "", "quillon-2", S_OK, kBasePort + 1, 3}, // the id wins
        {OrbelFlags::lfFindExisting, b, "quillon-9", E_FAIL, 0, 3},
        {OrbelFlags::lfStartNew, "", "quillon-2", ORBEL_E_ALREADY_EXISTS, 0, 3},
        {OrbelFlags::lfStartNew, "", "mine", S_OK, kBasePort + 3, 4},    // the default workspace
        {OrbelFlags::lfFindExisting, "", nullptr, S_OK, kBasePort, 4},    // any: the first started
        // Wait time, discovery and visibility bits change nothing in-process.
        {0x181, b, nullptr, S_OK, kBasePort + 2, 4},
        {OrbelFlags::lfFindExisting | 0x3F0, a, nullptr, S_OK, kBasePort, 4},
    };
    for (const Step& step : steps) {
        SCOPED_TRACE(::testing::Message() << "flags 0x" << std::hex << step.flags << " " << step.workspace << " "
                                          << (step.id ? step.id : ""));
        WORD port = 0;
        EXPECT_EQ(step.result, launch(step.flags, step.workspace, &port, step.id));
        EXPECT_EQ(step.result == S_OK ? step.port : 0, port) << "the port is given on success only";
        EXPECT_EQ(step.instances, registry.instances().size());
        EXPECT_EQ(step.result == S_OK ? S_OK : ORBEL_S_MSG_FAIL, lastError().first);
    }
}

TEST_F(OrbelLaunchTest, LaunchGivesNoProcessId)
{
    SLaunchInfo info;
    const std::string ws = workspaceFile("ws.yaml");
    info.m_pszWorkspace = ws.c_str();
    info.m_dwProcessId = 77;
    ASSERT_EQ(S_OK, orbel->Launch(0x181, &info));
    EXPECT_EQ(0u, info.m_dwProcessId) << "instances are reached over TCP";
    EXPECT_EQ(kBasePort, info.m_wTcpPort);
}

TEST_F(OrbelLaunchTest, BadFlagsAndArgumentsAreRefusedWithTheirReason)
{
    struct Case {
        DWORD flags;
        HRESULT result;
        const char* message;
    };
    const Case cases[] = {
        {0x0, E_INVALIDARG, "Orbel::Launch: unknown launch mode 0 (1 to 4)"},
        {0x5, E_INVALIDARG, "Orbel::Launch: unknown launch mode 5 (1 to 4)"},
        {0x18F, E_INVALIDARG, "Orbel::Launch: unknown launch mode 15 (1 to 4)"},
        {0x401, E_INVALIDARG, "Orbel::Launch: unknown flag bits 0x400"},
        {0x80000003, E_INVALIDARG, "Orbel::Launch: unknown flag bits 0x80000000"},
        {0x4, ORBEL_E_BAD_ID, "Orbel::Launch: enumeration needs m_pfnInstanceEnumerator"},
        {0x84, ORBEL_E_BAD_ID, "Orbel::Launch: enumeration needs m_pfnInstanceEnumerator"},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(c.result, launch(c.flags, ""));
        EXPECT_EQ(std::make_pair(ORBEL_S_MSG_FAIL, std::string(c.message)), lastError());
    }
    EXPECT_TRUE(registry.instances().empty());
    EXPECT_EQ(E_INVALIDARG, orbel->Launch(OrbelFlags::lfStartNew, nullptr));
    EXPECT_EQ(std::make_pair(ORBEL_S_MSG_FAIL, std::string("Orbel::Launch: no SLaunchInfo given")), lastError());
}

TEST_F(OrbelLaunchTest, EnumerationCallsBackOncePerInstance)
{
    const std::string ws = workspaceFile("ws.yaml");
    ASSERT_EQ(S_OK, launch(OrbelFlags::lfStartNew, ws));
    ASSERT_EQ(S_OK, launch(OrbelFlags::lfStartNew, "", nullptr, "plain"));

    Listing listing;
    SLaunchInfo info;
    info.m_pfnInstanceEnumerator = &collect;
    info.m_pContext = &listing;
    info.m_pszWorkspace = "ignored.yaml";
    ASSERT_EQ(S_OK, orbel->Launch(OrbelFlags::lfEnumerate | OrbelFlags::lfIPCDiscovery, &info));
    const Listing expected = {
        {"quillon-1", std::filesystem::canonical(ws).string(), kBasePort},
        {"plain", "", WORD(kBasePort + 1)},
    };
    EXPECT_EQ(expected, listing);
    EXPECT_EQ(0, info.m_wTcpPort) << "enumeration yields no port";
}

TEST_F(OrbelLaunchTest, AnExceptionOfTheEnumeratorStopsAtTheInterface)
{
    ASSERT_EQ(S_OK, launch(OrbelFlags::lfStartNew, ""));
    SLaunchInfo info;
    info.m_pfnInstanceEnumerator = [](void*, const SInstanceEnumInfo*) { throw std::runtime_error("callback broke"); };
    EXPECT_EQ(E_FAIL, orbel->Launch(OrbelFlags::lfEnumerate, &info));
    EXPECT_EQ(std::make_pair(ORBEL_S_MSG_FAIL, std::string("Orbel::Launch: callback broke")), lastError());
}

TEST_F(OrbelLaunchTest, UnusableWorkspacesStartNothingAndNameTheirProblem)
{
    struct Case {
        const char* file;
        const char* text;
        const char* problem; // behind "<file>:"
    };
    const Case cases[] = {
        {"yaml.yaml", "target:\n  cpu: [cortex-m3\n", "3: YAML error: "},
        {"key.yaml", "target:\n  colour: blue\n", "2: unknown key 'colour' in 'target'"},
        {"number.yaml", "target:\n  clock: fast\n", "2: bad number 'fast' for 'target.clock' (decimal or 0x hex)"},
        {"page.yaml", "target:\n  memory:\n    - {name: ram, start: 0x20000010, size: 0x400}\n",
         "3: 'target.memory[0].start' must be a multiple of 0x400, not 0x20000010"},
        {"overlap.yaml",
         "target:\n  memory:\n    - {name: a, start: 0, size: 0x1000}\n    - {name: b, start: 0x800, size: 0x1000}\n",
         "4: memory area 'b' in 'target.memory[1]' overlaps 'a' (line 3)"},
        {"download.yaml", "download:\n  - file: none.elf\n",
         "2: download file '@/none.elf' in 'download[0].file' cannot be used: cannot open '@/none.elf': No such "
         "file or directory"},
    };
    for (DWORD mode : {OrbelFlags::lfStartNew, OrbelFlags::lfFindOrStart}) {
        for (const Case& c : cases) {
            SCOPED_TRACE(c.file);
            const std::string path = workspaceFile(c.file, c.text);
            EXPECT_EQ(E_FAIL, launch(mode, path));
            std::string expected = path + ":" + c.problem;
            for (std::size_t at; (at = expected.find('@')) != std::string::npos;) {
                expected.replace(at, 1, dir.path().string());
            }
            const auto [code, text] = lastError();
            EXPECT_EQ(ORBEL_S_MSG_FAIL, code);
            EXPECT_EQ(expected, text.substr(0, expected.size()));
        }
    }
    const std::string missing = (dir.path() / "missing.yaml").string();
    EXPECT_EQ(E_FAIL, launch(OrbelFlags::lfStartNew, missing));
    EXPECT_EQ(std::make_pair(ORBEL_S_MSG_FAIL, missing + ": cannot read workspace file: No such file or directory"),
              lastError());
    EXPECT_TRUE(registry.instances().empty());
}

} // namespace
} // namespace quillon::com::test
