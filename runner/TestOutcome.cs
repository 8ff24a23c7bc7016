// One test of a file as the runner saw it: where it sits in the tree, and its judged result.
using System.Collections.Generic;

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

  /// The failed expressions, each with the values of its operands, one line each.
  public IEnumerable<string> FailureLines() {
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
    if (Result.isCodeCoverageError()) {
      yield return "coverage below what the test expects";
    }
    if (Result.isProfilerCodeError() || Result.isProfilerDataError()) {
      yield return "profiler measurements outside the test's limits";
    }
  }
}
