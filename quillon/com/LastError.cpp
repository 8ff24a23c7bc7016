#include "com/LastError.h"

#include <algorithm>
#include <cstring>
#include <utility>

#include "OrbelResults.h"

namespace quillon::com {

void LastError::clear()
{
    set(Kind::None, std::string());
}

void LastError::setError(std::string message)
{
    set(Kind::Error, std::move(message));
}

void LastError::setWarning(std::string message)
{
    set(Kind::Warning, std::move(message));
}

LastError::Kind LastError::kind() const
{
    std::lock_guard<std::mutex> lock(m_mutex);
    return m_kind;
}

std::string LastError::message() const
{
    std::lock_guard<std::mutex> lock(m_mutex);
    return m_message;
}

HRESULT LastError::copyTo(char* buffer, DWORD size) const
{
    if (buffer == nullptr || size == 0) {
        return kestrix::E_INVALIDARG;
    }
    std::lock_guard<std::mutex> lock(m_mutex);
    const std::size_t count = std::min<std::size_t>(m_message.size(), size - 1);
    std::memcpy(buffer, m_message.data(), count);
    buffer[count] = '\0';
    switch (m_kind) {
    case Kind::Error: return kestrix::ORBEL_S_MSG_FAIL;
    case Kind::Warning: return kestrix::ORBEL_S_WARNING;
    default: return kestrix::S_OK;
    }
}

void LastError::set(Kind kind, std::string message)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    m_kind = kind;
    m_message = std::move(message);
}

} // namespace quillon::com
