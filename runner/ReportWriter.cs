// The report that a test file's "reportConfig" asks for, written by the library's emitters: a
// first document "reportInfo" (test file, time, counts and the file's "testInfo"), then one
// document per test: every test in a full report, the failed ones, in their short form, in an
// errors-only report. An XML report names its stylesheet in a processing instruction.
using System;
using System.Collections.Generic;
using System.Linq;

public static class ReportWriter {
  public static void Write(string fileName, CTestReportConfig config, string testFile, IList<TestOutcome> outcomes) {
    bool isYaml = config.getOutputFormat() == CTestReportConfig.EOutputFormat.ofYaml;
    bool isFull = config.getReportContents() == CTestReportConfig.EReportContents.rcFull;
    using (var stream = new CFileStream(fileName, false)) {
      IEmitter emitter = isYaml ? EmitterFactory.createYamlEmitter(stream) : EmitterFactory.createXmlEmitter(stream);
      string stylesheet = config.getSelectedXsltFileName();
      if (!isYaml && stylesheet.Length > 0) {
        emitter.startStream("<?xml-stylesheet type=\"text/xsl\" href=\"" + emitter.escapeSpecialChars(stylesheet) + "\" ?>\n");
      } else {
        emitter.startStream();
      }
      WriteInfo(emitter, config, testFile, outcomes);
      foreach (TestOutcome outcome in outcomes.Where(o => !o.IsSkipped && (isFull || o.IsFailed))) {
        emitter.startDocument(false);
        if (isFull) {
          outcome.Result.serialize(emitter, config);
        } else {
          outcome.Result.serializeErrorsOnly(emitter, config);
        }
        emitter.endDocument(false);
      }
      emitter.endStream();
    }
  }

  static void WriteInfo(IEmitter emitter, CTestReportConfig config, string testFile, IList<TestOutcome> outcomes) {
    emitter.startDocument(false);
    emitter.mapStart();
    emitter.write("reportInfo");
    emitter.mapStart();
    emitter.writeMappingPair("testFile", testFile);
    emitter.writeMappingPair("date", DateTime.Now.ToString("yyyy-MM-ddTHH:mm:ss"));
    emitter.writeMappingPair("tests", (uint)outcomes.Count);
    emitter.writeMappingPair("passed", (uint)outcomes.Count(o => !o.IsSkipped && !o.IsFailed));
    emitter.writeMappingPair("failed", (uint)outcomes.Count(o => o.IsFailed));
    emitter.writeMappingPair("skipped", (uint)outcomes.Count(o => o.IsSkipped));
    var userInfo = new StrStrMap();
    config.getUserInfo(userInfo);
    if (userInfo.Count > 0) {
      emitter.write("testInfo");
      emitter.mapStart();
      foreach (string key in userInfo.Keys) {
        emitter.writeMappingPair(key, emitter.escapeSpecialChars(userInfo[key]));
      }
      emitter.mapEnd();
    }
    emitter.mapEnd();
    emitter.mapEnd();
    emitter.endDocument(false);
  }
}
