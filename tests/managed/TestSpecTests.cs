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
      Check.Equal("id: t1\nlocals:\n  counter: int\nfunc: [add, [], rv]\nparams: [1, 2]\n"
                  + "stubs:\n- func:\n  - read_sensor\n  assign:\n    srv: 42\nexpect:\n- rv == 3\n", t1.toString());
      Check.Equal("read_sensor", t1.getStubs()[0].getFunctionName());

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

    Check.Case("setters parse YAML text; a refused one changes nothing", () => {
      CTestSpecification spec = CTestSpecification.parseTestSpec("func: [f, [1]]\ntags: [a]\n");
      var e = Check.Throws<ApplicationException>(() => spec.setPositionParams("[2]"));
      if (e != null) {
        Check.True(e.Message.StartsWith("Parameters must not be assigned in both the 'func' section"), e.Message);
      }
      spec.setTags("[x, 'y z']");
      spec.setInitValues("{g: 1}");
      Check.Equal("tags: [x, 'y z']\ninit:\n  g: 1\nfunc: [f, [1]]\n", spec.toString());
    });

    Check.Case("a file error names its line and shows the text", () => {
      var e = Check.Throws<IOException>(() => CTestBench.parse("tests:\n- id: t1\n  funct: [f]\n"));
      if (e != null) {
        Check.True(e.Message.Contains("Error: Invalid section in test specification: funct"), e.Message);
        Check.True(e.Message.Contains("[Line: 3  Col: 8]"), e.Message);
      }
      Check.Throws<IOException>(() => CTestSpecification.parseTestSpec("func: [f, [1]]\nparams: [2]\n"));
    });
  }
}
