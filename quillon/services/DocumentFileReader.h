#pragma once

#include <cstdint>
#include <istream>
#include <string>
#include <vector>

namespace quillon::services {

/// Reads the saved form of a document line by line. A saved document is text: a header of two lines,
///
///     quillon-document 1
///     kind <analyzer|coverage>
///
/// then one entry a line, "<keyword> <fields...>", as the document's class writes them. Failures are
/// AnalyzerError (Failed) texts "document file '<path>', line <n>: <problem>".
class DocumentFileReader {
public:
    DocumentFileReader(std::istream& in, std::string path) : m_in(in), m_path(std::move(path)) {}

    /// The first line of the file.
    static constexpr const char* kMagic = "quillon-document 1";

    /// Reads the header; the kind's word.
    std::string readHeader();
    /// The next non-empty line split at blanks into its keyword and the rest; false at the end.
    bool next();
    const std::string& keyword() const { return m_keyword; }
    /// The rest of the line after the keyword and one blank, as written.
    const std::string& rest() const { return m_rest; }
    /// The rest split at blanks; fails unless there are `count` fields.
    std::vector<std::string> fields(std::size_t count) const;
    /// A decimal or 0x hexadecimal number that fits `bits` bits.
    std::uint64_t number(const std::string& text, unsigned bits = 32) const;

    [[noreturn]] void fail(const std::string& problem) const;

private:
    std::istream& m_in;
    std::string m_path;
    int m_line = 0;
    std::string m_keyword;
    std::string m_rest;
};

} // namespace quillon::services
