public static class ManagedTestMain {
  public static int Main() {
    FoundationTests.Run();
    ValuesTests.Run();
    YamlOutputTests.Run();
    YamlParseTests.Run();
    return Check.Result("managed tests");
  }
}
