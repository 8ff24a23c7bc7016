public static class ManagedTestMain {
  public static int Main() {
    FoundationTests.Run();
    ValuesTests.Run();
    YamlOutputTests.Run();
    YamlParseTests.Run();
    SectionsTests.Run();
    ProfilerConfigTests.Run();
    TestSpecTests.Run();
    return Check.Result("managed tests");
  }
}
