#include <gtest/gtest.h>

#include <cstdio>
#include <functional>
#include <string>
#include <vector>

#include "CAnalyzerDocController.h"
#include "CDocumentController.h"
#include "CTerminalDocController.h"
#include "ControllerTestSupport.h"
#include "Exceptions.h"

using namespace kestrix;

namespace {

class DocumentControllerTest : public ControllerTest {
protected:
    void SetUp() override
    {
        ControllerTest::SetUp();
        answerDocuments(S_OK);
    }

    void answerDocuments(HRESULT hr)
    {
        script().ide.document = [hr](DWORD, const char*, const char*, DWORD) { return hr; };
    }
    std::vector<std::string> documentCalls() const { return calls("OrbelIDE.Document("); }
};

struct OpeningCase {
    const char* mode;
    const char* fileName;
    DWORD plain;
    DWORD analyzer;
    DWORD coverage;
};

struct OperationCase {
    const char* name;
    std::function<void(CDocumentController&)> operation;
    const char* call;
};

} // namespace

TEST_F(DocumentControllerTest, OpeningFlagsFollowModeFileAndDocumentType)
{
    // "r" and "u" read what is there and never carry the type bits; "w" resets on opening; a
    // file name turns the action 0x08/0x0A into 0x0D/0x09.
    const OpeningCase cases[] = {
        {"r", "", 0x0A, 0x0A, 0x0A},
        {"r", "t.trd", 0x09, 0x09, 0x09},
        {"u", "", 0x0A, 0x0A, 0x0A},
        {"u", "t.trd", 0x09, 0x09, 0x09},
        {"w", "", 0xA0000008, 0xA1000008, 0xA2000008},
        {"w", "t.trd", 0xA000000D, 0xA100000D, 0xA200000D},
        {"a", "", 0x08, 0x01000008, 0x02000008},
        {"a", "t.trd", 0x0D, 0x0100000D, 0x0200000D},
    };
    for (const OpeningCase& c : cases) {
        resetFake();
        answerDocuments(S_OK);
        CDocumentController plain(mgr(), c.fileName, c.mode);
        CAnalyzerDocController analyzer(mgr(), CAnalyzerDocController::ANALYZER, c.fileName, c.mode);
        CAnalyzerDocController coverage(mgr(), CAnalyzerDocController::COVERAGE, c.fileName, c.mode);
        const auto opened = [&](DWORD flags) {
            char text[24];
            std::snprintf(text, sizeof text, "0x%X", flags);
            return std::string("OrbelIDE.Document(") + text + ", " + c.fileName + ", NULL, 0)";
        };
        EXPECT_EQ((std::vector<std::string>{opened(c.plain), opened(c.analyzer), opened(c.coverage)}),
                  documentCalls())
            << "mode '" << c.mode << "', file '" << c.fileName << "'";
    }
}

TEST_F(DocumentControllerTest, UnknownOpenModesAreRefusedAfterTheLogLine)
{
    startLogger();
    const char* modes[] = {"", "x", "W", "rw", "r "};
    for (const char* mode : modes) {
        const auto e = thrownBy<IllegalArgumentException>([&] { CDocumentController(mgr(), "t.trd", mode); });
        EXPECT_EQ(std::string("Invalid open mode! Should be one of: 'u', 'w', or 'a'. It is: ") + mode, e.getDesc());
    }
    EXPECT_TRUE(documentCalls().empty());
    // The call stands in the script although it failed.
    EXPECT_EQ(5u, loggedLines("docCtrl_t_trd = obFactory.getDocumentCtrl(\"t.trd\", ").size()) << loggedScript();
}

TEST_F(DocumentControllerTest, InstanceIdsComeFromTheLastPartOfTheFileName)
{
    startLogger();
    {
        CDocumentController a(mgr(), "C:\\work\\a b.trd", "w");
        CDocumentController b(mgr(), "", "r");
        CDocumentController c(mgr(), "dir/sub-x.trd", "a");
        CAnalyzerDocController d(mgr(), CAnalyzerDocController::ANALYZER, "C:\\x\\trace1", "u");
        CAnalyzerDocController e(mgr(), CAnalyzerDocController::COVERAGE, "cov.trd", "w");
        CTerminalDocController terminal(mgr());
    }
    EXPECT_EQ((std::vector<std::string>{
                  "docCtrl_a_b_trd = obFactory.getDocumentCtrl(\"C:\\work\\a b.trd\", \"w\")",
                  "docCtrl_ = obFactory.getDocumentCtrl(\"\", \"r\")",
                  "docCtrl_dir_sub_x_trd = obFactory.getDocumentCtrl(\"dir/sub-x.trd\", \"a\")",
                  "analyzer_trace1 = obFactory.getAnalyzerDocCtrl(kestrix.orbel.CAnalyzerDocController.ANALYZER, "
                  "\"C:\\x\\trace1\", \"u\")",
                  "analyzer_cov_trd = obFactory.getCoverageCtrl(\"cov.trd\", \"w\")",
                  "terminalDocCtrl = obFactory.getTerminalDocCtrl()",
                  // Destroyed in reverse order; the plain document writes nothing.
                  "# Dtor: ~CTerminalDocController",
                  "# Dtor: ~CAnalyzerDocController",
                  "# Dtor: ~CAnalyzerDocController",
              }),
              scriptLines());
}

TEST_F(DocumentControllerTest, EachOperationSendsItsFlagWord)
{
    const OperationCase cases[] = {
        {"start", [](CDocumentController& d) { d.start(); }, "0x10000000, d.trd, NULL, 0"},
        {"stop", [](CDocumentController& d) { d.stop(); }, "0x20000000, d.trd, NULL, 0"},
        {"resume", [](CDocumentController& d) { d.resume(); }, "0x40000000, d.trd, NULL, 0"},
        {"close", [](CDocumentController& d) { d.close(); }, "0x1, d.trd, NULL, 0"},
        {"closeDiscard", [](CDocumentController& d) { d.closeDiscard(); }, "0xB, d.trd, NULL, 0"},
        {"closeAll", [](CDocumentController& d) { d.closeAll(); }, "0x2, d.trd, NULL, 0"},
        {"reset", [](CDocumentController& d) { d.reset(0xFFFFFFFF); }, "0xA0000000, d.trd, NULL, 4294967295"},
        {"save", [](CDocumentController& d) { d.save(); }, "0x3, d.trd, NULL, 0"},
        {"saveAsPrompt", [](CDocumentController& d) { d.saveAsPrompt(); }, "0x5, d.trd, NULL, 0"},
        {"setMarker", [](CDocumentController& d) { d.setMarker(5); }, "0x10000, d.trd, NULL, 5"},
        {"clearMarker", [](CDocumentController& d) { d.clearMarker(); }, "0x20000, d.trd, NULL, 0"},
        {"setFocus", [](CDocumentController& d) { d.setFocus(2); }, "0x40000, d.trd, NULL, 2"},
    };
    CDocumentController document(mgr(), "d.trd", "r");
    for (const OperationCase& c : cases) {
        resetFake();
        answerDocuments(S_OK);
        c.operation(document);
        EXPECT_EQ(std::vector<std::string>{std::string("OrbelIDE.Document(") + c.call + ")"}, documentCalls())
            << c.name;
    }
}

TEST_F(DocumentControllerTest, SaveAsRenamesTheDocumentOnlyWhenQuillonSaved)
{
    CDocumentController document(mgr(), "old.trd", "r");
    document.saveAs("x", true);
    document.save();
    answerDocuments(E_FAIL);
    EXPECT_THROW(document.saveAs("y"), IOException);
    answerDocuments(S_OK);
    document.save();
    EXPECT_EQ((std::vector<std::string>{
                  "OrbelIDE.Document(0x9, old.trd, NULL, 0)",
                  "OrbelIDE.Document(0xC, old.trd, x, 0)",
                  "OrbelIDE.Document(0x3, x, NULL, 0)",
                  "OrbelIDE.Document(0x4, x, y, 0)",
                  "OrbelIDE.Document(0x3, x, NULL, 0)",
              }),
              documentCalls());
}

TEST_F(DocumentControllerTest, FalseAnswersAreFailuresButForStopAndIsActive)
{
    CAnalyzerDocController analyzer(mgr(), CAnalyzerDocController::ANALYZER, "t.trd", "r");
    CTerminalDocController terminal(mgr());
    CDocumentController& document = analyzer;
    answerDocuments(S_FALSE);
    EXPECT_NO_THROW(document.stop());
    EXPECT_NO_THROW(terminal.stop());
    EXPECT_FALSE(analyzer.isActive());
    answerDocuments(S_OK);
    EXPECT_TRUE(analyzer.isActive());

    answerDocuments(S_FALSE);
    const std::pair<const char*, std::function<void()>> failing[] = {
        {"kestrix::CDocumentController::save", [&] { document.save(); }},
        {"kestrix::CDocumentController::start", [&] { document.start(); }},
        {"kestrix::CDocumentController::resume", [&] { document.resume(); }},
        {"kestrix::CAnalyzerDocController::select", [&] { analyzer.select("t"); }},
        {"kestrix::CTerminalDocController::start", [&] { terminal.start(); }},
    };
    for (const auto& f : failing) {
        EXPECT_EQ(std::string("Document operation failed:") + f.first, thrownBy<IOException>(f.second).getDesc());
    }
}

TEST_F(DocumentControllerTest, FailingResultsBecomeTheirExceptions)
{
    CDocumentController document(mgr(), "C:\\d\\doc.trd", "r");
    const std::string name = "kestrix::CDocumentController::save";
    const auto save = [&] { document.save(); };

    answerDocuments(ORBEL_E_FILE_NOT_FOUND);
    EXPECT_EQ(name + ": File not found: C:\\d\\doc.trd", thrownBy<FileNotFoundException>(save).getDesc());
    answerDocuments(ORBEL_E_NOT_AVAILABLE);
    EXPECT_EQ(name + ": Not available: C:\\d\\doc.trd", thrownBy<IOException>(save).getDesc());
    answerDocuments(E_NOTIMPL);
    EXPECT_EQ(name + ": the requested operation is not implemented.",
              thrownBy<FeatureNotImplementedException>(save).getDesc());

    // Codes without a row of their own carry the code's text and the server's message.
    serverError("document is busy");
    answerDocuments(E_FAIL);
    EXPECT_EQ(name + ": General error: E_FAIL: kestrix.orbel call failed. / document is busy",
              thrownBy<IOException>(save).getDesc());
    answerDocuments(ORBEL_S_SIZE);
    EXPECT_EQ(0u, thrownBy<IOException>(save).getDesc().find(name + ": General error: ORBEL_S_SIZE"));
}

TEST_F(DocumentControllerTest, AnErrorNamesTheCallWithItsArguments)
{
    CDocumentController document(mgr(), "doc.trd", "r");
    serverError("no such marker");
    answerDocuments(ORBEL_E_ERROR);
    const auto e = thrownBy<IllegalArgumentException>([&] { document.setMarker(7); });
    EXPECT_EQ("An error occurred when calling OrbelIDE::Document() from function kestrix::CDocumentController::setMarker",
              e.getDesc());
    EXPECT_EQ("  data:\n"
              "    error: no such marker\n"
              "    flags: 65536\n"
              "    fileName: doc.trd\n"
              "    strParameter: NULL\n"
              "    dwParameter: 7\n",
              e.getData());
}

TEST_F(DocumentControllerTest, AnUnknownTriggerIsNamedWithTheCauseBehind)
{
    CAnalyzerDocController analyzer(mgr(), CAnalyzerDocController::ANALYZER, "t.trd", "r");
    answerDocuments(ORBEL_E_ERROR);
    const auto e = thrownBy<IllegalArgumentException>([&] { analyzer.select("noSuchTrigger"); });
    EXPECT_EQ("Check that trigger with the given name exists!", e.getDesc());
    EXPECT_EQ("  data:\n    triggerName: noSuchTrigger\n", e.getData());
    const std::string& cause = e.getCause();
    EXPECT_NE(std::string::npos,
              cause.find("desc: An error occurred when calling OrbelIDE::Document() from function "
                         "kestrix::CAnalyzerDocController::select\n"))
        << cause;
    EXPECT_NE(std::string::npos, cause.find("    strParameter: noSuchTrigger\n")) << cause;
    EXPECT_NE(std::string::npos, cause.find("    dwParameter: 0\n")) << cause;
    EXPECT_NE(std::string::npos, cause.find("    flags: 1342177280\n")) << cause;

    // Other failures of select pass unchanged.
    answerDocuments(ORBEL_E_NOT_AVAILABLE);
    EXPECT_EQ("kestrix::CAnalyzerDocController::select: Not available: t.trd",
              thrownBy<IOException>([&] { analyzer.select("Trigger0"); }).getDesc());
}

TEST_F(DocumentControllerTest, AnalyzerOperationsSendTheirWordsAndParameters)
{
    startLogger();
    CAnalyzerDocController analyzer(mgr(), CAnalyzerDocController::ANALYZER, "t.trd", "r");
    resetFake();
    answerDocuments(S_OK);
    analyzer.isActive();
    analyzer.select("Trigger0");
    analyzer.setExportFormat(CAnalyzerDocController::exportTrcAsCSV);
    analyzer.exportAs(2, "out.csv", 7);
    analyzer.exportAs(0, "out.txt", std::string(CAnalyzerDocController::exportTrcAsText));
    analyzer.exportAsAndLaunchViewer(1, "view.csv", 3);
    EXPECT_EQ((std::vector<std::string>{
                  "OrbelIDE.Document(0x30000000, t.trd, NULL, 0)",
                  "OrbelIDE.Document(0x50000000, t.trd, Trigger0, 0)",
                  "OrbelIDE.Document(0x80000000, t.trd, CSV, 0)",
                  "OrbelIDE.Document(0x60000002, t.trd, out.csv, 7)",
                  "OrbelIDE.Document(0x80000000, t.trd, Text, 0)",
                  "OrbelIDE.Document(0x60000000, t.trd, out.txt, 4294967295)",
                  "OrbelIDE.Document(0x70000001, t.trd, view.csv, 3)",
              }),
              documentCalls());
    // An export with the format as text is scripted as its two steps.
    const std::vector<std::string> lines = scriptLines();
    EXPECT_EQ((std::vector<std::string>{"analyzer_t_trd.exportAs(0, \"out.txt\", \"Text\");",
                                        "analyzer_t_trd.setExportFormat(\"Text\");",
                                        "analyzer_t_trd.exportAs(0, \"out.txt\", 4294967295);"}),
              std::vector<std::string>(lines.begin() + 5, lines.begin() + 8));
}

TEST_F(DocumentControllerTest, AnalyzerMarkersAreOnlyAComment)
{
    startLogger();
    CAnalyzerDocController analyzer(mgr(), CAnalyzerDocController::ANALYZER, "t.trd", "r");
    resetFake();
    answerDocuments(S_OK);
    analyzer.setMarker();
    EXPECT_TRUE(documentCalls().empty());
    CDocumentController& document = analyzer;
    document.setMarker(5);
    EXPECT_EQ(std::vector<std::string>{"OrbelIDE.Document(0x10000, t.trd, NULL, 5)"}, documentCalls());
    EXPECT_EQ(1u, loggedLines("# method 'setMarker()' called, but has no effect on analyzer documents.").size())
        << loggedScript();
}

TEST_F(DocumentControllerTest, AnUnknownDocumentTypeOpensNothing)
{
    startLogger();
    const int types[] = {-1, 2};
    for (int type : types) {
        EXPECT_EQ("Invalid value for document type: " + std::to_string(type),
                  thrownBy<IOException>([&] { CAnalyzerDocController(mgr(), type, "t.trd", "w"); }).getDesc());
    }
    EXPECT_TRUE(documentCalls().empty());
    EXPECT_TRUE(loggedLines("obFactory").empty()) << loggedScript();
}

TEST_F(DocumentControllerTest, TerminalHasNoFileNameAndItsOwnSelector)
{
    {
        CTerminalDocController terminal(mgr());
        terminal.start();
        terminal.stop();
        terminal.saveAs("term.txt");
        terminal.close();
        // Saved under a name, the terminal is still addressed without one.
        terminal.start();
    }
    EXPECT_EQ((std::vector<std::string>{
                  "OrbelIDE.Document(0x1080009, , NULL, 0)",
                  "OrbelIDE.Document(0x11080000, , NULL, 0)",
                  "OrbelIDE.Document(0x21080000, , NULL, 0)",
                  "OrbelIDE.Document(0x1080004, , term.txt, 0)",
                  "OrbelIDE.Document(0x1080001, , NULL, 0)",
                  "OrbelIDE.Document(0x11080000, , NULL, 0)",
              }),
              documentCalls());
    answerDocuments(ORBEL_E_FILE_NOT_FOUND);
    EXPECT_EQ("kestrix::CTerminalDocController::CTerminalDocController: File not found: ",
              thrownBy<FileNotFoundException>([&] { CTerminalDocController terminal(mgr()); }).getDesc());
}

TEST_F(DocumentControllerTest, AMissingIdeInterfaceFailsAtTheGate)
{
    script().missing = {"OrbelIDE"};
    auto fresh = std::make_shared<ConnectionMgr>();
    fresh->connect("", 1234);
    useConnection(fresh);
    const auto e = thrownBy<IOException>([&] { CDocumentController(mgr(), "t.trd", "w"); });
    EXPECT_EQ("IDE interface is not available. Make sure that application is connected to quillon (see "
              "ConnectionMgr.connect...())!",
              e.getDesc());
    EXPECT_TRUE(documentCalls().empty());
}
