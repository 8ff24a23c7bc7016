#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace quillon::target {

/// One block of target memory, backed by host memory, with the access rights the core has on it.
class MemoryArea {
public:
    /// Access rights, combined as bits.
    enum Access : unsigned { None = 0, Read = 1, Write = 2, Execute = 4 };

    /// A zero-filled area. The layout checks (size, overlap, alignment) belong to the map and the target.
    MemoryArea(std::string name, uint32_t start, uint32_t size, unsigned access);

    const std::string& name() const { return m_name; }
    uint32_t start() const { return m_start; }
    uint32_t size() const { return m_size; }
    /// First address after the area; 64-bit, so that an area may end at 4 GiB.
    uint64_t end() const { return uint64_t(m_start) + m_size; }
    unsigned access() const { return m_access; }
    bool contains(uint64_t address) const { return address >= m_start && address < end(); }

    uint8_t* data() { return m_data.get(); }
    const uint8_t* data() const { return m_data.get(); }

    /// "rx", "rwx", "r" ...: any of r, w, x, each at most once. Empty or other letters give nothing.
    static std::optional<unsigned> parseAccess(std::string_view text);
    /// The letters of `access` in the order r, w, x ("-" for none).
    static std::string accessText(unsigned access);

private:
    struct PageDelete {
        void operator()(uint8_t* p) const;
    };

    std::string m_name;
    uint32_t m_start;
    uint32_t m_size;
    unsigned m_access;
    std::unique_ptr<uint8_t[], PageDelete> m_data;
};

} // namespace quillon::target
