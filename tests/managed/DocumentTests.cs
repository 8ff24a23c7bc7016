// Documents, coverage and HIL as a C# caller sees them without a Quillon: their constants and
// records, and controllers that refuse a manager that is not connected.
using System;

public static class DocumentTests {
  const string NotConnected = "IDE3 interface is not available.";

  public static void Run() {
    Check.Case("constants reach C# with their values", () => {
      Check.Equal("Review (HTML)", CAnalyzerDocController.exportCCAsReviewHTML);
      Check.Equal(4, (int)CCoverageController.ECoverageScope.csIncludesOnly);
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
