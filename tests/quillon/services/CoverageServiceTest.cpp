// Coverage of the analyzer firmware's functions, counted by hand from its disassembly (arm-none-eabi-objdump -d
// build/firmware/analyzers.elf, gcc 12.2 -O1). The code of the functions under test:
//
//   note           a8 ldr r2,[pc,#8]   aa ldr   ac add   ae str   b0 bx lr   b2 nop   b4 .word (literal pool)
//   scale          b8 add.w (4)        bc adds  be bx lr
//   classify       c0 push   c2 mov   c4 cbz r0,d4   c6 cmp   c8 blt de   ca movs   cc bl note (4)   d0 movs
//                  d2 pop {r4,pc}   d4 movs   d6 bl note (4)   da mov   dc b d2   de mov.w (4)   e2 bl note (4)
//                  e6 mov.w (4)   ea b d2                                                     -> 44 bytes, 2 branches
//   count_nonzero  ec push   ee subs   f0 ble 112   f2 subs   f4 movs   f6 mov   f8 b 100   fa adds   fc cmp
//                  fe beq 114   100 ldr.w (4)   104 cmp   106 beq fa   108 mov   10a bl note (4)   10e adds
//                  110 b fa   112 movs   114 mov   116 pop                                    -> 44 bytes, 3 branches
//   unused         154 cmp   156 it gt   158 subgt   15a bx lr                               -> 8 bytes, no branch
//
// Instructions are 2 bytes unless marked (4). The debug information gives each function the bytes up to the next
// one, literal pool included (note: 16 bytes); coverage counts instruction bytes only.
#include <filesystem>

#include "CoverageFixture.h"

namespace quillon::services {

namespace {

class CoverageServiceTest : public CoverageFixture {
protected:
    template <class F> void record(F&& calls)
    {
        documents->start(kDocument);
        calls();
        EXPECT_TRUE(documents->stop(kDocument));
    }

    void configure(std::uint32_t item, const std::string& text, std::uint32_t value = 0)
    {
        coverage->configure(kDocument, item, text, value);
    }
};

struct CallCase {
    const char* function;
    const char* argument;
    bool returnsValue;
    CoverageCounts expected;
    const char* reasoning;
};

TEST_F(CoverageServiceTest, OneCallCountsTheBytesThatRanAndWhereEachBranchWent)
{
    const CallCase cases[] = {
        {"classify", "4", true, {44, 20, 2, 2, 0, 2, 0},
         "c0 c2 c4(cbz on) c6 c8(blt on) ca cc(4) d0 d2: 20 bytes; both branches went on"},
        {"classify", "0", true, {44, 18, 2, 1, 1, 0, 0},
         "c0 c2 c4(cbz to d4) d4 d6(4) da dc(b d2) d2: 18 bytes; blt never ran"},
        {"classify", "-5", true, {44, 26, 2, 2, 1, 1, 0},
         "c0 c2 c4(cbz on) c6 c8(blt to de) de(4) e2(4) e6(4) ea(b d2) d2: 26 bytes"},
        {"scale", "1", true, {8, 8, 0, 0, 0, 0, 0}, "three instructions, all run"},
        {"note", "1", false, {12, 10, 0, 0, 0, 0, 0},
         "a8..b3 are code (the nop at b2 never runs), b4..b7 the literal pool"},
    };
    for (const CallCase& c : cases) {
        SCOPED_TRACE(std::string(c.function) + "(" + c.argument + "): " + c.reasoning);
        documents->open(kDocument, false, Document::Kind::Coverage, true);
        record([&] { call(c.function, {c.argument}, c.returnsValue); });
        EXPECT_EQ(of(c.function), c.expected);
    }
}

TEST_F(CoverageServiceTest, CallsOfOneRecordingAddUpToEveryByteAndBothWaysOfEachBranch)
{
    record([&] {
        EXPECT_EQ(call("classify", {"4"}), "1");
        EXPECT_EQ(call("classify", {"0"}), "0");
        EXPECT_EQ(call("classify", {"-5"}), "-1");
    });
    // The three paths together run all 44 bytes; cbz and blt each went both ways.
    EXPECT_EQ(of("classify"), (CoverageCounts{44, 44, 2, 2, 0, 0, 2}));
    // note ran from each path, the functions not called not at all.
    EXPECT_EQ(of("note").bytesExecuted, 10u);
    EXPECT_EQ(of("unused"), (CoverageCounts{8, 0, 0, 0, 0, 0, 0})) << "an IT block is no branch";
    EXPECT_EQ(of("count_nonzero"), (CoverageCounts{44, 0, 3, 0, 0, 0, 0}));
}

TEST_F(CoverageServiceTest, ALoopRunsItsTestOnceMoreThanItsBody)
{
    // g_values = {3, 0, -2, 0}: the body's beq at 106 goes on for 3 and -2 and back for the zeros; the loop test
    // beq at fe goes on three times and leaves at i = 4; ble at f0 goes on once, so movs at 112 never runs.
    record([&] { EXPECT_EQ(call("count_nonzero", {"&g_values[0]", "4"}), "2"); });
    EXPECT_EQ(of("count_nonzero"), (CoverageCounts{44, 42, 3, 3, 0, 1, 2}));
}

TEST_F(CoverageServiceTest, ResumeAddsToTheRecordingWhereStartBeginsANewOne)
{
    record([&] { call("classify", {"4"}); });
    documents->resume(kDocument);
    call("classify", {"0"});
    documents->stop(kDocument);
    // 20 bytes of the first path and d4, d6(4), da, dc of the second; cbz went on, then to d4 (both ways); blt
    // went on in the first call and did not run in the second.
    EXPECT_EQ(of("classify"), (CoverageCounts{44, 30, 2, 2, 0, 1, 1}));

    record([&] { call("classify", {"0"}); });
    EXPECT_EQ(of("classify"), (CoverageCounts{44, 18, 2, 1, 1, 0, 0}));
}

TEST_F(CoverageServiceTest, WithoutDecisionCoverageBranchesCountAsExecutedOnly)
{
    configure(CoverageService::Option1Item, "", CoverageConfiguration::kMeasureCode);
    record([&] { call("classify", {"4"}); });
    EXPECT_EQ(of("classify"), (CoverageCounts{44, 20, 2, 2, 0, 0, 0}));
}

TEST_F(CoverageServiceTest, IncludesOnlyMeasuresTheIncludedFunctionsAndNothingElse)
{
    EXPECT_FALSE(coverage->configure(kDocument, CoverageService::CreateRangesetItem, "kestrix.test", 0));
    EXPECT_TRUE(coverage->configure(kDocument, CoverageService::CreateRangesetItem, "kestrix.test", 0))
        << "the second time it exists";
    configure(CoverageService::ScopeItem, "", 3);
    configure(CoverageService::RangesetScopeItem, "", 3);
    configure(CoverageService::IncludeFirstItem + 2, "classify");
    configure(CoverageService::IncludeFirstItem + 2, "classify"); // twice is once
    record([&] { call("classify", {"4"}); });

    const SymbolInfo classify = function("classify");
    const std::vector<SpanSet::Span> active = coverage->activeRanges(kDocument);
    ASSERT_EQ(active.size(), 1u);
    EXPECT_EQ(active[0], (SpanSet::Span{classify.address, classify.address + classify.size}));
    EXPECT_EQ(of("classify"), (CoverageCounts{44, 20, 2, 2, 0, 2, 0}));
    EXPECT_EQ(of("note"), CoverageCounts{}) << "note ran, but lies outside the measured code";
}

TEST_F(CoverageServiceTest, MinusExcludesMeasuresAllDownloadedCodeButTheExcluded)
{
    configure(CoverageService::CreateRangesetItem, "without classify");
    configure(CoverageService::ScopeItem, "", 3);
    configure(CoverageService::RangesetScopeItem, "", 1);
    configure(CoverageService::ExcludeFirstItem + 2, "classify");
    record([&] { call("classify", {"4"}); });
    EXPECT_EQ(of("classify"), CoverageCounts{});
    EXPECT_EQ(of("note"), (CoverageCounts{12, 10, 0, 0, 0, 0, 0}));
    EXPECT_EQ(of("scale").bytes, 8u);
}

TEST_F(CoverageServiceTest, TheBitmapShowsCodeBranchesAndOutcomesByteForByte)
{
    record([&] { call("classify", {"0"}); });
    const std::vector<std::uint8_t> bitmap = coverage->bitmap(kDocument, 0xa8, 0xeb);
    auto at = [&](std::uint32_t address) { return bitmap.at(address - 0xa8); };
    using M = CoverageMarks;
    EXPECT_EQ(at(0xc4), M::Executed | M::Code | M::BranchStart | M::Taken) << "cbz went to d4";
    EXPECT_EQ(at(0xc5), M::Executed | M::Code);
    EXPECT_EQ(at(0xc8), M::Code | M::BranchStart) << "blt never ran";
    EXPECT_EQ(at(0xca), M::Code);
    EXPECT_EQ(at(0xd6), M::Executed | M::Code);
    EXPECT_EQ(at(0xd9), M::Executed | M::Code) << "last byte of bl note";
    EXPECT_EQ(at(0xb2), M::Code) << "note's nop";
    EXPECT_EQ(at(0xb4), 0) << "note's literal pool";
    EXPECT_EQ(at(0xb7), 0);
}

TEST_F(CoverageServiceTest, RangesResolveFunctionsModulesFoldersAndItems)
{
    const SymbolInfo classify = function("classify");
    const SymbolInfo unused = function("unused");
    using K = CoverageConfiguration::ItemKind;
    const auto functionRanges = coverage->resolve(kDocument, std::uint32_t(K::Function), "classify");
    ASSERT_EQ(functionRanges.size(), 1u);
    EXPECT_EQ(functionRanges[0], (SpanSet::Span{classify.address, classify.address + classify.size}));

    // The module and the folder of analyzers.c hold all of its functions, so note to unused and more.
    for (const auto& [kind, name] : std::vector<std::pair<K, std::string>>{
             {K::Module, "analyzers.c"},
             {K::Folder, std::string(KESTRIX_SOURCE_DIR) + "/tests/firmware/analyzers"}}) {
        SpanSet spans;
        for (const auto& span : coverage->resolve(kDocument, std::uint32_t(kind), name)) {
            spans.add(span.begin, span.end);
        }
        EXPECT_TRUE(spans.contains(function("note").address)) << name;
        EXPECT_TRUE(spans.contains(unused.address + unused.size - 1)) << name;
        EXPECT_FALSE(spans.contains(function("Reset_Handler").address)) << name << ": startup.c is another module";
    }

    const auto range = coverage->resolve(kDocument, std::uint32_t(K::Item), "0x100-0x10f");
    EXPECT_EQ(range, (std::vector<SpanSet::Span>{{0x100, 0x110}}));
    const auto variable = coverage->resolve(kDocument, std::uint32_t(K::Item), "g_values");
    EXPECT_EQ(variable, (std::vector<SpanSet::Span>{{0x20000000, 0x20000010}})) << "16 bytes of int32_t[4]";
}

TEST_F(CoverageServiceTest, WrongItemsAndValuesFailNamingWhatIsWrong)
{
    using Kind = AnalyzerError::Kind;
    struct Case {
        std::function<void()> operation;
        Kind kind;
        const char* text;
    };
    const Case cases[] = {
        {[&] { configure(CoverageService::IncludeFirstItem + 2, "classify"); }, Kind::IllegalState,
         "no active rangeset to include an item in; create a rangeset first"},
        {[&] { configure(CoverageService::ScopeItem, "", 4); }, Kind::InvalidArgument, "bad coverage scope 4"},
        {[&] { configure(15, ""); }, Kind::InvalidArgument, "unknown coverage configuration item 15"},
        {[&] { configure(CoverageService::ActiveRangesetItem, "nowhere"); }, Kind::NotFound, "no rangeset 'nowhere'"},
        {[&] { coverage->statistic(kDocument, 8, 0, 1); }, Kind::InvalidArgument, "unknown coverage statistic 8"},
        {[&] { coverage->bitmap(kDocument, 0x10, 0xf); }, Kind::InvalidArgument,
         "the range 0x00000010 to 0x0000000f ends before it starts"},
        {[&] { coverage->resolve(kDocument, 2, "no_such_function"); }, Kind::NotFound,
         "no function 'no_such_function' in the downloaded programs"},
        {[&] { coverage->resolve(kDocument, 1, "nowhere.c"); }, Kind::NotFound,
         "no module 'nowhere.c' in the downloaded programs"},
        {[&] { coverage->resolve(kDocument, 3, "0x20-0x10"); }, Kind::InvalidArgument, "bad address range '0x20-0x10'"},
        {[&] { coverage->resolve(kDocument, 4, "x"); }, Kind::InvalidArgument, "bad range item kind 4"},
        {[&] { coverage->activeRanges("other.trd"); }, Kind::FileNotFound,
         "document 'other.trd' is neither open nor saved"},
        {[&] { coverage->configure("other.trd", CoverageService::ClearItem, "", 0); }, Kind::NotFound,
         "document 'other.trd' is not open"},
    };
    for (const Case& c : cases) {
        const AnalyzerError error = analyzerError(c.operation);
        SCOPED_TRACE(error.what());
        EXPECT_EQ(error.kind(), c.kind);
        EXPECT_EQ(std::string(error.what()).rfind(c.text, 0), 0u);
    }
    configure(CoverageService::CreateRangesetItem, "set");
    const AnalyzerError unknown =
        analyzerError([&] { configure(CoverageService::IncludeFirstItem + 2, "no_such_function"); });
    EXPECT_EQ(unknown.kind(), AnalyzerError::Kind::NotFound);
    EXPECT_STREQ(unknown.what(), "no function 'no_such_function' in the downloaded programs");
}

TEST_F(CoverageServiceTest, ASavedDocumentOpensWithItsConfigurationAndCoverage)
{
    configure(CoverageService::CreateRangesetItem, "first");
    configure(CoverageService::IncludeFirstItem + 2, "scale");
    configure(CoverageService::CreateRangesetItem, "second");
    configure(CoverageService::ScopeItem, "", 3);
    configure(CoverageService::IncludeFirstItem + 2, "classify");
    configure(CoverageService::IncludeFirstItem + 1, "analyzers.c");
    configure(CoverageService::ActiveRangesetItem, "", 1);
    record([&] {
        call("classify", {"-5"});
        call("count_nonzero", {"&g_values[0]", "4"});
    });
    const CoverageCounts classify = of("classify");
    const CoverageCounts loop = of("count_nonzero");
    const std::vector<SpanSet::Span> active = coverage->activeRanges(kDocument);
    documents->close(kDocument, false); // saves the changed document

    const std::string saved = fileText(kDocument);
    EXPECT_EQ(saved.rfind("quillon-document 1\nkind coverage\n", 0), 0u) << saved;
    EXPECT_NE(saved.find("\nrangeset second\ninclude function classify\ninclude module analyzers.c\n"),
              std::string::npos) << saved;

    documents->open(kDocument, true, std::nullopt, false);
    EXPECT_EQ(of("classify"), classify);
    EXPECT_EQ(of("count_nonzero"), loop);
    EXPECT_EQ(coverage->activeRanges(kDocument), active);
    EXPECT_FALSE(documents->isActive(kDocument));
}

// A run reads its coverage after the document was closed: the saved file answers, a discarded one is gone.
TEST_F(CoverageServiceTest, AClosedDocumentAnswersFromItsSavedFileOnly)
{
    configure(CoverageService::CreateRangesetItem, "only");
    configure(CoverageService::IncludeFirstItem + 2, "classify");
    record([&] { call("classify", {"-5"}); });
    const CoverageCounts measured = of("classify");
    documents->save(kDocument);
    documents->close(kDocument, true);
    EXPECT_EQ(of("classify"), measured);
    EXPECT_FALSE(coverage->activeRanges(kDocument).empty());
    EXPECT_THROW(coverage->configure(kDocument, CoverageService::ClearItem, "", 0), AnalyzerError)
        << "changes need the open document";

    std::filesystem::remove(documents->pathOf(kDocument));
    try {
        coverage->statistic(kDocument, 1, 0, 0xff);
        ADD_FAILURE() << "a document neither open nor saved has no coverage";
    } catch (const AnalyzerError& e) {
        EXPECT_EQ(e.kind(), AnalyzerError::Kind::FileNotFound) << e.what();
    }
}

TEST_F(CoverageServiceTest, TheCsvExportHasARowAFunctionOfTheMeasuredCodeAndATotal)
{
    configure(CoverageService::CreateRangesetItem, "set");
    configure(CoverageService::ScopeItem, "", 3);
    configure(CoverageService::IncludeFirstItem + 2, "scale");
    configure(CoverageService::IncludeFirstItem + 2, "classify");
    record([&] { call("classify", {"4"}); });
    documents->exportTo(kDocument, "cov.csv", 2);
    EXPECT_EQ(fileText("cov.csv"),
              "function,first,last,bytes,bytes_executed,branches,branches_executed,taken,not_taken,both\n"
              "scale,0x000000b8,0x000000bf,8,0,0,0,0,0,0\n"
              "classify,0x000000c0,0x000000eb,44,20,2,2,0,2,0\n"
              "(total),,,52,20,2,2,0,2,0\n");

    documents->setExportFormat(kDocument, "XML");
    documents->exportTo(kDocument, "cov.xml", 0xFFFFFFFF);
    const std::string xml = fileText("cov.xml");
    EXPECT_NE(xml.find("<function name=\"classify\" first=\"0x000000c0\" last=\"0x000000eb\" bytes=\"44\" "
                       "bytes_executed=\"20\""),
              std::string::npos) << xml;

    const AnalyzerError number = analyzerError([&] { documents->exportTo(kDocument, "cov.txt", 7); });
    EXPECT_EQ(number.kind(), AnalyzerError::Kind::InvalidArgument);
    EXPECT_EQ(std::string(number.what()).rfind("unknown export format number 7 for coverage document 'cov.trd'", 0), 0u);
    const AnalyzerError unknown = analyzerError([&] { documents->setExportFormat(kDocument, "csv"); });
    EXPECT_EQ(unknown.kind(), AnalyzerError::Kind::InvalidArgument);
    EXPECT_EQ(std::string(unknown.what()).rfind("unknown export format 'csv' for coverage document 'cov.trd'", 0), 0u);
}

} // namespace
} // namespace quillon::services
