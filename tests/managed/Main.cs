public static class ManagedTestMain {
  public static int Main() {
    FoundationTests.Run();
    ValuesTests.Run();
    YamlOutputTests.Run();
    YamlParseTests.Run();
    SectionsTests.Run();
    ProfilerConfigTests.Run();
    TestSpecTests.Run();
    ResultsTests.Run();
    ConnectionTests.Run();
    DebugTests.Run();
    IdeTests.Run();
    ObjectTests.Run();
    WorkspaceTests.Run();
    BuildTests.Run();
    DocumentTests.Run();
    TestRunTests.Run();
    RunnerTests.Run();
    return Check.Result("managed tests");
  }
}
