// Values, records, the logger and the analyzer statistics as a C# caller reaches them.
using System;
using System.IO;
using System.Runtime.InteropServices;

public static class ValuesTests {
  [DllImport("OrbelCS", EntryPoint = "CSharp_SType2Upcast")]
  static extern IntPtr SType2Upcast(IntPtr derived);

  static SType TypeOf(SType.EType code, byte bits) {
    SType type = new SType();
    type.m_byType = (byte)code;
    type.m_byBitSize = bits;
    return type;
  }

  public static void Run() {
    Check.Case("CValueType conversions through the proxies", () => {
      Check.Equal("65", new CValueType(TypeOf(SType.EType.tUnsigned, 8), 65UL).getResult());
      CValueType big = new CValueType(40, 0xFF00000001UL);
      Check.Equal(0xFF00000001L, big.getLong());
      var e = Check.Throws<ApplicationException>(() => big.getInt());
      if (e != null) Check.True(e.Message.StartsWith("Value has more than 32 bits. Use 'getLong()' instead!  [/CValueType.cpp, "), e.Message);
      CValueType parsed = new CValueType(TypeOf(SType.EType.tUnsigned, 12), "0x12345");
      Check.Equal(0x2345, parsed.getInt(), "12 bits from text store 16");
      Check.Throws<ApplicationException>(() => new CValueType(TypeOf(SType.EType.tSigned, 32), "1"));
      CValueType error = new CValueType("no such symbol");
      Check.True(error.isError() && error.isTypeCompound(), "error form");
      Check.Equal((byte)64, new CValueType(2.5).getType().m_byBitSize);
    });

    Check.Case("record accessors: fixed text, nested record, upcast", () => {
      SRegisterInfo reg = new SRegisterInfo();
      reg.m_szRegName = "ABCDEFGHIJKLMNOPQRSTUVWXYZ";
      Check.Equal("ABCDEFGHIJKLMNO", reg.m_szRegName, "at most 15 characters are kept");
      reg.m_szRegName = null;
      Check.Equal("", reg.m_szRegName, "a null text clears the name");
      SType inPlace = reg.m_Type;
      inPlace.m_byBitSize = 32;
      Check.Equal((byte)32, reg.m_Type.m_byBitSize, "the nested record is reached in place");
      SType2 t2 = new SType2();
      t2.m_dw2 = 0xDEADBEEF;
      IntPtr p = SType2.getCPtr(t2).Handle;
      Check.Equal(p, SType2Upcast(p), "the base starts where the record does");
      CAddress address = new CAddress();
      address.m_iArea = -2;
      Check.Equal((short)-2, address.m_iArea, "the memory area is signed");
    });

    Check.Case("logger script and its failures", () => {
      string path = Path.Combine(Path.GetTempPath(), "kx_managed_logger.py");
      CLogger logger = new CLogger(path, CLogger.ELanguage.PYTHON, 0, 100.0, "# head");
      logger.logf("dataCtrl", "kestrix::CDataController::eraseFlash", "");
      logger.createSType("t", TypeOf(SType.EType.tFloat, 32));
      Check.Throws<ApplicationException>(() => logger.logf("x", "m", "i"), "a letter without argument");
      logger.closeLog("# foot");
      logger.Dispose();
      Check.Equal("# head\ndataCtrl.eraseFlash();\nt = kestrix.orbel.SType()\nt.m_byBitSize = 32\n"
                  + "t.m_byType = kestrix.orbel.SType.tFloat\n# foot", File.ReadAllText(path));
      File.Delete(path);
      var e = Check.Throws<ApplicationException>(() => new CLogger("/nonexistent-dir/x.py", CLogger.ELanguage.JAVA));
      if (e != null) Check.True(e.Message.StartsWith("Can not open log file: /nonexistent-dir/x.py"), e.Message);
      Check.Equal("OrbelDebug.fRealTime | OrbelDebug.fSFR | OrbelDebug.fCacheDefault", CLogger.obDebugAccessFlags2str(0x15));
    });

    Check.Case("statistics in their families", () => {
      StrCoverageStatisticMap coverage = new StrCoverageStatisticMap();
      coverage["main"] = new CCoverageStatistic(100, 25, 0, 0, 0, 0, 0);
      Check.Equal(0.25, coverage["main"].getBytesExecutedRel());
      ProfilerStatisticVector stats = new ProfilerStatisticVector();
      stats.Add(new CProfilerStatistic());
      StrProfilerStatisticVectorMap byArea = new StrProfilerStatisticVectorMap();
      byArea.Add("f", stats);
      Check.Equal(1, byArea["f"].Count);
      SProfilerHistory h = new SProfilerHistory();
      h.m_dwValue = 0x80000000;
      h.m_qwTime = 1UL << 40;
      ProfilerHistoryVector list = new ProfilerHistoryVector();
      list.Add(new CProfilerHistory(h));
      Check.True(list[0].isActive(), "bit 31 is active");
      Check.Equal(1UL << 40, list[0].getSProfilerHistory().m_qwTime);
    });
  }
}
