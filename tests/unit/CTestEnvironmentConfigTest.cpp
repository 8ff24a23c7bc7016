#include <gtest/gtest.h>

#include <string>

#include "CTestEnvironmentConfig.h"
#include "SectionHostSupport.h"
#include "YamlTestSupport.h"

using namespace kestrix;
using kestrix_test::parseFailure;
using kestrix_test::SectionHost;
using kestrix_test::yamlOf;

namespace {

class EnvHost : public SectionHost<CTestEnvironmentConfig> {
public:
    EnvHost() : SectionHost<CTestEnvironmentConfig>("env", true) {}
};

std::string refusal(const std::string& text)
{
    EnvHost host;
    return parseFailure(host, text).message;
}

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

    EXPECT_EQ("project/demo.ws", env.getWorkspace());
    EXPECT_EQ("10.0.0.1", env.getAddress());
    EXPECT_EQ(5000, env.getPort());
    EXPECT_TRUE(env.isAutoConnectToQuillon());
    EXPECT_TRUE(env.isAlwaysRunInitSeqBeforeRun());
    EXPECT_FALSE(env.idDownloadOnInit());
    EXPECT_TRUE(env.isResetOnInit());
    EXPECT_FALSE(env.isRunOnInit());
    EXPECT_EQ("main", env.getStopFunction());
    EXPECT_FALSE(env.isDeleteAllBPsOnInit());
    StrVector modules;
    env.getScriptModules(modules);
    EXPECT_EQ((StrVector{"mod1", "mod 2"}), modules);
    EXPECT_EQ("scripts", env.getScriptPath());
    EXPECT_EQ("rv", env.getDefaultReturnValueName());
    EXPECT_FALSE(env.isEmpty());

    EXPECT_EQ(FULL_ENV, yamlOf(host));
}

TEST(CTestEnvironmentConfig, WritesKeysInFixedOrderAndToStringWithoutKey)
{
    EnvHost host;
    CYAMLUtil::parseYAML(host, "env: &e {defaultRetValName: rv, port: 1, workspace: w}");
    EXPECT_EQ("env: &e {workspace: w, port: 1, defaultRetValName: rv}\n", yamlOf(host));
    EXPECT_EQ("&e {workspace: w, port: 1, defaultRetValName: rv}\n", host.section.toString());
}

TEST(CTestEnvironmentConfig, EmptinessAndClearedBools)
{
    CTestEnvironmentConfig env;
    EXPECT_TRUE(env.isEmpty());
    EXPECT_EQ(0, env.getPort());
    EXPECT_EQ("{}\n", env.toString());

    env.setLoggingParameters("[a, b]");
    EXPECT_TRUE(env.isEmpty()) << "logging parameters do not count";
    EXPECT_EQ("{}\n", env.toString()) << "logging parameters are not written";
    StrVector parameters;
    env.getLoggingParameters(parameters);
    EXPECT_EQ((StrVector{"a", "b"}), parameters);

    env.setAutoConnectToQuillon(false);
    EXPECT_FALSE(env.isEmpty()) << "false is a value";
    EXPECT_EQ("autoConnect: false\n", env.toString());

    CTestEnvironmentConfig cleared;
    cleared.setResetOnInit(true);
    cleared.setDownloadOnInit(true);
    cleared.setRunOnInit(true);
    cleared.setDeleteAllBPsOnInit(true);
    cleared.clearResetOnInit();
    cleared.clearDownloadOnInit();
    cleared.clearRunOnInit();
    cleared.clearDeleteAllBPsOnInit();
    EXPECT_FALSE(cleared.isResetOnInit() || cleared.idDownloadOnInit() || cleared.isRunOnInit() ||
                 cleared.isDeleteAllBPsOnInit());
    EXPECT_TRUE(cleared.isEmpty());
    EXPECT_EQ("{}\n", cleared.toString());
}

TEST(CTestEnvironmentConfig, PortConversion)
{
    EnvHost host;
    CYAMLUtil::parseYAML(host, "env: {port: abc}");
    EXPECT_EQ("Integer expected: abc\n",
              kestrix_test::failureOf<IllegalArgumentException>([&] { host.section.getPort(); }))
        << "read as text, converted when asked for";

    CTestEnvironmentConfig env;
    env.setPort(5000);
    EXPECT_EQ(5000, env.getPort());
    EXPECT_EQ("port: 5000\n", env.toString());
    env.setPort(0);
    EXPECT_EQ(0, env.getPort());
    EXPECT_TRUE(env.isEmpty()) << "port 0 removes the key";
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
    EXPECT_EQ("my ws.xjrf", env.getWorkspace());
    EXPECT_EQ("workspace: 'my ws.xjrf'\n"
              "address: host\n"
              "initBeforeRun: true\n"
              "stopFunction: main\n"
              "scriptModules:\n"
              "- a\n"
              "- \"b\"\n"
              "scriptPath: p\n"
              "defaultRetValName: rv\n",
              env.toString());

    EXPECT_THROW(env.setWorkspace("a, b"), ParserException);
    EXPECT_EQ("my ws.xjrf", env.getWorkspace()) << "a refused text changes nothing";
    EXPECT_THROW(env.setScriptModules("[a, [b]]"), ParserException);
    StrVector modules;
    env.getScriptModules(modules);
    EXPECT_EQ((StrVector{"a", "\"b\""}), modules) << "expression texts keep double quotes";
}

TEST(CTestEnvironmentConfig, ListSetterKeepsTheStyleOfTheFile)
{
    EnvHost host;
    CYAMLUtil::parseYAML(host, "env:\n  scriptModules: &m [a, b]\n");
    host.section.setScriptModules("- c\n- d\n");
    EXPECT_EQ("env:\n  scriptModules: &m [c, d]\n", yamlOf(host));
}

TEST(CTestEnvironmentConfig, RefusesRepeatedKeys)
{
    EnvHost host;
    auto failure = parseFailure(host, "env: {workspace: a, workspace: b}");
    EXPECT_EQ("Illegal argument", failure.desc);
    EXPECT_EQ("Data already defined in this specification: workspace", failure.message);
    EXPECT_EQ("[Line: 1  Col: 32]", failure.position);

    EXPECT_EQ("Data already defined in this specification: autoConnect",
              refusal("env:\n  autoConnect: false\n  autoConnect: true\n"));
    EXPECT_EQ("Script modules are already defined!", refusal("env:\n  scriptModules: [a]\n  scriptModules: [b]\n"));

    EnvHost emptyFirst;
    CYAMLUtil::parseYAML(emptyFirst, "env:\n  workspace: ''\n  workspace: b\n  scriptModules: []\n  scriptModules: [c]\n");
    EXPECT_EQ("b", emptyFirst.section.getWorkspace()) << "an empty first value may be replaced";
    StrVector modules;
    emptyFirst.section.getScriptModules(modules);
    EXPECT_EQ(StrVector{"c"}, modules);
}

TEST(CTestEnvironmentConfig, RefusesWrongShapes)
{
    EXPECT_EQ("Section modules must contain list, not scalar. Use '[' and ']'!", refusal("env:\n  scriptModules: x\n"));
    EXPECT_EQ("Nested sequences are not allowed!", refusal("env:\n  scriptModules: [a, [b]]\n"));
    EXPECT_EQ("Unknown tag in the main section of 'config': other", refusal("env: {other: 1}"));
    EXPECT_EQ("No mappings allowed in the main section!", refusal("env: {other: {a: 1}}"));
    EXPECT_EQ("Sequence not allowed in 'config' section!", refusal("env: {workspace: [a]}"));
    EXPECT_EQ("No mappings allowed in the main section!", refusal("env: {port: 1}\nenv: {address: a}\n"))
        << "a second block for the same section";
    EXPECT_EQ("Invalid value of bool item. Should be one of 'true', 'false', 'yes', 'no', '1', or '0', but it is: on",
              refusal("env: {runOnInit: on}"));
}

TEST(CTestEnvironmentConfig, RefusesEventsOutsideItsMapping)
{
    CTestEnvironmentConfig env(nullptr);
    kestrix_test::ParsedEvents events("[x]");
    const yaml_event_t& scalar = events.get(YAML_SCALAR_EVENT);
    EXPECT_EQ("Invalid section type for mapping. Key: 'x':   Section: 0\n",
              kestrix_test::failureOf<ParserException>([&] { env.mappingKey(scalar); }));
    EXPECT_EQ("Sequence scalar not allowed in 'config' section: x\n",
              kestrix_test::failureOf<ParserException>([&] { env.sequenceValue(scalar); }));
    EXPECT_EQ("Sequence not allowed in 'config' section!\n",
              kestrix_test::failureOf<ParserException>([&] { env.sequenceEnd(); }));
}
