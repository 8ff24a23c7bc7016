public static class ManagedTestMain {
  public static int Main() {
    FoundationTests.Run();
    YamlParseTests.Run();
    return Check.Result("managed tests");
  }
}
