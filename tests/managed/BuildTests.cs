// A C# caller's whole round of the build manager on the simulated Quillon: open a workspace,
// change a define through the build options, make the firmware, read the status and its counts,
// download the new ELF and test it.
using System;
using System.IO;

public static class BuildTests {
  const string Workspace =
      "target:\n" +
      "  memory:\n" +
      "    - {name: flash, start: 0, size: 0x40000, access: rx}\n" +
      "    - {name: sram, start: 0x20000000, size: 0x10000}\n" +
      "download:\n" +
      "  - file: build/scale.elf\n" +
      "build:\n" +
      "  sources: [startup.c, scale.c]\n" +
      "  defines: [SCALE=2]\n" +
      "  flags: [-mcpu=cortex-m3, -mthumb, -g, -O0, -ffreestanding, -Wall]\n" +
      "  linkFlags: [-nostdlib, -lgcc]\n" +
      "  linkerScript: firmware.ld\n" +
      "  output: build/scale.elf\n";

  const string Source =
      "int scaled(int x) { return x * SCALE; }\n" +
      "int main(void) { for (;;) { } }\n";

  public static void Run() {
    string orbelPath = Environment.GetEnvironmentVariable("ORBEL_PATH") ?? "";
    string firmware = Environment.GetEnvironmentVariable("KESTRIX_FIRMWARE_FOLDER") ?? "";
    if (!File.Exists(orbelPath + "liborbel.so") || !File.Exists(Path.Combine(firmware, "startup.c"))) {
      Console.WriteLine("BuildTests skipped: no liborbel.so in ORBEL_PATH or no example firmware");
      return;
    }

    Check.Case("a define changed through the build options reaches the tested firmware", () => {
      string folder = Path.Combine(Path.GetTempPath(), "kx-build-" + Guid.NewGuid().ToString("N"));
      Directory.CreateDirectory(folder);
      File.Copy(Path.Combine(firmware, "startup.c"), Path.Combine(folder, "startup.c"));
      File.Copy(Path.Combine(firmware, "firmware.ld"), Path.Combine(folder, "firmware.ld"));
      File.WriteAllText(Path.Combine(folder, "scale.c"), Source);
      string workspace = Path.Combine(folder, "scale.yaml");
      File.WriteAllText(workspace, Workspace);

      ConnectionMgr mgr = new SPtrFactory().newConnectionMgr();
      mgr.connectMRU("");
      Check.True(new CWorkspaceController(mgr).open(workspace), "workspace opened");

      var project = new CProjectController(mgr);
      CBuildOptions options = project.options();
      Check.Equal("SCALE=2", options.get("/", "defines"));
      options.set("/", "defines", "SCALE=3");
      project.make(true); // answers when the build is done
      CBuildStatus status = project.getStatus();
      Check.True(status.isIdle(), "built without errors");
      Check.Equal(0u, status.getNumErrors());
      Check.Equal(0u, status.getNumWarnings());

      new CLoaderController(mgr).download();
      var testCase = new CTestCase(mgr);
      var failed = new StrVector();
      testCase.runTest(CTestSpecification.parseTestSpec("{id: s, func: [scaled, [5], rv], expect: [rv == 15]}"),
                       failed);
      Check.Equal(1, failed.Count, "one result for the one expectation");
      Check.Equal("", failed.Count > 0 ? failed[0] : "none", "an empty result is a passed expectation");

      // A warning is counted and does not stop the build.
      File.WriteAllText(Path.Combine(folder, "scale.c"), Source + "int unused(void) { int x; return 0; }\n");
      project.make(true);
      status = project.getStatus();
      Check.True(status.isIdle(), "a warning leaves the build idle");
      Check.Equal(1u, status.getNumWarnings());

      testCase.Dispose();
      project.Dispose();
      mgr.disconnect();
      Directory.Delete(folder, true);
    });
  }
}
