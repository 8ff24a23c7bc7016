#include "services/Document.h"

#include "services/AnalyzerError.h"
#include "target/TargetError.h"

namespace quillon::services {

Document::Document(std::string name, Kind kind, target::Target& target)
    : m_name(std::move(name)), m_kind(kind), m_target(target)
{
}

Document::~Document()
{
    if (m_attached != nullptr) {
        try {
            m_target.removeObserver(m_attached);
        } catch (...) {
            // Only a running target refuses, and documents go only while it is stopped.
        }
    }
}

const char* Document::kindName(Kind kind)
{
    switch (kind) {
    case Kind::Analyzer:
        return "analyzer";
    case Kind::Coverage:
        return "coverage";
    case Kind::Terminal:
        return "terminal";
    }
    return "analyzer";
}

std::string Document::title() const
{
    if (m_kind == Kind::Terminal) {
        return "the terminal";
    }
    if (m_name.empty()) {
        return std::string("untitled ") + kindName(m_kind) + " document";
    }
    return std::string(kindName(m_kind)) + " document '" + m_name + "'";
}

void Document::start()
{
    checkStopped("start recording");
    detachIfIdle();
    setRecording(false);
    prepare(true);
    attach();
}

void Document::resume()
{
    if (m_active) {
        return;
    }
    checkStopped("resume recording");
    detachIfIdle();
    prepare(false);
    attach();
}

bool Document::stop()
{
    if (!m_active) {
        return false;
    }
    setRecording(false);
    m_active = false;
    const bool isRunning = m_target.isRunning();
    finish(isRunning ? std::nullopt : std::optional<std::uint32_t>(m_target.pc()));
    detachIfIdle();
    return true;
}

void Document::reset()
{
    checkReadable("reset");
    clearRecording();
    markModified();
}

void Document::renew()
{
    stop();
    detachIfIdle();
    checkReadable("renew");
    clearRecording();
    clearConfiguration();
    m_modified = false;
}

void Document::detachIfIdle()
{
    if (m_attached != nullptr && !m_active && !m_target.isRunning()) {
        detach();
    }
}

bool Document::canClose() const
{
    return m_attached == nullptr || !m_target.isRunning();
}

void Document::selectTrigger(const std::string& trigger)
{
    throw AnalyzerError(AnalyzerError::Kind::NotFound,
                        title() + " has no triggers, so none named '" + trigger + "'");
}

void Document::setExportFormat(const std::string& format)
{
    throw AnalyzerError(AnalyzerError::Kind::NotAvailable,
                        title() + " has no export formats, so not '" + format + "'");
}

void Document::exportTo(const std::filesystem::path& file, std::uint32_t)
{
    throw AnalyzerError(AnalyzerError::Kind::NotAvailable,
                        title() + " cannot be exported (to '" + file.string() + "')");
}

void Document::setMarker(std::uint32_t)
{
    throw AnalyzerError(AnalyzerError::Kind::NotAvailable, title() + " has no markers");
}

void Document::clearMarkers()
{
    throw AnalyzerError(AnalyzerError::Kind::NotAvailable, title() + " has no markers");
}

void Document::checkReadable(const char* what) const
{
    if (m_attached != nullptr && m_target.isRunning()) {
        throw AnalyzerError(AnalyzerError::Kind::IllegalState, std::string("cannot ") + what + " " + title()
                                                                   + " while the target runs and it records; "
                                                                     "stop the target first");
    }
}

void Document::checkStopped(const char* what) const
{
    if (m_target.isRunning()) {
        throw AnalyzerError(AnalyzerError::Kind::IllegalState,
                            std::string("cannot ") + what + " of " + title() + " while the target runs; stop it first");
    }
}

void Document::attach()
{
    if (m_attached == nullptr) {
        target::ExecutionObserver* recorder = &observer();
        try {
            m_target.addObserver(recorder, watchesWrites());
        } catch (const target::TargetError&) {
            checkStopped("start recording");
            throw;
        }
        m_attached = recorder;
    }
    setRecording(true);
    m_active = true;
    markModified();
}

void Document::detach()
{
    m_target.removeObserver(m_attached);
    m_attached = nullptr;
}

} // namespace quillon::services
