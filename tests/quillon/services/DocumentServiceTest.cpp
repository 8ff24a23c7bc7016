// Documents by file name: opening modes, saving and closing, the terminal, and what a running target forbids.
#include "AnalyzerFixture.h"

namespace quillon::services {
namespace {

using Kind = AnalyzerError::Kind;

class DocumentServiceTest : public AnalyzerFixture {
protected:
    void expectError(const std::function<void()>& operation, Kind kind, const std::string& text)
    {
        const AnalyzerError error = analyzerError(operation);
        EXPECT_EQ(error.kind(), kind) << error.what();
        EXPECT_EQ(error.what(), text);
    }

    /// The core running spin_forever on the run thread.
    void spin()
    {
        debug->setExecutionPoint(0, function("spin_forever").address);
        debug->run();
        ASSERT_TRUE(target->isRunning());
    }

    void halt()
    {
        debug->stop();
        ASSERT_TRUE(debug->waitUntilStopped(std::chrono::seconds(10)));
    }
};

TEST_F(DocumentServiceTest, OpeningFindsTheOpenDocumentOrItsFileOrMakesOne)
{
    const std::string missing = (folder / "missing.trd").string();
    expectError([&] { documents->open("missing.trd", true, std::nullopt, false); }, Kind::FileNotFound,
                "document 'missing.trd' is neither open nor saved: no file '" + missing + "'");
    expectError([&] { documents->open("", true, std::nullopt, false); }, Kind::FileNotFound,
                "no untitled document is open");

    documents->open("a.trd", false, Document::Kind::Coverage, false);
    expectError([&] { documents->open("a.trd", false, Document::Kind::Analyzer, false); }, Kind::InvalidArgument,
                "coverage document 'a.trd' is open already, so it cannot be opened as a analyzer document");
    // Another name of the same file is the same document.
    documents->open("sub/../a.trd", true, std::nullopt, false);
    documents->start("./a.trd");
    EXPECT_TRUE(documents->isActive("a.trd"));
    EXPECT_FALSE(std::filesystem::exists(folder / "a.trd")) << "opening writes nothing";

    std::ofstream(folder / "not-a-document.trd") << "hello\n";
    expectError([&] { documents->open("not-a-document.trd", true, std::nullopt, false); }, Kind::Failed,
                "document file '" + (folder / "not-a-document.trd").string()
                    + "', line 1: not a Quillon document (the first line must be 'quillon-document 1')");
}

TEST_F(DocumentServiceTest, AppendingOpensTheSavedDocumentWhereWritingStartsAnew)
{
    documents->open("t.trd", false, Document::Kind::Analyzer, true);
    documents->start("t.trd");
    runToEnd();
    documents->close("t.trd", false); // stops and saves
    ASSERT_TRUE(std::filesystem::exists(folder / "t.trd"));
    auto count = [&] {
        return documents->withTrace("t.trd", [](TraceDocument& t) { return t.recording().events().size(); });
    };

    documents->open("t.trd", false, Document::Kind::Analyzer, false); // "a"
    EXPECT_EQ(count(), 12u);
    documents->close("t.trd", true);
    documents->open("t.trd", false, Document::Kind::Analyzer, true); // "w"
    EXPECT_EQ(count(), 0u);
}

TEST_F(DocumentServiceTest, SavingNeedsAFileNameAndSavingAsRenames)
{
    documents->open("", false, Document::Kind::Analyzer, false);
    documents->start("");
    expectError([&] { documents->close("", false); }, Kind::IllegalState,
                "untitled analyzer document has changes and no file: save it as a file or close it discarding them");
    expectError([&] { documents->save(""); }, Kind::InvalidArgument,
                "untitled analyzer document has no file: save it as a file");
    documents->open("other.trd", false, Document::Kind::Coverage, false);
    expectError([&] { documents->saveAs("", "other.trd"); }, Kind::InvalidArgument,
                "cannot save untitled analyzer document as 'other.trd': that document is open");

    documents->saveAs("", "named.trd");
    EXPECT_EQ(fileText("named.trd").rfind("quillon-document 1\nkind analyzer\ntrigger Trigger0\n", 0), 0u);
    EXPECT_TRUE(documents->isActive("named.trd")) << "the same document under its new name";
    expectError([&] { documents->isActive(""); }, Kind::NotFound, "the untitled document is not open");
    documents->close("named.trd", true);
    expectError([&] { documents->close("named.trd", true); }, Kind::NotFound, "document 'named.trd' is not open");
}

TEST_F(DocumentServiceTest, StopTellsWhetherItRecordedAndCloseAllClosesEveryDocument)
{
    documents->open("a.trd", false, Document::Kind::Analyzer, false);
    documents->open("b.trd", false, Document::Kind::Coverage, false);
    EXPECT_FALSE(documents->stop("a.trd"));
    documents->start("a.trd");
    EXPECT_TRUE(documents->isActive("a.trd"));
    EXPECT_TRUE(documents->stop("a.trd"));
    EXPECT_FALSE(documents->isActive("a.trd"));
    documents->openTerminal();

    documents->closeAll();
    EXPECT_TRUE(std::filesystem::exists(folder / "a.trd")) << "the changed one was saved";
    EXPECT_FALSE(std::filesystem::exists(folder / "b.trd")) << "the unchanged one had nothing to save";
    expectError([&] { documents->isActive("b.trd"); }, Kind::NotFound, "document 'b.trd' is not open");
    EXPECT_TRUE(documents->isTerminalActive()) << "the terminal is no document of the list";
}

TEST_F(DocumentServiceTest, TheTerminalShowsWhatTheFirmwareWritesToTheUart)
{
    documents->openTerminal();
    runToEnd();
    EXPECT_EQ(documents->terminalText(), "hello\n");

    EXPECT_TRUE(documents->stopTerminal());
    debug->reset();
    runToEnd();
    EXPECT_EQ(documents->terminalText(), "hello\n") << "nothing while stopped";
    documents->startTerminal();
    debug->reset();
    runToEnd();
    EXPECT_EQ(documents->terminalText(), "hello\nhello\n");

    documents->saveTerminalAs("terminal.txt");
    EXPECT_EQ(fileText("terminal.txt"), "hello\nhello\n");
    documents->closeTerminal();
    EXPECT_EQ(documents->terminalText(), "");
    expectError([&] { documents->stopTerminal(); }, Kind::NotFound, "the terminal is not open");
}

TEST_F(DocumentServiceTest, WithoutAUartThereIsNoTerminal)
{
    makeDocuments({}, std::nullopt);
    expectError([&] { documents->openTerminal(); }, Kind::NotAvailable,
                "the workspace names no UART for the terminal (terminal: {uart: <data register address>})");
}

TEST_F(DocumentServiceTest, ARunningTargetAllowsStoppingButNotStartingReadingOrClosing)
{
    documents->open("c.trd", false, Document::Kind::Coverage, true);
    documents->open("t.trd", false, Document::Kind::Analyzer, true);
    documents->start("c.trd");
    spin();
    expectError([&] { documents->start("t.trd"); }, Kind::IllegalState,
                "cannot start recording of analyzer document 't.trd' while the target runs; stop it first");
    expectError([&] { coverage->statistic("c.trd", 1, 0, 0xff); }, Kind::IllegalState,
                "cannot count the coverage of coverage document 'c.trd' while the target runs and it records; stop "
                "the target first");
    EXPECT_TRUE(documents->stop("c.trd"));
    expectError([&] { documents->close("c.trd", true); }, Kind::IllegalState,
                "cannot close coverage document 'c.trd' while the target runs and it records; stop the target first");
    halt();
    // spin_forever: 18e ldr, 190 adds, 192 str, 194 b 18e ran; 18c ran only if the run began there.
    const SymbolInfo spinning = function("spin_forever");
    EXPECT_EQ(coverage->statistic("c.trd", 2, spinning.address, spinning.address + spinning.size - 1), 10u);
    documents->close("c.trd", true);
}

} // namespace
} // namespace quillon::services
