// Test runs on the test service firmware through liborbel.so: one trivial test through CTestCase::runTest in this
// process, and a file of a thousand such tests through the command-line runner under mono.

#include <benchmark/benchmark.h>

#include <fcntl.h>
#include <spawn.h>
#include <stdlib.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <memory>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "CTestCase.h"
#include "CTestEnvironmentConfig.h"
#include "CTestSpecification.h"
#include "ConnectionMgr.h"
#include "IException.h"

extern char** environ;

using namespace kestrix;
namespace fs = std::filesystem;

namespace {

const std::string BUILD_DIR = ORBEL_BUILD_DIR;
const std::string FIRMWARE = std::string(FIRMWARE_DIR) + "/testsvc.elf";
const char* const TRIVIAL_TEST = "func: [add, [2, 3], rv]\n"
                                 "expect:\n"
                                 "- rv == 5\n";

/// A fresh folder under the system's temporary folder with a workspace of the test service firmware; removed with
/// its contents at the end.
class BenchFolder {
public:
    BenchFolder()
    {
        std::string pattern = (fs::temp_directory_path() / "testrunbench-XXXXXX").string();
        if (mkdtemp(pattern.data()) == nullptr) {
            throw std::runtime_error("cannot make a temporary folder from " + pattern);
        }
        folder = pattern;
        std::ofstream(workspace()) << "target:\n"
                                      "  cpu: cortex-m3\n"
                                      "  memory:\n"
                                      "    - name: flash\n"
                                      "      start: 0x00000000\n"
                                      "      size: 0x40000\n"
                                      "      access: rx\n"
                                      "    - name: sram\n"
                                      "      start: 0x20000000\n"
                                      "      size: 0x10000\n"
                                      "download:\n"
                                      "  - file: "
                                   << FIRMWARE << "\n";
    }
    BenchFolder(const BenchFolder&) = delete;
    BenchFolder& operator=(const BenchFolder&) = delete;
    ~BenchFolder()
    {
        std::error_code ignored;
        fs::remove_all(folder, ignored);
    }

    fs::path path(const std::string& name) const { return folder / name; }
    fs::path workspace() const { return path("workspace.yaml"); }

private:
    fs::path folder;
};

/// Why the benchmarks cannot run here; empty when they can.
std::string missingPrerequisite()
{
    for (const std::string& file : {BUILD_DIR + "/liborbel.so", FIRMWARE}) {
        if (!fs::exists(file)) {
            return file + " is not built";
        }
    }
    return "";
}

/// A connection to the workspace's Quillon with the target downloaded, reset and stopped in main.
struct PreparedTarget {
    PreparedTarget()
    {
        error = missingPrerequisite();
        if (!error.empty()) {
            return;
        }
        setenv("ORBEL_PATH", (BUILD_DIR + "/").c_str(), 1);
        unsetenv("ORBEL_SHAREDMEM_PID");
        unsetenv("ORBEL_TCP_PORT");
        try {
            folder = std::make_unique<BenchFolder>();
            CTestEnvironmentConfig config;
            config.setWorkspace(folder->workspace().string());
            config.setDownloadOnInit(true);
            config.setResetOnInit(true);
            config.setRunOnInit(true);
            config.setStopFunction("main");
            mgr = std::make_shared<ConnectionMgr>();
            testCase = std::make_unique<CTestCase>(mgr);
            testCase->initEnvironment(config, true);
            spec = CTestSpecification::parseTestSpec(TRIVIAL_TEST);
        } catch (const IException& e) {
            error = "cannot prepare the target: " + e.getDesc();
        } catch (const std::exception& e) {
            error = e.what();
        }
    }

    std::unique_ptr<BenchFolder> folder;
    std::shared_ptr<ConnectionMgr> mgr;
    std::unique_ptr<CTestCase> testCase;
    std::shared_ptr<CTestSpecification> spec;
    std::string error;
};

void BM_TrivialTestRun(benchmark::State& state)
{
    static PreparedTarget target;
    if (!target.error.empty()) {
        state.SkipWithError(target.error.c_str());
        return;
    }
    static std::string failure;
    for (auto _ : state) {
        StrVector results;
        try {
            target.testCase->runTest(target.spec, results);
        } catch (const IException& e) {
            failure = "the test run failed: " + e.getDesc();
            state.SkipWithError(failure.c_str());
            break;
        }
        if (results.size() != 1 || !results[0].empty()) {
            failure = "the expected expression did not hold: " +
                      (results.empty() ? std::string("no result") : results[0]);
            state.SkipWithError(failure.c_str());
            break;
        }
    }
}
BENCHMARK(BM_TrivialTestRun)->Unit(benchmark::kMicrosecond)->UseRealTime();

/// A test file on the workspace with `count` trivial tests.
std::string testFile(const fs::path& workspace, int count)
{
    std::ostringstream text;
    text << "env:\n"
            "  workspace: "
         << workspace.string()
         << "\n"
            "  downloadOnInit: true\n"
            "  resetOnInit: true\n"
            "  runOnInit: true\n"
            "  stopFunction: main\n"
            "tests:\n";
    for (int i = 1; i <= count; ++i) {
        text << "- id: add-" << i << "\n"
             << "  func: [add, [2, 3], rv]\n"
                "  expect: [rv == 5]\n";
    }
    return text.str();
}

/// This process's environment without the variables `removed` and with those of `settings` ("NAME=value").
std::vector<std::string> environmentWith(const std::vector<std::string>& settings, std::vector<std::string> removed)
{
    for (const std::string& setting : settings) {
        removed.push_back(setting.substr(0, setting.find('=')));
    }
    std::vector<std::string> environment;
    for (char** variable = environ; *variable != nullptr; ++variable) {
        const std::string entry = *variable;
        const std::string name = entry.substr(0, entry.find('='));
        if (std::find(removed.begin(), removed.end(), name) == removed.end()) {
            environment.push_back(entry);
        }
    }
    environment.insert(environment.end(), settings.begin(), settings.end());
    return environment;
}

std::vector<char*> pointersOf(std::vector<std::string>& texts)
{
    std::vector<char*> pointers;
    for (std::string& text : texts) {
        pointers.push_back(text.data());
    }
    pointers.push_back(nullptr);
    return pointers;
}

/// Runs `arguments` (found on PATH) with `environment`, its output into `logFile`; gives the exit status, or a
/// text in `error` when it could not start or did not exit.
int runProcess(std::vector<std::string> arguments, std::vector<std::string> environment, const fs::path& logFile,
               std::string& error)
{
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, logFile.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
    posix_spawn_file_actions_adddup2(&actions, STDOUT_FILENO, STDERR_FILENO);
    const std::vector<char*> argv = pointersOf(arguments);
    const std::vector<char*> envp = pointersOf(environment);
    pid_t pid = 0;
    const int spawned = posix_spawnp(&pid, argv[0], &actions, nullptr, argv.data(), envp.data());
    posix_spawn_file_actions_destroy(&actions);
    if (spawned != 0) {
        error = "cannot start " + arguments[0] + ": " + std::strerror(spawned);
        return -1;
    }
    int status = 0;
    if (waitpid(pid, &status, 0) != pid || !WIFEXITED(status)) {
        error = arguments[0] + " did not exit normally";
        return -1;
    }
    return WEXITSTATUS(status);
}

/// The last lines of a file, for a message.
std::string tailOf(const fs::path& file, size_t lines)
{
    std::ifstream in(file);
    std::vector<std::string> kept;
    for (std::string line; std::getline(in, line);) {
        kept.push_back(line);
        if (kept.size() > lines) {
            kept.erase(kept.begin());
        }
    }
    std::string text;
    for (const std::string& line : kept) {
        text += "\n" + line;
    }
    return text;
}

void BM_ThousandTestFile(benchmark::State& state)
{
    static std::string failure = missingPrerequisite();
    const std::string runner = BUILD_DIR + "/OrbelRun.exe";
    if (failure.empty() && !fs::exists(runner)) {
        failure = runner + " is not built";
    }
    if (!failure.empty()) {
        state.SkipWithError(failure.c_str());
        return;
    }
    std::unique_ptr<BenchFolder> folder;
    try {
        folder = std::make_unique<BenchFolder>();
    } catch (const std::exception& e) {
        failure = e.what();
        state.SkipWithError(failure.c_str());
        return;
    }
    const fs::path file = folder->path("thousand.yaml");
    std::ofstream(file) << testFile(folder->workspace(), 1000);
    const fs::path log = folder->path("run.log");
    // A fresh Quillon for the runner: no instance to attach to.
    const std::vector<std::string> environment =
        environmentWith({"ORBEL_PATH=" + BUILD_DIR + "/", "LD_LIBRARY_PATH=" + BUILD_DIR},
                        {"ORBEL_SHAREDMEM_PID", "ORBEL_TCP_PORT"});
    for (auto _ : state) {
        std::string error;
        const int status = runProcess({"mono", runner, file.string()}, environment, log, error);
        if (status != 0) {
            failure = error.empty() ? "OrbelRun exited with " + std::to_string(status) + ":" + tailOf(log, 8) : error;
            state.SkipWithError(failure.c_str());
            break;
        }
    }
}
BENCHMARK(BM_ThousandTestFile)->Unit(benchmark::kMillisecond)->UseRealTime()->Iterations(1);

} // namespace

BENCHMARK_MAIN();
