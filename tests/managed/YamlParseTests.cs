// YAML fragments parsed from C#: results in the shared containers, and parse errors that
// arrive with the text excerpt and the position of the fault.
using System;
using System.IO;

public static class YamlParseTests {
  public static void Run() {
    Check.Case("a list and a map come back in the shared containers", () => {
      StrVector items = new StrVector();
      CYAMLUtil.parseYAMLList(items, "[a, \"b\", 'c']");
      Check.Equal("a|\"b\"|'c'", string.Join("|", items.ToArray()));
      StrVector keys = new StrVector();
      StrVector values = new StrVector();
      CYAMLUtil.parseYAMLMap(keys, values, "{y: 1, x: 2}");
      Check.Equal("y,x", string.Join(",", keys.ToArray()));
      Check.Equal("1,2", string.Join(",", values.ToArray()));
      Check.Equal("y, x", CYAMLUtil.strVector2Str(keys));
    });

    Check.Case("a syntax error reaches C# with its excerpt and position", () => {
      var e = Check.Throws<IOException>(() => CYAMLUtil.verifyList("[a,\n b\n"));
      if (e != null) {
        string m = e.Message;
        Check.True(m.StartsWith("YAML syntax error  [/CYAMLParser.cpp, "), m);
        Check.True(m.Contains("    testSpecification: \n      ---\n      [a,\n       b\n"), "excerpt: " + m);
        Check.True(m.Contains("Error: Cannot parse the input stream. did not find expected ',' or ']'\n"
                              + "----------------------^----------------------\n"), "message and banner: " + m);
        Check.True(m.Contains("      [Line: 3  Col: 0]\n"), "position: " + m);
      }
    });

    Check.Case("a refused fragment names the fault behind the parse", () => {
      var e = Check.Throws<IOException>(() => CYAMLUtil.parseYAMLMap(new StrStrMap(), "{a: 1, a: 2}"));
      if (e != null) {
        Check.True(e.Message.StartsWith("Illegal argument  [/CYAMLParser.cpp, "), e.Message);
        Check.True(e.Message.Contains("Error: Duplicate keys are not allowed in map: a  ["), e.Message);
      }
      var v = Check.Throws<ApplicationException>(() => CYAMLUtil.verifyLimitedScalar("a b", "test ID"));
      if (v != null) {
        Check.True(v.Message.StartsWith("Only subset of all characters is allowed: letters, numbers, and symbols: _-./:"),
                   v.Message);
      }
    });
  }
}
