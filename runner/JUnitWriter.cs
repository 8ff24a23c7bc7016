// The JUnit XML file that CI servers read: one test suite per test file, a test case per test,
// a failed expression or analyzer limit as <failure>, a run that broke off as <error>, a test
// with `run: false` as <skipped/>.
using System;
using System.Collections.Generic;
using System.Globalization;
using System.Linq;
using System.Xml;

public static class JUnitWriter {
  public static void Write(string fileName, string suiteName, IList<TestOutcome> outcomes) {
    var settings = new XmlWriterSettings { Indent = true, IndentChars = "  " };
    using (XmlWriter xml = XmlWriter.Create(fileName, settings)) {
      xml.WriteStartDocument();
      xml.WriteStartElement("testsuites");
      xml.WriteStartElement("testsuite");
      xml.WriteAttributeString("name", suiteName);
      WriteCounts(xml, outcomes);
      xml.WriteAttributeString("timestamp", DateTime.Now.ToString("yyyy-MM-ddTHH:mm:ss"));
      foreach (TestOutcome outcome in outcomes) {
        WriteCase(xml, suiteName, outcome);
      }
      xml.WriteEndElement();
      xml.WriteEndElement();
      xml.WriteEndDocument();
    }
  }

  static void WriteCounts(XmlWriter xml, IList<TestOutcome> outcomes) {
    int errors = outcomes.Count(o => o.IsFailed && o.Result.isException());
    xml.WriteAttributeString("tests", outcomes.Count.ToString(CultureInfo.InvariantCulture));
    xml.WriteAttributeString("failures", (outcomes.Count(o => o.IsFailed) - errors).ToString(CultureInfo.InvariantCulture));
    xml.WriteAttributeString("errors", errors.ToString(CultureInfo.InvariantCulture));
    xml.WriteAttributeString("skipped", outcomes.Count(o => o.IsSkipped).ToString(CultureInfo.InvariantCulture));
    xml.WriteAttributeString("time", Seconds(outcomes.Sum(o => o.Seconds)));
  }

  static void WriteCase(XmlWriter xml, string suiteName, TestOutcome outcome) {
    xml.WriteStartElement("testcase");
    xml.WriteAttributeString("classname", suiteName);
    xml.WriteAttributeString("name", outcome.Id);
    xml.WriteAttributeString("time", Seconds(outcome.Seconds));
    if (outcome.IsSkipped) {
      xml.WriteElementString("skipped", "");
    } else if (outcome.IsFailed) {
      bool isError = outcome.Result.isException();
      string text = string.Join("\n", outcome.FailureLines());
      xml.WriteStartElement(isError ? "error" : "failure");
      xml.WriteAttributeString("message", text.Split('\n')[0]);
      xml.WriteAttributeString("type", isError ? "exception" : "verdict");
      xml.WriteString(text);
      xml.WriteEndElement();
    }
    xml.WriteEndElement();
  }

  static string Seconds(double seconds) {
    return seconds.ToString("0.000000", CultureInfo.InvariantCulture);
  }
}
