// The line-by-line coverage exports (Review (Text), Review (HTML), XML2), counted by hand from the analyzer
// firmware's disassembly with source lines (arm-none-eabi-objdump -dl):
//
//   classify       27: c0 push   28: c2 mov, c4 cbz   32: c6 cmp, c8 blt   36: ca movs, cc bl (4)   37: d0 movs
//                  38: d2 pop    29: d4 movs, d6 bl (4)   30: da mov, dc b   33: de mov.w (4), e2 bl (4)
//                  34: e6 mov.w (4), ea b
//   count_nonzero  42: ec push   44: ee subs, f0 ble, f2 subs, f4 movs, fa adds, fc cmp, fe beq   43: f6 mov, f8 b,
//                  112 movs   45: 100 ldr.w (4), 104 cmp, 106 beq   46: 108 mov, 10a bl (4)   47: 10e adds, 110 b
//                  51: 114 mov, 116 pop
#include <filesystem>
#include <fstream>

#include "AnalyzerFixture.h"

namespace quillon::services {
namespace {

const std::string kDocument = "review.trd";
const std::string kSource = std::string(KESTRIX_SOURCE_DIR) + "/tests/firmware/analyzers/analyzers.c";

class CoverageReviewTest : public AnalyzerFixture {
protected:
    void SetUp() override
    {
        AnalyzerFixture::SetUp();
        runToMain();
    }

    /// Documents whose review exports find source files through `locate`.
    void useLocator(CoverageListing::Locator locate)
    {
        makeDocuments({});
        documents->setSourceLocator(std::move(locate));
    }

    /// Records the calls with only `function` measured, and exports it in `format` (its number).
    std::string exported(const std::string& function, std::uint32_t format,
                         const std::vector<std::vector<std::string>>& calls)
    {
        documents->open(kDocument, false, Document::Kind::Coverage, true);
        coverage->configure(kDocument, CoverageService::CreateRangesetItem, "only", 0);
        coverage->configure(kDocument, CoverageService::ScopeItem, "", 3);
        coverage->configure(kDocument, CoverageService::RangesetScopeItem, "", 3);
        coverage->configure(kDocument, CoverageService::IncludeFirstItem + 2, function, 0);
        documents->start(kDocument);
        for (const auto& arguments : calls) {
            call(function, arguments);
        }
        documents->stop(kDocument);
        documents->exportTo(kDocument, "review.out", format);
        return fileText("review.out");
    }
};

constexpr std::uint32_t kReviewHtml = 4;
constexpr std::uint32_t kReviewText = 5;
constexpr std::uint32_t kXml2 = 6;

TEST_F(CoverageReviewTest, TheTextReviewListsTheSourceOfEachFunctionWithEachLineMarked)
{
    // classify(4): lines 27, 28, 32, 36, 37, 38 ran (20 bytes of 44), 29, 30, 33, 34 did not; both branches went
    // on to the next instruction; 31 and 35 have no code.
    const std::string summary =
        "code 20 of 44 bytes executed (45.5%); branches 2 of 2 executed (100.0%): 0 taken, 2 not taken, 0 both";
    EXPECT_EQ(exported("classify", kReviewText, {{"4"}}),
              "Coverage review of review.trd\n"
              "\n"
              "function classify 0x000000c0-0x000000eb\n"
              "  " + summary + "\n"
              "  source " + kSource + "\n"
              "  +    27  {\n"
              "  +    28      if (value == 0) {\n"
              "           branch 0x000000c4: not taken\n"
              "  -    29          note(100);\n"
              "  -    30          return 0;\n"
              "       31      }\n"
              "  +    32      if (value < 0) {\n"
              "           branch 0x000000c8: not taken\n"
              "  -    33          note(-1);\n"
              "  -    34          return -1;\n"
              "       35      }\n"
              "  +    36      note(1);\n"
              "  +    37      return 1;\n"
              "  +    38  }\n"
              "\n"
              "total: " + summary + "\n");
}

TEST_F(CoverageReviewTest, XmlTwoHasTheLinesOfCodeWithTheirCountsAsAttributes)
{
    // count_nonzero(g_values, 4), g_values {3, 0, -2, 0}: only movs at 112 (line 43) never runs; ble at f0 went on,
    // the loop test beq at fe and the body's beq at 106 went both ways.
    const std::string xml = exported("count_nonzero", kXml2, {{"&g_values[0]", "4"}});
    auto counts = [](int bytes, int executed, int branches, int branchesExecuted, int notTaken, int both) {
        return " bytes=\"" + std::to_string(bytes) + "\" bytes_executed=\"" + std::to_string(executed)
               + "\" branches=\"" + std::to_string(branches) + "\" branches_executed=\""
               + std::to_string(branchesExecuted) + "\" taken=\"0\" not_taken=\"" + std::to_string(notTaken)
               + "\" both=\"" + std::to_string(both) + "\"";
    };
    EXPECT_EQ(xml,
              "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
              "<coverage2 document=\"review.trd\">\n"
              "  <function name=\"count_nonzero\" first=\"0x000000ec\" last=\"0x00000117\"" + counts(44, 42, 3, 3, 1, 2) + ">\n"
              "    <file path=\"" + kSource + "\" found=\"true\">\n"
              "      <line number=\"42\" status=\"executed\" first=\"0x000000ec\" last=\"0x000000ed\"" + counts(2, 2, 0, 0, 0, 0) + "/>\n"
              "      <line number=\"43\" status=\"partly\" first=\"0x000000f6\" last=\"0x00000113\"" + counts(6, 4, 0, 0, 0, 0) + "/>\n"
              "      <line number=\"44\" status=\"executed\" first=\"0x000000ee\" last=\"0x000000ff\"" + counts(14, 14, 2, 2, 1, 1) + "/>\n"
              "      <line number=\"45\" status=\"executed\" first=\"0x00000100\" last=\"0x00000107\"" + counts(8, 8, 1, 1, 0, 1) + "/>\n"
              "      <line number=\"46\" status=\"executed\" first=\"0x00000108\" last=\"0x0000010d\"" + counts(6, 6, 0, 0, 0, 0) + "/>\n"
              "      <line number=\"47\" status=\"executed\" first=\"0x0000010e\" last=\"0x00000111\"" + counts(4, 4, 0, 0, 0, 0) + "/>\n"
              "      <line number=\"51\" status=\"executed\" first=\"0x00000114\" last=\"0x00000117\"" + counts(4, 4, 0, 0, 0, 0) + "/>\n"
              "    </file>\n"
              "  </function>\n"
              "  <total" + counts(44, 42, 3, 3, 1, 2) + "/>\n"
              "</coverage2>\n");
}

TEST_F(CoverageReviewTest, TheHtmlReviewHasARowALineWithItsStatusAndEscapedText)
{
    const std::string html = exported("count_nonzero", kReviewHtml, {{"&g_values[0]", "4"}});
    const std::string rows[] = {
        "<tr class=\"executed\"><td>+</td><td>42</td><td><pre>{</pre></td><td></td></tr>\n",
        "<tr class=\"partly\"><td>~</td><td>43</td><td><pre>    int32_t found = 0;</pre></td><td></td></tr>\n",
        "<tr class=\"executed\"><td>+</td><td>44</td><td><pre>    for (int32_t i = 0; i &lt; count; ++i) {</pre>"
        "</td><td>0x000000f0 not taken<br>0x000000fe both</td></tr>\n",
        "<tr class=\"no-code\"><td> </td><td>48</td><td><pre>        }</pre></td><td></td></tr>\n",
    };
    for (const std::string& row : rows) {
        EXPECT_NE(html.find(row), std::string::npos) << row << "\n" << html;
    }
    EXPECT_EQ(html.rfind("<!DOCTYPE html>\n", 0), 0u);
    EXPECT_NE(html.find("<h2>count_nonzero 0x000000ec-0x00000117</h2>"), std::string::npos);
    EXPECT_NE(html.find("<p class=\"total\">total: code 42 of 44 bytes executed (95.5%)"), std::string::npos);
}

TEST_F(CoverageReviewTest, SourcesComeFromTheLocatorAndAMissingOneShowsTheAddresses)
{
    // A copy of the source with line 28 changed, where the locator says it is.
    const std::filesystem::path copy = folder / "elsewhere.c";
    {
        std::ifstream in(kSource);
        std::ofstream out(copy);
        std::string line;
        for (unsigned number = 1; std::getline(in, line); ++number) {
            out << (number == 28 ? "    if (value == 0) { /* the copy */" : line) << '\n';
        }
    }
    useLocator([&](const std::string& path) { return path == kSource ? copy.string() : path; });
    const std::string copied = exported("classify", kReviewText, {{"0"}});
    EXPECT_NE(copied.find("  source " + copy.string() + "\n"), std::string::npos) << copied;
    EXPECT_NE(copied.find("  +    28      if (value == 0) { /* the copy */\n           branch 0x000000c4: taken\n"),
              std::string::npos) << copied;

    // classify(0) ran c0..c5 (27, 28), d2 (38), d4..dd (29, 30); without the file only lines of code are listed.
    useLocator([](const std::string& path) { return path + ".missing"; });
    const std::string missing = exported("classify", kReviewText, {{"0"}});
    const std::string expected = "  source " + kSource + " (not found)\n"
                                 "  +    27  0x000000c0-0x000000c1\n"
                                 "  +    28  0x000000c2-0x000000c5\n"
                                 "           branch 0x000000c4: taken\n"
                                 "  +    29  0x000000d4-0x000000d9\n"
                                 "  +    30  0x000000da-0x000000dd\n"
                                 "  -    32  0x000000c6-0x000000c9\n"
                                 "           branch 0x000000c8: not executed\n"
                                 "  -    33  0x000000de-0x000000e5\n"
                                 "  -    34  0x000000e6-0x000000eb\n"
                                 "  -    36  0x000000ca-0x000000cf\n"
                                 "  -    37  0x000000d0-0x000000d1\n"
                                 "  +    38  0x000000d2-0x000000d3\n\n";
    EXPECT_NE(missing.find(expected), std::string::npos) << missing;
    EXPECT_NE(missing.find("code 18 of 44 bytes executed (40.9%); branches 1 of 2 executed (50.0%): 1 taken, "
                           "0 not taken, 0 both"),
              std::string::npos) << missing;
}

} // namespace
} // namespace quillon::services
