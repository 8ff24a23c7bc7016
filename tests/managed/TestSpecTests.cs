// Test files built, edited, saved and read back by a C# caller through the bench and the
// specification tree.
using System;
using System.IO;

public static class TestSpecTests {
  static string Joined(StrVector items) {
    return string.Join(",", items);
  }

  static CTestBench NewBench() {
    var bench = new CTestBench();
    bench.getTestEnvironmentConfig().setWorkspace("project/demo.ws");
    bench.getTestEnvironmentConfig().setDefaultReturnValueName("rv");
    bench.getTestReportConfig().setFileName("report.xml");
    CTestSpecification root = bench.getTestSpecification();

    CTestSpecification group = root.addDerivedTestSpec("group", "add");
    group.getFunctionUnderTest().setRetValueName("rv");
    group.setLocalVariables("{counter: int}");
    CTestStub stub = group.newTestStub();
    stub.setFunctionName("read_sensor");
    stub.setAssignments("{srv: 42}");
    group.getStubs().Add(stub);

    CTestSpecification t1 = group.addDerivedTestSpec("t1", "");
    t1.setPositionParams("[1, 2]");
    t1.setExpectedResults("[rv == 3]");
    CTestSpecification t2 = group.addDerivedTestSpec("t2", "");
    t2.getFunctionUnderTest().setName("sub");
    t2.getFunctionUnderTest().setPositionParameters("[5, \"x\"]");
    t2.setRunFlag(false);
    return bench;
  }

  const string Written =
      "env:\n" +
      "  workspace: project/demo.ws\n" +
      "  defaultRetValName: rv\n" +
      "reportConfig:\n" +
      "  fileName: report.xml\n" +
      "  testInfo: {}\n" +
      "tests:\n" +
      "- id: group\n" +
      "  locals:\n" +
      "    counter: int\n" +
      "  func: [add, [], rv]\n" +
      "  stubs:\n" +
      "  - func:\n" +
      "    - read_sensor\n" +
      "    assign:\n" +
      "      srv: 42\n" +
      "  tests:\n" +
      "  - id: t1\n" +
      "    params: [1, 2]\n" +
      "    expect:\n" +
      "    - rv == 3\n" +
      "  - id: t2\n" +
      "    run: false\n" +
      "    func: [sub, [5, \"x\"]]\n";

  public static void Run() {
    Check.Case("a bench built in C# is saved, loaded and saved again alike", () => {
      string path = Path.Combine(Path.GetTempPath(), "kestrix-managed-bench.yaml");
      NewBench().save(path);
      Check.Equal(Written, File.ReadAllText(path));

      CTestBench loaded = CTestBench.load(path);
      Check.Equal("project/demo.ws", loaded.getTestEnvironmentConfig().getWorkspace());
      CTestSpecification root = loaded.getTestSpecification();
      // The bench's root counts as one test of its own.
      Check.Equal(4, root.getNoOfTests(false));
      Check.Equal(3, root.getNoOfTests(true));
      loaded.save(path);
      Check.Equal(Written, File.ReadAllText(path));
      File.Delete(path);
    });

    Check.Case("merge gives each test its flat form", () => {
      CTestBench bench = CTestBench.parse(Written);
      CTestSpecification group = bench.getTestSpecification().getDerivedTestSpec(0);
      CTestSpecification t1 = group.getDerivedTestSpec(0).merge();
      Check.True(t1.getParentTestSpecification().compare(group.getDerivedTestSpec(0)), "merged from t1");
      Check.Equal("read_sensor", t1.getStubs()[0].getFunctionName(), "the stub is inherited");

      CTestSpecification t2 = group.getDerivedTestSpec(1).merge();
      Check.True(t2.getRunFlag(), "a merged test reads as enabled");
      var parameters = new StrVector();
      t2.getPositionParams(parameters);
      Check.Equal("5,\"x\"", Joined(parameters));
    });

    Check.Case("tree edits: insert, delete, index errors", () => {
      var root = new CTestSpecification();
      CTestSpecification a = root.addDerivedTestSpec("a", "");
      var b = new CTestSpecification(root);
      b.setTestId("b");
      root.addDerivedTestSpec(0, b);
      Check.Equal("b", root.getDerivedTestSpec(0).getTestId());
      Check.True(root.getDerivedTestSpec(1).compare(a), "the same object comes back");
      Check.Equal(0, root.deleteDerivedTestSpec(b));
      Check.Equal(-1, root.deleteDerivedTestSpec(b));
      Check.Throws<ApplicationException>(() => root.addDerivedTestSpec(0, null), "a null item");
      Check.Throws<ApplicationException>(() => a.addDerivedTestSpec(0, root), "an ancestor");
      Check.Equal(1, root.getNoOfDerivedSpecs());
      var e = Check.Throws<IOException>(() => root.getDerivedTestSpec(3));
      if (e != null) {
        Check.True(e.Message.StartsWith("No derived test specificatin at the given index exists!"), e.Message);
        Check.True(e.Message.Contains("idx: 3"), e.Message);
      }
    });
  }
}
