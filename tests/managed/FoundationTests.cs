// The boundary as a C# caller sees it: conversions, exception mapping, null arguments,
// container range errors, string results and handle ownership.
using System;
using System.IO;
using System.Runtime.InteropServices;

public static class FoundationTests {
  // The catalogue's upcast names, which the generated proxies do not call themselves.
  [DllImport("OrbelCS", EntryPoint = "CSharp_CStringStream_SWIGSharedPtrUpcast")]
  static extern IntPtr CStringStream_SWIGSharedPtrUpcast(IntPtr holder);
  [DllImport("OrbelCS", EntryPoint = "CSharp_CFileStreamUpcast")]
  static extern IntPtr CFileStreamUpcast(IntPtr pointer);

  // The key iteration as the proxy's Keys property runs it, pending exception included.
  static string NextKey(HandleRef map, IntPtr iter) {
    string key = kestrixOrbelPINVOKE.StrStrMap_get_next_key(map, iter);
    if (kestrixOrbelPINVOKE.SWIGPendingException.Pending) throw kestrixOrbelPINVOKE.SWIGPendingException.Retrieve();
    return key;
  }

  public static void Run() {
    Check.Case("CUtil conversions cross the boundary", () => {
      Check.Equal("ffffffff", CUtil.i2h(-1));
      Check.Equal("18446744073709551615", CUtil.i2a(ulong.MaxValue));
      Check.Equal(255L, CUtil.aOrHex2l("0xfF"));
      Check.Equal("1.5", CUtil.d2a(1.5));
      Check.Equal("1.3.2", kestrixOrbel.getModuleVersion());
      StrStrMap vars = new StrStrMap();
      vars["a"] = "1";
      kestrixOrbel.putStrStrMap(vars, "__default", "?");
      Check.Equal("1?", CUtil.substVars("${a}${b}", vars));
    });

    Check.Case("IllegalArgumentException arrives as ApplicationException with its position", () => {
      var e = Check.Throws<ApplicationException>(() => CUtil.a2l("-5"));
      if (e != null) {
        Check.True(e.Message.StartsWith("Integer expected: -5  [/CUtil.cpp, "), "what() text: " + e.Message);
        Check.True(e.Message.EndsWith("]"), "position closes the text: " + e.Message);
      }
    });

    Check.Case("IOException arrives as ApplicationException with its data lines", () => {
      string path = "/nonexistent-dir/x/report.yaml";
      var e = Check.Throws<ApplicationException>(() => new CFileStream(path, true));
      if (e != null) {
        string[] lines = e.Message.Split('\n');
        Check.Equal(5, lines.Length, "line count of " + e.Message);
        Check.True(lines[0].StartsWith("Can not open file for writing!  [/CFileStream.cpp, "), lines[0]);
        Check.Equal("  data:", lines[1]);
        Check.Equal("    fileNAme: " + path, lines[2]);
        Check.Equal("    isAppendMode: 1", lines[3]);
        Check.Equal("", lines[4]);
      }
    });

    Check.Case("other library exceptions arrive as System.IO.IOException", () => {
      StrStrMap empty = new StrStrMap();
      StrStrMapIterator it = new StrStrMapIterator(empty);
      Check.True(!it.isValid(), "iterator over an empty map is at the end");
      var e = Check.Throws<IOException>(() => it.key());
      if (e != null) {
        Check.True(e.Message.StartsWith("Map iterator is at the end!  ["), e.Message);
      }
    });

    Check.Case("a null argument gives ArgumentNullException with its type text", () => {
      var nullArguments = new (string text, Action call)[] {
        ("null string", () => CUtil.trim(null)),
        ("kestrix::StrVector & type is null", () => CUtil.split("a,b", ',', null)),
        ("SType const & type is null", () => new CValueType(null, 1L)),
        ("kestrix::CTestReportConfig const & reference is null", () => new CTestReportConfig().assign(null)),
      };
      foreach (var row in nullArguments) {
        var e = Check.Throws<ArgumentNullException>(row.call, row.text);
        if (e != null) Check.Equal(row.text, e.Message);
      }
      Check.Equal("", CUtil.trim(""), "an empty string is not null");
    });

    Check.Case("StrVector range errors leave the vector unchanged", () => {
      StrVector v = new StrVector();
      v.Add("a"); v.Add("b"); v.Add("c");
      var ex = Check.Throws<ArgumentOutOfRangeException>(() => v.GetRange(-1, 1));
      if (ex != null) Check.Equal("index", ex.ParamName);
      ex = Check.Throws<ArgumentOutOfRangeException>(() => v.RemoveRange(0, -1));
      if (ex != null) Check.Equal("count", ex.ParamName);
      var invalidRanges = new Action[] {
        () => v.GetRange(4, 0), () => v.GetRange(1, int.MaxValue),
        () => v.RemoveRange(1, int.MaxValue), () => v.Reverse(1, int.MaxValue),
      };
      foreach (var call in invalidRanges) {
        var ae = Check.Throws<ArgumentException>(call);
        if (ae != null) Check.True(ae.Message.StartsWith("invalid range"), ae.Message);
      }
      StrVector longer = new StrVector(new string[] { "x", "y", "z", "w" });
      ex = Check.Throws<ArgumentOutOfRangeException>(() => v.SetRange(0, longer));
      if (ex != null) Check.Equal("index", ex.ParamName);
      ex = Check.Throws<ArgumentOutOfRangeException>(() => v.RemoveAt(3));
      if (ex != null) Check.Equal("index", ex.ParamName);
      Check.Equal(3, v.Count, "size after the failures");
      Check.Equal("a,b,c", string.Join(",", v.ToArray()));
      Check.Equal(0, v.GetRange(3, 0).Count, "GetRange(size, 0)");
      v.Insert(3, "d");
      Check.Equal("d", v[3], "Insert at size appends");
    });

    Check.Case("StrStrMap keys, Add of a present key, end of iteration", () => {
      StrStrMap m = new StrStrMap();
      m.Add("b", "2"); m.Add("a", "1");
      Check.Throws<ArgumentOutOfRangeException>(() => m.Add("a", "x"));
      m["a"] = "x";
      Check.Equal("x", m["a"]);
      Check.Equal("a,b", string.Join(",", new System.Collections.Generic.List<string>(m.Keys).ToArray()));
      var e = Check.Throws<ArgumentOutOfRangeException>(() => { var unused = m["zz"]; });
      if (e != null) Check.Equal("key not found", e.ParamName);
      var handle = StrStrMap.getCPtr(m);
      IntPtr iter = kestrixOrbelPINVOKE.StrStrMap_create_iterator_begin(handle);
      Check.Equal("a", NextKey(handle, iter));
      Check.Equal("b", NextKey(handle, iter));
      e = Check.Throws<ArgumentOutOfRangeException>(() => NextKey(handle, iter));
      if (e != null) Check.Equal("no more map elements", e.ParamName);
    });

    Check.Case("a string result survives the call", () => {
      StrVector parts = new StrVector();
      CUtil.split("alpha,beta", ',', parts);
      string first = parts[0];
      parts.Clear();
      GC.Collect();
      Check.Equal("alpha", first);
      Check.Equal("x", CUtil.replaceChar("y", 'y', 'x'));
    });

    Check.Case("deleting one holder leaves the object alive", () => {
      CStringStream s = new CStringStream();
      s.write("abc");
      IntPtr second = CStringStream_SWIGSharedPtrUpcast(CStringStream.getCPtr(s).Handle);
      Check.True(second != IntPtr.Zero, "upcast of a live holder gives a new holder");
      IStream asBase = new IStream(second, true);
      asBase.write("def");
      asBase.Dispose();
      s.write("!");
      Check.Equal("abcdef!", s.getString());
      Check.Equal(IntPtr.Zero, CStringStream_SWIGSharedPtrUpcast(IntPtr.Zero), "upcast of no holder");
      Check.Equal(IntPtr.Zero, CFileStreamUpcast(IntPtr.Zero), "raw upcast is the identity");

      ucharArray bytes = new ucharArray(4);
      bytes.setitem(0, 7);
      ucharArray view = ucharArray.frompointer(bytes.cast());
      view.setitem(1, 9);
      view.Dispose();
      Check.Equal((byte)7, bytes.getitem(0));
      Check.Equal((byte)9, bytes.getitem(1));
      bytes.Dispose();
    });
  }
}
