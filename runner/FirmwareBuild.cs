// The firmware of a workspace that has a build section, made through its project controller
// when the workspace, its linker script, a source or a header beside a source or in an include
// folder is newer than its ELF. A workspace without a build section is left as it is.
using System;
using System.Collections.Generic;
using System.IO;
using System.Linq;
using System.Threading;

public static class FirmwareBuild {
  const string Project = "/";

  // False, after the build manager's diagnostics, when the firmware cannot be built.
  public static bool EnsureBuilt(string workspace) {
    var connection = new ConnectionMgr();
    try {
      connection.connectMRU(workspace);
    } catch (ApplicationException) {
      return true; // the run's own connection tells why the workspace cannot be used
    }
    try {
      using (var project = new CProjectController(connection)) {
        string elf;
        List<string> inputs;
        if (!ReadSettings(project.options(), Path.GetDirectoryName(Path.GetFullPath(workspace)),
                          out elf, out inputs)) {
          return true;
        }
        inputs.Add(workspace);
        if (!IsStale(elf, inputs)) {
          return true;
        }
        Console.WriteLine("building " + elf + " through the project controller");
        return Make(project, elf);
      }
    } catch (Exception e) {
      Console.Error.WriteLine(workspace + ": the firmware cannot be built");
      Console.Error.WriteLine(e.Message);
      return false;
    } finally {
      if (connection.isConnected()) {
        connection.disconnect();
      }
    }
  }

  // The ELF and what it is made of; false when the workspace has no build section, which the
  // build manager tells by refusing to read its options.
  static bool ReadSettings(CBuildOptions options, string folder, out string elf, out List<string> inputs) {
    elf = null;
    inputs = new List<string>();
    try {
      elf = Path.Combine(folder, options.get(Project, "output"));
    } catch (ApplicationException) {
      return false;
    }
    inputs.Add(Path.Combine(folder, options.get(Project, "linkerScript")));
    var headerFolders = new HashSet<string>();
    foreach (string source in Items(options, "sources")) {
      string path = Path.Combine(folder, source);
      inputs.Add(path);
      headerFolders.Add(Path.GetDirectoryName(path));
    }
    foreach (string include in Items(options, "includes")) {
      headerFolders.Add(Path.Combine(folder, include));
    }
    inputs.AddRange(headerFolders.Where(Directory.Exists)
                        .SelectMany(f => Directory.GetFiles(f, "*.h")));
    return true;
  }

  static IEnumerable<string> Items(CBuildOptions options, string option) {
    for (int i = 0;; i++) {
      string item;
      try {
        item = options.get(i, Project, option);
      } catch (ApplicationException) {
        yield break; // past the last item
      }
      yield return item;
    }
  }

  static bool IsStale(string elf, List<string> inputs) {
    if (!File.Exists(elf)) {
      return true;
    }
    DateTime built = File.GetLastWriteTimeUtc(elf);
    return inputs.Any(f => File.Exists(f) && File.GetLastWriteTimeUtc(f) > built);
  }

  static bool Make(CProjectController project, string elf) {
    project.make(true); // answers when the build is done
    CBuildStatus status = project.getStatus();
    while (status.isActive()) {
      Thread.Sleep(100);
      status = project.getStatus();
    }
    if (status.isIdle()) {
      return true;
    }
    Console.Error.WriteLine(elf + ": the build ended with " + status.getNumErrors() + " errors" +
                            (status.isConfigError() ? " (configuration error)" : ""));
    return false;
  }
}
