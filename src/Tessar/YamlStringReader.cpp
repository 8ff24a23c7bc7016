#include "YamlStringReader.h"

#include <algorithm>
#include <cerrno>
#include <cstring>

#include "IllegalStateException.h"

namespace kestrix {

namespace {

const char* const BANNER = "\n----------------------^----------------------\n"
                           "---------------------/ \\---------------------\n"
                           "--------------------/   \\--------------------\n\n";

// Lines beyond this count are copied without indentation.
const size_t MAX_INDENTED_LINES = 10000;

} // namespace

YamlStringReader::YamlStringReader(const std::string& text) : m_text(text) {}

size_t YamlStringReader::read(unsigned char* buffer, size_t size)
{
    size_t count = std::min(size, m_text.size() - m_pos);
    if (count == 0) {
        return 0;
    }
    if (buffer == nullptr) {
        throw IllegalStateException(KX_POS, "Can not perform memcpy.").add("errno", EINVAL);
    }
    std::memcpy(buffer, m_text.data() + m_pos, count);
    m_pos += count;
    return count;
}

std::string YamlStringReader::getErrorContext(size_t line, size_t column, const std::string& message,
                                              int indent)
{
    size_t width = indent > 0 ? static_cast<size_t>(indent) : 0;
    const std::string pad(width, ' ');
    const std::string caret = std::string(column == 0 ? width : width + column - 1, ' ') + "^";
    const std::string block = caret + "\n" + pad + "Error: " + message + BANNER;

    std::string excerpt = pad;
    excerpt.reserve(m_text.size() + block.size() + 64);
    size_t lineNo = 0;
    size_t start = 0;
    bool placed = false;
    for (size_t end = m_text.find('\n'); end != std::string::npos && lineNo < MAX_INDENTED_LINES;
         end = m_text.find('\n', start)) {
        excerpt.append(m_text, start, end + 1 - start);
        if (lineNo == line) {
            excerpt += block;
            placed = true;
        }
        excerpt += pad;
        start = end + 1;
        ++lineNo;
    }
    excerpt.append(m_text, start, std::string::npos);
    // The line at fault is the last one, which has no line end of its own (or lies beyond the
    // indented lines): the message goes behind the whole text so that it is never lost.
    if (!placed) {
        excerpt += "\n" + block;
    }
    return "\n" + pad + "---\n" + excerpt + "\n" + pad + "---\n" + pad + positionText(line, column) + "\n";
}

} // namespace kestrix
