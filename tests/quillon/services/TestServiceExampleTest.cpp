// Test runs of the example firmware's ring buffer and sensor filter, as the client's test runner drives them.
#include "TestServiceFixture.h"

#include <filesystem>

namespace quillon::services {
namespace {

class TestServiceExampleTest : public TestServiceFixture {
protected:
    void SetUp() override
    {
        if (!std::filesystem::exists(exampleFirmware())) {
            GTEST_SKIP() << "the example firmware is not built";
        }
        load(exampleFirmware());
    }

    /// An empty filter window with gain `gain`.
    void emptyFilter(const std::string& gain)
    {
        for (const char* member : {"g_filter.count", "g_filter.sum", "g_filter.next"}) {
            tests->modify(member, "0");
        }
        tests->modify("g_gain", gain);
    }
};

TEST_F(TestServiceExampleTest, TheFilterAveragesItsSamples)
{
    // Samples 100, 200, 300 with gain 2: the window holds 200, 400, 600.
    const struct {
        const char* sample;
        const char* level;
    } steps[] = {{"100", "200"}, {"200", "300"}, {"300", "400"}};
    bool first = true;
    for (const auto& step : steps) {
        const std::uint32_t test = tests->createTest("filter_step");
        tests->createReturnValue(test, "rv");
        tests->createParameter(test, 0, "kestrix___position_param_0");
        tests->init(test);
        if (first) {
            emptyFilter("2");
            first = false;
        }
        tests->modify("kestrix___position_param_0", step.sample);
        ASSERT_EQ(TestState::Ended, runOn(test)) << tests->problem(test);
        EXPECT_EQ(step.level, tests->evaluate("rv")) << step.sample;
        tests->clean(test);
        tests->destroyTest(test);
    }
}

TEST_F(TestServiceExampleTest, AStaticFunctionIsStubbed)
{
    const std::uint32_t test = tests->createTest("filter_step");
    tests->createReturnValue(test, "rv");
    tests->createParameter(test, 0, "sample");
    const std::uint32_t stub = tests->createStub("filter_restart");
    tests->createStubReturnValue(stub, "restarted");
    tests->createStubParameter(stub, 0, "limit");
    tests->init(test);
    emptyFilter("1");
    tests->modify("sample", "5000");
    ASSERT_EQ(TestState::Stub, runOn(test)) << tests->problem(test);
    EXPECT_EQ(stub, tests->activeStub());
    EXPECT_EQ("1023", tests->evaluate("limit")) << "a saturated sample restarts at the top of the range";
    tests->modify("restarted", "limit - 3");
    ASSERT_EQ(TestState::Ended, runOn(test)) << tests->problem(test);
    EXPECT_EQ("1", tests->evaluate("rv == 1020 && g_filter.count == 0"));
}

TEST_F(TestServiceExampleTest, ARingBufferLocalIsPassedByAddress)
{
    const std::uint32_t test = tests->createTest("rb_put");
    tests->createReturnValue(test, "ok");
    tests->createParameter(test, 0, "rb_arg");
    tests->createParameter(test, 1, "c");
    tests->createVariable("rb", "ring_t");
    tests->createVariable("text", "char[8]");
    tests->init(test);
    for (const auto& [key, value] :
         {std::pair{"rb.size", "4"}, {"rb.head", "0"}, {"rb.tail", "0"}, {"rb.count", "0"}, {"text[0]", "'h'"},
          {"text[1]", "'i'"}, {"text[2]", "0"}, {"rb_arg", "&rb"}, {"c", "65"}}) {
        tests->modify(key, value);
    }
    ASSERT_EQ(TestState::Ended, runOn(test)) << tests->problem(test);
    EXPECT_EQ("1", tests->evaluate("ok == 1"));
    EXPECT_EQ("1", tests->evaluate("rb.count == 1 && rb.head == 1"));
    EXPECT_EQ("1", tests->evaluate("rb.data[0] == 'A'"));
    EXPECT_EQ("1", tests->evaluate("text[1] == 'i' && text[2] == 0"));
}

TEST_F(TestServiceExampleTest, AWriteToFlashIsAFault)
{
    const std::uint32_t test = tests->createTest("rb_put");
    tests->createReturnValue(test, "ok");
    tests->createParameter(test, 0, "rb");
    tests->init(test);
    tests->modify("rb", "0");
    EXPECT_EQ(TestState::UnexpectedStop, runOn(test));
    EXPECT_NE(std::string::npos, tests->problem(test).find("'rb_put' (ring_buffer.c:")) << tests->problem(test);
}

} // namespace
} // namespace quillon::services
