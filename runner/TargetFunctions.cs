// Script functions that are functions of the target: a test's init and end functions and a
// stub's script function are called on the target, as a call expression evaluated in the
// stopped test, so their parameters may name the test's locals and the stub's parameters.
using System;
using System.Collections.Generic;
using System.Linq;

public sealed class TargetFunctions : ICustomFunctions {
  CTestCaseController test;
  string failure;

  /// The test whose scope the calls evaluate in; null between tests.
  public CTestCaseController Test {
    set { test = value; failure = null; }
  }

  /// The first call that failed since the test was set, then null again. The library calls these
  /// functions from native code, where a managed exception must not pass: a failure is kept here
  /// and the run raises it when the library hands control back.
  public string TakeFailure() {
    string text = failure;
    failure = null;
    return text;
  }

  public override int init(string functionName, StrVector parameters) {
    return Call(functionName, parameters);
  }

  // The named forms are not used by the library's run; the values go in the order of their keys.
  public override int init(string functionName, StrStrMap parameters) {
    return Call(functionName, parameters.Keys.OrderBy(k => k, StringComparer.Ordinal).Select(k => parameters[k]));
  }

  public override int end(string functionName, StrVector parameters) {
    return Call(functionName, parameters);
  }

  public override int end(string functionName, StrStrMap parameters) {
    return Call(functionName, parameters.Keys.OrderBy(k => k, StringComparer.Ordinal).Select(k => parameters[k]));
  }

  public override int stub(CTestStub stub) {
    CTestFunction script = stub.getScriptFunction();
    var parameters = new StrVector();
    script.getPositionParams(parameters);
    return Call(script.getName(), parameters);
  }

  /// The call's value as an integer (0 for one that is no number); -1 after a failure.
  int Call(string functionName, IEnumerable<string> parameters) {
    string call = functionName + "(" + string.Join(", ", parameters) + ")";
    try {
      if (test == null) {
        throw new InvalidOperationException("no test is running");
      }
      long value;
      return long.TryParse(test.evaluate(call), out value) ? unchecked((int)value) : 0;
    } catch (Exception e) {
      failure = failure ?? "script function " + call + " failed: " + e.Message;
      return -1;
    }
  }
}
