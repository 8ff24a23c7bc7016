#pragma once

#include <cstdio>
#include <string>

#include "IKestrixYAMLInput.h"

namespace kestrix {

/// YAML text read from a file, starting `seekPos` bytes from its start.
class YamlFileReader : public IKestrixYAMLInput {
public:
    /// Opens and positions the file; IOException when either fails.
    YamlFileReader(const std::string& fileName, int seekPos);
    ~YamlFileReader();

    YamlFileReader(const YamlFileReader&) = delete;
    YamlFileReader& operator=(const YamlFileReader&) = delete;

    size_t read(unsigned char* buffer, size_t size) override;
    /// The position and the message; `indent` is not used.
    std::string getErrorContext(size_t line, size_t column, const std::string& message,
                                int indent) override;

private:
    FILE* m_file = nullptr;
    int m_seekPos = 0;
};

} // namespace kestrix
