#pragma once

#include <string>

#include "Containers.h"

namespace kestrix {

class CYAMLScalar;
class ITestParserEventReceiver;

/// Entry points of the parser, and helpers that read short YAML fragments given as text:
/// a scalar, a list such as `[a, b]` or a map such as `{a: 1, b: 2}`. Every error is a
/// ParserException that shows the fragment as the parser saw it.
class CYAMLUtil {
public:
    /// Parses YAML text into `receiver`.
    static void parseYAML(ITestParserEventReceiver& receiver, const std::string& text);
    /// Parses a file from `seekPos` bytes after its start; line numbers count from there.
    static void parseYAML(ITestParserEventReceiver& receiver, const std::string& fileName, int seekPos);

    /// One scalar, quoted as in a YAML file; an empty text gives an empty scalar.
    static void parseScalar(CYAMLScalar& out, const std::string& text);
    /// A flow or block sequence of scalars; `out` is replaced by their expression texts.
    static void parseYAMLList(StrVector& out, const std::string& text);
    /// A mapping of scalars; keys and values in order of appearance.
    static void parseYAMLMap(StrVector& keys, StrVector& values, const std::string& text);
    /// A mapping of scalars; `out` is replaced by its pairs.
    static void parseYAMLMap(StrStrMap& out, const std::string& text);

    /// The items joined by ", ".
    static std::string strVector2Str(const StrVector& items);

    /// Checks that the text is empty or one scalar.
    static void verifyScalar(const std::string& text);
    /// Checks that the text is at most one scalar of letters, digits and _-./: only;
    /// `description` names the value in the error.
    static void verifyLimitedScalar(const std::string& text, const std::string& description);
    static void verifyList(const std::string& text);
    static void verifyMap(const std::string& text);
};

} // namespace kestrix
