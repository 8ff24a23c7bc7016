#include <gtest/gtest.h>

#include <string>

#include "CTestProfiler.h"
#include "SectionTestSupport.h"
#include "YamlTestSupport.h"

using namespace kestrix;
using namespace kestrix_test;

namespace {

struct ProfilerHost : public KeyHost<CTestProfiler> {
    ProfilerHost() : KeyHost<CTestProfiler>("profiler") {}
};

std::string roundTrip(const std::string& text)
{
    ProfilerHost host;
    CYAMLUtil::parseYAML(host, text);
    return toYaml(host);
}

void expectLimits(const MinMaxLimits& limits, long long min, long long max, bool isDefined)
{
    EXPECT_EQ(min, limits.m_min);
    EXPECT_EQ(max, limits.m_max);
    EXPECT_EQ(isDefined, limits.m_isDefined);
}

const char* const FULL_SECTION = "profiler: &prof\n"
                                 "  runMode: start\n"
                                 "  trigger: 'main'\n"
                                 "  outFile: \"prof.yaml\"\n"
                                 "  isForceOverwrite: true\n"
                                 "  isSaveHistory: no\n"
                                 "  codeAreas:\n"
                                 "  - name: compute\n"
                                 "    minTime: [0, 1000]\n"
                                 "    hits:\n"
                                 "    - 1\n"
                                 "    - 10\n"
                                 "  dataAreas: [{name: state, value: 0x10, totalTime: [0, 5000]}]\n";

} // namespace

TEST(CTestProfiler, ReadsAllKeysAndWritesThemBackAlike)
{
    ProfilerHost host;
    CYAMLUtil::parseYAML(host, FULL_SECTION);
    const CTestProfiler& profiler = host.section;

    // The text below comes back from the fields; here only what reading converts.
    EXPECT_EQ("main", profiler.getTriggerName());
    EXPECT_FALSE(profiler.isSaveHistory());
    auto code = profiler.getArea(CTestProfiler::AREA_CODE, 0);
    EXPECT_FALSE(code->isAreaValueSet());
    expectLimits(code->getMaxTime(), 0, 0, false);
    expectLimits(code->getHits(), 1, 10, true);
    EXPECT_EQ(16, profiler.getArea(CTestProfiler::AREA_DATA, 0)->getAreaValue());

    EXPECT_EQ(FULL_SECTION, toYaml(host)) << "anchor, quotes and flow and block styles survive";
}

TEST(CTestProfiler, WritesKeysInFixedOrderWhateverTheFileOrder)
{
    const std::string written = roundTrip("profiler:\n  dataAreas:\n  - hits: [2, 3]\n    value: 7\n    name: v\n"
                                          "  isSaveHistory: true\n  codeAreas:\n  - name: f\n  runMode: off\n");
    EXPECT_EQ("profiler:\n  runMode: off\n  isSaveHistory: true\n  codeAreas:\n  - name: f\n  dataAreas:\n"
              "  - name: v\n    value: 7\n    hits: [2, 3]\n",
              written);
    EXPECT_EQ(written, roundTrip(written));
}

TEST(CTestProfiler, WhatCountsAsEmpty)
{
    ProfilerHost host;
    CYAMLUtil::parseYAML(host, "profiler: {codeAreas: [], dataAreas: []}");
    EXPECT_EQ(CTestProfiler::rmStart, host.section.getRunMode()) << "a block in a file starts the profiler";
    EXPECT_TRUE(host.section.isDefaultRunMode());
    EXPECT_TRUE(host.section.isEmpty()) << "empty lists hold no area";
    EXPECT_EQ("profiler: {}\n", toYaml(host));
    EXPECT_EQ(CTestProfiler::rmOff, CTestProfiler(nullptr).getRunMode());

    for (const char* text : {"profiler: {runMode: off}", "profiler: {trigger: t}", "profiler: {outFile: f}",
                             "profiler: {isForceOverwrite: false}", "profiler: {isSaveHistory: 0}",
                             "profiler: {codeAreas: [{name: f}]}", "profiler: {dataAreas: [{name: v}]}"}) {
        ProfilerHost one;
        CYAMLUtil::parseYAML(one, text);
        EXPECT_FALSE(one.section.isEmpty()) << text;
    }
}

TEST(CTestProfiler, RefusalsNameTheFaultAndItsPlace)
{
    const std::string area = "profiler:\n  codeAreas:\n  - name: f\n";
    expectRefusals<ProfilerHost>(
        {
            {area + "    minTime: [5]\n", "Interval in profiler area section should have two items defined!", "[Line: 4  Col: 16]"},
            {area + "    hits: [1, 2, 3]\n", "Interval in profiler area section should have two items defined!",
             "[Line: 4  Col: 19]"},
            {area + "    maxTime: [10, 5]\n", "Invalid profiler limits. Min time > max time!", "[Line: 4  Col: 20]"},
            {area + "    foo: 1\n", "Invalid tag in profiler area section: foo", "[Line: 4  Col: 8]"},
            {area + "    value: {a: 1}\n", "No sub-mappings allowed in the profiler area section! Section: 1", "[Line: 4  Col: 12]"},
            {area + "    value: [1]\n", "Invalid sequence in profiler area section!", "[Line: 4  Col: 12]"},
            {area + "    minTime: 5\n", "Sequence of scalars expected, found scalar mapping value!", "[Line: 5  Col: 0]"},
            // The parser's mark behind the end of the area's mapping.
            {"profiler:\n  dataAreas:\n  - value: 1\n  - name: x\n",
             "At least 'name' tag should be specified for profiler area! "
             "One profiler area must be specified in one list element as mapping!",
             "[Line: 4  Col: 3]"},
            // The parser's mark behind the refused value.
            {"profiler:\n  trigger: t\n  other: 1\n", "Unknown tag in the main section of 'profiler': other",
             "[Line: 4  Col: 0]"},
            {"profiler:\n  other: {a: 1}\n", "No mappings allowed in the main section!", "[Line: 2  Col: 10]"},
            {"profiler:\n  trigger: [a]\n", "Sequence not allowed in 'profiler' section!", "[Line: 2  Col: 12]"},
            {"profiler:\n  codeAreas: [abc]\n", "Sequence scalar not allowed in 'profiler' section: abc", "[Line: 2  Col: 18]"},
            {"profiler:\n  codeAreas: x\n", "Invalid section type for mapping. Key: 'codeAreas':   Section: 2",
             "[Line: 3  Col: 0]"},
            {"profiler:\n  runMode: go\n", "Invalid string value for enum : 'go'", "[Line: 3  Col: 0]"},
            {"profiler:\n  isSaveHistory: True\n",
             "Invalid value of bool item. Should be one of 'true', 'false', 'yes', 'no', '1', or '0', but it is: True",
             "[Line: 3  Col: 0]"},
            // A second block for the same section.
            {"profiler: {trigger: a}\nprofiler: {trigger: b}\n", "No mappings allowed in the main section!", "[Line: 2  Col: 11]"},
        });

    ProfilerHost host;
    EXPECT_EQ(0u, parseFailure(host, area + "    totalTime: [a, 5]\n").message.find("Integer expected: a"))
        << "limits must be numbers";
    EXPECT_EQ(area, roundTrip(area + "    minTime: []\n")) << "an empty list is allowed and not written";
}

TEST(CTestProfiler, SettersWriteTheirValuesAndRefusedTextsChangeNothing)
{
    ProfilerHost host; // written through a copy made by assignment
    CTestProfiler& profiler = host.section;
    profiler.setRunMode("start");
    // The word is taken as it is: YAML quotes are not stripped from it.
    EXPECT_EQ("Invalid string value for enum : ''off''\n",
              failureOf<IllegalArgumentException>([&] { profiler.setRunMode("'off'"); }));
    EXPECT_EQ(CTestProfiler::rmStart, profiler.getRunMode());
    profiler.setRunMode(CTestProfiler::rmOff);
    EXPECT_EQ("Invalid profiler 'ERunMode' enum value!2\n",
              failureOf<IllegalArgumentException>([&] { profiler.setRunMode(static_cast<CTestProfiler::ERunMode>(2)); }));
    EXPECT_EQ(CTestProfiler::rmOff, profiler.getRunMode());

    profiler.setTriggerName("'main'");
    profiler.setOutputFileName("out/prof.yaml");
    profiler.setForceOverwrite(false);
    profiler.setSaveHistory(true);
    EXPECT_THROW(profiler.setTriggerName("a, b"), ParserException);
    EXPECT_EQ("main", profiler.getTriggerName());
    ProfilerHost copyHost;
    copyHost.section = profiler;
    EXPECT_EQ("profiler:\n  runMode: off\n  trigger: 'main'\n  outFile: out/prof.yaml\n  isForceOverwrite: false\n"
              "  isSaveHistory: true\n",
              toYaml(copyHost))
        << "false is a value and is written";

    profiler.setRunMode("");
    EXPECT_TRUE(profiler.isDefaultRunMode());
    profiler.clearForceOverwrite(), profiler.clearSaveHistory();
    profiler.setTriggerName(""), profiler.setOutputFileName("");
    EXPECT_TRUE(profiler.isEmpty());
}

TEST(CTestProfiler, AreaListRefusals)
{
    CTestProfiler profiler(nullptr);
    profiler.addArea(CTestProfiler::AREA_CODE)->setAreaName("f1");
    EXPECT_THROW(profiler.getArea(CTestProfiler::AREA_DATA, -1), IndexOutOfBoundsException);
    EXPECT_THROW(profiler.swapAreas(CTestProfiler::AREA_CODE, 0, 1), IndexOutOfBoundsException);
    EXPECT_EQ("Invalid profiler area type given as parameter!\n  data:\n    areaType: 7\n",
              failureOf<IllegalArgumentException>([&] { profiler.addArea(static_cast<CTestProfiler::EAreaType>(7)); }));
    EXPECT_THROW(profiler.setCodeAreas(ProfilerAreasVector{nullptr}), IllegalArgumentException);
    EXPECT_EQ(1, profiler.getAreasSize(CTestProfiler::AREA_CODE));
}

TEST(CTestProfiler, CopiesAreDeep)
{
    ProfilerHost host, copyHost;
    CYAMLUtil::parseYAML(host, FULL_SECTION);
    CTestProfiler copy(host.section);
    copy.getArea(CTestProfiler::AREA_CODE, 0)->setAreaName("other");
    copyHost.section = host.section;
    EXPECT_EQ(FULL_SECTION, toYaml(copyHost)) << "block attributes are copied too";
    copyHost.section.getArea(CTestProfiler::AREA_DATA, 0)->setHits(MinMaxLimits(1, 2));
    EXPECT_EQ(FULL_SECTION, toYaml(host)) << "the copies own their areas";
}

TEST(CProfilerArea, ValueAndLimitSetters)
{
    CProfilerArea area;
    area.setAreaName("\"a b\"");
    area.setAreaValue(5);
    area.disableAreaValue();
    EXPECT_FALSE(area.isAreaValueSet());

    area.setMinTime(MinMaxLimits(3, 4));
    area.setMaxTime(MinMaxLimits(0, 9000000000LL, true));
    area.setTotalTime(MinMaxLimits(1, 2, false)); // undefined: not written

    ProfilerHost host;
    host.section.addArea(CTestProfiler::AREA_DATA)->setAreaName("x");
    *host.section.getArea(CTestProfiler::AREA_DATA, 0) = area;
    const std::string written = toYaml(host);
    EXPECT_EQ("profiler:\n  dataAreas:\n  - name: \"a b\"\n    value: 5\n    minTime:\n    - 3\n    - 4\n"
              "    maxTime:\n    - 0\n    - 9000000000\n",
              written)
        << "a disabled value is still written";
    EXPECT_EQ(written, roundTrip(written));
}

TEST(CProfilerArea, RefusesSequenceEventsOutsideItsLimits)
{
    CProfilerArea area(nullptr);
    EXPECT_THROW(area.sequenceEnd(), ParserException);
    ParsedEvents events("[x]");
    EXPECT_EQ("Invalid sequence scalar profiler area section: x\n",
              failureOf<ParserException>([&] { area.sequenceValue(events.get(YAML_SCALAR_EVENT)); }));
}
