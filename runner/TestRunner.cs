// Runs test specifications on the target through the library's exported steps, in the order of
// CTestCase.runTest, with the test's controller at hand for the script functions, and judges
// each run into a CTestResult.
using System;
using System.Diagnostics;
using System.Linq;
using System.Text.RegularExpressions;

public sealed class TestRunner : IDisposable {
  const uint StateUnexpectedStop = 6;

  readonly ConnectionMgr connection;
  readonly CTestCase testCase;
  readonly TargetFunctions functions = new TargetFunctions();
  readonly string defaultRetValName;

  /// `defaultRetValName` names the return value of a test whose function names none, where one of
  /// its expected expressions uses that name.
  public TestRunner(ConnectionMgr connection, string defaultRetValName) {
    this.connection = connection;
    testCase = new CTestCase(connection);
    testCase.setCallbackObject(functions);
    this.defaultRetValName = defaultRetValName;
  }

  public CTestCase TestCase { get { return testCase; } }

  /// Runs a flat specification (one merged with those it inherits from) and judges it; `isRun` is
  /// the run flag of the test itself, which merging does not keep. A failed run is a result with
  /// the failure's text; nothing leaves as an exception.
  public TestOutcome Run(CTestSpecification flat, string path, bool isRun) {
    var outcome = new TestOutcome(flat, path);
    if (!isRun) {
      return outcome;
    }
    ApplyDefaultRetValName(flat);
    var results = new StrVector();
    var measured = new Measured();
    Stopwatch clock = Stopwatch.StartNew();
    try {
      RunSteps(flat, results, measured);
      clock.Stop();
      outcome.Result = testCase.getTestResults(flat, results, flat.getCoverage(), measured.Coverage, flat.getProfiler(),
                                               measured.ProfilerCode, measured.ProfilerData);
    } catch (Exception e) {
      clock.Stop();
      outcome.Result = new CTestResult(flat, e.Message);
    }
    outcome.Seconds = clock.Elapsed.TotalSeconds;
    return outcome;
  }

  // What the analyzers measured in a run.
  sealed class Measured {
    public StrCoverageStatisticMap Coverage = new StrCoverageStatisticMap();
    public StrProfilerStatisticMap ProfilerCode = new StrProfilerStatisticMap();
    public StrProfilerStatisticVectorMap ProfilerData = new StrProfilerStatisticVectorMap();
  }

  // The analyzers of the test, kept from the start of the run to its end.
  sealed class Analyzers {
    public CAnalyzerDocController Trace;
    public CCoverageController Coverage;
    public CProfilerController Profiler;
    public CHILController Hil;
  }

  void RunSteps(CTestSpecification spec, StrVector results, Measured measured) {
    CheckAnalyzers(spec);
    CTestFunction function = spec.getFunctionUnderTest();
    using (CTestCaseController ctrl = testCase.createTestController(function.getName(), function.getRetValueName())) {
      try {
        testCase.setOptions(testCase.createIDEController(spec), spec);
        testCase.createParameters(spec, ctrl);
        testCase.createLocals(spec, ctrl);
        testCase.createStubs(spec.getStubs(), ctrl);
        ctrl.init();
      } catch (Exception) {
        ctrl.destroy();
        throw;
      }
      try {
        RunInitialized(spec, results, ctrl, measured);
      } catch (Exception e) {
        string stop = DescribeUnexpectedStop(ctrl);
        Release(ctrl);
        if (stop != null) {
          throw new ApplicationException(e.Message + "\n" + stop, e);
        }
        throw;
      } finally {
        functions.Test = null;
      }
    }
  }

  void RunInitialized(CTestSpecification spec, StrVector results, CTestCaseController ctrl, Measured measured) {
    testCase.setLocals(spec, ctrl);
    testCase.setParameters(spec, ctrl);
    Analyzers analyzers = StartAnalyzers(spec);
    functions.Test = ctrl;
    testCase.callInitFunction(spec.getInitFunction());
    ThrowIfScriptFailed();
    testCase.callFunctionUnderTest(spec.getStubs(), ctrl);
    ThrowIfScriptFailed();
    testCase.callEndFunction(spec.getEndFunction());
    ThrowIfScriptFailed();
    StopAnalyzers(spec, analyzers, measured);
    var expected = new StrVector();
    spec.getExpectedResults(expected, false);
    testCase.verifyResults(expected, results, true, ctrl);
    ctrl.clean();
    ctrl.destroy();
  }

  Analyzers StartAnalyzers(CTestSpecification spec) {
    var analyzers = new Analyzers {
      Trace = testCase.createTraceController(spec.getTrace()),
      Coverage = testCase.createCoverageController(spec.getCoverage()),
      Profiler = testCase.createProfilerController(spec.getProfiler()),
      Hil = testCase.createHILController(spec.getHIL())
    };
    testCase.configureTrace(analyzers.Trace, spec.getTrace());
    testCase.configureCoverage(analyzers.Coverage, spec.getCoverage());
    testCase.configureProfiler(analyzers.Profiler, spec.getProfiler(), spec.getFunctionUnderTest().getName());
    testCase.configureHIL(analyzers.Hil, spec.getHIL());
    return analyzers;
  }

  void StopAnalyzers(CTestSpecification spec, Analyzers analyzers, Measured measured) {
    testCase.finalizeTrace(analyzers.Trace, spec.getTrace());
    testCase.finalizeCoverage(analyzers.Coverage, spec.getCoverage());
    testCase.finalizeProfiler(analyzers.Profiler, spec.getProfiler(), new StrStrMap());
    testCase.getCoverageResults(analyzers.Coverage, spec.getCoverage(), measured.Coverage);
    testCase.getProfilerCodeResults(analyzers.Profiler, spec.getProfiler(), measured.ProfilerCode);
    testCase.getProfilerDataResults(analyzers.Profiler, spec.getProfiler(), measured.ProfilerData);
  }

  void ThrowIfScriptFailed() {
    string failure = functions.TakeFailure();
    if (failure != null) {
      throw new ApplicationException(failure);
    }
  }

  // Where the target stopped when a test ended abnormally (a fault, the instruction limit, a
  // breakpoint); null when it did not, or when the target cannot tell.
  string DescribeUnexpectedStop(CTestCaseController ctrl) {
    try {
      if (ctrl.getStatus() != StateUnexpectedStop) {
        return null;
      }
      uint pc = new CExecutionController(connection).getCPUStatus(false).getExecutionPoint();
      string symbol = new CAddressController(connection).getSymbolAtAddress(0, 0, pc);
      return "stopped at 0x" + pc.ToString("x8") + (symbol.Length > 0 ? " in " + symbol : "");
    } catch (Exception) {
      return null;
    }
  }

  // Cleans and destroys a failed test; the failure that got here is the one to report.
  static void Release(CTestCaseController ctrl) {
    try {
      ctrl.clean();
    } catch (Exception) {
    }
    try {
      ctrl.destroy();
    } catch (Exception) {
    }
  }

  // Only one of the analyzers that record around the function can run in a test.
  static void CheckAnalyzers(CTestSpecification spec) {
    int active = (spec.getTrace().getRunMode() != CTestTrace.ERunMode.rmOff ? 1 : 0) +
                 (spec.getCoverage().getRunMode() != CTestCoverage.ERunMode.rmOff ? 1 : 0) +
                 (spec.getProfiler().getRunMode() != CTestProfiler.ERunMode.rmOff ? 1 : 0);
    if (active > 1) {
      throw new ArgumentException("To many analyzers!\nOnly one of analyzers (trace, coverage, profiler)\n" +
                                  "may be specified in the same test specification!");
    }
  }

  void ApplyDefaultRetValName(CTestSpecification spec) {
    CTestFunction function = spec.getFunctionUnderTest();
    if (defaultRetValName.Length == 0 || function.getRetValueName().Length > 0) {
      return;
    }
    var expected = new StrVector();
    spec.getExpectedResults(expected, false);
    var name = new Regex(@"(?<![\w.>])" + Regex.Escape(defaultRetValName) + @"\b");
    if (expected.Any(e => name.IsMatch(e))) {
      function.setRetValueName(defaultRetValName);
    }
  }

  public void Dispose() {
    testCase.setCallbackObject(null);
    testCase.Dispose();
    functions.Dispose();
  }
}
