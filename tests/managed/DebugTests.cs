// The target access side as a C# caller sees it: the CPU status, the download list, the batch and
// JTAG records, and a debug session on the example firmware with the simulated Quillon of
// liborbel.so when it is built.
using System;
using System.IO;

public static class DebugTests {
  public static void Run() {
    Check.Case("a CPU status without the stop reason refuses to tell it", () => {
      CPUStatus status = new CPUStatus(false);
      Check.True(status.isMustInit(), "a new status is all zero");
      Check.Equal(0u, status.getExecutionPoint());
      var e = Check.Throws<ApplicationException>(() => status.isStopReasonBP());
      Check.True(e.Message.StartsWith("Stop reason is not available, because it was not requested!"), e.Message);
      Check.True(!new CPUStatus(true).isStopReasonBP(), "a status that is not stopped has no reason");
    });

    Check.Case("download list members travel in their vector", () => {
      DownloadListVector list = new DownloadListVector();
      DownloadListMember member = new DownloadListMember();
      member.fileName = "fw.elf";
      list.Add(member);
      Check.Equal("fw.elf", list[0].fileName);
    });

    Check.Case("batch records and JTAG sizes cross the boundary", () => {
      SBatchAccessItem item = new SBatchAccessItem();
      item.m_aAddress = 0x20000010;
      item.m_bySize = 4;
      item.m_qwTimeOffset = 0x100000000UL;
      VectorBatchAccessItem items = new VectorBatchAccessItem();
      items.Add(item);
      Check.Equal(0x100000000UL, items[0].m_qwTimeOffset, "a 64-bit field after narrow ones");
      SScan_IN scan = new SScan_IN();
      scan.m_dwNumBits = 13;
      Check.Equal(2u, Scan.IN_Size(scan));
      scan.m_dwScanFlags = 0x400;
      Check.Equal(0u, Scan.OUT_Size(scan));
      Check.Equal(2u, Scan.IN_Size(scan));
    });

    string orbelPath = Environment.GetEnvironmentVariable("ORBEL_PATH") ?? "";
    string firmware = Environment.GetEnvironmentVariable("KESTRIX_FIRMWARE_FOLDER") ?? "";
    if (!File.Exists(orbelPath + "liborbel.so") || !File.Exists(Path.Combine(firmware, "build", "firmware.elf"))) {
      Console.WriteLine("DebugTests: debug session skipped: no liborbel.so in '" + orbelPath
                        + "' or no example firmware in '" + firmware + "'");
      return;
    }

    Check.Case("a debug session on the example firmware", () => {
      ConnectionMgr mgr = new ConnectionMgr();
      mgr.connectMRU(Path.Combine(firmware, "workspace.yaml"));
      CDebugFacade debug = new CDebugFacade(mgr);
      debug.download();
      debug.reset();
      Check.Equal(0, debug.runUntilFunction("main", 2));
      Check.Throws<ApplicationException>(() => debug.getVariableAddress("no_such_symbol"));
      Check.Equal(0, debug.setBP("filter_step", 3));
      Check.Equal(0, debug.run(2));
      CPUStatus status = debug.getCPUStatus();
      Check.True(status.isStopped() && status.isStopReasonBP(), "stopped on the breakpoint");
      Check.True(debug.getSymbolAtAddress(4, 0, status.getExecutionPoint()).StartsWith("filter_step+0x"),
                 "in filter_step");
      Check.Equal(2L, debug.evaluate(0, "g_filter.count").getLong());
      Check.Equal("7", debug.modify(0, "g_gain", "3 + 4"));

      uint gain = debug.getVariableAddress("g_gain").getAddress();
      VectorBYTE bytes = debug.readMemory(0, 0, gain, 4, 1);
      Check.Equal(8, bytes.Count);
      Check.Equal((byte)7, bytes[0]);
      var e = Check.Throws<ApplicationException>(() => debug.readMemory(0, 0, 0x60000000, 4, 1));
      if (e != null) Check.True(e.Message.StartsWith("F. ReadMemory() failed. Memory can not be accessed."), e.Message);
      var x = Check.Throws<ApplicationException>(() => debug.evaluate(0, "g_level +"));
      if (x != null) Check.True(x.Message.StartsWith("F. Evaluate() failed!"), x.Message);

      mgr.disconnect();
      mgr.Dispose();
    });
  }
}
