#include "services/DocumentService.h"

#include <cerrno>
#include <cstring>
#include <fstream>

#include "services/AnalyzerError.h"
#include "services/DocumentFileReader.h"

namespace quillon::services {

namespace fs = std::filesystem;

namespace {

AnalyzerError error(AnalyzerError::Kind kind, const std::string& message)
{
    return AnalyzerError(kind, message);
}

std::string documentTitle(const std::string& name)
{
    return name.empty() ? std::string("the untitled document") : "document '" + name + "'";
}

} // namespace

DocumentService::DocumentService(target::Target& target, const SymbolIndex& symbols, Settings settings)
    : m_target(target), m_symbols(symbols), m_settings(std::move(settings))
{
    if (m_settings.folder.empty()) {
        m_settings.folder = fs::current_path();
    }
}

DocumentService::~DocumentService() = default;

fs::path DocumentService::pathOf(const std::string& name) const
{
    const fs::path path(name);
    return (path.is_absolute() ? path : m_settings.folder / path).lexically_normal();
}

// Saves and exports go into folders that may not exist yet, as a user names them.
fs::path DocumentService::outputPathOf(const std::string& name) const
{
    const fs::path path = pathOf(name);
    std::error_code error;
    fs::create_directories(path.parent_path(), error); // a failure shows when the file is written
    return path;
}

std::string DocumentService::keyOf(const std::string& name) const
{
    return name.empty() ? std::string() : pathOf(name).string();
}

void DocumentService::detachIdle()
{
    for (auto& [key, document] : m_documents) {
        (void)key;
        document->detachIfIdle();
    }
    if (m_terminal) {
        m_terminal->detachIfIdle();
    }
}

Document& DocumentService::document(const std::string& name)
{
    detachIdle();
    auto it = m_documents.find(keyOf(name));
    if (it == m_documents.end()) {
        throw error(AnalyzerError::Kind::NotFound, documentTitle(name) + " is not open");
    }
    return *it->second;
}

CoverageDocument& DocumentService::coverage(const std::string& name)
{
    return asCoverage(document(name));
}

CoverageDocument& DocumentService::asCoverage(Document& found)
{
    if (found.kind() != Document::Kind::Coverage) {
        throw error(AnalyzerError::Kind::InvalidArgument, found.title() + " is no coverage document");
    }
    return static_cast<CoverageDocument&>(found);
}

// A run reads several statistics of a closed document one by one: its file is parsed once.
Document& DocumentService::savedDocument(const std::string& name)
{
    const std::string key = keyOf(name);
    std::error_code error;
    const fs::file_time_type time = fs::last_write_time(pathOf(name), error);
    if (error || !m_saved.document || m_saved.key != key || m_saved.time != time) {
        m_saved = {key, time, load(name)}; // a missing file fails in load, naming it
    }
    return *m_saved.document;
}

bool DocumentService::isOpenLocked(const std::string& name)
{
    detachIdle();
    return m_documents.count(keyOf(name)) != 0;
}

TraceDocument& DocumentService::trace(const std::string& name)
{
    Document& found = document(name);
    if (found.kind() != Document::Kind::Analyzer) {
        throw error(AnalyzerError::Kind::InvalidArgument, found.title() + " is no analyzer document");
    }
    return static_cast<TraceDocument&>(found);
}

std::unique_ptr<Document> DocumentService::make(const std::string& name, Document::Kind kind)
{
    if (kind == Document::Kind::Coverage) {
        return std::make_unique<CoverageDocument>(name, m_target, m_symbols, m_settings.folder,
                                                  m_locateSource);
    }
    if (kind == Document::Kind::Terminal) {
        throw error(AnalyzerError::Kind::InvalidArgument, "the terminal is not opened by a file name");
    }
    return std::make_unique<TraceDocument>(name, m_target, m_symbols, m_settings.triggers);
}

std::unique_ptr<Document> DocumentService::load(const std::string& name)
{
    const fs::path file = pathOf(name);
    std::ifstream in(file, std::ios::binary);
    if (!in) {
        throw error(AnalyzerError::Kind::FileNotFound,
                    documentTitle(name) + " is neither open nor saved: no file '" + file.string() + "'");
    }
    DocumentFileReader reader(in, file.string());
    const std::string kind = reader.readHeader();
    std::unique_ptr<Document> result;
    if (kind == "analyzer") {
        result = make(name, Document::Kind::Analyzer);
    } else if (kind == "coverage") {
        result = make(name, Document::Kind::Coverage);
    } else {
        reader.fail("unknown document kind '" + kind + "' (analyzer, coverage)");
    }
    result->read(reader);
    result->markSaved();
    return result;
}

void DocumentService::open(const std::string& name, bool mustExist, std::optional<Document::Kind> kind, bool renew)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    detachIdle();
    const std::string key = keyOf(name);
    auto it = m_documents.find(key);
    if (it == m_documents.end()) {
        if (mustExist && name.empty()) {
            throw error(AnalyzerError::Kind::FileNotFound, "no untitled document is open");
        }
        const bool isSaved = !name.empty() && fs::is_regular_file(pathOf(name));
        std::unique_ptr<Document> document;
        if (!renew && (mustExist || isSaved)) {
            document = load(name);
        } else {
            document = make(name, kind.value_or(Document::Kind::Analyzer));
        }
        it = m_documents.emplace(key, std::move(document)).first;
    }
    Document& document = *it->second;
    if (kind && *kind != document.kind()) {
        throw error(AnalyzerError::Kind::InvalidArgument, document.title() + " is open already, so it cannot be opened as a "
                                                              + Document::kindName(*kind) + " document");
    }
    if (renew) {
        document.renew();
    }
}

void DocumentService::writeFile(const Document& document, const fs::path& file) const
{
    document.checkReadable("save");
    std::ofstream out(file, std::ios::binary | std::ios::trunc);
    if (!out) {
        throw error(AnalyzerError::Kind::Failed,
                    "cannot write " + document.title() + " to '" + file.string() + "': " + std::strerror(errno));
    }
    out << DocumentFileReader::kMagic << '\n' << "kind " << Document::kindName(document.kind()) << '\n';
    document.write(out);
    out.close();
    if (!out) {
        throw error(AnalyzerError::Kind::Failed, "cannot write " + document.title() + " to '" + file.string() + "'");
    }
}

void DocumentService::closeLocked(const std::string& name, bool discard)
{
    Document& found = document(name);
    if (!found.canClose()) {
        throw error(AnalyzerError::Kind::IllegalState,
                    "cannot close " + found.title() + " while the target runs and it records; stop the target first");
    }
    if (!discard && found.isModified() && name.empty()) {
        throw error(AnalyzerError::Kind::IllegalState,
                    found.title() + " has changes and no file: save it as a file or close it discarding them");
    }
    found.stop();
    if (!discard && found.isModified()) {
        writeFile(found, outputPathOf(name));
    }
    m_documents.erase(keyOf(name));
}

void DocumentService::close(const std::string& name, bool discard)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    closeLocked(name, discard);
}

void DocumentService::closeAll()
{
    std::lock_guard<std::mutex> lock(m_mutex);
    std::vector<std::string> names;
    for (const auto& [key, document] : m_documents) {
        (void)key;
        names.push_back(document->name());
    }
    std::string first;
    for (const std::string& name : names) {
        try {
            closeLocked(name, false);
        } catch (const AnalyzerError& failure) {
            if (first.empty()) {
                first = failure.what();
            }
        }
    }
    if (!first.empty()) {
        throw error(AnalyzerError::Kind::IllegalState, "not every document could be closed: " + first);
    }
}

void DocumentService::save(const std::string& name)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    Document& found = document(name);
    if (name.empty()) {
        throw error(AnalyzerError::Kind::InvalidArgument, found.title() + " has no file: save it as a file");
    }
    writeFile(found, outputPathOf(name));
    found.markSaved();
}

void DocumentService::saveAs(const std::string& name, const std::string& newName)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    Document& found = document(name);
    if (newName.empty()) {
        throw error(AnalyzerError::Kind::InvalidArgument, "no file name to save " + found.title() + " as");
    }
    const std::string oldKey = keyOf(name);
    const std::string newKey = keyOf(newName);
    if (newKey != oldKey && m_documents.count(newKey)) {
        throw error(AnalyzerError::Kind::InvalidArgument,
                    "cannot save " + found.title() + " as '" + newName + "': that document is open");
    }
    writeFile(found, outputPathOf(newName));
    found.markSaved();
    found.rename(newName);
    if (newKey != oldKey) {
        auto node = m_documents.extract(oldKey);
        node.key() = newKey;
        m_documents.insert(std::move(node));
    }
}

void DocumentService::start(const std::string& name)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    document(name).start();
}

bool DocumentService::stop(const std::string& name)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    return document(name).stop();
}

void DocumentService::resume(const std::string& name)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    document(name).resume();
}

bool DocumentService::isActive(const std::string& name)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    return document(name).isActive();
}

void DocumentService::reset(const std::string& name)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    document(name).reset();
}

void DocumentService::selectTrigger(const std::string& name, const std::string& trigger)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    document(name).selectTrigger(trigger);
}

void DocumentService::setExportFormat(const std::string& name, const std::string& format)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    document(name).setExportFormat(format);
}

void DocumentService::exportTo(const std::string& name, const std::string& file, std::uint32_t option)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    Document& found = document(name);
    if (file.empty()) {
        throw error(AnalyzerError::Kind::InvalidArgument, "no file to export " + found.title() + " to");
    }
    found.exportTo(outputPathOf(file), option);
}

void DocumentService::setMarker(const std::string& name, std::uint32_t value)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    document(name).setMarker(value);
}

void DocumentService::clearMarkers(const std::string& name)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    document(name).clearMarkers();
}

TerminalDocument& DocumentService::terminal()
{
    detachIdle();
    if (!m_terminal) {
        throw error(AnalyzerError::Kind::NotFound, "the terminal is not open");
    }
    return *m_terminal;
}

void DocumentService::openTerminal()
{
    std::lock_guard<std::mutex> lock(m_mutex);
    if (!m_settings.terminalUart) {
        throw error(AnalyzerError::Kind::NotAvailable,
                    "the workspace names no UART for the terminal (terminal: {uart: <data register address>})");
    }
    if (!m_terminal) {
        auto opened = std::make_unique<TerminalDocument>(m_target, *m_settings.terminalUart);
        opened->start();
        m_terminal = std::move(opened);
    }
}

void DocumentService::closeTerminal()
{
    std::lock_guard<std::mutex> lock(m_mutex);
    TerminalDocument& open = terminal();
    if (!open.canClose()) {
        throw error(AnalyzerError::Kind::IllegalState,
                    "cannot close the terminal while the target runs and it records; stop the target first");
    }
    m_terminal.reset();
}

void DocumentService::startTerminal()
{
    std::lock_guard<std::mutex> lock(m_mutex);
    terminal().resume();
}

bool DocumentService::stopTerminal()
{
    std::lock_guard<std::mutex> lock(m_mutex);
    return terminal().stop();
}

bool DocumentService::isTerminalActive()
{
    std::lock_guard<std::mutex> lock(m_mutex);
    return terminal().isActive();
}

void DocumentService::saveTerminalAs(const std::string& file)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    TerminalDocument& open = terminal();
    if (file.empty()) {
        throw error(AnalyzerError::Kind::InvalidArgument, "no file name to save the terminal as");
    }
    const fs::path path = outputPathOf(file);
    std::ofstream out(path, std::ios::binary | std::ios::trunc);
    open.write(out);
    out.close();
    if (!out) {
        throw error(AnalyzerError::Kind::Failed, "cannot write the terminal to '" + path.string() + "'");
    }
}

std::string DocumentService::terminalText() const
{
    std::lock_guard<std::mutex> lock(m_mutex);
    return m_terminal ? m_terminal->text() : std::string();
}

} // namespace quillon::services
