// Stubs, function calls and HIL blocks edited by a C# caller and written through IEmitter.
using System;

public static class SectionsTests {
  internal static string Yaml(Action<IEmitter> body) {
    var stream = new CStringStream();
    IEmitter emitter = EmitterFactory.createYamlEmitter(stream);
    emitter.startStream();
    emitter.startDocument(true);
    body(emitter);
    emitter.endDocument(true);
    emitter.endStream();
    return stream.getString();
  }

  static readonly SWIGTYPE_p_kestrix__ITestParserEventReceiver NoParent = null;

  public static void Run() {
    Check.Case("stubs edited through setters and kept in a stubs vector", () => {
      var stubs = new StubsVector();
      var stub = new CTestStub();
      stub.setFunctionName("read");
      stub.setRetValName("rv");
      stub.setParamNames("[a, \"b\"]");
      stub.setAssignments("{rv: 42, g: g + 1}");
      stub.getScriptFunction().setName("onStub");
      stubs.Add(stub);
      stubs.Add(new CTestStub());
      Check.Equal(2, stubs.Count);
      CTestStub first = stubs[0];
      Check.Equal("rv,g", string.Join(",", first.getAssignmentKeys()));
      Check.Equal("func:\n- read\n- rv\nparams:\n- a\n- \"b\"\nassign:\n  rv: 42\n  g: g + 1\nscript: [onStub]\n",
                  Yaml(e => first.serialize(e)));
    });

    Check.Case("a refused setter raises and changes nothing", () => {
      var function = new CTestFunction();
      function.setName("f");
      var e = Check.Throws<System.IO.IOException>(() => function.setName("a, b"));
      Check.True(e.Message.Contains("Scalar consists of multiple items"), e.Message);
      function.setPositionParameters("[1, 2]");
      Check.Equal("[f, [1, 2]]\n", Yaml(em => function.serialize(em)));
      var hil = new CTestHIL(null);
      hil.setParams("{Out1: 1, In: 2.5}");
      Check.Equal("Out1,In", string.Join(",", hil.getHILParamKeys()));
    });

    Check.Case("a null emitter is refused by the sections", () => {
      var writers = new Action[] {
        () => new CTestStub().serialize(null), () => new CTestProfiler(NoParent).serialize(null),
      };
      foreach (Action write in writers) {
        var e = Check.Throws<ApplicationException>(write);
        if (e != null) Check.True(e.Message.StartsWith("Emitter must not be null!  ["), e.Message);
      }
    });
  }
}
