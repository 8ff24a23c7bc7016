#include "CStringStream.h"

namespace kestrix {

void CStringStream::write(const std::string& text)
{
    m_stream << text;
}

std::ostream& CStringStream::getStream()
{
    return m_stream;
}

void CStringStream::close()
{
}

std::string CStringStream::getString() const
{
    return m_stream.str();
}

} // namespace kestrix
