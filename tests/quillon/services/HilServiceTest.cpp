// HIL channels as registers of the analyzer board's peripheral: hil_step reads the setpoint (a word at
// 0x40020000) and the gain (a float at 0x40020004) and writes setpoint * gain to the output (0x40020008).
#include "AnalyzerFixture.h"

#include <cstring>

namespace quillon::services {
namespace {

using Kind = HilChannel::Kind;

class HilServiceTest : public AnalyzerFixture {
protected:
    void SetUp() override
    {
        AnalyzerFixture::SetUp();
        hil = std::make_unique<HilService>(
            *target, std::vector<HilChannel>{{"Setpoint", Kind::Integer, 0x40020000, std::nullopt},
                                             {"Gain", Kind::Analog, 0x40020004, std::string("2.5")},
                                             {"Output", Kind::Integer, 0x40020008, std::nullopt},
                                             {"Enable", Kind::Digital, 0x4002000C, std::string("true")}});
        hil->writeInitialValues();
    }

    std::unique_ptr<HilService> hil;
};

TEST_F(HilServiceTest, TheFirmwareReadsWhatHilWritesAndHilReadsWhatTheFirmwareWrites)
{
    EXPECT_EQ(hil->read(""), "Setpoint:0,Gain:2.5,Output:0,Enable:1") << "initial values, 0 where none";
    float gain = 0;
    const std::uint32_t gainWord = target->readWord(0x40020004);
    std::memcpy(&gain, &gainWord, sizeof gain);
    EXPECT_EQ(gain, 2.5f) << "an analog channel is an IEEE single in memory";

    hil->write("Setpoint:10");
    EXPECT_EQ(call("hil_step"), "10") << "the firmware read the setpoint";
    EXPECT_EQ(hil->read("Output"), "Output:25") << "10 * 2.5";

    hil->write("Setpoint: 0x7 ; Gain:-1.5");
    EXPECT_EQ(call("hil_step"), "7");
    EXPECT_EQ(hil->read(" Output , Setpoint"), "Output:-10,Setpoint:7") << "(int)(7 * -1.5) is -10";
}

TEST_F(HilServiceTest, WrongNamesAndValuesWriteNothing)
{
    struct Case {
        const char* values;
        AnalyzerError::Kind kind;
        const char* text;
    };
    const Case cases[] = {
        {"Setpoint:5,Nope:1", AnalyzerError::Kind::NotFound,
         "no HIL channel 'Nope' (channels: Setpoint, Gain, Output, Enable)"},
        {"Setpoint:5;Enable:2", AnalyzerError::Kind::InvalidArgument, "bad value '2' for digital HIL channel 'Enable'"},
        {"Setpoint:5,Gain:fast", AnalyzerError::Kind::InvalidArgument, "bad value 'fast' for analog HIL channel 'Gain'"},
        {"Setpoint:5,Output:4294967296", AnalyzerError::Kind::InvalidArgument,
         "bad value '4294967296' for integer HIL channel 'Output'"},
        {"Setpoint:5,Output", AnalyzerError::Kind::InvalidArgument, "HIL value 'Output' is no 'name:value' pair"},
        {" , ", AnalyzerError::Kind::InvalidArgument, "no 'name:value' pair to write to HIL"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.values);
        const AnalyzerError error = analyzerError([&] { hil->write(c.values); });
        EXPECT_EQ(error.kind(), c.kind);
        EXPECT_STREQ(error.what(), c.text);
        EXPECT_EQ(hil->read("Setpoint"), "Setpoint:0");
    }
    const AnalyzerError unknown = analyzerError([&] { hil->read("Setpoint,Nope"); });
    EXPECT_EQ(unknown.kind(), AnalyzerError::Kind::NotFound);
}

TEST_F(HilServiceTest, WritingWaitsForAStoppedTarget)
{
    debug->setExecutionPoint(0, function("spin_forever").address);
    debug->run();
    const AnalyzerError error = analyzerError([&] { hil->write("Setpoint:1"); });
    EXPECT_EQ(error.kind(), AnalyzerError::Kind::IllegalState);
    EXPECT_STREQ(error.what(), "cannot write HIL channel 'Setpoint' while the target runs");
    EXPECT_EQ(hil->read("Setpoint"), "Setpoint:0") << "reading works while it runs";
}

struct TextCase {
    Kind kind;
    const char* text;
    std::optional<std::uint32_t> word;
    const char* readBack;
};

TEST(HilChannelTest, TextsOfEachKindReadAndWriteTheirWord)
{
    const TextCase cases[] = {
        {Kind::Digital, "0", 0u, "0"},
        {Kind::Digital, "true", 1u, "1"},
        {Kind::Digital, "false", 0u, "0"},
        {Kind::Digital, "2", std::nullopt, nullptr},
        {Kind::Integer, "-1", 0xFFFFFFFFu, "-1"},
        {Kind::Integer, "-2147483648", 0x80000000u, "-2147483648"},
        {Kind::Integer, "-2147483649", std::nullopt, nullptr},
        {Kind::Integer, "4294967295", 0xFFFFFFFFu, "-1"},
        {Kind::Integer, "0x10", 16u, "16"},
        {Kind::Integer, "1.5", std::nullopt, nullptr},
        {Kind::Integer, "", std::nullopt, nullptr},
        {Kind::Analog, "2.5", 0x40200000u, "2.5"},
        {Kind::Analog, "-0.1", 0xBDCCCCCDu, "-0.1"},
        {Kind::Analog, "1e3", 0x447A0000u, "1000"},
        {Kind::Analog, "inf", std::nullopt, nullptr},
        {Kind::Analog, "2.5V", std::nullopt, nullptr},
    };
    for (const TextCase& c : cases) {
        SCOPED_TRACE(std::string(HilChannel::kindName(c.kind)) + " '" + c.text + "'");
        EXPECT_EQ(HilChannel::parse(c.kind, c.text), c.word);
        if (c.word) {
            EXPECT_EQ(HilChannel::format(c.kind, *c.word), c.readBack);
        }
    }
}

} // namespace
} // namespace quillon::services
