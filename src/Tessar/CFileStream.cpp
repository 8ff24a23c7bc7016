#include "CFileStream.h"

#include "IOException.h"

namespace kestrix {

CFileStream::CFileStream(const std::string& fileName, bool isAppendMode)
    : m_stream(fileName, isAppendMode ? std::ios::out | std::ios::app : std::ios::out | std::ios::trunc)
{
    if (!m_stream.good()) {
        throw IOException(KX_POS, "Can not open file for writing!")
            .add("fileNAme", fileName)
            .add("isAppendMode", isAppendMode ? 1 : 0);
    }
}

void CFileStream::write(const std::string& text)
{
    m_stream << text;
    if (m_stream.bad() || m_stream.fail()) {
        throw IOException(KX_POS, "Can not write to file!");
    }
}

std::ostream& CFileStream::getStream()
{
    return m_stream;
}

void CFileStream::close()
{
    m_stream.close();
}

} // namespace kestrix
