// The IDE side as a C# caller sees it without a Quillon: the option value record and its owner,
// the separators, the module names, and the controller on a manager that is not connected.
using System;

public static class IdeTests {
  public static void Run() {
    Check.Case("an option value keeps its text, number and output buffer", () => {
      COptionValue text = new COptionValue("on");
      SOptionValue record = text.getOptionValue();
      Check.Equal("on", record.m_pszStringIn);
      text.allocOutputBuffer(16);
      Check.Equal(16u, record.m_dwStringOutSize);
      Check.Equal("", text.getOutputBuffer());
      text.setSeparators('/');
      Check.Equal('/', record.m_cPathSeparator);
      Check.Equal('\0', record.m_cValueSeparator);
      Check.Equal(5u, new COptionValue(5u).getOptionValue().m_dwInteger);
      Check.Equal(0.5, new COptionValue(0.5).getOptionValue().m_dFloat);
    });

    Check.Case("separators stand for their defaults when zero", () => {
      Check.Equal('.', kestrixOrbel.PathSeparator('\0'));
      Check.Equal(':', kestrixOrbel.ValueSeparator('\0'));
      Check.Equal('\n', kestrixOrbel.OptionSeparator('\0'));
      Check.Equal(';', kestrixOrbel.OptionSeparator(';'));
    });

    Check.Case("module names of option URLs", () => {
      Check.Equal("IDE", CIDEController.OPT_DEST_IDE);
      Check.Equal("Document", CIDEController.OPT_DEST_DOCUMENT);
      Check.Equal("VALKE", CIDEController.OPT_DEST_VALKE);
      Check.Equal("Plugin", CIDEController.OPT_DEST_PLUGIN);
      Check.Equal("HIL", CIDEController.OPT_DEST_HIL);
      Check.Equal(0u, new CIDEData().getPID());
    });

    Check.Case("the IDE controller needs a connection", () => {
      ConnectionMgr mgr = new SPtrFactory().newConnectionMgr();
      var e = Check.Throws<ApplicationException>(() => new CIDEController(mgr));
      Check.True(e.Message.StartsWith("IDE3 interface is not available."), e.Message);
    });
  }
}
