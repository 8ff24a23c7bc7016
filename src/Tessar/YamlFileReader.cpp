#include "YamlFileReader.h"

#include <cerrno>

#include "IOException.h"

namespace kestrix {

YamlFileReader::YamlFileReader(const std::string& fileName, int seekPos) : m_seekPos(seekPos)
{
    m_file = std::fopen(fileName.c_str(), "r");
    if (m_file == nullptr) {
        throw IOException(KX_POS, "Can not open file with test specification!").add("file", fileName);
    }
    if (std::fseek(m_file, m_seekPos, SEEK_SET) != 0) {
        int error = errno;
        std::fclose(m_file);
        throw IOException(KX_POS, "Can not seek file with test specification!")
            .add("file", fileName)
            .add("seekPos", m_seekPos)
            .add("errno", error);
    }
}

YamlFileReader::~YamlFileReader()
{
    std::fclose(m_file);
}

size_t YamlFileReader::read(unsigned char* buffer, size_t size)
{
    return std::fread(buffer, 1, size, m_file);
}

std::string YamlFileReader::getErrorContext(size_t line, size_t column, const std::string& message,
                                            int /*indent*/)
{
    return positionText(line, column) + "\nError: " + message;
}

} // namespace kestrix
