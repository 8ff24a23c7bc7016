// Test results as a C# caller builds, queries and writes them.
using System;

public static class ResultsTests {
  static string Report(CTestResult result, bool isErrorsOnly) {
    var text = new CStringStream();
    var emitter = EmitterFactory.createYamlEmitter(text);
    emitter.startStream();
    emitter.startDocument(true);
    if (isErrorsOnly) {
      result.serializeErrorsOnly(emitter, null);
    } else {
      result.serialize(emitter, null);
    }
    emitter.endDocument(true);
    emitter.endStream();
    return text.getString();
  }

  static CProfilerArea Area(string name, MinMaxLimits hits) {
    var area = new CProfilerArea();
    area.setAreaName(name);
    area.setHits(hits);
    return area;
  }

  public static void Run() {
    Check.Case("A test result joins the maps and writes its short form", () => {
      var code = new StrProfilerTestResultsMap();
      code.Add("f", new CProfilerTestResult(Area("f", new MinMaxLimits(1, 3)), true));
      code.Add("g", new CProfilerTestResult(Area("g", new MinMaxLimits(0, 3)), new CProfilerStatistic(), true));
      var data = new StrProfilerTestResultsVectorMap();
      var values = new ProfilerTestResultsVector();
      values.Add(new CProfilerTestResult());
      data.Add("v", values);
      var coverage = new StrCoverageTestResultsMap();
      coverage.Add("f", new CCoverageTestResult(new CCoverageTestExpected(),
                                                new CCoverageStatistic(10, 5, 0, 0, 0, 0, 0)));
      var expressions = new StrVector();
      expressions.Add("");

      var result = new CTestResult(null, expressions, coverage, code, data);
      Check.True(result.isError() && result.isProfilerCodeError(), "code profiler error");

      var withError = new StrProfilerTestResultsMap();
      result.getProfilerCodeResultsWithError(withError);
      Check.Equal(1, withError.Count);
      Check.True(withError.ContainsKey("f"), "f in error");

      Check.True(Report(result, true).Contains("  codeProfiler:\n  - function: f\n"), "the short form names f");
    });

    Check.Case("A failed run is a result with its exception text", () => {
      var result = new CTestResult(null, "Target lost!");
      result.addEnvironmentInfo("host", "pc1");
      Check.True(result.isException() && result.isError(), "exception flags");
      Check.Equal("Target lost!", result.getExceptionString());
      Check.True(Report(result, false).Contains("  environment:\n    host: pc1\n"), "environment written");
    });

    Check.Case("A result names its test; null arguments are refused", () => {
      var result = new CTestResult(CTestSpecification.parseTestSpec("{id: t1, func: [add]}"), "failed");
      Check.Equal("add", result.getFunction());
      Check.Equal("t1", result.getTestSpecification().getTestId());
      Check.Throws<ArgumentNullException>(() => new CCoverageTestResult(null, new CCoverageStatistic()));
      Check.Throws<ArgumentNullException>(() => new CTestResult(null, null));
    });
  }
}
