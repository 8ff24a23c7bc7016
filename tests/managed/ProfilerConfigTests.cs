// The profiler section and the environment and report configurations as a C# caller edits them.
using System;

public static class ProfilerConfigTests {
  public static void Run() {
    Check.Case("Profiler areas are edited in place through their handles", () => {
      var profiler = new CTestProfiler((SWIGTYPE_p_kestrix__ITestParserEventReceiver)null);
      CProfilerArea area = profiler.addArea(CTestProfiler.EAreaType.AREA_CODE);
      area.setAreaName("compute");
      area.setMinTime(new MinMaxLimits(1, 5000000000L));
      MinMaxLimits limits = profiler.getArea(CTestProfiler.EAreaType.AREA_CODE, 0).getMinTime();
      Check.Equal(5000000000L, limits.m_max);
      Check.True(limits.m_isDefined, "limits defined");
      Check.Equal("codeAreas:\n- name: compute\n  minTime:\n  - 1\n  - 5000000000\n", SectionsTests.Yaml(e => profiler.serialize(e)));

      var copy = new CTestProfiler(profiler);
      copy.getArea(CTestProfiler.EAreaType.AREA_CODE, 0).setAreaName("other");
      Check.Equal("compute", area.getAreaName(), "the copy owns its areas");
      Check.Throws<ApplicationException>(() => profiler.setRunMode("go"));
      Check.Throws<System.IO.IOException>(() => profiler.getArea(CTestProfiler.EAreaType.AREA_DATA, 0));
    });

    Check.Case("Environment and report configurations", () => {
      var env = new CTestEnvironmentConfig();
      env.setPort(5000);
      env.setScriptModules("[a, b]");
      var modules = new StrVector();
      env.getScriptModules(modules);
      Check.Equal("a,b", string.Join(",", modules));
      Check.Equal("port: 5000\nscriptModules:\n- a\n- b\n", env.toString());

      var report = new CTestReportConfig();
      report.setReportContents(CTestReportConfig.EReportContents.rcErrorsOnly);
      report.setXsltForErrors("e.xsl");
      report.addUserInfo("tester", "me");
      Check.Equal("e.xsl", report.getSelectedXsltFileName());
      var copy = new CTestReportConfig((SWIGTYPE_p_kestrix__ITestParserEventReceiver)null);
      copy.assign(report);
      var info = new StrStrMap();
      copy.getUserInfo(info);
      Check.Equal("me", info["tester"]);
      Check.Throws<ArgumentNullException>(() => copy.assign(null));
    });
  }
}
