public static class ManagedTestMain {
  public static int Main() {
    FoundationTests.Run();
    YamlOutputTests.Run();
    YamlParseTests.Run();
    SectionsTests.Run();
    TestSpecTests.Run();
    return Check.Result("managed tests");
  }
}
