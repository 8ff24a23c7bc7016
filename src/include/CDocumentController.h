#pragma once

#include <memory>
#include <string>

#include "OrbelTypes.h"
#include "WrapperBase.h"

namespace kestrix {

/// A document window of Quillon with a file behind it: an analyzer recording, a coverage
/// session, a terminal. The constructor opens it; every operation is one call of
/// `OrbelIDE::Document`, whose flag word says what to do.
class CDocumentController : public WrapperBase {
protected:
    /// For derived classes: keeps the file name and names the controller; opens nothing.
    CDocumentController(std::shared_ptr<ConnectionMgr> connectionMgr, const std::string& fileName);

public:
    /// Opens `fileName` ("" for none) by `openMode`: "r" or "u" reads, "w" opens anew and resets,
    /// "a" appends.
    CDocumentController(std::shared_ptr<ConnectionMgr> connectionMgr, const std::string& fileName,
                        const std::string& openMode);
    ~CDocumentController() override;

    void start();
    /// A document that was not running is no failure.
    void stop();
    void resume();
    void close();
    void closeDiscard();
    void closeAll();
    void reset(DWORD value);
    void save();
    /// The document's file name becomes `newName` once Quillon has saved it.
    void saveAs(const std::string& newName, bool saveOption = false);
    void saveAsPrompt();
    void setMarker(DWORD value);
    void clearMarker();
    void setFocus(DWORD value);

#ifdef SWIG
    OrbelIDE* getOrbelIDE() const;
#endif

protected:
    /// `prefix`, then the text behind the last backslash of `fileName` with every character
    /// but letters and digits replaced by '_'.
    static std::string instanceIdOf(const std::string& prefix, const std::string& fileName);

    /// Opens the document by `openMode`; `typeBits` go into the "w" and "a" openings only.
    void open(const std::string& openMode, DWORD typeBits, const std::string& caller);

    /// Calls `Document` on this document and turns its result into true, false (S_FALSE of
    /// stop and is-active) or the exception of the result; `caller` names the operation.
    bool document(const std::string& caller, DWORD flags, const char* strParameter, DWORD dwParameter);

    /// Logs `method` without arguments, then sends `flags` without parameters under its name.
    bool command(const std::string& method, DWORD flags);

    /// Writes a raw line to the script if a logger is active.
    void logLine(const std::string& text) const;

    std::string m_fileName;

private:
    static std::string method(const char* operation);
};

} // namespace kestrix
