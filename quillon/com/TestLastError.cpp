#include "com/TestLastError.h"

namespace quillon::com {

void TestLastError::set(DWORD errorClass, std::string text)
{
    std::lock_guard lock(m_mutex);
    m_class = errorClass;
    m_text = std::move(text);
}

DWORD TestLastError::errorClass() const
{
    std::lock_guard lock(m_mutex);
    return m_class;
}

std::string TestLastError::text() const
{
    std::lock_guard lock(m_mutex);
    return m_text;
}

} // namespace quillon::com
