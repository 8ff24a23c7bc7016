// Build options by scope and name, the diagnostics counted in tool output, and dependency files.
#include <gtest/gtest.h>

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "services/BuildDiagnostics.h"
#include "services/BuildError.h"
#include "services/BuildOptions.h"
#include "services/DependencyFile.h"

namespace quillon::services {
namespace {

using Kind = BuildError::Kind;

BuildSettings project()
{
    BuildSettings settings;
    settings.sources = {"main.c", "src/uart.c", "adc.c"};
    settings.defines = {"NDEBUG", "BAUD=9600"};
    settings.flags = {"-O1"};
    settings.output = "build/fw.elf";
    return settings;
}

/// The kind of the BuildError that `action` throws; nullopt if none.
std::optional<Kind> failureOf(const std::function<void()>& action)
{
    try {
        action();
    } catch (const BuildError& error) {
        return error.kind();
    }
    return std::nullopt;
}

TEST(BuildOptions, ReadsListsAsLinesAndSingleValuesAsTheyAre)
{
    BuildSettings settings = project();
    BuildOptions options(settings);
    EXPECT_EQ("main.c\nsrc/uart.c\nadc.c", options.get("", "sources"));
    EXPECT_EQ("NDEBUG\nBAUD=9600", options.get("/", "defines"));
    EXPECT_EQ("arm-none-eabi-gcc", options.get("", "toolchain"));
    EXPECT_EQ("", options.get("", "linkerScript"));
    EXPECT_EQ("", options.get("main.c", "defines")) << "a source without settings of its own";
    EXPECT_EQ("src/uart.c", options.getAt("", "sources", 1));
    EXPECT_EQ(std::nullopt, options.getAt("", "sources", 3));
    EXPECT_EQ(std::nullopt, options.getAt("adc.c", "flags", 0));
}

TEST(BuildOptions, ChangesListsWholeByItemAndByPlace)
{
    BuildSettings settings = project();
    BuildOptions options(settings);
    options.set("", "includes", "include\n\nlib/inc\r\n");
    EXPECT_EQ((std::vector<std::string>{"include", "lib/inc"}), settings.includes) << "empty lines dropped";
    options.add("", "defines", "TRACE");
    EXPECT_EQ((std::vector<std::string>{"NDEBUG", "BAUD=9600", "TRACE"}), settings.defines);
    options.remove("", "defines", "NDEBUG");
    EXPECT_EQ((std::vector<std::string>{"BAUD=9600", "TRACE"}), settings.defines);
    options.move("", "sources", "2,0");
    EXPECT_EQ((std::vector<std::string>{"adc.c", "main.c", "src/uart.c"}), settings.sources);
    options.move("", "sources", "0,2");
    EXPECT_EQ((std::vector<std::string>{"main.c", "src/uart.c", "adc.c"}), settings.sources);
    options.remove("", "flags", "");
    EXPECT_TRUE(settings.flags.empty());
    options.set("", "toolchain", "/opt/gcc/bin/arm-none-eabi-gcc");
    options.remove("", "toolchain", "");
    EXPECT_EQ("arm-none-eabi-gcc", settings.toolchain) << "back to the default";
}

TEST(BuildOptions, SourceScopeAddsToTheSourceAlone)
{
    BuildSettings settings = project();
    BuildOptions options(settings);
    options.add("src/uart.c", "defines", "UART=1");
    options.set("src/uart.c", "flags", "-O0\n-g3");
    EXPECT_EQ("UART=1", options.get("src/uart.c", "defines"));
    EXPECT_EQ("-O0\n-g3", options.get("src/uart.c", "flags"));
    EXPECT_EQ("NDEBUG\nBAUD=9600", options.get("", "defines")) << "the project's are untouched";
    options.remove("src/uart.c", "defines", "");
    options.remove("src/uart.c", "flags", "");
    EXPECT_EQ(0u, settings.files.count("src/uart.c")) << "a source without settings keeps no entry";
    options.add("adc.c", "includes", "adc");
    options.remove("", "sources", "adc.c");
    EXPECT_EQ(0u, settings.files.count("adc.c")) << "settings of a source that is gone are dropped";
}

TEST(BuildOptions, RefusalsHaveTheirKind)
{
    BuildSettings settings = project();
    BuildOptions options(settings);
    const std::vector<std::pair<std::function<void()>, Kind>> cases = {
        {[&] { options.get("other.c", "defines"); }, Kind::BadScope},
        {[&] { options.set("uart.c", "defines", "X"); }, Kind::BadScope},
        {[&] { options.get("", "optimisation"); }, Kind::BadOption},
        {[&] { options.get("main.c", "colour"); }, Kind::BadOption},
        {[&] { options.get("main.c", "output"); }, Kind::NotAvailable},
        {[&] { options.set("main.c", "sources", "x.c"); }, Kind::NotAvailable},
        {[&] { options.getAt("", "output", 0); }, Kind::NotAvailable},
        {[&] { options.add("", "toolchain", "gcc"); }, Kind::NotAvailable},
        {[&] { options.move("", "linkerScript", "0,1"); }, Kind::NotAvailable},
        {[&] { options.remove("", "output", "a"); }, Kind::NotAvailable},
        {[&] { options.set("", "output", ""); }, Kind::BadOption},
        {[&] { options.set("", "toolchain", "a\nb"); }, Kind::BadOption},
        {[&] { options.add("", "defines", ""); }, Kind::BadOption},
        {[&] { options.add("", "defines", "A\nB"); }, Kind::BadOption},
        {[&] { options.remove("", "defines", "DEBUG"); }, Kind::BadOption},
        {[&] { options.move("", "sources", "3,0"); }, Kind::BadOption},
        {[&] { options.move("", "sources", "0"); }, Kind::BadOption},
        {[&] { options.move("", "sources", "0,x"); }, Kind::BadOption},
        {[&] { options.move("", "sources", ",1"); }, Kind::BadOption},
    };
    const BuildSettings before = settings;
    for (std::size_t i = 0; i < cases.size(); ++i) {
        SCOPED_TRACE(i);
        EXPECT_EQ(cases[i].second, failureOf(cases[i].first));
    }
    EXPECT_TRUE(before == settings) << "a refused change changes nothing";
    options.set("", "linkerScript", "");
    EXPECT_EQ("", settings.linkerScript) << "no linker script is a valid setting";
}

TEST(BuildDiagnostics, CountsGccAndLinkerLines)
{
    struct Case {
        const char* output;
        unsigned errors, warnings;
    };
    const Case cases[] = {
        {"main.c:3:5: error: expected ';' before '}' token\n", 1, 0},
        {"main.c: In function 'main':\nmain.c:2:9: warning: unused variable 'x' [-Wunused-variable]\n"
         "    2 |     int x;\n      |         ^\n",
         0, 1},
        {"inc.h:1:10: fatal error: missing.h: No such file or directory\ncompilation terminated.\n", 1, 0},
        {"ld: main.o: in function `main':\nmain.c:(.text+0x4): undefined reference to `limit'\n"
         "collect2: error: ld returned 1 exit status\n",
         1, 0},
        {"arm-none-eabi-gcc: error: nofile.c: No such file or directory\n", 1, 0},
        {"main.c:1:1: note: declared here\nerror-free.c compiled\n", 0, 0},
        {"a.c:1:1: warning: w1\na.c:2:1: error: e1\na.c:3:1: warning: w2", 1, 2},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.output);
        BuildDiagnostics diagnostics;
        diagnostics.addOutput(c.output);
        EXPECT_EQ(c.errors, diagnostics.errors());
        EXPECT_EQ(c.warnings, diagnostics.warnings());
        EXPECT_EQ('\n', diagnostics.text().back());
    }
    BuildDiagnostics notes;
    notes.addNote("tool failed", true);
    notes.addNote("stopped", false);
    EXPECT_EQ(1u, notes.errors());
    EXPECT_EQ("tool failed\nstopped\n", notes.text());
}

TEST(DependencyFile, ReadsThePrerequisitesOfTheFirstRule)
{
    struct Case {
        const char* text;
        std::vector<std::string> prerequisites;
    };
    const Case cases[] = {
        {"build/obj/main.o: main.c include/config.h\n", {"main.c", "include/config.h"}},
        {"main.o: main.c \\\n  a.h \\\n  b.h\n", {"main.c", "a.h", "b.h"}},
        {"main.o: my\\ file.c cost$$.h\n", {"my file.c", "cost$.h"}},
        {"main.o main.d: main.c\n\na.h:\n", {"main.c"}},
        {"main.o:\n", {}},
        {"", {}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.text);
        EXPECT_EQ(c.prerequisites, DependencyFile::parse(c.text));
    }
}

} // namespace
} // namespace quillon::services
