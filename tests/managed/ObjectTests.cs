// The read-only objects of the automation library as a C# caller sees them: a proxy for each,
// with its members, none that a caller could make; and the descriptor that an option operation
// gives on the simulated Quillon of liborbel.so when it is built.
using System;
using System.IO;
using System.Reflection;

public static class ObjectTests {
  static readonly string[][] Proxies = {
    new[] {"IVariable", "Name", "QualifiedName", "TypeName", "NumBytes", "Type", "ArrayDimension", "Module"},
    new[] {"IFunction", "Name", "QualifiedName", "TypeName", "Module", "Parameters"},
    new[] {"IModule", "Name", "Path"},
    new[] {"IPartition", "Name", "Path"},
    new[] {"IStackFrame", "Address", "MemoryArea", "FileName", "LineNumber", "FunctionName", "Variables", "Arguments"},
    new[] {"IDisassemblyLine", "Address", "OpCode", "OpCodeArgs", "FileName", "LineNumber", "FunctionName",
           "FunctionOffset"},
    new[] {"ISFR", "Handle", "HasValue", "Name", "BitSize", "Properties", "ValueMaps", "SFRs"},
    new[] {"ISFRValueMap", "String", "Value"},
    new[] {"IGlobals", "Variables", "Labels", "Modules", "Functions"},
    new[] {"IStackFrameInfo", "StackFrames"},
    new[] {"IDisassemblyBlock", "Lines"},
    new[] {"ICPUSFR", "CPUName", "SFRs"},
    new[] {"IConfiguration", "Partitions"},
    new[] {"IExpressionType", "Expression", "Children"},
    new[] {"IVectorDisassemblyLines", "size", "at"},
    new[] {"IVectorFunctions", "size", "at"},
    new[] {"IVectorModules", "size", "at"},
    new[] {"IVectorPartitions", "size", "at"},
    new[] {"IVectorSFRs", "size", "at"},
    new[] {"IVectorStackFrames", "size", "at"},
    new[] {"IVectorValueMap", "size", "at"},
    new[] {"IVectorVariables", "size", "at"},
  };

  static string WriteWorkspace() {
    string folder = Path.Combine(Path.GetTempPath(), "kx_managed_objects");
    Directory.CreateDirectory(folder);
    string path = Path.Combine(folder, "workspace.yaml");
    File.WriteAllText(path,
      "target:\n" +
      "  memory:\n" +
      "    - {name: flash, start: 0, size: 0x40000, access: rx}\n" +
      "    - {name: sram, start: 0x20000000, size: 0x10000, access: rwx}\n");
    return path;
  }

  public static void Run() {
    Check.Case("each read-only object has a proxy with its members and no public constructor", () => {
      Assembly binding = typeof(IDescriptor).Assembly;
      foreach (string[] proxy in Proxies) {
        Type type = binding.GetType(proxy[0]);
        Check.True(type != null, "proxy " + proxy[0]);
        if (type == null) continue;
        Check.Equal(0, type.GetConstructors().Length, proxy[0] + " public constructors");
        for (int i = 1; i < proxy.Length; ++i) {
          Check.True(type.GetMethod(proxy[i]) != null, proxy[0] + "." + proxy[i]);
        }
      }
      Check.Equal(typeof(IVariable), typeof(IVectorVariables).GetMethod("at").ReturnType, "list element type");
      Check.Equal(typeof(string), typeof(ICPUSFR).GetMethod("CPUName").ReturnType, "text member");
      Check.Equal(typeof(bool), typeof(ISFR).GetMethod("HasValue").ReturnType, "bool member");
    });

    string orbelPath = Environment.GetEnvironmentVariable("ORBEL_PATH") ?? "";
    if (!File.Exists(orbelPath + "liborbel.so")) {
      Console.WriteLine("ObjectTests: option descriptor skipped: no liborbel.so in ORBEL_PATH '" + orbelPath + "'");
      return;
    }

    Check.Case("an option read gives the option's descriptor", () => {
      ConnectionMgr mgr = new SPtrFactory().newConnectionMgr();
      mgr.connectMRU(WriteWorkspace());
      CIDEController ide = new CIDEController(mgr);
      COptionValue value = new COptionValue();
      value.allocOutputBuffer(64);
      // Read (0x80000000) a text (1) of the IDE (module bits 0).
      Check.True(ide.option(0x80000001u, "Test", "MaxInstructions", value), "option read");
      IDescriptor descriptor = value.getOptionValue().m_pIDescriptor;
      Check.True(descriptor != null, "descriptor given");
      if (descriptor == null) return;
      IVectorVariableDescriptors list = descriptor.VariableDescriptors();
      Check.Equal(1u, list.size(), "one variable");
      IVariableDescriptor variable = list.at(0);
      Check.Equal("/IDE/Test/MaxInstructions", variable.Name());
      Check.Equal("integer", variable.Info());
      Check.Equal(8u, variable.DataDescriptor().Size(), "size of an integer option");
      Check.True(list.at(1) == null, "nothing behind the one variable");
      mgr.disconnect();
    });
  }
}
