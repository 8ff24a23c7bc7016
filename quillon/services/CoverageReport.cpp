#include "services/CoverageReport.h"

#include <cstdio>
#include <iomanip>

namespace quillon::services {

CoverageReport::CoverageReport(std::string document, std::vector<Row> rows)
    : m_document(std::move(document)), m_rows(std::move(rows))
{
    for (const Row& row : m_rows) {
        m_total += row.counts;
    }
}

std::string CoverageReport::percent(std::uint32_t part, std::uint32_t whole)
{
    if (whole == 0) {
        return "-";
    }
    char text[16];
    std::snprintf(text, sizeof text, "%.1f%%", 100.0 * part / whole);
    return text;
}

std::string CoverageReport::hex(std::uint32_t value)
{
    char text[16];
    std::snprintf(text, sizeof text, "0x%08x", value);
    return text;
}

std::string CoverageReport::csvField(const std::string& text)
{
    if (text.find_first_of(",\"\n") == std::string::npos) {
        return text;
    }
    std::string quoted = "\"";
    for (char c : text) {
        quoted += c == '"' ? std::string("\"\"") : std::string(1, c);
    }
    return quoted + "\"";
}

std::string CoverageReport::xmlText(const std::string& text)
{
    std::string escaped;
    for (char c : text) {
        switch (c) {
        case '&': escaped += "&amp;"; break;
        case '<': escaped += "&lt;"; break;
        case '>': escaped += "&gt;"; break;
        case '"': escaped += "&quot;"; break;
        default: escaped += c;
        }
    }
    return escaped;
}

void CoverageReport::writeText(std::ostream& out) const
{
    out << "Coverage of " << m_document << '\n';
    out << std::left << std::setw(32) << "function" << std::right << std::setw(12) << "first" << std::setw(12)
        << "last" << std::setw(8) << "bytes" << std::setw(10) << "executed" << std::setw(8) << "code" << std::setw(10)
        << "branches" << std::setw(10) << "executed" << std::setw(8) << "taken" << std::setw(10) << "not taken"
        << std::setw(8) << "both" << std::setw(10) << "decisions" << '\n';
    auto line = [&](const std::string& name, const std::string& first, const std::string& last,
                    const CoverageCounts& c) {
        out << std::left << std::setw(32) << name << std::right << std::setw(12) << first << std::setw(12) << last
            << std::setw(8) << c.bytes << std::setw(10) << c.bytesExecuted << std::setw(8)
            << percent(c.bytesExecuted, c.bytes) << std::setw(10) << c.branches << std::setw(10)
            << c.branchesExecuted << std::setw(8) << c.taken << std::setw(10) << c.notTaken << std::setw(8) << c.both
            << std::setw(10) << percent(c.both, c.branches) << '\n';
    };
    for (const Row& row : m_rows) {
        line(row.function, hex(row.first), hex(row.last), row.counts);
    }
    line("(total)", "", "", m_total);
}

void CoverageReport::writeCsv(std::ostream& out) const
{
    out << "function,first,last,bytes,bytes_executed,branches,branches_executed,taken,not_taken,both\n";
    auto line = [&](const std::string& name, const std::string& first, const std::string& last,
                    const CoverageCounts& c) {
        out << csvField(name) << ',' << first << ',' << last << ',' << c.bytes << ',' << c.bytesExecuted << ','
            << c.branches << ',' << c.branchesExecuted << ',' << c.taken << ',' << c.notTaken << ',' << c.both << '\n';
    };
    for (const Row& row : m_rows) {
        line(row.function, hex(row.first), hex(row.last), row.counts);
    }
    line("(total)", "", "", m_total);
}

void CoverageReport::writeXml(std::ostream& out) const
{
    auto counts = [&](const CoverageCounts& c) {
        out << " bytes=\"" << c.bytes << "\" bytes_executed=\"" << c.bytesExecuted << "\" branches=\"" << c.branches
            << "\" branches_executed=\"" << c.branchesExecuted << "\" taken=\"" << c.taken << "\" not_taken=\""
            << c.notTaken << "\" both=\"" << c.both << "\"/>\n";
    };
    out << "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n";
    out << "<coverage document=\"" << xmlText(m_document) << "\">\n";
    for (const Row& row : m_rows) {
        out << "  <function name=\"" << xmlText(row.function) << "\" first=\"" << hex(row.first) << "\" last=\""
            << hex(row.last) << '"';
        counts(row.counts);
    }
    out << "  <total";
    counts(m_total);
    out << "</coverage>\n";
}

void CoverageReport::writeHtml(std::ostream& out) const
{
    out << "<!DOCTYPE html>\n<html><head><meta charset=\"utf-8\"><title>Coverage of " << xmlText(m_document)
        << "</title></head>\n<body>\n<h1>Coverage of " << xmlText(m_document) << "</h1>\n<table border=\"1\">\n"
        << "<tr><th>function</th><th>first</th><th>last</th><th>bytes</th><th>executed</th><th>code</th>"
           "<th>branches</th><th>executed</th><th>taken</th><th>not taken</th><th>both</th></tr>\n";
    auto line = [&](const std::string& name, const std::string& first, const std::string& last,
                    const CoverageCounts& c) {
        out << "<tr><td>" << xmlText(name) << "</td><td>" << first << "</td><td>" << last << "</td><td>" << c.bytes
            << "</td><td>" << c.bytesExecuted << "</td><td>" << percent(c.bytesExecuted, c.bytes) << "</td><td>"
            << c.branches << "</td><td>" << c.branchesExecuted << "</td><td>" << c.taken << "</td><td>"
            << c.notTaken << "</td><td>" << c.both << "</td></tr>\n";
    };
    for (const Row& row : m_rows) {
        line(row.function, hex(row.first), hex(row.last), row.counts);
    }
    line("(total)", "", "", m_total);
    out << "</table>\n</body></html>\n";
}

} // namespace quillon::services
