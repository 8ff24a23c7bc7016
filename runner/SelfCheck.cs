// A short round through the binding: conversions, containers, streams and one error.
using System;

public static class SelfCheck {
  public static bool Run() {
    bool ok = true;
    ok &= Report("number conversion", CUtil.aOrHex2l("0x2A") == 42 && CUtil.i2h(-1) == "ffffffff");

    StrVector parts = new StrVector();
    CUtil.split("alpha,beta,gamma", ',', parts);
    ok &= Report("text split", parts.Count == 3 && parts[2] == "gamma");

    StrStrMap vars = new StrStrMap();
    vars["target"] = "cortex-m";
    ok &= Report("variable substitution", CUtil.substVars("board: ${target}", vars) == "board: cortex-m");

    CStringStream stream = new CStringStream();
    stream.write("written through IStream");
    ok &= Report("string stream", stream.getString() == "written through IStream");

    try {
      CUtil.a2l("12 ");
      ok &= Report("library error reaches the caller", false);
    } catch (ApplicationException e) {
      Console.WriteLine("  error text: " + e.Message);
      ok &= Report("library error reaches the caller", e.Message.StartsWith("Integer expected: 12 "));
    }
    Console.WriteLine(ok ? "self-check passed" : "self-check FAILED");
    return ok;
  }

  static bool Report(string what, bool passed) {
    Console.WriteLine((passed ? "  ok    " : "  FAIL  ") + what);
    return passed;
  }
}
