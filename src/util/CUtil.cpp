#include "CUtil.h"

#include <cerrno>
#include <clocale>
#include <cstdio>
#include <cstdlib>
#include <locale>
#include <sstream>

#include <locale.h>

#include "IllegalArgumentException.h"

namespace kestrix {

namespace {

const char* const BLANKS = " \t\r\n";
const char* const I2A_ERROR = "ERROR IN CUtil::i2a() - CAN NOT CONVERT INT TO STRING!";
const char* const I2H_ERROR = "ERROR IN CUtil::i2a() - CAN NOT CONVERT INT TO HEX STRING!";

template <size_t N, typename T>
std::string format(const char* pattern, T value, const char* errorText)
{
    char buffer[N];
    int n = std::snprintf(buffer, N, pattern, value);
    if (n < 0 || static_cast<size_t>(n) >= N) {
        return errorText;
    }
    return buffer;
}

// Numbers are read in the classic locale, whatever the host process set.
locale_t classicLocale()
{
    static const locale_t locale = newlocale(LC_ALL_MASK, "C", static_cast<locale_t>(nullptr));
    return locale;
}

int hexDigit(char c)
{
    if (c >= '0' && c <= '9') {
        return c - '0';
    }
    if (c >= 'a' && c <= 'f') {
        return c - 'a' + 10;
    }
    if (c >= 'A' && c <= 'F') {
        return c - 'A' + 10;
    }
    return -1;
}

// Replaces each `from` by `to`, searching on behind the inserted text, so a value is never
// expanded inside itself.
void replaceAll(std::string& text, const std::string& from, const std::string& to)
{
    for (size_t pos = text.find(from); pos != std::string::npos; pos = text.find(from, pos + to.size())) {
        text.replace(pos, from.size(), to);
    }
}

} // namespace

std::string CUtil::i2a(int value)
{
    return format<34>("%d", value, I2A_ERROR);
}

std::string CUtil::i2h(int value)
{
    return format<34>("%x", static_cast<unsigned int>(value), I2H_ERROR);
}

std::string CUtil::i2a(unsigned int value)
{
    return i2a(static_cast<unsigned long long>(value));
}

std::string CUtil::i2h(unsigned int value)
{
    return i2h(static_cast<unsigned long long>(value));
}

std::string CUtil::i2a(long long value)
{
    return format<65>("%lld", value, I2A_ERROR);
}

std::string CUtil::i2a(unsigned long long value)
{
    return format<65>("%llu", value, I2A_ERROR);
}

std::string CUtil::i2h(unsigned long long value)
{
    return format<65>("%llx", value, I2H_ERROR);
}

std::string CUtil::d2a(double value)
{
    std::ostringstream os;
    os.imbue(std::locale::classic());
    os << value;
    return os.str();
}

long long CUtil::a2l(const std::string& text)
{
    if (text.empty()) {
        throw IllegalArgumentException(KX_POS, "Conversion from string to 'long long' failed, because the string is empty!");
    }
    if (text.find_first_not_of("0123456789") != std::string::npos) {
        throw IllegalArgumentException(KX_POS, "Integer expected: ", text);
    }
    errno = 0;
    char* end = nullptr;
    long long value = std::strtoll(text.c_str(), &end, 10);
    if (errno == ERANGE) {
        throw IllegalArgumentException(KX_POS, "Integer out of range: ", text);
    }
    if (errno != 0 || *end != '\0') {
        throw IllegalArgumentException(KX_POS, "Valid integer expected: ", text);
    }
    return value;
}

long long CUtil::aOrHex2l(const std::string& text)
{
    if (text.size() < 2 || text.compare(0, 2, "0x") != 0) {
        return a2l(text);
    }
    if (text.size() == 2) {
        throw IllegalArgumentException(KX_POS, "Not a valid hex number!").add("number", text);
    }
    unsigned long long value = 0;
    for (size_t i = 2; i < text.size(); ++i) {
        int digit = hexDigit(text[i]);
        if (digit < 0) {
            throw IllegalArgumentException(KX_POS, "Invalid character in hex number!")
                .add("number", text)
                .add("char", static_cast<int>(static_cast<unsigned char>(text[i])));
        }
        value = (value << 4) | static_cast<unsigned long long>(digit);
    }
    return static_cast<long long>(value);
}

double CUtil::a2d(const std::string& text)
{
    if (text.empty()) {
        throw IllegalArgumentException(KX_POS, "Conversion from string to double failed, because the string is empty!");
    }
    errno = 0;
    char* end = nullptr;
    double value = strtod_l(text.c_str(), &end, classicLocale());
    if (errno == ERANGE) {
        throw IllegalArgumentException(KX_POS, "Integer out of range: ", text);
    }
    if (errno != 0) {
        throw IllegalArgumentException(KX_POS, "Valid integer expected: ", text);
    }
    if (end != text.c_str() + text.size()) {
        throw IllegalArgumentException(
            KX_POS, "Conversion from string to double failed, because string does not represent valid double value!")
            .add("string", text);
    }
    return value;
}

std::string CUtil::trim(const std::string& text)
{
    size_t first = text.find_first_not_of(BLANKS);
    if (first == std::string::npos) {
        return "";
    }
    size_t last = text.find_last_not_of(BLANKS);
    return text.substr(first, last - first + 1);
}

std::string CUtil::trimEnd(const std::string& text)
{
    size_t last = text.find_last_not_of(BLANKS);
    if (last == std::string::npos) {
        return text;
    }
    return text.substr(0, last + 1);
}

void CUtil::split(const std::string& text, char delimiter, StrVector& parts)
{
    size_t begin = 0;
    for (size_t pos = text.find(delimiter); pos != std::string::npos; pos = text.find(delimiter, begin)) {
        parts.push_back(text.substr(begin, pos - begin));
        begin = pos + 1;
    }
    parts.push_back(text.substr(begin));
}

std::string CUtil::getSubstrToDelim(const std::string& text, size_t start, char delimiter, size_t& delimiterPos)
{
    delimiterPos = text.find(delimiter, start);
    if (start >= text.size()) {
        return "";
    }
    if (delimiterPos == std::string::npos) {
        return text.substr(start);
    }
    return text.substr(start, delimiterPos - start);
}

std::string CUtil::replaceChar(const std::string& text, char from, char to)
{
    std::string result = text;
    for (char& c : result) {
        if (c == from) {
            c = to;
        }
    }
    return result;
}

std::string CUtil::replaceChar(const std::string& text, char from, const std::string& to)
{
    std::string result = text;
    replaceAll(result, std::string(1, from), to);
    return result;
}

// A value that holds its own reference, or a default value that holds "${", is inserted once
// and not expanded again: the search goes on behind the inserted text.
std::string CUtil::substVars(const std::string& text, const StrStrMap& variables)
{
    std::string result = text;
    for (const auto& variable : variables) {
        replaceAll(result, "${" + variable.first + "}", variable.second);
    }
    size_t start = result.find("${");
    if (start == std::string::npos) {
        return result;
    }
    auto defaultVar = variables.find(getDefaultVarName());
    if (defaultVar == variables.end()) {
        throw IllegalArgumentException(KX_POS, "Unknown variable(s) in string specified!").add("string", result);
    }
    const std::string& defaultValue = defaultVar->second;
    for (; start != std::string::npos; start = result.find("${", start + defaultValue.size())) {
        size_t end = result.find('}', start);
        if (end == std::string::npos) {
            throw IllegalArgumentException(KX_POS, "Variable in string without ending '}'!")
                .add("string", result)
                .add("startPos", static_cast<int>(start));
        }
        result.replace(start, end - start + 1, defaultValue);
    }
    return result;
}

std::string CUtil::getDefaultVarName()
{
    return "__default";
}

} // namespace kestrix
