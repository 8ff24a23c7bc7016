// A minimal assertion runner for the managed tests: each case is a named action; a failed
// check is reported with its case name and the run ends non-zero.
using System;
using System.Collections.Generic;

public static class Check {
  static int failures = 0;
  static string current = "";

  public static void Case(string name, Action body) {
    current = name;
    try {
      body();
    } catch (Exception e) {
      Fail("unexpected " + e.GetType().FullName + ": " + e.Message);
    }
  }

  public static void Fail(string what) {
    failures++;
    Console.Error.WriteLine("FAIL [" + current + "] " + what);
  }

  public static void Equal<T>(T expected, T actual, string what = "") {
    if (!EqualityComparer<T>.Default.Equals(expected, actual)) {
      Fail(what + " expected <" + expected + "> but was <" + actual + ">");
    }
  }

  public static void True(bool condition, string what) {
    if (!condition) {
      Fail(what);
    }
  }

  // Runs `body`, which must raise exactly an E; returns it for further checks.
  public static E Throws<E>(Action body, string what = "") where E : Exception {
    try {
      body();
    } catch (Exception e) {
      if (e.GetType() == typeof(E)) {
        return (E)e;
      }
      Fail(what + " expected " + typeof(E).FullName + " but got " + e.GetType().FullName + ": " + e.Message);
      return null;
    }
    Fail(what + " expected " + typeof(E).FullName + " but nothing was thrown");
    return null;
  }

  public static int Result(string suite) {
    Console.WriteLine(suite + ": " + (failures == 0 ? "all checks passed" : failures + " check(s) failed"));
    return failures == 0 ? 0 : 1;
  }
}
