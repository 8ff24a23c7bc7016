// The test run as a C# caller sees it: script functions implemented in C# and called back by
// the run.
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
  }
}
