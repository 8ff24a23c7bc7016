#include <gtest/gtest.h>

#include <string>

#include "CTestEnvironmentConfig.h"
#include "SectionTestSupport.h"
#include "YamlTestSupport.h"

using namespace kestrix;
using namespace kestrix_test;

namespace {

struct EnvHost : public KeyHost<CTestEnvironmentConfig> {
    EnvHost() : KeyHost<CTestEnvironmentConfig>("env") {}
};

const char* const FULL_ENV = "env:\n"
                             "  workspace: \"project/demo.ws\"\n"
                             "  address: 10.0.0.1\n"
                             "  port: 5000\n"
                             "  autoConnect: true\n"
                             "  initBeforeRun: yes\n"
                             "  downloadOnInit: false\n"
                             "  resetOnInit: 1\n"
                             "  runOnInit: 0\n"
                             "  stopFunction: main\n"
                             "  deleteBreakpointsOnInit: no\n"
                             "  scriptModules: [mod1, 'mod 2']\n"
                             "  scriptPath: scripts\n"
                             "  defaultRetValName: rv\n";

} // namespace

TEST(CTestEnvironmentConfig, ReadsAllKeysAndWritesThemBackAlike)
{
    EnvHost host;
    CYAMLUtil::parseYAML(host, FULL_ENV);
    const CTestEnvironmentConfig& env = host.section;
    // Texts are written back from the fields, so the round trip also checks where each key is kept.
    EXPECT_EQ(FULL_ENV, toYaml(host));
    EXPECT_EQ(5000, env.getPort());
    EXPECT_TRUE(env.isAutoConnectToQuillon() && env.isAlwaysRunInitSeqBeforeRun() && env.isResetOnInit());
    EXPECT_FALSE(env.idDownloadOnInit() || env.isRunOnInit() || env.isDeleteAllBPsOnInit());
    StrVector modules;
    env.getScriptModules(modules);
    EXPECT_EQ((StrVector{"mod1", "mod 2"}), modules);
}

TEST(CTestEnvironmentConfig, WritesKeysInFixedOrderAndToStringWithoutKey)
{
    EnvHost host;
    CYAMLUtil::parseYAML(host, "env: &e {defaultRetValName: rv, port: 1, workspace: w}");
    EXPECT_EQ("env: &e {workspace: w, port: 1, defaultRetValName: rv}\n", toYaml(host));
    EXPECT_EQ("&e {workspace: w, port: 1, defaultRetValName: rv}\n", host.section.toString());
}

TEST(CTestEnvironmentConfig, WhatCountsAsEmpty)
{
    CTestEnvironmentConfig env;
    env.setLoggingParameters("[a, b]");
    EXPECT_TRUE(env.isEmpty()) << "logging parameters do not count";
    EXPECT_EQ("{}\n", env.toString()) << "logging parameters are not written";

    env.setAutoConnectToQuillon(false);
    EXPECT_FALSE(env.isEmpty()) << "false is a value";
    EXPECT_EQ("autoConnect: false\n", env.toString());

    CTestEnvironmentConfig cleared;
    cleared.setPort(5000);
    cleared.setPort(0);
    EXPECT_TRUE(cleared.isEmpty()) << "port 0 removes the key";
    cleared.setResetOnInit(true);
    cleared.setDeleteAllBPsOnInit(true);
    cleared.clearResetOnInit();
    cleared.clearDeleteAllBPsOnInit();
    EXPECT_FALSE(cleared.isResetOnInit() || cleared.isDeleteAllBPsOnInit());
    EXPECT_EQ("{}\n", cleared.toString());
}

TEST(CTestEnvironmentConfig, PortIsReadAsTextAndConvertedWhenAskedFor)
{
    EnvHost host;
    CYAMLUtil::parseYAML(host, "env: {port: abc}");
    EXPECT_EQ("Integer expected: abc\n", failureOf<IllegalArgumentException>([&] { host.section.getPort(); }));
}

TEST(CTestEnvironmentConfig, TextAndListSetters)
{
    CTestEnvironmentConfig env;
    env.setWorkspace("'my ws.xjrf'");
    env.setAddress("host");
    env.setStopFunction("main");
    env.setScriptPath("p");
    env.setDefaultReturnValueName("rv");
    env.setAlwaysRunInitSeqBeforeRun(true);
    env.setScriptModules("[a, \"b\"]");
    EXPECT_EQ("workspace: 'my ws.xjrf'\naddress: host\ninitBeforeRun: true\nstopFunction: main\nscriptModules:\n"
              "- a\n- \"b\"\nscriptPath: p\ndefaultRetValName: rv\n",
              env.toString());

    EXPECT_THROW(env.setWorkspace("a, b"), ParserException);
    EXPECT_THROW(env.setScriptModules("[a, [b]]"), ParserException);
    StrVector modules;
    env.getScriptModules(modules);
    EXPECT_EQ((StrVector{"a", "\"b\""}), modules) << "expression texts keep double quotes";
    EXPECT_EQ("my ws.xjrf", env.getWorkspace()) << "a refused text changes nothing";

    // The list setter keeps the style of the file.
    EnvHost host;
    CYAMLUtil::parseYAML(host, "env:\n  scriptModules: &m [a, b]\n");
    host.section.setScriptModules("- c\n- d\n");
    EXPECT_EQ("env:\n  scriptModules: &m [c, d]\n", toYaml(host));
}

TEST(CTestEnvironmentConfig, RefusalsNameTheFaultAndItsPlace)
{
    expectRefusals<EnvHost>(
        {
            {"env: {workspace: a, workspace: b}", "Data already defined in this specification: workspace",
             "[Line: 1  Col: 32]"},
            {"env:\n  autoConnect: false\n  autoConnect: true\n", "Data already defined in this specification: autoConnect",
             "[Line: 4  Col: 0]"},
            {"env:\n  scriptModules: [a]\n  scriptModules: [b]\n", "Script modules are already defined!", "[Line: 3  Col: 16]"},
            {"env:\n  scriptModules: x\n", "Section modules must contain list, not scalar. Use '[' and ']'!", "[Line: 3  Col: 0]"},
            {"env:\n  scriptModules: [a, [b]]\n", "Nested sequences are not allowed!", "[Line: 2  Col: 25]"},
            {"env: {other: 1}", "Unknown tag in the main section of 'config': other", "[Line: 1  Col: 14]"},
            {"env: {other: {a: 1}}", "No mappings allowed in the main section!", "[Line: 1  Col: 14]"},
            {"env: {workspace: [a]}", "Sequence not allowed in 'config' section!", "[Line: 1  Col: 18]"},
            // A second block for the same section.
            {"env: {port: 1}\nenv: {address: a}\n", "No mappings allowed in the main section!", "[Line: 2  Col: 6]"},
            {"env: {runOnInit: on}",
             "Invalid value of bool item. Should be one of 'true', 'false', 'yes', 'no', '1', or '0', but it is: on",
             "[Line: 1  Col: 19]"},
        });

    EnvHost emptyFirst;
    CYAMLUtil::parseYAML(emptyFirst, "env:\n  workspace: ''\n  workspace: b\n  scriptModules: []\n  scriptModules: [c]\n");
    EXPECT_EQ("b", emptyFirst.section.getWorkspace()) << "an empty first value may be replaced";
    StrVector modules;
    emptyFirst.section.getScriptModules(modules);
    EXPECT_EQ(StrVector{"c"}, modules);
}

TEST(CTestEnvironmentConfig, RefusesEventsOutsideItsMapping)
{
    CTestEnvironmentConfig env(nullptr);
    ParsedEvents events("[x]");
    const yaml_event_t& scalar = events.get(YAML_SCALAR_EVENT);
    EXPECT_EQ("Invalid section type for mapping. Key: 'x':   Section: 0\n",
              failureOf<ParserException>([&] { env.mappingKey(scalar); }));
    EXPECT_EQ("Sequence scalar not allowed in 'config' section: x\n",
              failureOf<ParserException>([&] { env.sequenceValue(scalar); }));
    EXPECT_EQ("Sequence not allowed in 'config' section!\n",
              failureOf<ParserException>([&] { env.sequenceEnd(); }));
}
