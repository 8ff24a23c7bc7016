#pragma once

#include <cstdint>
#include <ostream>
#include <string>
#include <vector>

#include "services/CoverageCounts.h"

namespace quillon::services {

/// The export of a coverage document: one row a function of the measured code, then the total. Percentages are
/// of the bytes and of the branches, with one decimal; "-" where there is nothing to count.
///
/// - Text: a title line, then aligned columns.
/// - CSV: the header line
///   `function,first,last,bytes,bytes_executed,branches,branches_executed,taken,not_taken,both`,
///   one line a function (`first` and `last` in 0x hexadecimal, the last byte included), and a last line with the
///   function `(total)` and empty addresses. Names with a comma or quote are quoted as CSV does.
/// - XML: `<coverage document="..."><function name=".." first="0x.." last="0x.." bytes=".." .../>...
///   <total .../></coverage>`, with the CSV's column names as attributes.
/// - HTML: a page with the same table.
class CoverageReport {
public:
    struct Row {
        std::string function;
        std::uint32_t first = 0;
        std::uint32_t last = 0;
        CoverageCounts counts;
    };

    CoverageReport(std::string document, std::vector<Row> rows);

    void writeText(std::ostream& out) const;
    void writeCsv(std::ostream& out) const;
    void writeXml(std::ostream& out) const;
    void writeHtml(std::ostream& out) const;

    const CoverageCounts& total() const { return m_total; }

private:
    static std::string percent(std::uint32_t part, std::uint32_t whole);
    static std::string hex(std::uint32_t value);
    static std::string csvField(const std::string& text);
    static std::string xmlText(const std::string& text);

    std::string m_document;
    std::vector<Row> m_rows;
    CoverageCounts m_total;
};

} // namespace quillon::services
