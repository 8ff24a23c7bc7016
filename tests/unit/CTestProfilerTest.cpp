#include <gtest/gtest.h>

#include <string>

#include "CTestProfiler.h"
#include "SectionHostSupport.h"
#include "YamlTestSupport.h"

using namespace kestrix;
using kestrix_test::parseFailure;
using kestrix_test::SectionHost;
using kestrix_test::yamlOf;

namespace {

class ProfilerHost : public SectionHost<CTestProfiler> {
public:
    ProfilerHost() : SectionHost<CTestProfiler>("profiler", true) {}
};

std::string roundTrip(const std::string& text)
{
    ProfilerHost host;
    CYAMLUtil::parseYAML(host, text);
    return yamlOf(host);
}

/// The text of a section under its key; the copy goes through the assignment.
std::string yamlOfSection(const CTestProfiler& profiler)
{
    ProfilerHost host;
    host.section = profiler;
    return yamlOf(host);
}

/// The refusal of a profiler text, as the user sees it.
std::string refusal(const std::string& text)
{
    ProfilerHost host;
    return parseFailure(host, text).message;
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

    EXPECT_EQ(CTestProfiler::rmStart, profiler.getRunMode());
    EXPECT_FALSE(profiler.isDefaultRunMode());
    EXPECT_EQ("main", profiler.getTriggerName());
    EXPECT_EQ("prof.yaml", profiler.getOutputFileName());
    EXPECT_TRUE(profiler.isForceOverwrite());
    EXPECT_EQ("no", profiler.getSaveHistory());
    EXPECT_FALSE(profiler.isSaveHistory());
    ASSERT_EQ(1, profiler.getAreasSize(CTestProfiler::AREA_CODE));
    ASSERT_EQ(1, profiler.getAreasSize(CTestProfiler::AREA_DATA));

    auto code = profiler.getArea(CTestProfiler::AREA_CODE, 0);
    EXPECT_EQ("compute", code->getAreaName());
    EXPECT_FALSE(code->isAreaValueSet());
    expectLimits(code->getMinTime(), 0, 1000, true);
    expectLimits(code->getMaxTime(), 0, 0, false);
    expectLimits(code->getHits(), 1, 10, true);

    auto data = profiler.getArea(CTestProfiler::AREA_DATA, 0);
    EXPECT_EQ("state", data->getAreaName());
    EXPECT_TRUE(data->isAreaValueSet());
    EXPECT_EQ(16, data->getAreaValue());
    expectLimits(data->getTotalTime(), 0, 5000, true);

    EXPECT_EQ(FULL_SECTION, yamlOf(host)) << "anchor, quotes and flow and block styles survive";
}

TEST(CTestProfiler, WritesKeysInFixedOrderWhateverTheFileOrder)
{
    const std::string written = roundTrip("profiler:\n"
                                          "  dataAreas:\n"
                                          "  - hits: [2, 3]\n"
                                          "    value: 7\n"
                                          "    name: v\n"
                                          "  isSaveHistory: true\n"
                                          "  codeAreas:\n"
                                          "  - name: f\n"
                                          "  runMode: off\n");
    EXPECT_EQ("profiler:\n"
              "  runMode: off\n"
              "  isSaveHistory: true\n"
              "  codeAreas:\n"
              "  - name: f\n"
              "  dataAreas:\n"
              "  - name: v\n"
              "    value: 7\n"
              "    hits: [2, 3]\n",
              written);
    EXPECT_EQ(written, roundTrip(written));
}

TEST(CTestProfiler, SectionInAFileStartsTheProfilerByDefault)
{
    ProfilerHost host;
    CYAMLUtil::parseYAML(host, "profiler: {}");
    EXPECT_EQ(CTestProfiler::rmStart, host.section.getRunMode());
    EXPECT_TRUE(host.section.isDefaultRunMode());
    EXPECT_TRUE(host.section.isEmpty());

    CTestProfiler fresh(nullptr);
    EXPECT_EQ(CTestProfiler::rmOff, fresh.getRunMode());
    EXPECT_TRUE(fresh.isDefaultRunMode());
    EXPECT_TRUE(fresh.isEmpty());
}

TEST(CTestProfiler, EachKeyOrAreaMakesTheSectionNonEmpty)
{
    for (const char* text : {"profiler: {runMode: off}", "profiler: {trigger: t}", "profiler: {outFile: f}",
                             "profiler: {isForceOverwrite: false}", "profiler: {isSaveHistory: 0}",
                             "profiler: {codeAreas: [{name: f}]}", "profiler: {dataAreas: [{name: v}]}"}) {
        ProfilerHost host;
        CYAMLUtil::parseYAML(host, text);
        EXPECT_FALSE(host.section.isEmpty()) << text;
    }
    ProfilerHost host;
    CYAMLUtil::parseYAML(host, "profiler: {codeAreas: [], dataAreas: []}");
    EXPECT_TRUE(host.section.isEmpty()) << "empty lists hold no area";
    EXPECT_EQ("profiler: {}\n", yamlOf(host));
}

TEST(CTestProfiler, RefusesLimitsOtherThanAnOrderedPair)
{
    EXPECT_EQ("Interval in profiler area section should have two items defined!",
              refusal("profiler:\n  codeAreas:\n  - name: f\n    minTime: [5]\n"));
    EXPECT_EQ("Interval in profiler area section should have two items defined!",
              refusal("profiler:\n  codeAreas:\n  - name: f\n    hits: [1, 2, 3]\n"));
    EXPECT_EQ("Invalid profiler limits. Min time > max time!",
              refusal("profiler:\n  codeAreas:\n  - name: f\n    maxTime: [10, 5]\n"));
    EXPECT_EQ(0u, refusal("profiler:\n  codeAreas:\n  - name: f\n    totalTime: [a, 5]\n").find("Integer expected: a"))
        << "limits must be numbers";

    EXPECT_EQ("profiler:\n  codeAreas:\n  - name: f\n",
              roundTrip("profiler:\n  codeAreas:\n  - name: f\n    minTime: []\n"))
        << "an empty list is allowed and not written";
}

TEST(CTestProfiler, RefusesAreaWithoutNameAtItsEnd)
{
    ProfilerHost host;
    auto failure = parseFailure(host, "profiler:\n  dataAreas:\n  - value: 1\n  - name: x\n");
    EXPECT_EQ("Illegal argument", failure.desc);
    EXPECT_EQ("At least 'name' tag should be specified for profiler area! "
              "One profiler area must be specified in one list element as mapping!",
              failure.message);
    EXPECT_EQ("[Line: 4  Col: 3]", failure.position) << "the parser's mark behind the end of the area's mapping";
}

TEST(CTestProfiler, RefusesUnknownKeysAndMisplacedBlocks)
{
    ProfilerHost host;
    auto failure = parseFailure(host, "profiler:\n  trigger: t\n  other: 1\n");
    EXPECT_EQ("Unknown tag in the main section of 'profiler': other", failure.message);
    EXPECT_EQ("[Line: 4  Col: 0]", failure.position) << "the parser's mark behind the refused value";

    EXPECT_EQ("No mappings allowed in the main section!", refusal("profiler:\n  other: {a: 1}\n"));
    EXPECT_EQ("Sequence not allowed in 'profiler' section!", refusal("profiler:\n  trigger: [a]\n"));
    EXPECT_EQ("Sequence scalar not allowed in 'profiler' section: abc", refusal("profiler:\n  codeAreas: [abc]\n"));
    EXPECT_EQ("Invalid section type for mapping. Key: 'codeAreas':   Section: 2",
              refusal("profiler:\n  codeAreas: x\n"));
    EXPECT_EQ("Invalid string value for enum : 'go'", refusal("profiler:\n  runMode: go\n"));
    EXPECT_EQ("Invalid value of bool item. Should be one of 'true', 'false', 'yes', 'no', '1', or '0', "
              "but it is: True",
              refusal("profiler:\n  isSaveHistory: True\n"));
    EXPECT_EQ("No mappings allowed in the main section!", refusal("profiler: {trigger: a}\nprofiler: {trigger: b}\n"))
        << "a second block for the same section";
}

TEST(CTestProfiler, RefusesWrongShapesInsideAnArea)
{
    const std::string head = "profiler:\n  codeAreas:\n  - name: f\n";
    EXPECT_EQ("Invalid tag in profiler area section: foo", refusal(head + "    foo: 1\n"));
    EXPECT_EQ("No sub-mappings allowed in the profiler area section! Section: 1", refusal(head + "    value: {a: 1}\n"));
    EXPECT_EQ("Invalid sequence in profiler area section!", refusal(head + "    value: [1]\n"));
    EXPECT_EQ("Sequence of scalars expected, found scalar mapping value!", refusal(head + "    minTime: 5\n"));
}

TEST(CTestProfiler, RunModeSetters)
{
    CTestProfiler profiler(nullptr);
    profiler.setRunMode("start");
    EXPECT_EQ(CTestProfiler::rmStart, profiler.getRunMode());
    EXPECT_FALSE(profiler.isDefaultRunMode());

    EXPECT_THROW(profiler.setRunMode("go"), IllegalArgumentException);
    EXPECT_EQ(CTestProfiler::rmStart, profiler.getRunMode()) << "a refused text changes nothing";

    profiler.setRunMode(CTestProfiler::rmOff);
    EXPECT_EQ("profiler:\n  runMode: off\n", yamlOfSection(profiler));
    EXPECT_EQ("Invalid profiler 'ERunMode' enum value!2\n",
              kestrix_test::failureOf<IllegalArgumentException>(
                  [&] { profiler.setRunMode(static_cast<CTestProfiler::ERunMode>(2)); }));
    EXPECT_EQ(CTestProfiler::rmOff, profiler.getRunMode());

    profiler.setRunMode("");
    EXPECT_EQ(CTestProfiler::rmOff, profiler.getRunMode());
    EXPECT_TRUE(profiler.isDefaultRunMode());
    EXPECT_TRUE(profiler.isEmpty());
}

TEST(CTestProfiler, TextAndBoolSetters)
{
    CTestProfiler profiler(nullptr);
    profiler.setTriggerName("'main'");
    profiler.setOutputFileName("out/prof.yaml");
    profiler.setForceOverwrite(false);
    profiler.setSaveHistory(true);
    EXPECT_EQ("main", profiler.getTriggerName());
    EXPECT_FALSE(profiler.isForceOverwrite());
    EXPECT_EQ("false", profiler.getForceOverwrite());
    EXPECT_EQ("profiler:\n"
              "  trigger: 'main'\n"
              "  outFile: out/prof.yaml\n"
              "  isForceOverwrite: false\n"
              "  isSaveHistory: true\n",
              yamlOfSection(profiler))
        << "false is a value and is written";

    EXPECT_THROW(profiler.setTriggerName("a, b"), ParserException);
    EXPECT_EQ("main", profiler.getTriggerName()) << "a refused text changes nothing";

    profiler.clearForceOverwrite();
    profiler.clearSaveHistory();
    EXPECT_FALSE(profiler.isSaveHistory());
    EXPECT_EQ("", profiler.getSaveHistory());
    profiler.setTriggerName("");
    profiler.setOutputFileName("");
    EXPECT_TRUE(profiler.isEmpty());
}

TEST(CTestProfiler, AreaListOperations)
{
    CTestProfiler profiler(nullptr);
    auto first = profiler.addArea(CTestProfiler::AREA_CODE);
    first->setAreaName("f1");
    profiler.addArea(CTestProfiler::AREA_CODE)->setAreaName("f2");
    profiler.addArea(CTestProfiler::AREA_DATA)->setAreaName("v");
    EXPECT_EQ(2, profiler.getAreasSize(CTestProfiler::AREA_CODE));
    EXPECT_EQ(1, profiler.getAreasSize(CTestProfiler::AREA_DATA));
    EXPECT_FALSE(profiler.isEmpty());

    profiler.swapAreas(CTestProfiler::AREA_CODE, 0, 1);
    EXPECT_EQ("f2", profiler.getCodeAreas()[0]->getAreaName());
    profiler.removeArea(CTestProfiler::AREA_CODE, 1);
    EXPECT_EQ("f1", first->getAreaName()) << "a removed area stays valid for its holder";
    ASSERT_EQ(1, profiler.getAreasSize(CTestProfiler::AREA_CODE));
    EXPECT_EQ("f2", profiler.getArea(CTestProfiler::AREA_CODE, 0)->getAreaName());

    EXPECT_THROW(profiler.getArea(CTestProfiler::AREA_DATA, 1), IndexOutOfBoundsException);
    EXPECT_THROW(profiler.getArea(CTestProfiler::AREA_DATA, -1), IndexOutOfBoundsException);
    EXPECT_THROW(profiler.removeArea(CTestProfiler::AREA_CODE, 1), IndexOutOfBoundsException);
    EXPECT_THROW(profiler.swapAreas(CTestProfiler::AREA_CODE, 0, 1), IndexOutOfBoundsException);
    EXPECT_EQ(1, profiler.getAreasSize(CTestProfiler::AREA_CODE));

    const auto badType = static_cast<CTestProfiler::EAreaType>(7);
    EXPECT_EQ("Invalid profiler area type given as parameter!\n  data:\n    areaType: 7\n",
              kestrix_test::failureOf<IllegalArgumentException>([&] { profiler.addArea(badType); }));
    EXPECT_THROW(profiler.getAreasSize(badType), IllegalArgumentException);
    EXPECT_EQ(1, profiler.getAreasSize(CTestProfiler::AREA_DATA));

    profiler.setDataAreas(profiler.getCodeAreas());
    EXPECT_EQ("f2", profiler.getDataAreas()[0]->getAreaName());
    EXPECT_THROW(profiler.setCodeAreas(ProfilerAreasVector{nullptr}), IllegalArgumentException);
    profiler.setCodeAreas(ProfilerAreasVector());
    EXPECT_EQ(0, profiler.getAreasSize(CTestProfiler::AREA_CODE));
}

TEST(CTestProfiler, CopiesAreDeep)
{
    ProfilerHost host;
    CYAMLUtil::parseYAML(host, FULL_SECTION);
    const std::string original = yamlOf(host);

    CTestProfiler copy(host.section);
    copy.getArea(CTestProfiler::AREA_CODE, 0)->setAreaName("other");
    CTestProfiler assigned(nullptr);
    assigned = host.section;
    assigned.getArea(CTestProfiler::AREA_DATA, 0)->setHits(MinMaxLimits(1, 2));
    assigned.setTriggerName("t2");

    EXPECT_EQ(original, yamlOf(host)) << "the copies own their areas";
    EXPECT_EQ("other", copy.getArea(CTestProfiler::AREA_CODE, 0)->getAreaName());
    EXPECT_NE(host.section.getArea(CTestProfiler::AREA_DATA, 0), assigned.getArea(CTestProfiler::AREA_DATA, 0));

    ProfilerHost copyHost;
    copyHost.section = host.section;
    EXPECT_EQ(original, yamlOf(copyHost)) << "block attributes are copied too";
}

TEST(CProfilerArea, ValueAndLimitSetters)
{
    CProfilerArea area;
    area.setAreaName("\"a b\"");
    EXPECT_EQ("a b", area.getAreaName());
    EXPECT_FALSE(area.isAreaValueSet());

    area.setAreaValue(5);
    EXPECT_TRUE(area.isAreaValueSet());
    EXPECT_EQ(5, area.getAreaValue());
    area.disableAreaValue();
    EXPECT_FALSE(area.isAreaValueSet());
    EXPECT_EQ(5, area.getAreaValue()) << "the text stays";

    area.setMinTime(MinMaxLimits(3, 4));
    area.setMaxTime(MinMaxLimits(0, 9000000000LL, true));
    area.setTotalTime(MinMaxLimits(1, 2, false));
    expectLimits(area.getMinTime(), 3, 4, true);
    expectLimits(area.getMaxTime(), 0, 9000000000LL, true);
    expectLimits(area.getTotalTime(), 0, 0, false);

    ProfilerHost host;
    host.section.addArea(CTestProfiler::AREA_DATA)->setAreaName("x");
    *host.section.getArea(CTestProfiler::AREA_DATA, 0) = area;
    const std::string written = yamlOf(host);
    EXPECT_EQ("profiler:\n"
              "  dataAreas:\n"
              "  - name: \"a b\"\n"
              "    value: 5\n"
              "    minTime:\n"
              "    - 3\n"
              "    - 4\n"
              "    maxTime:\n"
              "    - 0\n"
              "    - 9000000000\n",
              written)
        << "a disabled value is still written";
    EXPECT_EQ(written, roundTrip(written));

    area.setMinTime(MinMaxLimits(1, 2, false));
    expectLimits(area.getMinTime(), 0, 0, false);
}

TEST(CProfilerArea, RefusesSequenceEventsOutsideItsLimits)
{
    CProfilerArea area(nullptr);
    EXPECT_THROW(area.sequenceEnd(), ParserException);
    kestrix_test::ParsedEvents events("[x]");
    EXPECT_EQ("Invalid sequence scalar profiler area section: x\n",
              kestrix_test::failureOf<ParserException>(
                  [&] { area.sequenceValue(events.get(YAML_SCALAR_EVENT)); }));
}

TEST(MinMaxLimits, Constructors)
{
    expectLimits(MinMaxLimits(), 0, 0, false);
    expectLimits(MinMaxLimits(-3, 5), -3, 5, true);
    expectLimits(MinMaxLimits(1, 2, false), 1, 2, false);
    MinMaxLimits source(7, 8);
    expectLimits(MinMaxLimits(source), 7, 8, true);
}
