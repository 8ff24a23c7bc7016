// Documents, coverage and HIL as a C# caller sees them without a Quillon: their constants and
// records, and controllers that refuse a manager that is not connected.
using System;

public static class DocumentTests {
  const string NotConnected = "IDE3 interface is not available.";

  public static void Run() {
    Check.Case("export formats are their texts", () => {
      Check.Equal("Text", CAnalyzerDocController.exportTrcAsText);
      Check.Equal("CSV", CAnalyzerDocController.exportTrcAsCSV);
      Check.Equal("Binary", CAnalyzerDocController.exportTrcAsBinary);
      Check.Equal("HTML", CAnalyzerDocController.exportCCAsHTML);
      Check.Equal("Text", CAnalyzerDocController.exportCCAsText);
      Check.Equal("CSV", CAnalyzerDocController.exportCCAsCSV);
      Check.Equal("XML", CAnalyzerDocController.exportCCAsXML);
      Check.Equal("Review (HTML)", CAnalyzerDocController.exportCCAsReviewHTML);
      Check.Equal("Review (Text)", CAnalyzerDocController.exportCCAsReviewText);
      Check.Equal("XML2", CAnalyzerDocController.exportCCAsXML2);
    });

    Check.Case("scopes, range items and document types keep their numbers", () => {
      Check.Equal(0, (int)CCoverageController.ECoverageScope.csEntireMemory);
      Check.Equal(3, (int)CCoverageController.ECoverageScope.csAllDownloadedCodeMinusExcludes);
      Check.Equal(4, (int)CCoverageController.ECoverageScope.csIncludesOnly);
      Check.Equal(2, (int)CCoverageController.ERangeItem.rsFunction);
      Check.Equal(1, (int)CAnalyzerDocController.EDocumentType.COVERAGE);
    });

    Check.Case("coverage ranges are records in a vector", () => {
      var ranges = new CoverageRangeVector();
      var range = new SCoverageRange();
      range.m_aAddress = 0x100;
      range.m_aEnd = 0x1FF;
      ranges.Add(range);
      Check.Equal(1, ranges.Count);
      Check.Equal(0x1FFu, ranges[0].m_aEnd);
      Check.Throws<ArgumentOutOfRangeException>(() => ranges.RemoveAt(1));
    });

    Check.Case("document controllers need a connection", () => {
      ConnectionMgr mgr = new SPtrFactory().newConnectionMgr();
      Action[] makers = {
        () => new CDocumentController(mgr, "t.trd", "w"),
        () => new CAnalyzerDocController(mgr, (int)CAnalyzerDocController.EDocumentType.ANALYZER, "t.trd", "w"),
        () => new CCoverageController(mgr, "cov.trd", "w"),
        () => new CTerminalDocController(mgr),
        () => new CHILController(mgr),
      };
      foreach (Action make in makers) {
        var e = Check.Throws<ApplicationException>(make);
        if (e != null) {
          Check.True(e.Message.StartsWith(NotConnected), e.Message);
        }
      }
    });

    Check.Case("a null file name is refused before the library is called", () => {
      ConnectionMgr mgr = new SPtrFactory().newConnectionMgr();
      var e = Check.Throws<ArgumentNullException>(() => new CCoverageController(mgr, null, "w"));
      if (e != null) {
        Check.True(e.Message.StartsWith("null string"), e.Message);
      }
    });
  }
}
