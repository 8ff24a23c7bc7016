// The test run as a C# caller sees it: script functions implemented in C# and called back by
// the run, the state names and number texts, and controllers refused without a connection.
using System;
using System.Collections.Generic;

public static class TestRunTests {
  /// Script functions in C#: the run reaches them through the director of the binding.
  class Functions : ICustomFunctions {
    public List<string> Calls = new List<string>();

    public override int init(string functionName, StrStrMap parameters) {
      Calls.Add("init(map) " + functionName);
      return 1;
    }
    public override int init(string functionName, StrVector parameters) {
      Calls.Add("init " + functionName + " " + string.Join(",", parameters));
      return 31;
    }
    public override int end(string functionName, StrStrMap parameters) {
      Calls.Add("end(map) " + functionName);
      return 1;
    }
    public override int end(string functionName, StrVector parameters) {
      Calls.Add("end " + functionName + " " + parameters.Count);
      return 32;
    }
    public override int stub(CTestStub stub) {
      Calls.Add("stub " + stub.getFunctionName());
      return 33;
    }
  }

  public static void Run() {
    Check.Case("the run calls script functions implemented in C#", () => {
      ConnectionMgr mgr = new SPtrFactory().newConnectionMgr();
      CTestCase testCase = new CTestCase(mgr);
      var functions = new Functions();
      testCase.setCallbackObject(functions);
      CTestFunction init = new CTestFunction();
      init.setName("calibrate");
      init.setPositionParameters("[2, x]");
      Check.Equal(31, testCase.callInitFunction(init));
      Check.Equal(32, testCase.callEndFunction(init));
      Check.Equal(0, testCase.callInitFunction(new CTestFunction()), "no name, no call");
      Check.Equal("init calibrate 2,x|end calibrate 2", string.Join("|", functions.Calls));
      testCase.Dispose();
      functions.Dispose();
    });

    Check.Case("a run without script functions names what is missing", () => {
      CTestCase testCase = new CTestCase(new SPtrFactory().newConnectionMgr());
      CTestFunction end = new CTestFunction();
      end.setName("reset_calibration");
      var e = Check.Throws<ApplicationException>(() => testCase.callEndFunction(end));
      Check.True(e.Message.StartsWith("Custom functions object is not set. Can not call end function!"), e.Message);
    });

    Check.Case("states and numbers as text", () => {
      Check.Equal("stateUnexpectedStop", CTestCaseController.testState2str(6));
      Check.Equal("9", CTestCaseController.testState2str(9));
      Check.Equal("stateStubActive", CTestCaseController.stubState2str(2));
      Check.Equal(16L, CTestCaseController.s2i64("0x10"));
      Check.Equal(-12L, CTestCaseController.s2i64("-12abc"));
    });

    Check.Case("controllers need a connection", () => {
      ConnectionMgr mgr = new SPtrFactory().newConnectionMgr();
      var e = Check.Throws<ApplicationException>(() => new CTestCaseController(mgr, "filter_step", "rv"));
      Check.True(e.Message.StartsWith("IDE3 interface is not available."), e.Message);
      Check.Throws<ApplicationException>(() => new CTestStubController(mgr, "adc_read"));
      Check.Throws<ApplicationException>(() => new CTestVariableController(mgr, "i", "int"));
    });
  }
}
