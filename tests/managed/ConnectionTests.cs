// The connection side as a C# caller sees it: records, identifiers, the factory, the mapping of
// connection failures, and a session with the simulated Quillon of liborbel.so when it is built.
using System;
using System.IO;
using System.Runtime.InteropServices;

public static class ConnectionTests {
  [DllImport("OrbelCS", EntryPoint = "CSharp_OrbelIDE3Upcast")]
  static extern IntPtr OrbelIDE3Upcast(IntPtr pointer);

  const string AlreadyConnected = "Orbel client is already connected! Disconnect first!  [/ConnectionMgr.cpp, ";

  static string WriteWorkspace(string name) {
    string folder = Path.Combine(Path.GetTempPath(), "kx_managed_" + name);
    Directory.CreateDirectory(folder);
    string path = Path.Combine(folder, "workspace.yaml");
    File.WriteAllText(path,
      "target:\n" +
      "  cpu: cortex-m3\n" +
      "  memory:\n" +
      "    - name: flash\n" +
      "      start: 0x00000000\n" +
      "      size: 0x40000\n" +
      "      access: rx\n" +
      "    - name: sram\n" +
      "      start: 0x20000000\n" +
      "      size: 0x10000\n" +
      "      access: rwx\n");
    return path;
  }

  public static void Run() {
    Check.Case("configuration setters hand back the handle they were given", () => {
      CConnectionConfig config = new CConnectionConfig();
      var handle = CConnectionConfig.getCPtr(config);
      Check.Equal(handle.Handle, kestrixOrbelPINVOKE.CConnectionConfig_workspace(handle, "ws.yaml"));
      Check.Equal(handle.Handle, kestrixOrbelPINVOKE.CConnectionConfig_useIPCDiscovery(handle, false));
      Check.Equal("{workspace: 'ws.yaml', udpDiscoveryPort: 0, instanceId: '', cmdLineParams: '', waitTime: 0, " +
                  "UseIPCDiscovery: 0, visibility: 0}", config.udpDiscoveryPort(0).toString());
    });

    Check.Case("identifiers are fresh copies of the interface identifiers", () => {
      IntPtr first = SWIGTYPE_p_kestrix__GUID.getCPtr(kestrixOrbel.IID_Orbel).Handle;
      IntPtr second = SWIGTYPE_p_kestrix__GUID.getCPtr(kestrixOrbel.IID_Orbel).Handle;
      Check.True(first != second, "each read is a block of its own");
      Check.Equal(unchecked((int)0xB656A669), Marshal.ReadInt32(first));
      IntPtr clsid = SWIGTYPE_p_kestrix__GUID.getCPtr(kestrixOrbel.CLSID_ORBEL).Handle;
      Check.Equal(unchecked((int)0xF5CFBDE3), Marshal.ReadInt32(clsid));
      Check.Equal((short)0x45AC, Marshal.ReadInt16(clsid, 6));
      Check.Equal(IntPtr.Zero, OrbelIDE3Upcast(IntPtr.Zero));
    });

    Check.Case("the factory makes shared managers and hands out their objects", () => {
      SPtrFactory factory = new SPtrFactory();
      ConnectionMgr mgr = factory.newConnectionMgr();
      Check.True(mgr != null, "a manager");
      Check.True(!mgr.isConnected(), "not connected");
      ConnectionMgr plain = factory.getConnectionMgr(mgr);
      plain.Dispose();
      Check.True(!mgr.isConnected(), "a non-owning handle leaves the object alive");
      mgr.Dispose();
    });

    Check.Case("connection failures arrive as ApplicationException", () => {
      ConnectionMgr mgr = new ConnectionMgr("/nonexistent/liborbel.so");
      var e = Check.Throws<ApplicationException>(() => mgr.connect("", 1));
      if (e != null) {
        Check.True(e.Message.StartsWith("6: Can not load orbel DLL from path: '/nonexistent/liborbel.so'"), e.Message);
      }
      var n = Check.Throws<ArgumentNullException>(() => mgr.connectMRU(null));
      if (n != null) Check.Equal("null string", n.Message);
      var v = Check.Throws<ApplicationException>(() => mgr.getOrbelDllVersion());
      if (v != null) Check.True(v.Message.StartsWith("Can not get version info!  ["), v.Message);
      mgr.Dispose();
    });

    string orbelPath = Environment.GetEnvironmentVariable("ORBEL_PATH") ?? "";
    if (!File.Exists(orbelPath + "liborbel.so")) {
      Console.WriteLine("ConnectionTests: session with Quillon skipped: no liborbel.so in ORBEL_PATH '" + orbelPath + "'");
      return;
    }

    Check.Case("a session with the simulated Quillon", () => {
      string workspace = WriteWorkspace("session");
      ConnectionMgr mgr = new ConnectionMgr();
      mgr.connectMRU(workspace);
      Check.True(mgr.isConnected(), "connected by connectMRU");
      CQuillonVersion version = mgr.getOrbelDllVersion();
      Check.True(version.getMajor() > 9 || (version.getMajor() == 9 && version.getMinor() >= 10),
                 "library version " + version.toString());
      var e = Check.Throws<ApplicationException>(() => mgr.connectMRU(workspace));
      if (e != null) Check.True(e.Message.StartsWith(AlreadyConnected), e.Message);

      VectorQuillonInstanceInfo instances = new VectorQuillonInstanceInfo();
      mgr.enumerateQuillonInstances("", new CConnectionConfig(), instances);
      bool found = false;
      foreach (QuillonInstanceInfo instance in instances) {
        found |= instance.getWorkspace() == workspace && instance.getTcpPort() != 0;
      }
      Check.True(found, "the launched instance is enumerated (" + instances.Count + " found)");

      string second = WriteWorkspace("second");
      int port = mgr.startNewInstance(new CConnectionConfig().workspace(second));
      ConnectionMgr other = new ConnectionMgr();
      other.connect("", port);
      Check.True(other.isConnected(), "connected to the started instance on port " + port);
      other.disconnect();
      Check.True(!other.isConnected(), "disconnected");
      other.connect("", port);
      other.Dispose();

      mgr.disconnect();
      Check.True(!mgr.isConnected(), "disconnected");
      mgr.Dispose();
    });

    Check.Case("bad workspaces are refused with a message that names the problem", () => {
      string folder = Path.Combine(Path.GetTempPath(), "kx_managed_bad");
      Directory.CreateDirectory(folder);
      string bad = Path.Combine(folder, "colour.yaml");
      File.WriteAllText(bad, "target:\n  cpu: cortex-m3\n  colour: blue\n");
      ConnectionMgr mgr = new ConnectionMgr();
      var e = Check.Throws<ApplicationException>(() => mgr.startNewInstance(new CConnectionConfig().workspace(bad)));
      if (e != null) Check.True(e.Message.StartsWith("Instance could not be started! "), e.Message);
      Check.Equal(bad + ":3: unknown key 'colour' in 'target'", mgr.getLastErrorMsg());

      var c = Check.Throws<ApplicationException>(() => mgr.connectMRU(bad));
      if (c != null) {
        Check.True(c.Message.StartsWith("10: Can not connect to kestrix.orbel:E:10 Can not launch quillon: ID:NULL " +
                                        "Workspace:" + bad), c.Message);
      }
      Check.True(!mgr.isConnected(), "not connected");
      mgr.Dispose();
    });
  }
}
