// Writing a YAML report by hand through IEmitter, as a C# caller does, and emitter failures.
using System;

public static class YamlOutputTests {
  public static void Run() {
    Check.Case("YAML emitter writes pairs of every type", () => {
      var stream = new CStringStream();
      IEmitter emitter = EmitterFactory.createYamlEmitter(stream);
      emitter.startStream("# report\n");
      emitter.startDocument(false);
      emitter.mapStart();
      emitter.writeMappingPair("id", "t1");
      emitter.writeMappingPair("text", "a: b");
      emitter.writeMappingPair("ok", true);
      emitter.writeMappingPair("time", 1.5);
      emitter.writeMappingPair("hits", 7u);
      emitter.writeMappingPair("delta", -3L);
      emitter.write("list");
      emitter.sequenceStart(1);
      emitter.write("x");
      emitter.write("y");
      emitter.sequenceEnd();
      emitter.mapEnd();
      emitter.endDocument(false);
      emitter.endStream();
      Check.Equal("# report\n---\nid: t1\ntext: ! 'a: b'\nok: true\ntime: 1.5\nhits: 7\ndelta: -3\nlist: [x, y]\n...\n",
                  stream.getString());
    });

    Check.Case("XML escaping, and emitter failures arrive as ApplicationException", () => {
      IEmitter xml = EmitterFactory.createXmlEmitter(new CStringStream());
      Check.Equal("&quot;x&quot;", xml.escapeSpecialChars("\"x\""));
      var e = Check.Throws<ApplicationException>(() => xml.mapEnd());
      if (e != null) {
        Check.True(e.Message.StartsWith("Tag stack is empty when writing mapping end!  [/CXMLEmitter.cpp, "), e.Message);
      }
      IEmitter yaml = EmitterFactory.createYamlEmitter(new CStringStream());
      e = Check.Throws<ApplicationException>(() => yaml.endStream());
      if (e != null) {
        Check.True(e.Message.StartsWith("Emitter end stream error: expected STREAM-START  [/CYAMLEmitter.cpp, "), e.Message);
      }
      Check.Throws<ApplicationException>(() => EmitterFactory.createYamlEmitter(null));
    });
  }
}
