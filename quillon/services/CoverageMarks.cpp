#include "services/CoverageMarks.h"

#include <algorithm>

namespace quillon::services {

CoverageMarks::CoverageMarks(const SpanSet& areas) : m_areaSet(areas), m_last(&m_none)
{
    for (const SpanSet::Span& span : areas.spans()) {
        Area area;
        area.start = static_cast<std::uint32_t>(span.begin);
        area.bytes.assign(span.size(), 0);
        m_areas.push_back(std::move(area));
    }
}

CoverageMarks::CoverageMarks(const CoverageMarks& other)
    : m_areaSet(other.m_areaSet), m_areas(other.m_areas), m_last(&m_none)
{
}

CoverageMarks& CoverageMarks::operator=(const CoverageMarks& other)
{
    m_areaSet = other.m_areaSet;
    m_areas = other.m_areas;
    m_last = &m_none;
    return *this;
}

std::uint8_t* CoverageMarks::find(std::uint32_t address)
{
    for (Area& area : m_areas) {
        if (address - area.start < area.bytes.size()) {
            m_last = &area;
            return &area.bytes[address - area.start];
        }
    }
    return nullptr;
}

const CoverageMarks::Area* CoverageMarks::areaOf(std::uint32_t address) const
{
    for (const Area& area : m_areas) {
        if (address - area.start < area.bytes.size()) {
            return &area;
        }
    }
    return nullptr;
}

CoverageMarks::Block CoverageMarks::blockOf(std::uint32_t address)
{
    for (Area& area : m_areas) {
        if (address - area.start < area.bytes.size()) {
            return Block{area.start, static_cast<std::uint32_t>(area.bytes.size()), area.bytes.data()};
        }
    }
    return Block{};
}

std::uint8_t CoverageMarks::get(std::uint32_t address) const
{
    const Area* area = areaOf(address);
    return area ? area->bytes[address - area->start] : 0;
}

void CoverageMarks::clear(std::uint8_t bits)
{
    const auto keep = static_cast<std::uint8_t>(~bits);
    for (Area& area : m_areas) {
        for (std::uint8_t& byte : area.bytes) {
            byte &= keep;
        }
    }
}

void CoverageMarks::set(std::uint64_t begin, std::uint64_t end, std::uint8_t bits)
{
    const SpanSet spans = m_areaSet.intersection(begin, end);
    for (const SpanSet::Span& span : spans.spans()) {
        std::uint8_t* first = at(static_cast<std::uint32_t>(span.begin));
        for (std::uint64_t i = 0; i < span.size(); ++i) {
            first[i] |= bits;
        }
    }
}

SpanSet CoverageMarks::spansWith(std::uint8_t bits, std::uint64_t begin, std::uint64_t end) const
{
    SpanSet result;
    const SpanSet spans = m_areaSet.intersection(begin, end);
    for (const SpanSet::Span& span : spans.spans()) {
        const Area* area = areaOf(static_cast<std::uint32_t>(span.begin));
        std::uint64_t runStart = 0;
        bool inRun = false;
        for (std::uint64_t address = span.begin; address < span.end; ++address) {
            const bool marked = (area->bytes[address - area->start] & bits) != 0;
            if (marked && !inRun) {
                runStart = address;
            } else if (!marked && inRun) {
                result.add(runStart, address);
            }
            inRun = marked;
        }
        if (inRun) {
            result.add(runStart, span.end);
        }
    }
    return result;
}

} // namespace quillon::services
