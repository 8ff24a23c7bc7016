// Trace of the analyzer firmware from the reset to the bkpt at the end of main. main calls terminal_write,
// classify three times (scale(1) is folded into the constant 4 by the compiler: it is never called), and
// count_nonzero; classify calls note once a call, count_nonzero once for each of the two non-zero values.
#include "AnalyzerFixture.h"

#include <cstdio>
#include <cstring>

#include "services/TraceWriter.h"

namespace quillon::services {
namespace {

const std::string kDocument = "trace.trd";

class TraceDocumentTest : public AnalyzerFixture {
protected:
    void open() { documents->open(kDocument, false, Document::Kind::Analyzer, true); }

    /// Records from the reset (where the download left the core) to the end of main.
    void recordToEnd()
    {
        documents->start(kDocument);
        runToEnd();
        EXPECT_TRUE(documents->stop(kDocument));
    }

    std::vector<TraceEvent> events()
    {
        return documents->withTrace(kDocument, [](TraceDocument& trace) { return trace.recording().events(); });
    }

    std::string nameOf(const TraceEvent& event)
    {
        return documents->withTrace(kDocument, [&](TraceDocument& trace) {
            const auto& names = trace.recording().names();
            return event.function < names.size() ? names[event.function] : std::string("-");
        });
    }

    std::vector<std::string> entries()
    {
        std::vector<std::string> names;
        for (const TraceEvent& event : events()) {
            if (event.kind == TraceEvent::Kind::Entry) {
                names.push_back(nameOf(event));
            }
        }
        return names;
    }

    /// The cycle count of the core stopped before main's first instruction, on a run of its own from the reset.
    std::uint64_t cyclesBeforeMain()
    {
        debug->reset();
        debug->runUntilAddress(0, function("main").address);
        EXPECT_TRUE(debug->waitUntilStopped(std::chrono::seconds(10)));
        return target->cycles();
    }

    static std::vector<std::string> split(const std::string& text, char separator)
    {
        std::vector<std::string> parts;
        std::size_t start = 0;
        for (std::size_t end; (end = text.find(separator, start)) != std::string::npos; start = end + 1) {
            parts.push_back(text.substr(start, end - start));
        }
        parts.push_back(text.substr(start));
        return parts;
    }
};

TEST_F(TraceDocumentTest, RecordsEachFunctionEnteredInOrderAtItsEntry)
{
    open();
    recordToEnd();
    EXPECT_EQ(entries(), (std::vector<std::string>{"Reset_Handler", "main", "terminal_write", "classify", "note",
                                                    "classify", "note", "classify", "note", "count_nonzero", "note",
                                                    "note"}));
    for (const TraceEvent& event : events()) {
        EXPECT_EQ(event.address, function(nameOf(event)).address) << nameOf(event);
    }
    const std::vector<TraceEvent> recorded = events();
    EXPECT_EQ(recorded.front().cycle, 1u) << "the reset handler's first instruction is the first after the reset";
    for (std::size_t i = 1; i < recorded.size(); ++i) {
        EXPECT_LT(recorded[i - 1].cycle, recorded[i].cycle);
    }
    EXPECT_EQ(recorded[1].cycle, cyclesBeforeMain() + 1) << "main's first instruction is the next after the stop";
}

TEST_F(TraceDocumentTest, ACallFromInsideTheFunctionEntersItAgain)
{
    // depth: 1c6 push, 1c8 cbnz, 1ca pop {pc}, 1cc subs, 1ce bl depth, 1d2 adds, 1d4 b 1ca. depth(3) enters four
    // times, three of them by the bl inside it; the returns through 1ca back into it are no entries.
    open();
    documents->start(kDocument);
    EXPECT_EQ(call("depth", {"3"}), "3");
    documents->stop(kDocument);
    EXPECT_EQ(entries(), (std::vector<std::string>{"depth", "depth", "depth", "depth"}));
    const std::vector<TraceEvent> recorded = events();
    ASSERT_EQ(recorded.size(), 4u);
    for (std::size_t i = 1; i < recorded.size(); ++i) {
        EXPECT_EQ(recorded[i].cycle, recorded[i - 1].cycle + 4) << "push, cbnz, subs and bl of the call before";
    }
}

TEST_F(TraceDocumentTest, TheCsvExportHasAHeaderAndALineAnEventWithSimulatedTime)
{
    open();
    recordToEnd();
    documents->exportTo(kDocument, "trace.csv", 1);
    const std::vector<std::string> lines = split(fileText("trace.csv"), '\n');
    const std::vector<TraceEvent> recorded = events();
    ASSERT_EQ(lines.size(), recorded.size() + 2) << "header, events, and the empty text after the last line feed";
    EXPECT_EQ(lines.front(), "index,cycle,time_ns,event,address,function,value");
    EXPECT_EQ(lines.back(), "");
    for (std::size_t i = 0; i < recorded.size(); ++i) {
        const std::vector<std::string> fields = split(lines[i + 1], ',');
        ASSERT_EQ(fields.size(), 7u) << lines[i + 1];
        EXPECT_EQ(fields[0], std::to_string(i));
        EXPECT_EQ(fields[1], std::to_string(recorded[i].cycle));
        EXPECT_EQ(fields[3], "entry");
        EXPECT_EQ(fields[6], "");
    }
    // main: at 16 MHz a cycle takes 62.5 ns, and main's instruction begins after the cycles before it.
    const std::uint64_t before = cyclesBeforeMain();
    char time[32];
    std::snprintf(time, sizeof time, "%.3f", double(before) * 62.5);
    EXPECT_EQ(lines[2], "1," + std::to_string(before + 1) + "," + time + ",entry,0x0000015c,main,");
}

TEST_F(TraceDocumentTest, TextAndBinaryExportsCarryTheSameEvents)
{
    open();
    recordToEnd();
    const std::vector<TraceEvent> recorded = events();
    documents->setExportFormat(kDocument, "Binary");
    documents->exportTo(kDocument, "trace.bin", 0xFFFFFFFF);
    const std::string binary = fileText("trace.bin");
    auto word = [&](std::size_t at, int bytes) {
        std::uint64_t value = 0;
        for (int i = bytes - 1; i >= 0; --i) {
            value = value << 8 | static_cast<std::uint8_t>(binary.at(at + i));
        }
        return value;
    };
    EXPECT_EQ(binary.substr(0, 4), "QTRC");
    EXPECT_EQ(word(4, 4), 1u);
    EXPECT_EQ(word(8, 8), 16000000u);
    const std::uint64_t names = word(16, 4);
    EXPECT_EQ(word(20, 4), recorded.size());
    EXPECT_EQ(word(24, 4), 0u) << "not full";
    std::size_t at = 28;
    for (std::uint64_t i = 0; i < names; ++i) {
        at += 2 + word(at, 2);
    }
    ASSERT_EQ(binary.size(), at + 24 * recorded.size());
    EXPECT_EQ(word(at, 8), recorded[0].cycle);
    EXPECT_EQ(word(at + 8, 4), function("Reset_Handler").address);
    EXPECT_EQ(word(at + 20, 1), 0u) << "an entry";

    documents->exportTo(kDocument, "trace.txt", 0);
    const std::string text = fileText("trace.txt");
    EXPECT_EQ(text.rfind("Trace of trace.trd: " + std::to_string(recorded.size())
                             + " events, clock 16000000 Hz, trigger Trigger0\n",
                         0),
              0u)
        << text;
}

TEST_F(TraceDocumentTest, ATriggerStartsAtItsFunctionAndMayRecordEveryInstruction)
{
    makeDocuments({TraceTrigger{"FromClassify", "classify", false}, TraceTrigger{"Steps", "terminal_write", true}});
    open();
    documents->selectTrigger(kDocument, "FromClassify");
    recordToEnd();
    EXPECT_EQ(entries(), (std::vector<std::string>{"classify", "note", "classify", "note", "classify", "note",
                                                    "count_nonzero", "note", "note"}));

    debug->reset();
    documents->selectTrigger(kDocument, "Steps");
    recordToEnd();
    const std::vector<TraceEvent> steps = events();
    ASSERT_GE(steps.size(), 4u);
    // terminal_write: 118 ldrb, 11a cbz, 11c ldr, 11e str, ...
    const std::uint32_t expected[] = {0x118, 0x11a, 0x11c, 0x11e};
    for (std::size_t i = 0; i < 4; ++i) {
        EXPECT_EQ(steps[i].address, expected[i]);
        EXPECT_EQ(steps[i].kind, i == 0 ? TraceEvent::Kind::Entry : TraceEvent::Kind::Instruction);
        EXPECT_EQ(nameOf(steps[i]), "terminal_write");
    }
    for (std::size_t i = 1; i < steps.size(); ++i) {
        EXPECT_EQ(steps[i].cycle, steps[i - 1].cycle + 1) << "every instruction, none left out";
    }

    const AnalyzerError unknown = analyzerError([&] { documents->selectTrigger(kDocument, "Nope"); });
    EXPECT_EQ(unknown.kind(), AnalyzerError::Kind::NotFound);
    EXPECT_STREQ(unknown.what(),
                 "analyzer document 'trace.trd' has no trigger 'Nope' (it has Trigger0, FromClassify, Steps)");
}

TEST_F(TraceDocumentTest, ATriggerOnAFunctionTheProgramLacksCannotStart)
{
    makeDocuments({TraceTrigger{"Late", "no_such_function", false}});
    open();
    documents->selectTrigger(kDocument, "Late");
    const AnalyzerError error = analyzerError([&] { documents->start(kDocument); });
    EXPECT_EQ(error.kind(), AnalyzerError::Kind::NotFound);
    EXPECT_STREQ(error.what(), "trigger 'Late' of analyzer document 'trace.trd' starts at function 'no_such_function', "
                               "which the downloaded programs do not have");
    EXPECT_FALSE(documents->isActive(kDocument));
}

TEST_F(TraceDocumentTest, AMarkerStandsBeforeTheNextInstruction)
{
    open();
    recordToEnd();
    documents->setMarker(kDocument, 7);
    const TraceEvent marker = events().back();
    EXPECT_EQ(marker.kind, TraceEvent::Kind::Marker);
    EXPECT_EQ(marker.cycle, target->cycles() + 1);
    EXPECT_EQ(marker.address, target->pc());
    EXPECT_EQ(marker.value, 7u);
    EXPECT_EQ(nameOf(marker), "main");
    documents->clearMarkers(kDocument);
    EXPECT_EQ(events().back().kind, TraceEvent::Kind::Entry);
}

TEST_F(TraceDocumentTest, ASavedTraceOpensWithItsEvents)
{
    makeDocuments({TraceTrigger{"Steps", "terminal_write", true}});
    open();
    documents->selectTrigger(kDocument, "Steps");
    recordToEnd();
    documents->setMarker(kDocument, 3);
    documents->exportTo(kDocument, "before.csv", 1);
    documents->save(kDocument);
    documents->close(kDocument, false);

    documents->open(kDocument, true, std::nullopt, false);
    documents->exportTo(kDocument, "after.csv", 1);
    EXPECT_EQ(fileText("after.csv"), fileText("before.csv"));
    documents->withTrace(kDocument, [](TraceDocument& trace) { EXPECT_EQ(trace.trigger(), "Steps"); });
}

TEST_F(TraceDocumentTest, ExportFormatsAreTheTraceOnes)
{
    open();
    const AnalyzerError text = analyzerError([&] { documents->setExportFormat(kDocument, "HTML"); });
    EXPECT_EQ(text.kind(), AnalyzerError::Kind::InvalidArgument);
    EXPECT_STREQ(text.what(), "unknown export format 'HTML' for analyzer document 'trace.trd' (Text, CSV, Binary)");
    const AnalyzerError number = analyzerError([&] { documents->exportTo(kDocument, "x", 3); });
    EXPECT_EQ(number.kind(), AnalyzerError::Kind::InvalidArgument);
    EXPECT_STREQ(number.what(), "unknown export format number 3 for analyzer document 'trace.trd' (0 Text, 1 CSV, 2 Binary)");
}

} // namespace
} // namespace quillon::services
