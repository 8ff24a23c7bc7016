#include "target/MemoryArea.h"

#include <cstring>
#include <new>

namespace quillon::target {

namespace {
constexpr std::align_val_t pageAlignment{4096};
}

void MemoryArea::PageDelete::operator()(uint8_t* p) const
{
    ::operator delete[](p, pageAlignment);
}

MemoryArea::MemoryArea(std::string name, uint32_t start, uint32_t size, unsigned access)
    : m_name(std::move(name)), m_start(start), m_size(size), m_access(access),
      m_data(static_cast<uint8_t*>(::operator new[](size == 0 ? 1 : size, pageAlignment)))
{
    std::memset(m_data.get(), 0, size);
}

std::optional<unsigned> MemoryArea::parseAccess(std::string_view text)
{
    if (text.empty()) {
        return std::nullopt;
    }
    unsigned access = None;
    for (char c : text) {
        unsigned bit = c == 'r' ? Read : c == 'w' ? Write : c == 'x' ? Execute : None;
        if (bit == None || (access & bit) != 0) {
            return std::nullopt;
        }
        access |= bit;
    }
    return access;
}

std::string MemoryArea::accessText(unsigned access)
{
    std::string text;
    if (access & Read) {
        text += 'r';
    }
    if (access & Write) {
        text += 'w';
    }
    if (access & Execute) {
        text += 'x';
    }
    return text.empty() ? "-" : text;
}

} // namespace quillon::target
