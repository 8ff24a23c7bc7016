// The command-line runner as a user meets it: test files written here run on the example
// firmware through OrbelRun.exe in a process of its own; its output, exit status, report and
// JUnit file are checked.
using System;
using System.Diagnostics;
using System.IO;
using System.Linq;
using System.Xml;

public static class RunnerTests {
  const string Env = "env:\n" +
                     "  workspace: {0}\n" +
                     "  downloadOnInit: true\n" +
                     "  resetOnInit: true\n" +
                     "  runOnInit: true\n" +
                     "  stopFunction: main\n" +
                     "  defaultRetValName: rv\n" +
                     "reportConfig:\n" +
                     "  reportContents: {1}\n" +
                     "  outFormat: yaml\n" +
                     "  fileName: out/report.yaml\n";

  // One test of each kind, with its verdict in the id: parameters and a 64-bit result, pointers
  // to locals, structures by value, a string into an array, a stub computing its value from its
  // parameter, a failed expression, a fault, an endless loop, and a test that does not run.
  const string Verdicts =
      "tests:\n" +
      "- id: pass.energy\n  func: [energy_nj, [5000, 3600000]]\n  expect: [rv == 18000000000000]\n" +
      "- id: pass.pointers\n  locals: {tens: int, ones: int}\n" +
      "  func: [split_level, [93, '&tens', '&ones']]\n  expect: [tens == 9, ones == 3]\n" +
      "- id: pass.structs\n  locals: {a: vec3_t, b: vec3_t}\n  init: {a.x: 3, b.x: 4, a.z: -1, b.z: 2}\n" +
      "  func: [vec_add, [a, b]]\n  expect: [rv.x == 7 && rv.y == 0 && rv.z == 1]\n" +
      "- id: pass.string\n  locals: {text: 'char[8]'}\n  init: {text: \"AB\"}\n" +
      "  func: [checksum, [text]]\n  expect: [rv == 131, 'text[2] == 0']\n" +
      "- id: pass.stub\n  stubs:\n  - func: [adc_read, v]\n    params: [ch]\n    assign: {v: ch * 2 + 1}\n" +
      "  func: [average_channels, [3]]\n  expect: [rv == 3]\n" +
      "- id: fail.expression\n  func: [vec_dot, [a, a]]\n  locals: {a: vec3_t}\n  init: {a.y: 5}\n" +
      "  expect: [rv == 24]\n" +
      "- id: fail.fault\n  func: [hub_status]\n" +
      "- id: fail.endless\n  options: {/IDE/Test/MaxInstructions: 100000}\n  func: [radio_wait_ready]\n" +
      "- id: skipped\n  run: false\n  func: [hub_status]\n";

  public static void Run() {
    string firmware = Environment.GetEnvironmentVariable("KESTRIX_FIRMWARE_FOLDER");
    if (firmware == null || !File.Exists(Path.Combine(firmware, "build/firmware.elf"))) {
      Console.WriteLine("  (runner cases skipped: the example firmware is not built)");
      return;
    }
    string workspace = Path.Combine(firmware, "workspace.yaml");

    Check.Case("each test gets its verdict, and the failures fail the run", () => {
      string folder = NewFolder();
      string file = Write(folder, "verdicts.yaml", string.Format(Env, workspace, "full") + Verdicts);
      string output;
      Check.Equal(1, RunFile(file, out output), output);
      foreach (string id in new[] {"pass.energy", "pass.pointers", "pass.structs", "pass.string", "pass.stub"}) {
        Check.True(HasLine(output, "] PASS  " + id), id + " passes:\n" + output);
      }
      foreach (string id in new[] {"fail.expression", "fail.fault", "fail.endless"}) {
        Check.True(HasLine(output, "] FAIL  " + id), id + " fails:\n" + output);
      }
      Check.True(HasLine(output, "] SKIP  skipped"), "a test with run: false is shown, not run");
      Check.True(output.Contains("rv == 24\n") && output.Contains("rv = 25"), "the failed expression and its value");
      Check.True(output.Contains("in hub_status"), "the fault names the function:\n" + output);
      Check.True(output.Contains("in radio_wait_ready"), "the endless loop names the function");
      Check.True(output.Contains("9 tests: 5 passed, 3 failed, 1 not run"), output);

      string report = File.ReadAllText(Path.Combine(folder, "out/report.yaml"));
      Check.True(report.Contains("  failed: 3\n"), "the report counts the failures:\n" + report);
      Check.True(report.Contains("testId: fail.expression\n") && report.Contains("- expect: rv == 24\n"),
                 "the report names the failed expression");
      Check.Equal(2, Count(report, "isException: true"), "the fault and the endless loop broke off");
      Check.True(report.Contains("State = stateUnexpectedStop"), "the report keeps why a run broke off");
      Check.Equal(8, Count(report, "testResult:"), "a full report has every test that ran");

      var junit = new XmlDocument();
      junit.Load(Path.Combine(folder, "out/report.junit.xml"));
      XmlElement suite = (XmlElement)junit.SelectSingleNode("/testsuites/testsuite");
      Check.Equal("9", suite.GetAttribute("tests"));
      Check.Equal("1", suite.GetAttribute("failures"));
      Check.Equal("2", suite.GetAttribute("errors"));
      Check.Equal("1", suite.GetAttribute("skipped"));
      Check.Equal("rv == 24",
                  ((XmlElement)suite.SelectSingleNode("testcase[@name='fail.expression']/failure")).GetAttribute("message"));
    });

    Check.Case("analyzers: coverage, profile and trace of a test, and limits that fail it", () => {
      string folder = NewFolder();
      string exports = Path.Combine(folder, "exports");
      string file = Write(folder, "analyzers.yaml", string.Format(Env, workspace, "full") +
          "tests:\n" +
          "- id: covered\n  locals: {text: 'char[8]'}\n  init: {text: \"AB\"}\n  func: [checksum, [text]]\n" +
          "  coverage:\n    document: " + exports + "/c.cov\n    exportFile: " + exports + "/c.csv\n" +
          "    isDecisionCoverage: true\n    statistics:\n    - {func: checksum, code: 100, branches: 100, both: 100}\n" +
          "- id: profiled\n  stubs:\n  - func: [adc_read, v]\n    params: [ch]\n    assign: {v: 1}\n" +
          "  func: [average_channels, [3]]\n  expect: [rv == 1]\n" +
          "  profiler:\n    codeAreas:\n    - {name: adc_read, hits: [3, 3]}\n    - {name: average_channels, hits: [2, 2]}\n" +
          "- id: traced\n  locals: {t: int, o: int}\n  func: [split_level, [42, '&t', '&o']]\n" +
          "  trace:\n    document: " + exports + "/t.trd\n    exportFile: " + exports + "/t.csv\n    exportFormat: CSV\n");
      string output;
      Check.Equal(1, RunFile(file, out output), output);
      // Every byte of checksum runs; its loop branch goes back twice for "AB", then out.
      Check.True(output.Contains("coverage checksum: bytes ") && output.Contains("both 1/1 (100.0%"), output);
      Check.True(HasLine(output, "] PASS  covered"), output);
      Check.True(output.Contains("profiler adc_read: hits 3 [3..3]"), "a stub is a hit per call:\n" + output);
      Check.True(output.Contains("! profiler average_channels: hits 1 [2..2]"), "the limit that fails:\n" + output);
      Check.True(HasLine(output, "] FAIL  profiled"), output);
      string trace = File.ReadAllText(Path.Combine(exports, "t.csv"));
      Check.True(trace.StartsWith("index,cycle,time_ns,event,address,function,value\n"), trace);
      Check.True(trace.Contains(",entry,") && trace.Contains(",split_level,"), trace);
      Check.True(File.ReadAllText(Path.Combine(exports, "c.csv")).Contains("\nchecksum,"), "the coverage export");
      string report = File.ReadAllText(Path.Combine(folder, "out/report.yaml"));
      Check.True(report.Contains("isProfilerCodeError: true") && report.Contains("hitsStatus: ERR_MIN"), report);
    });

    Check.Case("an errors-only report has the failed tests only", () => {
      string folder = NewFolder();
      string file = Write(folder, "short.yaml", string.Format(Env, workspace, "errorsOnly") + Verdicts);
      string output;
      Check.Equal(1, RunFile(file, out output), output);
      string report = File.ReadAllText(Path.Combine(folder, "out/report.yaml"));
      Check.Equal(3, Count(report, "testResult:"), report);
      Check.True(!report.Contains("testId: pass."), "passed tests are left out");
    });

    Check.Case("a passing file exits 0; a relative workspace is found from the file's folder", () => {
      string folder = NewFolder();
      File.Copy(workspace, Path.Combine(folder, "board.yaml"));
      // The workspace's download path is relative to the workspace: point it at the built ELF,
      // and leave out the build section, whose sources stay with the firmware.
      string board = File.ReadAllText(Path.Combine(folder, "board.yaml"));
      board = board.Substring(0, board.IndexOf("\nbuild:") + 1)
                  .Replace("build/firmware.elf", Path.Combine(firmware, "build/firmware.elf"));
      File.WriteAllText(Path.Combine(folder, "board.yaml"), board);
      string file = Write(folder, "ok.yaml", string.Format(Env, "board.yaml", "full") +
                                             "tests:\n- id: only\n  func: [energy_nj, [1, 2]]\n  expect: [rv == 2000]\n");
      string output;
      Check.Equal(0, RunFile(file, out output), output);
      Check.True(HasLine(output, "[1/1] PASS  only"), output);
    });

    Check.Case("a file or workspace that cannot be used exits 2", () => {
      string folder = NewFolder();
      string output;
      string missing = Write(folder, "missing.yaml", string.Format(Env, "no-such.yaml", "full") +
                                                     "tests:\n- id: t\n  func: [energy_nj, [1, 2]]\n");
      Check.Equal(2, RunFile(missing, out output), output);
      Check.True(output.Contains("the workspace no-such.yaml cannot be used"), output);
      string broken = Write(folder, "broken.yaml", "tests:\n- id: [\n");
      Check.Equal(2, RunFile(broken, out output), output);
      Check.Equal(2, RunFile(Path.Combine(folder, "absent.yaml"), out output), output);
    });
  }

  static string NewFolder() {
    string folder = Path.Combine(Path.GetTempPath(), "orbelrun-" + Guid.NewGuid().ToString("N"));
    Directory.CreateDirectory(folder);
    return folder;
  }

  static string Write(string folder, string name, string text) {
    string file = Path.Combine(folder, name);
    File.WriteAllText(file, text);
    return file;
  }

  // The runner's exit status, with its standard output and error in `output`.
  static int RunFile(string file, out string output) {
    var start = new ProcessStartInfo("mono", "OrbelRun.exe \"" + file + "\"") {
      UseShellExecute = false, RedirectStandardOutput = true, RedirectStandardError = true
    };
    using (Process process = Process.Start(start)) {
      var error = process.StandardError.ReadToEndAsync();
      output = process.StandardOutput.ReadToEnd() + error.Result;
      process.WaitForExit();
      return process.ExitCode;
    }
  }

  static bool HasLine(string output, string part) {
    return output.Split('\n').Any(line => line.Contains(part));
  }

  static int Count(string text, string part) {
    int count = 0;
    for (int at = text.IndexOf(part); at >= 0; at = text.IndexOf(part, at + part.Length)) {
      count++;
    }
    return count;
  }
}
