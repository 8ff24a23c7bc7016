public static class ManagedTestMain {
  public static int Main() {
    FoundationTests.Run();
    return Check.Result("managed tests");
  }
}
