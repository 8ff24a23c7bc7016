#pragma once

#include <optional>
#include <string>

#include "OrbelTypes.h"
#include "services/AnalyzerError.h"
#include "services/Document.h"
#include "services/DocumentService.h"

namespace quillon::com {

/// One call of `OrbelIDE::Document`: its flag word taken apart and carried out on the documents of an instance.
///
/// The word's top four bits give a command (0 none, 1 start, 2 stop, 3 is active, 4 resume, 5 select trigger,
/// 6 export, 7 export and launch the viewer, 8 set the export format, 0xA reset), the low four an opening or
/// closing action, bits 16 to 18 a marker or focus operation, bits 24 to 27 the kind of a new document (1
/// analyzer, 2 coverage); 0x01080000 selects the terminal. Reset with an opening action opens a new document
/// ("w"). Save as with the option (0x0C) saves as plainly; the viewer is not launched (there is no user
/// interface), nor is a prompt shown, so save as with a prompt is not available. Focus changes nothing.
///
/// Failures are AnalyzerError; an unknown word is InvalidArgument and names it in hex.
class DocumentCommand {
public:
    DocumentCommand(DWORD flags, std::string fileName, const char* strParameter, DWORD dwParameter);

    /// True for S_OK; false for S_FALSE (stop: was not recording; is active: is not).
    bool run(services::DocumentService& documents) const;

    /// The result code of a failure: ORBEL_E_FILE_NOT_FOUND, ORBEL_E_NOT_AVAILABLE, E_NOTIMPL, else ORBEL_E_ERROR.
    static HRESULT codeOf(services::AnalyzerError::Kind kind);

private:
    bool runOnTerminal(services::DocumentService& documents) const;
    bool runAction(services::DocumentService& documents) const;
    bool runMarker(services::DocumentService& documents) const;
    /// The opening action of the low bits; nothing for a non-opening action.
    std::optional<bool> mustExist() const;
    std::optional<services::Document::Kind> kind() const;
    const std::string& text(const char* what) const;
    [[noreturn]] void unknown() const;

    DWORD m_flags;
    std::string m_fileName;
    std::optional<std::string> m_text;
    DWORD m_number;
};

} // namespace quillon::com
