#pragma once

#include <cstddef>
#include <string>

#include "Containers.h"

namespace kestrix {

/// Text and number conversions with fixed acceptance and messages, shared by the whole library.
class CUtil {
public:
    static std::string i2a(int value);
    static std::string i2h(int value);
    static std::string i2a(unsigned int value);
    static std::string i2h(unsigned int value);
    static std::string i2a(long long value);
    static std::string i2a(unsigned long long value);
    static std::string i2h(unsigned long long value);
    static std::string d2a(double value);

    static long long a2l(const std::string& text);
    static long long aOrHex2l(const std::string& text);
    static double a2d(const std::string& text);

    static std::string trim(const std::string& text);
    static std::string trimEnd(const std::string& text);
    static void split(const std::string& text, char delimiter, StrVector& parts);
    static std::string getSubstrToDelim(const std::string& text, size_t start, char delimiter, size_t& delimiterPos);
    static std::string replaceChar(const std::string& text, char from, char to);
    static std::string replaceChar(const std::string& text, char from, const std::string& to);
    static std::string substVars(const std::string& text, const StrStrMap& variables);
    static std::string getDefaultVarName();
};

} // namespace kestrix
