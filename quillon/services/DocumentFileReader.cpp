#include "services/DocumentFileReader.h"

#include <charconv>
#include <sstream>

#include "services/AnalyzerError.h"

namespace quillon::services {

std::string DocumentFileReader::readHeader()
{
    std::string line;
    ++m_line;
    if (!std::getline(m_in, line) || line != kMagic) {
        fail(std::string("not a Quillon document (the first line must be '") + kMagic + "')");
    }
    if (!next() || m_keyword != "kind") {
        fail("the second line must be 'kind <analyzer|coverage>'");
    }
    return m_rest;
}

bool DocumentFileReader::next()
{
    std::string line;
    while (std::getline(m_in, line)) {
        ++m_line;
        if (!line.empty() && line.back() == '\r') {
            line.pop_back();
        }
        if (line.empty()) {
            continue;
        }
        const std::size_t blank = line.find(' ');
        m_keyword = line.substr(0, blank);
        m_rest = blank == std::string::npos ? std::string() : line.substr(blank + 1);
        return true;
    }
    return false;
}

std::vector<std::string> DocumentFileReader::fields(std::size_t count) const
{
    std::istringstream in(m_rest);
    std::vector<std::string> result;
    std::string field;
    while (in >> field) {
        result.push_back(field);
    }
    if (result.size() != count) {
        fail("'" + m_keyword + "' takes " + std::to_string(count) + " fields, not " + std::to_string(result.size()));
    }
    return result;
}

std::uint64_t DocumentFileReader::number(const std::string& text, unsigned bits) const
{
    const bool isHex = text.size() > 2 && text[0] == '0' && (text[1] == 'x' || text[1] == 'X');
    const char* begin = text.data() + (isHex ? 2 : 0);
    const char* end = text.data() + text.size();
    std::uint64_t value = 0;
    const auto [stop, error] = std::from_chars(begin, end, value, isHex ? 16 : 10);
    if (error != std::errc() || stop != end || begin == end || (bits < 64 && value >> bits != 0)) {
        fail("bad number '" + text + "' in '" + m_keyword + "'");
    }
    return value;
}

void DocumentFileReader::fail(const std::string& problem) const
{
    throw AnalyzerError(AnalyzerError::Kind::Failed,
                        "document file '" + m_path + "', line " + std::to_string(m_line) + ": " + problem);
}

} // namespace quillon::services
