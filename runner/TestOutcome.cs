// One test of a file as the runner saw it: where it sits in the tree, and its judged result.
using System.Collections.Generic;
using System.Linq;

public sealed class TestOutcome {
  public TestOutcome(CTestSpecification flat, string path) {
    Spec = flat;
    Path = path;
    Id = flat.getTestId().Length > 0 ? flat.getTestId() : "(test " + path + ")";
  }

  public CTestSpecification Spec { get; private set; }
  /// "1.2.1": the test's place in the tree, counted from 1.
  public string Path { get; private set; }
  public string Id { get; private set; }
  /// Null for a test that did not run (`run: false`).
  public CTestResult Result { get; set; }
  public double Seconds { get; set; }

  public bool IsSkipped { get { return Result == null; } }
  public bool IsFailed { get { return Result != null && Result.isError(); } }

  /// Why the test failed: the failed expressions with the values of their operands, why the run
  /// broke off, the analyzer figures outside their limits; one line each.
  public IEnumerable<string> FailureLines() {
    if (Result == null || !Result.isError()) {
      return new string[0];
    }
    return RunFailureLines().Concat(AnalyzerLines().Where(line => line.StartsWith("! ")));
  }

  /// The failed expressions or the failure that broke the run off.
  public IEnumerable<string> RunFailureLines() {
    if (Result == null || !Result.isError()) {
      yield break;
    }
    if (Result.isException()) {
      foreach (string line in Result.getExceptionString().TrimEnd().Split('\n')) {
        yield return line;
      }
      yield break;
    }
    var expressions = new StrVector();
    Result.getExpressionResults(expressions);
    foreach (string text in expressions) {
      foreach (string line in text.Split('\n')) {
        if (line.Length > 0) {
          yield return line;
        }
      }
    }
  }

  /// The measured coverage and profiler figures of the test, one line per function, area or value,
  /// with what the test expects; "!" marks a figure outside its limits.
  public IEnumerable<string> AnalyzerLines() {
    if (Result == null || Result.isException()) {
      yield break;
    }
    var coverage = new StrCoverageTestResultsMap();
    Result.getCoverageResults(coverage);
    foreach (string function in coverage.Keys) {
      yield return CoverageLine(function, coverage[function]);
    }
    var code = new StrProfilerTestResultsMap();
    Result.getProfilerCodeResults(code);
    foreach (string area in code.Keys) {
      foreach (string line in ProfilerLines("profiler " + area, code[area])) {
        yield return line;
      }
    }
    var data = new StrProfilerTestResultsVectorMap();
    Result.getProfilerDataResults(data);
    foreach (string variable in data.Keys) {
      foreach (CProfilerTestResult result in data[variable]) {
        string name = "profiler " + variable + (result.isValueSet() ? " = " + result.getValue() : "");
        foreach (string line in ProfilerLines(name, result)) {
          yield return line;
        }
      }
    }
  }

  static string CoverageLine(string function, CCoverageTestResult result) {
    CCoverageStatistic measured = result.getMeasuredResults();
    CCoverageTestExpected expected = result.getExpectedResults();
    string text = "coverage " + function + ": bytes " + Share(measured.getBytesExecutedAbs(), measured.getBytesAll(),
                                                             expected.getBytesExecutedRel(), result.isBytesExecutedError());
    if (measured.getBranchesAll() > 0) {
      uint all = measured.getBranchesAll();
      text += "; branches executed " + Share(measured.getBranchesExecutedAbs(), all, expected.getBranchesExecutedRel(),
                                             result.isBranchesExecutedError()) +
              ", taken " + Share(measured.getBranchesTakenAbs(), all, expected.getBranchesTakenRel(),
                                 result.isBranchesTakenError()) +
              ", not taken " + Share(measured.getBranchesNotTakenAbs(), all, expected.getBranchesNotTakenRel(),
                                     result.isBranchesNotTakenError()) +
              ", both " + Share(measured.getBranchesBothAbs(), all, expected.getBranchesBothRel(),
                                result.isBranchesBothError());
    }
    return text;
  }

  // "42/50 (84.0%, expects 100%)"
  static string Share(uint count, uint all, double expected, bool isError) {
    string percent = all == 0 ? "-" : (100.0 * count / all).ToString("0.0") + "%";
    string expects = expected > 0 ? ", expects " + (100.0 * expected).ToString("0.#") + "%" : "";
    return (isError ? "! " : "") + count + "/" + all + " (" + percent + expects + ")";
  }

  static IEnumerable<string> ProfilerLines(string name, CProfilerTestResult result) {
    var measured = new ProfilerStatisticVector();
    result.getMeasuredResults(measured);
    string mark = result.isError() ? "! " : "";
    if (measured.Count == 0) {
      yield return mark + name + ": not hit" + Limits("hits", result.getHitsExpected());
      yield break;
    }
    foreach (CProfilerStatistic entry in measured) {
      yield return mark + name + ": hits " + entry.getNumHits() + Limits("", result.getHitsExpected()) +
                   ", total " + entry.getTotalTime() + Limits("", result.getTotalTimeExpected()) +
                   ", min " + entry.getMinTime() + Limits("", result.getMinTimeExpected()) +
                   ", max " + entry.getMaxTime() + Limits("", result.getMaxTimeExpected());
    }
  }

  static string Limits(string what, MinMaxLimits limits) {
    if (!limits.m_isDefined) {
      return "";
    }
    return " [" + (what.Length > 0 ? what + " " : "") + limits.m_min + ".." + limits.m_max + "]";
  }
}
