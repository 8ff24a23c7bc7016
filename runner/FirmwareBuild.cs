// The example firmware built through the project controller of its workspace, when one of its
// sources, its linker script or its workspace is newer than its ELF.
using System;
using System.IO;
using System.Linq;
using System.Threading;

public static class FirmwareBuild {
  const string Folder = "examples/firmware";
  const string Workspace = Folder + "/workspace.yaml";
  const string Elf = Folder + "/build/firmware.elf";

  // False, after the build manager's diagnostics, when the firmware cannot be built.
  public static bool EnsureBuilt() {
    if (!IsStale()) {
      return true;
    }
    Console.WriteLine("building " + Elf + " through the project controller");
    var connection = new ConnectionMgr();
    try {
      connection.connectMRU(Path.GetFullPath(Workspace));
      using (var project = new CProjectController(connection)) {
        project.make(true);
        CBuildStatus status = project.getStatus();
        while (status.isActive()) {
          Thread.Sleep(100);
          status = project.getStatus();
        }
        if (!status.isIdle()) {
          Console.Error.WriteLine(Elf + ": the build ended with " + status.getNumErrors() + " errors" +
                                  (status.isConfigError() ? " (configuration error)" : ""));
          return false;
        }
        return true;
      }
    } catch (Exception e) {
      Console.Error.WriteLine(Elf + ": cannot be built");
      Console.Error.WriteLine(e.Message);
      return false;
    } finally {
      if (connection.isConnected()) {
        connection.disconnect();
      }
    }
  }

  static bool IsStale() {
    if (!File.Exists(Elf)) {
      return true;
    }
    DateTime built = File.GetLastWriteTimeUtc(Elf);
    return Directory.GetFiles(Folder)
        .Where(f => f.EndsWith(".c") || f.EndsWith(".h") || f.EndsWith(".ld") || f == Workspace)
        .Any(f => File.GetLastWriteTimeUtc(f) > built);
  }
}
