// The workspace controller as a C# caller sees it, with the simulated Quillon of liborbel.so
// when it is built: open a workspace, change an option, save, reopen.
using System;
using System.IO;

public static class WorkspaceTests {
  const string Memory =
    "target:\n" +
    "  memory:\n" +
    "    - {name: flash, start: 0, size: 0x40000, access: rx}\n" +
    "    - {name: sram, start: 0x20000000, size: 0x10000}\n";

  public static void Run() {
    Check.Case("the workspace controller needs a connection", () => {
      ConnectionMgr mgr = new SPtrFactory().newConnectionMgr();
      var e = Check.Throws<ApplicationException>(() => new CWorkspaceController(mgr));
      if (e != null) Check.True(e.Message.StartsWith("IDE3 interface is not available."), e.Message);
    });

    string orbelPath = Environment.GetEnvironmentVariable("ORBEL_PATH") ?? "";
    if (!File.Exists(orbelPath + "liborbel.so")) {
      Console.WriteLine("WorkspaceTests: session with Quillon skipped: no liborbel.so in ORBEL_PATH '" + orbelPath + "'");
      return;
    }

    Check.Case("an option set through the proxy survives save and reopen", () => {
      string folder = Path.Combine(Path.GetTempPath(), "kx_managed_workspace");
      if (Directory.Exists(folder)) Directory.Delete(folder, true);
      Directory.CreateDirectory(folder);
      string first = Path.Combine(folder, "first.yaml");
      string second = Path.Combine(folder, "second.yaml");
      File.WriteAllText(first, Memory);
      File.WriteAllText(second, Memory);

      ConnectionMgr mgr = new ConnectionMgr();
      mgr.connectMRU(first);
      CWorkspaceController ws = new CWorkspaceController(mgr);
      CIDEController ide = new CIDEController(mgr);
      Check.True(ws.open(second), "opened " + second);
      ide.setOption("/IDE/Debug/StopAtMain", 1u);
      ws.save();
      ws.closeDiscard();
      Check.Equal(0u, ide.getOptionInt("/IDE/Debug/StopAtMain"));
      Check.True(ws.open(second), "opened again");
      Check.Equal(1u, ide.getOptionInt("/IDE/Debug/StopAtMain"));

      string fresh = Path.Combine(folder, "fresh.yaml");
      ws.newWS(fresh);
      Check.True(File.Exists(fresh), "newWS wrote " + fresh);

      string broken = Path.Combine(folder, "broken.yaml");
      File.WriteAllText(broken, "test:\n  maxInstructions: 0\n");
      var e = Check.Throws<ApplicationException>(() => ws.open(broken));
      if (e != null) {
        Check.True(e.Message.StartsWith("An error occurred when performing operation on workspace:!"), e.Message);
        Check.True(e.Message.Contains(broken + ":2: 'test.maxInstructions' must not be zero"), e.Message);
      }
      ws.Dispose();
      ide.Dispose();
      mgr.disconnect();
      mgr.Dispose();
    });
  }
}
