#pragma once

#include <string>

namespace quillon::services {

/// The output of the tools of one build and the diagnostics counted in it. gcc's lines
/// "file:line:col: error: ..." (also "fatal error:") count as errors, "...: warning: ..." as warnings, and
/// a linker's "undefined reference to" as an error; the driver's summary "collect2: error: ld returned ..."
/// repeats errors already counted and is not counted again.
class BuildDiagnostics {
public:
    /// Adds a tool's output, counting its lines.
    void addOutput(const std::string& output);
    /// Adds a line of the build manager itself (a failed tool, a stop), counted as `isError` says.
    void addNote(const std::string& line, bool isError);

    unsigned errors() const { return m_errors; }
    unsigned warnings() const { return m_warnings; }
    const std::string& text() const { return m_text; }

private:
    void countLine(const std::string& line);

    unsigned m_errors = 0;
    unsigned m_warnings = 0;
    std::string m_text;
};

} // namespace quillon::services
