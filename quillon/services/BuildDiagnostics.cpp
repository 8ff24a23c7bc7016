#include "services/BuildDiagnostics.h"

#include <sstream>

namespace quillon::services {

namespace {

bool startsWith(const std::string& text, const char* prefix)
{
    return text.rfind(prefix, 0) == 0;
}

bool contains(const std::string& text, const char* part)
{
    return text.find(part) != std::string::npos;
}

} // namespace

void BuildDiagnostics::addOutput(const std::string& output)
{
    std::istringstream lines(output);
    for (std::string line; std::getline(lines, line);) {
        countLine(line);
    }
    m_text += output;
    if (!output.empty() && output.back() != '\n') {
        m_text += '\n';
    }
}

void BuildDiagnostics::addNote(const std::string& line, bool isError)
{
    m_text += line + "\n";
    if (isError) {
        ++m_errors;
    }
}

void BuildDiagnostics::countLine(const std::string& line)
{
    if (startsWith(line, "collect2:")) {
        return;
    }
    if (startsWith(line, "error: ") || contains(line, ": error: ") || contains(line, ": fatal error: ")
        || contains(line, "undefined reference to")) {
        ++m_errors;
    } else if (startsWith(line, "warning: ") || contains(line, ": warning: ")) {
        ++m_warnings;
    }
}

} // namespace quillon::services
