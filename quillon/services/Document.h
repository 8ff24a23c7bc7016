#pragma once

#include <cstdint>
#include <filesystem>
#include <iosfwd>
#include <optional>
#include <string>

#include "target/ExecutionObserver.h"
#include "target/Target.h"

namespace quillon::services {

class DocumentFileReader;

/// A document window of Quillon with a file behind it: an analyzer (trace) recording, a coverage session or the
/// terminal. A document records while it is active, through an observer of the target that it adds when
/// recording starts and removes when it stops.
///
/// Recording starts and resumes only on a stopped target (observers are added then). Stopping works at any
/// time: the recording ends at once, and the observer goes at the next operation on a stopped target. What a
/// recording holds is read only while its observer cannot run: with the target stopped, or once it is removed.
/// Every failure is an AnalyzerError whose text names the document.
class Document {
public:
    enum class Kind { Analyzer, Coverage, Terminal };

    virtual ~Document();
    Document(const Document&) = delete;
    Document& operator=(const Document&) = delete;

    /// The name the document was opened or saved as; "" for an untitled one.
    const std::string& name() const { return m_name; }
    void rename(std::string name) { m_name = std::move(name); }
    Kind kind() const { return m_kind; }
    /// "analyzer", "coverage" or "terminal".
    static const char* kindName(Kind kind);
    /// "coverage document 'cov.trd'", "untitled analyzer document", "the terminal": for messages.
    std::string title() const;

    bool isActive() const { return m_active; }
    /// Something was recorded or changed since the document was opened, loaded or saved.
    bool isModified() const { return m_modified; }
    void markSaved() { m_modified = false; }

    /// A new recording: what was recorded before goes.
    void start();
    /// Records on, adding to what there is; nothing if already recording.
    void resume();
    /// False when it was not recording.
    bool stop();
    /// What was recorded goes; a recording goes on.
    void reset();
    /// As a new document: nothing recorded, the default configuration, not recording.
    void renew();
    /// Removes the observer of a stopped recording once the target is stopped.
    void detachIfIdle();
    /// False while the observer is added and the target runs: the document cannot go now.
    bool canClose() const;
    /// Throws IllegalState while the observer is added and the target runs: what it recorded may change.
    void checkReadable(const char* what) const;

    /// Analyzer documents: chooses the recording's trigger. Others have none: NotFound.
    virtual void selectTrigger(const std::string& trigger);
    /// A format text of the document's kind; InvalidArgument for another one.
    virtual void setExportFormat(const std::string& format);
    /// Writes the export file: `option` 0xFFFFFFFF takes the format of setExportFormat, another value is a format's
    /// number. Documents without export: NotAvailable.
    virtual void exportTo(const std::filesystem::path& file, std::uint32_t option);
    /// Markers in the recording; documents without markers: NotAvailable.
    virtual void setMarker(std::uint32_t value);
    virtual void clearMarkers();

    /// The document's saved form, after the two lines of its header.
    virtual void write(std::ostream& out) const = 0;
    /// Reads the saved form that `write` makes, the header already read.
    virtual void read(DocumentFileReader& in) = 0;

protected:
    Document(std::string name, Kind kind, target::Target& target);

    target::Target& target() { return m_target; }
    const target::Target& target() const { return m_target; }

    /// The observer that records; watched writes too if `watchesWrites`.
    virtual target::ExecutionObserver& observer() = 0;
    virtual bool watchesWrites() const { return false; }
    /// Before the observer is added: a new recording (`fresh`) or one that goes on. The target is stopped.
    virtual void prepare(bool fresh) = 0;
    /// Switches the observer's recording on or off; called on the client's thread at any time.
    virtual void setRecording(bool on) = 0;
    /// After the recording stopped, with the pc of the stopped target, or nothing if it runs.
    virtual void finish(std::optional<std::uint32_t> pc) { (void)pc; }
    /// Drops what was recorded.
    virtual void clearRecording() = 0;
    /// Drops the configuration as well; by default just the recording.
    virtual void clearConfiguration() {}

    void markModified() { m_modified = true; }

private:
    void checkStopped(const char* what) const;
    void attach();
    void detach();

    std::string m_name;
    const Kind m_kind;
    target::Target& m_target;
    bool m_active = false;
    target::ExecutionObserver* m_attached = nullptr; ///< the observer while it is added to the target
    bool m_modified = false;
};

} // namespace quillon::services
