// The target access side as a C# caller sees it without a target: the CPU status, the download
// configuration and list records, the batch and JTAG records, and controllers on a manager
// that is not connected.
using System;

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

    Check.Case("download configuration and list members keep their values", () => {
      CDownloadConfiguration config = new CDownloadConfiguration();
      config.setRealTimeAccess(true);
      config.setCodeOffset(0x100);
      Check.True(config.isRealTimeAccess(), "real-time flag");
      Check.True(config.getSDownload() != null, "the record is handed out");
      DownloadListVector list = new DownloadListVector();
      DownloadListMember member = new DownloadListMember();
      member.fileName = "fw.elf";
      member.options = "-v";
      list.Add(member);
      Check.Equal(1, list.Count);
      Check.Equal("fw.elf", list[0].fileName);
      Check.Equal("-v", list[0].options);
    });

    Check.Case("batch records and JTAG sizes cross the boundary", () => {
      SBatchAccessItem item = new SBatchAccessItem();
      item.m_aAddress = 0x20000010;
      item.m_bySize = 4;
      item.m_qwTimeOffset = 0x100000000UL;
      VectorBatchAccessItem items = new VectorBatchAccessItem();
      items.Add(item);
      Check.Equal(0x20000010u, items[0].m_aAddress);
      Check.Equal((byte)4, items[0].m_bySize);
      Check.Equal(0x100000000UL, items[0].m_qwTimeOffset);
      SBatchAccessHeader header = new SBatchAccessHeader();
      header.m_qwRunInterval = 1UL << 40;
      Check.Equal(1UL << 40, header.m_qwRunInterval);
      SScan_IN scan = new SScan_IN();
      scan.m_dwNumBits = 13;
      Check.Equal(2u, Scan.IN_Size(scan));
      scan.m_dwScanFlags = 0x400;
      Check.Equal(0u, Scan.OUT_Size(scan));
      Check.Equal(2u, Scan.IN_Size(scan));
    });

    Check.Case("controllers need a connection", () => {
      ConnectionMgr mgr = new ConnectionMgr();
      var e = Check.Throws<ApplicationException>(() => new CDataController(mgr));
      Check.True(e.Message.StartsWith("IDE3 interface is not available."), e.Message);
      Check.Throws<ApplicationException>(() => new CDebugFacade(mgr));
    });
  }
}
