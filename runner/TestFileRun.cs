// One test file run on its target: connects to the workspace of "env" and prepares the target
// as it says, runs every test of the tree in order with its derived specification, prints a
// line per test, and writes the report of "reportConfig" with a JUnit XML file beside it.
// Relative paths of the file (workspace, report, analyzer documents) are taken from its folder.
using System;
using System.Collections.Generic;
using System.IO;
using System.Linq;

public sealed class TestFileRun {
  public const int AllPassed = 0;
  public const int SomeFailed = 1;
  public const int Unusable = 2;

  // A test of the tree, merged with those it inherits from.
  sealed class Test {
    public string Path;
    public CTestSpecification Flat;
    public bool IsRun;
  }

  readonly string file;
  readonly CTestBench bench;
  readonly List<TestOutcome> outcomes = new List<TestOutcome>();
  int total;

  public TestFileRun(string file, CTestBench bench) {
    this.file = file;
    this.bench = bench;
  }

  public IList<TestOutcome> Outcomes { get { return outcomes; } }

  public int Run() {
    string previous = Directory.GetCurrentDirectory();
    Directory.SetCurrentDirectory(Path.GetDirectoryName(Path.GetFullPath(file)));
    try {
      return RunInFolder();
    } finally {
      Directory.SetCurrentDirectory(previous);
    }
  }

  int RunInFolder() {
    CTestEnvironmentConfig env = bench.getTestEnvironmentConfig();
    if (env.getWorkspace().Length == 0) {
      Console.Error.WriteLine(file + ": names no workspace (\"workspace\" in \"env\")");
      return Unusable;
    }
    if (!FirmwareBuild.EnsureBuilt(env.getWorkspace())) {
      return Unusable;
    }
    var connection = new ConnectionMgr();
    using (var runner = new TestRunner(connection, env.getDefaultReturnValueName())) {
      if (!Prepare(runner.TestCase, connection, env)) {
        return Unusable;
      }
      CTestSpecification root = bench.getTestSpecification();
      var tests = new List<Test>();
      CollectTests(root, "", root.isEmptyExceptDerived(), tests);
      total = tests.Count;
      foreach (var test in tests) {
        TestOutcome outcome = runner.Run(test.Flat, test.Path, test.IsRun);
        outcomes.Add(outcome);
        Print(outcome);
      }
    }
    bool isReportWritten = WriteReports();
    PrintSummary();
    return !isReportWritten ? Unusable : outcomes.Any(o => o.IsFailed) ? SomeFailed : AllPassed;
  }

  // Connects, then download, reset and run to the stop function as far as "env" asks for them.
  bool Prepare(CTestCase testCase, ConnectionMgr connection, CTestEnvironmentConfig env) {
    try {
      testCase.initEnvironment(env, true);
      if (env.isDeleteAllBPsOnInit()) {
        new CBreakpointController(connection).deleteAll();
      }
      return true;
    } catch (Exception e) {
      Console.Error.WriteLine(file + ": the workspace " + env.getWorkspace() + " cannot be used");
      Console.Error.WriteLine(e.Message);
      return false;
    }
  }

  // The tests of the tree in order, each merged with those it inherits from. The bench's own
  // root is a test only when it states something of its own; a node with no function under test,
  // even inherited, only groups the tests below it.
  static void CollectTests(CTestSpecification spec, string path, bool isHiddenRoot,
                           List<Test> tests) {
    if (!isHiddenRoot) {
      CTestSpecification flat = spec.merge();
      if (flat.getFunctionUnderTest().getName().Length > 0) {
        tests.Add(new Test { Path = path, Flat = flat, IsRun = spec.getRunFlag() });
      }
    }
    for (int i = 0; i < spec.getNoOfDerivedSpecs(); i++) {
      string childPath = path.Length == 0 ? (i + 1).ToString() : path + "." + (i + 1);
      CollectTests(spec.getDerivedTestSpec(i), childPath, false, tests);
    }
  }

  // "[ 3/12] PASS  id  0.42 ms": the counter shows how far a long file has come.
  void Print(TestOutcome outcome) {
    string verdict = outcome.IsSkipped ? "SKIP" : outcome.IsFailed ? "FAIL" : "PASS";
    string counter = outcomes.Count.ToString().PadLeft(total.ToString().Length) + "/" + total;
    string time = outcome.IsSkipped ? "" : "  " + (outcome.Seconds * 1000).ToString("0.00") + " ms";
    Console.WriteLine("[" + counter + "] " + verdict + "  " + outcome.Id + time);
    foreach (string line in outcome.RunFailureLines().Concat(outcome.AnalyzerLines())) {
      Console.WriteLine("        " + line);
    }
  }

  // The report of "reportConfig", if it names a file, and the JUnit file beside it.
  bool WriteReports() {
    CTestReportConfig config = bench.getTestReportConfig();
    string reportFile = config.getFileName();
    if (reportFile.Length == 0) {
      return true;
    }
    string junitFile = Path.Combine(Path.GetDirectoryName(reportFile), Path.GetFileNameWithoutExtension(reportFile) + ".junit.xml");
    try {
      Directory.CreateDirectory(Path.GetDirectoryName(Path.GetFullPath(reportFile)));
      ReportWriter.Write(reportFile, config, Path.GetFileName(file), outcomes);
      JUnitWriter.Write(junitFile, Path.GetFileNameWithoutExtension(file), outcomes);
      Console.WriteLine("report: " + Shown(reportFile) + ", " + Shown(junitFile));
      return true;
    } catch (Exception e) {
      Console.Error.WriteLine(file + ": cannot write the report " + reportFile + ": " + e.Message);
      return false;
    }
  }

  // A path of the test file's folder as the user can reach it from where the runner started.
  string Shown(string path) {
    string folder = Path.GetDirectoryName(file);
    return folder.Length == 0 ? path : Path.Combine(folder, path);
  }

  void PrintSummary() {
    int failed = outcomes.Count(o => o.IsFailed);
    int skipped = outcomes.Count(o => o.IsSkipped);
    Console.WriteLine(outcomes.Count + " tests: " + (outcomes.Count - failed - skipped) + " passed, " + failed +
                      " failed" + (skipped > 0 ? ", " + skipped + " not run" : ""));
  }
}
