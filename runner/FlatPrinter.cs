// The flat form of a test file: each test as a run executes it, with what it inherits from the
// tests above it: function, parameters, stubs, initial values, expected expressions, analyzers.
using System;
using System.Collections.Generic;
using System.Linq;

public static class FlatPrinter {
  public static void Show(string file, CTestBench bench) {
    CTestEnvironmentConfig env = bench.getTestEnvironmentConfig();
    CTestReportConfig report = bench.getTestReportConfig();
    Console.WriteLine();
    Console.WriteLine("== " + file);
    if (!env.isEmpty()) {
      Console.WriteLine("workspace: " + env.getWorkspace() + ", default return value: " + env.getDefaultReturnValueName());
    }
    if (!report.isEmpty()) {
      bool isYaml = report.getOutputFormat() == CTestReportConfig.EOutputFormat.ofYaml;
      bool isFull = report.getReportContents() == CTestReportConfig.EReportContents.rcFull;
      Console.WriteLine("report: " + report.getFileName() + " (" + (isYaml ? "yaml" : "xml") + ", " +
                        (isFull ? "full" : "errors only") + ")");
    }
    CTestSpecification root = bench.getTestSpecification();
    int shown = ShowTree(root, "", root.isEmptyExceptDerived());
    Console.WriteLine(shown + " tests, " + CountEnabled(root) + " enabled");
  }

  // Shows a test and its derived ones; the bench's own root is shown only when it states something.
  static int ShowTree(CTestSpecification spec, string path, bool isHiddenRoot) {
    int count = 0;
    if (!isHiddenRoot) {
      ShowTest(spec, path);
      count++;
    }
    for (int i = 0; i < spec.getNoOfDerivedSpecs(); i++) {
      string childPath = path.Length == 0 ? (i + 1).ToString() : path + "." + (i + 1);
      count += ShowTree(spec.getDerivedTestSpec(i), childPath, false);
    }
    return count;
  }

  static int CountEnabled(CTestSpecification root) {
    int count = root.getNoOfTests(true);
    return root.isEmptyExceptDerived() ? count - 1 : count;
  }

  static void ShowTest(CTestSpecification spec, string path) {
    CTestSpecification flat = spec.merge();
    string id = flat.getTestId().Length > 0 ? flat.getTestId() : "(no id)";
    Console.WriteLine("[" + path + "] " + id + (spec.getRunFlag() ? "" : "   (disabled)"));
    Line("function", Call(flat.getFunctionUnderTest(), Filled<StrVector>(flat.getPositionParams)));
    Line("init func", Call(flat.getInitFunction(), null));
    Line("end func", Call(flat.getEndFunction(), null));
    Line("locals", Pairs(Filled<StrStrMap>(flat.getLocalVariables)));
    Line("init", Join(flat.getInitKeys(), Filled<StrVector>(flat.getInitValues), " = "));
    Line("options", Join(flat.getOptionKeys(), Filled<StrVector>(flat.getOptionValues), " = "));
    Line("stubs", string.Join("; ", flat.getStubs().Select(Stub)));
    Line("expect", string.Join("; ", Filled<StrVector>(v => flat.getExpectedResults(v, false))));
    Line("analyzers", Analyzers(flat));
  }

  static void Line(string label, string text) {
    if (!string.IsNullOrEmpty(text)) {
      Console.WriteLine("      " + label.PadRight(10) + ": " + text);
    }
  }

  // "rv = f(a, b)"; the function's own parameters when `parameters` is null.
  static string Call(CTestFunction function, StrVector parameters) {
    if (function.isEmpty()) {
      return "";
    }
    if (parameters == null) {
      parameters = Filled<StrVector>(function.getPositionParams);
    }
    string ret = function.getRetValueName();
    return (ret.Length > 0 ? ret + " = " : "") + function.getName() + "(" + string.Join(", ", parameters) + ")";
  }

  static string Stub(CTestStub stub) {
    string text = stub.getFunctionName();
    string ret = stub.getRetValName();
    if (ret.Length > 0) {
      text += " -> " + ret;
    }
    string assignments = Join(stub.getAssignmentKeys(), Filled<StrVector>(stub.getAssignmentValues), " = ");
    return assignments.Length > 0 ? text + " {" + assignments + "}" : text;
  }

  static string Analyzers(CTestSpecification flat) {
    var used = new List<string>();
    if (!flat.getTrace().isEmpty() && flat.getTrace().getRunMode() != CTestTrace.ERunMode.rmOff) {
      used.Add("trace " + flat.getTrace().getDocumentFileName());
    }
    if (!flat.getCoverage().isEmpty() && flat.getCoverage().getRunMode() != CTestCoverage.ERunMode.rmOff) {
      used.Add("coverage " + flat.getCoverage().getDocumentFileName());
    }
    if (!flat.getProfiler().isEmpty() && flat.getProfiler().getRunMode() != CTestProfiler.ERunMode.rmOff) {
      used.Add("profiler " + flat.getProfiler().getOutputFileName());
    }
    if (!flat.getHIL().isEmpty()) {
      CTestHIL hil = flat.getHIL();
      used.Add("hil " + Join(hil.getHILParamKeys(), Filled<StrVector>(hil.getHILParamValues), " = "));
    }
    return string.Join(", ", used);
  }

  // A container filled by one of the library's getters.
  static T Filled<T>(Action<T> fill) where T : new() {
    var container = new T();
    fill(container);
    return container;
  }

  static string Pairs(StrStrMap map) {
    return string.Join("; ", map.Keys.Select(k => k + ": " + map[k]));
  }

  static string Join(StrVector keys, StrVector values, string separator) {
    return string.Join("; ", keys.Zip(values, (k, v) => k + separator + v));
  }
}
