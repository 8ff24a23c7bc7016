#include "services/CoverageReview.h"

#include <cstdio>
#include <iomanip>

namespace quillon::services {

using Status = CoverageListing::Status;

CoverageReview::CoverageReview(std::string document, const CoverageListing& listing)
    : m_document(std::move(document)), m_listing(listing)
{
}

std::string CoverageReview::percent(std::uint32_t part, std::uint32_t whole)
{
    if (whole == 0) {
        return "-";
    }
    char text[16];
    std::snprintf(text, sizeof text, "%.1f%%", 100.0 * part / whole);
    return text;
}

std::string CoverageReview::hex(std::uint64_t value)
{
    char text[24];
    std::snprintf(text, sizeof text, "0x%08llx", static_cast<unsigned long long>(value));
    return text;
}

std::string CoverageReview::escaped(const std::string& text)
{
    std::string result;
    for (char c : text) {
        switch (c) {
        case '&': result += "&amp;"; break;
        case '<': result += "&lt;"; break;
        case '>': result += "&gt;"; break;
        case '"': result += "&quot;"; break;
        default: result += c;
        }
    }
    return result;
}

char CoverageReview::mark(Status status)
{
    switch (status) {
    case Status::Executed: return '+';
    case Status::Partly: return '~';
    case Status::NotExecuted: return '-';
    case Status::NoCode: break;
    }
    return ' ';
}

std::string CoverageReview::summary(const CoverageCounts& c)
{
    return "code " + std::to_string(c.bytesExecuted) + " of " + std::to_string(c.bytes) + " bytes executed ("
           + percent(c.bytesExecuted, c.bytes) + "); branches " + std::to_string(c.branchesExecuted) + " of "
           + std::to_string(c.branches) + " executed (" + percent(c.branchesExecuted, c.branches) + "): "
           + std::to_string(c.taken) + " taken, " + std::to_string(c.notTaken) + " not taken, "
           + std::to_string(c.both) + " both";
}

std::string CoverageReview::spans(const SpanSet& code)
{
    std::string text;
    for (const SpanSet::Span& span : code.spans()) {
        text += (text.empty() ? "" : ", ") + hex(span.begin) + "-" + hex(span.end - 1);
    }
    return text;
}

std::string CoverageReview::heading(const CoverageListing::SourceFile& file)
{
    if (file.path.empty()) {
        return "(no line information)";
    }
    return file.found.empty() ? file.path + " (not found)" : file.found;
}

std::string CoverageReview::countAttributes(const CoverageCounts& c)
{
    return " bytes=\"" + std::to_string(c.bytes) + "\" bytes_executed=\"" + std::to_string(c.bytesExecuted)
           + "\" branches=\"" + std::to_string(c.branches) + "\" branches_executed=\""
           + std::to_string(c.branchesExecuted) + "\" taken=\"" + std::to_string(c.taken) + "\" not_taken=\""
           + std::to_string(c.notTaken) + "\" both=\"" + std::to_string(c.both) + "\"";
}

void CoverageReview::writeText(std::ostream& out) const
{
    out << "Coverage review of " << m_document << "\n\n";
    for (const CoverageListing::Function& function : m_listing.functions()) {
        out << "function " << function.name << ' ' << hex(function.first) << '-' << hex(function.last) << '\n';
        out << "  " << summary(function.counts) << '\n';
        for (const CoverageListing::SourceFile& file : function.files) {
            out << "  source " << heading(file) << '\n';
            for (const CoverageListing::Line& line : file.lines) {
                const std::string number = line.number == 0 ? "?" : std::to_string(line.number);
                const std::string text = file.found.empty() ? spans(line.code) : line.text;
                out << "  " << mark(line.status()) << ' ' << std::setw(5) << number << "  " << text << '\n';
                for (const CoverageListing::Branch& branch : line.branches) {
                    out << std::string(11, ' ') << "branch " << hex(branch.address) << ": " << branch.outcome << '\n';
                }
            }
        }
        out << '\n';
    }
    out << "total: " << summary(m_listing.total()) << '\n';
}

void CoverageReview::writeHtml(std::ostream& out) const
{
    const std::string title = "Coverage review of " + escaped(m_document);
    out << "<!DOCTYPE html>\n<html><head><meta charset=\"utf-8\"><title>" << title << "</title>\n"
        << "<style>table.listing{border-collapse:collapse}td{padding:0 .5em;vertical-align:top}"
           "pre{margin:0}tr.executed{background:#c8f0c8}tr.partly{background:#f0e8a8}"
           "tr.not-executed{background:#f0c0c0}</style></head>\n<body>\n<h1>"
        << title << "</h1>\n";
    auto rowClass = [](Status status) {
        switch (status) {
        case Status::Executed: return "executed";
        case Status::Partly: return "partly";
        case Status::NotExecuted: return "not-executed";
        case Status::NoCode: break;
        }
        return "no-code";
    };
    for (const CoverageListing::Function& function : m_listing.functions()) {
        out << "<h2>" << escaped(function.name) << ' ' << hex(function.first) << '-' << hex(function.last)
            << "</h2>\n<p class=\"summary\">" << summary(function.counts) << "</p>\n";
        for (const CoverageListing::SourceFile& file : function.files) {
            out << "<h3>" << escaped(heading(file)) << "</h3>\n<table class=\"listing\">\n";
            for (const CoverageListing::Line& line : file.lines) {
                const std::string text = file.found.empty() ? spans(line.code) : line.text;
                out << "<tr class=\"" << rowClass(line.status()) << "\"><td>" << mark(line.status()) << "</td><td>"
                    << (line.number == 0 ? std::string("?") : std::to_string(line.number)) << "</td><td><pre>"
                    << escaped(text) << "</pre></td><td>";
                for (std::size_t i = 0; i < line.branches.size(); ++i) {
                    out << (i == 0 ? "" : "<br>") << hex(line.branches[i].address) << ' ' << line.branches[i].outcome;
                }
                out << "</td></tr>\n";
            }
            out << "</table>\n";
        }
    }
    out << "<p class=\"total\">total: " << summary(m_listing.total()) << "</p>\n</body></html>\n";
}

void CoverageReview::writeXml2(std::ostream& out) const
{
    out << "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n";
    out << "<coverage2 document=\"" << escaped(m_document) << "\">\n";
    for (const CoverageListing::Function& function : m_listing.functions()) {
        out << "  <function name=\"" << escaped(function.name) << "\" first=\"" << hex(function.first)
            << "\" last=\"" << hex(function.last) << '"' << countAttributes(function.counts) << ">\n";
        for (const CoverageListing::SourceFile& file : function.files) {
            out << "    <file path=\"" << escaped(file.path) << "\" found=\""
                << (file.found.empty() ? "false" : "true") << "\">\n";
            for (const CoverageListing::Line& line : file.lines) {
                if (line.status() == Status::NoCode) {
                    continue;
                }
                out << "      <line number=\"" << line.number << "\" status=\""
                    << CoverageListing::statusName(line.status()) << "\" first=\""
                    << hex(line.code.spans().front().begin) << "\" last=\"" << hex(line.code.spans().back().end - 1)
                    << '"' << countAttributes(line.counts) << "/>\n";
            }
            out << "    </file>\n";
        }
        out << "  </function>\n";
    }
    out << "  <total" << countAttributes(m_listing.total()) << "/>\n</coverage2>\n";
}

} // namespace quillon::services
