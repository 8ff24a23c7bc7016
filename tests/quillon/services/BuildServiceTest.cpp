// The build manager on generated C sources: what make recompiles, what the diagnostics count, configuration
// errors, custom operations and stop.
#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "services/BuildError.h"
#include "services/BuildService.h"

namespace quillon::services {
namespace {

namespace fs = std::filesystem;
using State = BuildService::State;

/// A folder with a small firmware: two sources, a header that one of them includes, a linker script.
class BuildServiceTest : public ::testing::Test {
protected:
    BuildServiceTest()
    {
        std::string pattern = (fs::temp_directory_path() / "quillon-build-XXXXXX").string();
        if (!mkdtemp(pattern.data())) {
            throw std::runtime_error("cannot create a temporary folder");
        }
        folder = pattern;
        write("include/config.h", "#define LIMIT 3\n");
        write("main.c", "#include \"config.h\"\nint limit(void);\nint main(void) { return limit() + LIMIT; }\n");
        write("limit.c", "int limit(void) { return 42; }\n");
        write("firmware.ld", "ENTRY(main)\nSECTIONS { . = 0x0; .text : { *(.text*) } .data : { *(.data*) } }\n");
        settings.sources = {"main.c", "limit.c"};
        settings.includes = {"include"};
        settings.flags = {"-mcpu=cortex-m3", "-mthumb", "-O1", "-g"};
        settings.linkFlags = {"-nostdlib", "-nostartfiles"};
        settings.linkerScript = "firmware.ld";
        settings.output = "build/firmware.elf";
    }
    ~BuildServiceTest() override
    {
        std::error_code ignored;
        fs::remove_all(folder, ignored);
    }

    void write(const std::string& name, const std::string& text) const
    {
        fs::create_directories((folder / name).parent_path());
        std::ofstream(folder / name, std::ios::binary) << text;
    }
    fs::file_time_type timeOf(const std::string& name) const { return fs::last_write_time(folder / name); }
    /// Dates every file back, the built ones after the rest, and `changed` (if any) after the built ones.
    void changeOnly(const char* changed) const
    {
        const auto past = fs::file_time_type::clock::now() - std::chrono::minutes(10);
        for (const auto& entry : fs::recursive_directory_iterator(folder)) {
            if (entry.is_regular_file()) {
                const bool built = entry.path().string().find("/build/") != std::string::npos;
                fs::last_write_time(entry.path(), past + std::chrono::seconds(built ? 10 : 0));
            }
        }
        if (changed) {
            fs::last_write_time(folder / changed, past + std::chrono::seconds(20));
        }
    }

    /// Runs `command` on a service of the settings and waits for it.
    BuildService::Status run(BuildService& service, void (BuildService::*command)())
    {
        (service.*command)();
        service.wait();
        return service.status();
    }

    fs::path folder;
    BuildSettings settings;
};

TEST_F(BuildServiceTest, BuildMakesObjectsBesideTheOutputAndTheElf)
{
    BuildService service(folder, settings);
    const auto status = run(service, &BuildService::build);
    EXPECT_EQ(State::Idle, status.state) << service.diagnostics();
    EXPECT_EQ(0u, status.errors);
    for (const char* file : {"build/obj/main.o", "build/obj/main.d", "build/obj/limit.o", "build/firmware.elf"}) {
        EXPECT_TRUE(fs::exists(folder / file)) << file;
    }
}

TEST_F(BuildServiceTest, MakeRecompilesOnlyWhatChanged)
{
    BuildService service(folder, settings);
    ASSERT_EQ(State::Idle, run(service, &BuildService::build).state) << service.diagnostics();
    struct Step {
        const char* changed; ///< touched before the make; null for none
        bool mainCompiled, limitCompiled, linked;
    };
    const Step steps[] = {
        {nullptr, false, false, false},
        {"limit.c", false, true, true},
        {"include/config.h", true, false, true}, // named in main's dependency file only
        {"firmware.ld", false, false, true},
    };
    for (const Step& step : steps) {
        SCOPED_TRACE(step.changed ? step.changed : "nothing");
        changeOnly(step.changed);
        const auto main = timeOf("build/obj/main.o");
        const auto limit = timeOf("build/obj/limit.o");
        const auto elf = timeOf("build/firmware.elf");
        ASSERT_EQ(State::Idle, run(service, &BuildService::make).state) << service.diagnostics();
        EXPECT_EQ(step.mainCompiled, timeOf("build/obj/main.o") != main);
        EXPECT_EQ(step.limitCompiled, timeOf("build/obj/limit.o") != limit);
        EXPECT_EQ(step.linked, timeOf("build/firmware.elf") != elf);
    }
    // A missing object is made again, and the link follows.
    changeOnly(nullptr);
    fs::remove(folder / "build/obj/limit.o");
    const auto main = timeOf("build/obj/main.o");
    ASSERT_EQ(State::Idle, run(service, &BuildService::make).state);
    EXPECT_TRUE(fs::exists(folder / "build/obj/limit.o"));
    EXPECT_EQ(main, timeOf("build/obj/main.o"));
}

TEST_F(BuildServiceTest, DiagnosticsAreCountedAndKept)
{
    struct Case {
        const char* name;
        const char* limitSource;
        State state;
        unsigned errors, warnings;
        const char* inText;
    };
    const Case cases[] = {
        {"syntax error", "int limit(void) { return 42 }\n", State::IdleWithErrors, 1, 0, "limit.c:1:"},
        {"warning", "int limit(void) { int unused; return 42; }\n", State::Idle, 0, 1, "unused"},
        {"two warnings", "int limit(void) { int a; int b; return 42; }\n", State::Idle, 0, 2, "warning:"},
        {"undefined reference", "int other(void);\nint limit(void) { return other(); }\n", State::IdleWithErrors, 1,
         0, "undefined reference to `other'"},
    };
    settings.flags.push_back("-Wall");
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        write("limit.c", c.limitSource);
        BuildService service(folder, settings);
        const auto status = run(service, &BuildService::build);
        EXPECT_EQ(c.state, status.state) << service.diagnostics();
        EXPECT_EQ(c.errors, status.errors) << service.diagnostics();
        EXPECT_EQ(c.warnings, status.warnings) << service.diagnostics();
        EXPECT_NE(std::string::npos, service.diagnostics().find(c.inText)) << service.diagnostics();
    }
}

TEST_F(BuildServiceTest, ConfigurationErrorsNameTheirCause)
{
    struct Case {
        const char* name;
        std::function<void(BuildSettings&)> change;
        const char* inText;
    };
    const std::vector<Case> cases = {
        {"missing toolchain", [](BuildSettings& s) { s.toolchain = "no-such-gcc"; }, "toolchain 'no-such-gcc' not found"},
        {"missing source", [](BuildSettings& s) { s.sources.push_back("gone.c"); }, "source 'gone.c' not found"},
        {"no sources", [](BuildSettings& s) { s.sources.clear(); }, "no sources"},
        {"no output", [](BuildSettings& s) { s.output.clear(); }, "no output"},
        {"missing linker script", [](BuildSettings& s) { s.linkerScript = "gone.ld"; }, "linker script 'gone.ld' not found"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        BuildSettings changed = settings;
        c.change(changed);
        BuildService service(folder, changed);
        EXPECT_EQ(State::ConfigError, run(service, &BuildService::build).state);
        EXPECT_NE(std::string::npos, service.diagnostics().find(c.inText)) << service.diagnostics();
        EXPECT_FALSE(fs::exists(folder / "build/firmware.elf"));
    }
    BuildService none(folder, std::nullopt);
    EXPECT_EQ(State::ConfigError, run(none, &BuildService::make).state);
    EXPECT_EQ("the workspace has no build section\n", none.diagnostics());
}

TEST_F(BuildServiceTest, CompileAndDependenciesWorkOnSingleSteps)
{
    BuildService service(folder, settings);
    service.dependencies();
    service.wait();
    EXPECT_EQ(State::Idle, service.status().state) << service.diagnostics();
    std::ifstream deps(folder / "build/obj/main.d");
    const std::string text((std::istreambuf_iterator<char>(deps)), std::istreambuf_iterator<char>());
    EXPECT_NE(std::string::npos, text.find("include/config.h")) << text;
    EXPECT_FALSE(fs::exists(folder / "build/obj/main.o"));

    service.compile("./limit.c"); // the same file written differently
    service.wait();
    EXPECT_EQ(State::Idle, service.status().state) << service.diagnostics();
    EXPECT_TRUE(fs::exists(folder / "build/obj/limit.o"));
    EXPECT_FALSE(fs::exists(folder / "build/obj/main.o"));

    try {
        service.compile("other.c");
        FAIL() << "a file that is no source was compiled";
    } catch (const BuildError& error) {
        EXPECT_EQ(BuildError::Kind::FileNotFound, error.kind());
    }
    // The link misses the object that was never compiled.
    EXPECT_EQ(State::IdleWithErrors, run(service, &BuildService::link).state);
}

TEST_F(BuildServiceTest, CustomOperationsRunInTheFolderAndStopEndsThem)
{
    settings.custom = {{"list", "ls"}, {"wait", "sleep 30"}, {"fail", "echo 'oops: error: bad' >&2; exit 3"}};
    BuildService service(folder, settings);
    service.custom("list", "-1 include");
    service.wait();
    EXPECT_EQ(State::Idle, service.status().state);
    EXPECT_EQ("config.h\n", service.diagnostics());

    service.custom("fail", "");
    service.wait();
    EXPECT_EQ(State::IdleWithErrors, service.status().state);
    EXPECT_EQ(1u, service.status().errors) << "the tool's error line, not also its exit code";

    const auto start = std::chrono::steady_clock::now();
    service.custom("wait", "");
    EXPECT_EQ(State::Active, service.status().state);
    try {
        service.build();
        FAIL() << "a second job started while one is active";
    } catch (const BuildError& error) {
        EXPECT_EQ(BuildError::Kind::BadConfiguration, error.kind());
    }
    service.stop();
    service.wait();
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(10));
    EXPECT_EQ(State::IdleWithErrors, service.status().state);
    EXPECT_NE(std::string::npos, service.diagnostics().find("build stopped"));

    try {
        service.custom("nothing", "");
        FAIL() << "an unknown custom operation ran";
    } catch (const BuildError& error) {
        EXPECT_EQ(BuildError::Kind::BadOption, error.kind());
    }
}

} // namespace
} // namespace quillon::services
