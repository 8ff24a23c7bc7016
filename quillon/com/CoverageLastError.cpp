#include "com/CoverageLastError.h"

namespace quillon::com {

void CoverageLastError::set(const std::string& document, DWORD errorClass, std::string text)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    m_failures[document] = Failure{errorClass, std::move(text)};
}

void CoverageLastError::clear(const std::string& document)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    m_failures.erase(document);
}

CoverageLastError::Failure CoverageLastError::get(const std::string& document) const
{
    std::lock_guard<std::mutex> lock(m_mutex);
    auto it = m_failures.find(document);
    return it == m_failures.end() ? Failure{} : it->second;
}

} // namespace quillon::com
