// The command-line runner over the generated C# proxies: runs test files on their target and
// judges them, or shows them in the flat form that a run executes.
//
//   OrbelRun [FILE...]              runs the tests; without FILE the files in examples/. The
//                                   example firmware is built first if its sources are newer.
//   OrbelRun --show [FILE...]       shows each test in flat form, runs nothing
//   OrbelRun FILE --save OUT        reads a file and writes it back through the library
//   OrbelRun --self-check           a short round through the binding
//
// Exit status: 0 when every test passed, 1 when one failed, 2 when a file or its workspace
// cannot be used.
using System;
using System.Collections.Generic;
using System.IO;
using System.Linq;
using System.Text.RegularExpressions;

public static class OrbelRun {
  public static int Main(string[] args) {
    Console.WriteLine("OrbelCS " + kestrixOrbel.getModuleVersion());
    if (args.Contains("--self-check")) {
      return SelfCheck.Run() ? 0 : 1;
    }
    var files = new List<string>();
    string saveTo = null;
    bool isShowOnly = false;
    for (int i = 0; i < args.Length; i++) {
      if (args[i] == "--save") {
        if (i + 1 == args.Length) {
          return Usage("--save needs a file name");
        }
        saveTo = args[++i];
      } else if (args[i] == "--show") {
        isShowOnly = true;
      } else if (args[i].StartsWith("-")) {
        return Usage("unknown option " + args[i]);
      } else {
        files.Add(args[i]);
      }
    }
    if (files.Count == 0) {
      files.AddRange(Directory.GetFiles("examples", "*.yaml").OrderBy(f => f));
    }
    if (saveTo != null && files.Count != 1) {
      return Usage("--save needs exactly one test file");
    }
    if (saveTo != null || isShowOnly) {
      return ShowFiles(files, saveTo);
    }
    int status = TestFileRun.AllPassed;
    foreach (string file in files) {
      Console.WriteLine();
      Console.WriteLine("== " + file);
      CTestBench bench = Load(file);
      int fileStatus = bench == null ? TestFileRun.Unusable : new TestFileRun(file, bench).Run();
      status = Math.Max(status, fileStatus);
    }
    return status;
  }

  static int ShowFiles(List<string> files, string saveTo) {
    int failed = 0;
    foreach (string file in files) {
      CTestBench bench = Load(file);
      if (bench == null) {
        failed++;
        continue;
      }
      FlatPrinter.Show(file, bench);
      if (saveTo != null) {
        // The library skips a file that it cannot open; tell it here.
        if (File.Exists(saveTo)) {
          File.Delete(saveTo);
        }
        bench.save(saveTo);
        bool isSaved = File.Exists(saveTo);
        (isSaved ? Console.Out : Console.Error).WriteLine((isSaved ? "saved to " : "cannot write ") + saveTo);
        failed += isSaved ? 0 : 1;
      }
    }
    return failed == 0 ? 0 : TestFileRun.Unusable;
  }

  static int Usage(string problem) {
    Console.Error.WriteLine(problem);
    Console.Error.WriteLine("usage: run [--show] [FILE...] | run FILE --save OUT | run --self-check");
    return 2;
  }

  // The bench of a file, or null after printing the library's message (position and excerpt).
  static CTestBench Load(string file) {
    if (!File.Exists(file)) {
      Console.Error.WriteLine(file + ": no such file");
      return null;
    }
    try {
      return CTestBench.load(file);
    } catch (Exception e) {
      Console.Error.WriteLine(file + ": the test file is refused");
      Console.Error.WriteLine(e.Message);
      ShowExcerpt(file, e.Message);
      return null;
    }
  }

  // The lines of the file up to the position that the message names, with a caret under it.
  static void ShowExcerpt(string file, string message) {
    Match at = Regex.Match(message, @"\[Line: (\d+)  Col: (\d+)\]");
    if (!at.Success) {
      return;
    }
    int line = int.Parse(at.Groups[1].Value);
    int column = int.Parse(at.Groups[2].Value);
    string[] lines = File.ReadAllLines(file);
    for (int n = Math.Max(1, line - 2); n <= Math.Min(line, lines.Length); n++) {
      Console.Error.WriteLine(n.ToString().PadLeft(5) + " | " + lines[n - 1]);
    }
    Console.Error.WriteLine(new string(' ', 8 + column) + "^");
  }
}
