#pragma once

#include <cstdint>
#include <filesystem>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "services/CoverageDocument.h"
#include "services/Document.h"
#include "services/SymbolIndex.h"
#include "services/TerminalDocument.h"
#include "services/TraceDocument.h"
#include "services/TraceTrigger.h"
#include "target/Target.h"

namespace quillon::services {

/// The documents of one instance, by file name. A name is relative to the workspace's folder (absolute names
/// stay); two names of the same file are the same document. "" is the untitled document. Every failure is an
/// AnalyzerError that names the document.
///
/// Opening:
/// - create (modes "a" and "w"): the open document of the name, else its saved file, else a new document of the
///   kind asked (an analyzer document if none is asked). `renew` ("w") makes it a new document in any case.
/// - existing (modes "r" and "u"): the open document, else its saved file (FileNotFound if there is none); the
///   kind is the file's.
/// A document open as one kind cannot be opened as another.
///
/// Closing saves a changed document to its file first; an untitled changed document must be saved as a file or
/// closed discarding its changes. A document that records while the target runs cannot be closed.
///
/// The terminal is opened, closed, started and stopped on its own; it needs the UART of the settings.
class DocumentService {
public:
    struct Settings {
        /// Where relative names lie; the current folder if empty.
        std::filesystem::path folder;
        /// The UART data register whose writes the terminal shows; none: no terminal.
        std::optional<std::uint32_t> terminalUart;
        /// The triggers of analyzer documents besides Trigger0.
        std::vector<TraceTrigger> triggers;
    };

    DocumentService(target::Target& target, const SymbolIndex& symbols, Settings settings);
    ~DocumentService();
    DocumentService(const DocumentService&) = delete;
    DocumentService& operator=(const DocumentService&) = delete;

    /// Where the review exports of coverage documents opened from now on find a source file of the line table;
    /// without one, where the line table says.
    void setSourceLocator(CoverageListing::Locator locate) { m_locateSource = std::move(locate); }

    void open(const std::string& name, bool mustExist, std::optional<Document::Kind> kind, bool renew);
    void close(const std::string& name, bool discard);
    /// Closes every document but the terminal; tells of the first that could not be closed.
    void closeAll();
    void save(const std::string& name);
    void saveAs(const std::string& name, const std::string& newName);

    void start(const std::string& name);
    /// False when the document was not recording.
    bool stop(const std::string& name);
    void resume(const std::string& name);
    bool isActive(const std::string& name);
    void reset(const std::string& name);
    void selectTrigger(const std::string& name, const std::string& trigger);
    void setExportFormat(const std::string& name, const std::string& format);
    /// `file` relative to the workspace's folder.
    void exportTo(const std::string& name, const std::string& file, std::uint32_t option);
    void setMarker(const std::string& name, std::uint32_t value);
    void clearMarkers(const std::string& name);

    void openTerminal();
    void closeTerminal();
    void startTerminal();
    bool stopTerminal();
    bool isTerminalActive();
    void saveTerminalAs(const std::string& file);
    /// What the terminal shows; "" when it is not open.
    std::string terminalText() const;

    /// Runs f on the open coverage document of the name, under the service's lock.
    template <class F> auto withCoverage(const std::string& name, F&& f)
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        return f(coverage(name));
    }
    /// Runs f on the coverage document of the name for reading: the open one, else, after it was closed, the one
    /// saved in its file (a document closed without saving is gone: FileNotFound).
    template <class F> auto readCoverage(const std::string& name, F&& f)
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        if (isOpenLocked(name)) {
            return f(coverage(name));
        }
        return f(asCoverage(savedDocument(name)));
    }
    /// Runs f on the open analyzer document of the name, under the service's lock.
    template <class F> auto withTrace(const std::string& name, F&& f)
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        return f(trace(name));
    }

    /// The file of a name.
    std::filesystem::path pathOf(const std::string& name) const;
    /// The file of a name to write, its folder made if it is missing.
    std::filesystem::path outputPathOf(const std::string& name) const;

private:
    std::string keyOf(const std::string& name) const;
    Document& document(const std::string& name);
    CoverageDocument& coverage(const std::string& name);
    CoverageDocument& asCoverage(Document& document);
    bool isOpenLocked(const std::string& name);
    /// The document saved in the file of the name, read again only when the file changed.
    Document& savedDocument(const std::string& name);
    TraceDocument& trace(const std::string& name);
    std::unique_ptr<Document> make(const std::string& name, Document::Kind kind);
    std::unique_ptr<Document> load(const std::string& name);
    void writeFile(const Document& document, const std::filesystem::path& file) const;
    void closeLocked(const std::string& name, bool discard);
    TerminalDocument& terminal();
    /// Removes the observers of documents that stopped while the target ran.
    void detachIdle();

    target::Target& m_target;
    const SymbolIndex& m_symbols;
    Settings m_settings;
    CoverageListing::Locator m_locateSource;
    mutable std::mutex m_mutex;
    std::map<std::string, std::unique_ptr<Document>> m_documents; ///< by keyOf(name)
    /// The closed document read last by readCoverage, with the time of its file then.
    struct SavedDocument {
        std::string key;
        std::filesystem::file_time_type time;
        std::unique_ptr<Document> document;
    };
    SavedDocument m_saved;
    std::unique_ptr<TerminalDocument> m_terminal;
};

} // namespace quillon::services
