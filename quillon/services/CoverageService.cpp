#include "services/CoverageService.h"

#include "services/AnalyzerError.h"

namespace quillon::services {

namespace {

AnalyzerError badArgument(const std::string& message)
{
    return AnalyzerError(AnalyzerError::Kind::InvalidArgument, message);
}

std::string hex(std::uint32_t value)
{
    char text[16];
    std::snprintf(text, sizeof text, "0x%08x", value);
    return text;
}

} // namespace

std::uint32_t CoverageService::info(std::uint32_t what)
{
    switch (what) {
    case 1:
        return kAvailable;
    case 2:
        return kKind;
    default:
        throw badArgument("unknown coverage information " + std::to_string(what) + " (1 availability, 2 kind)");
    }
}

bool CoverageService::configure(const std::string& document, std::uint32_t item, const std::string& text,
                                std::uint32_t value)
{
    return m_documents.withCoverage(document, [&](CoverageDocument& coverage) {
        if (item == CreateRangesetItem) {
            return coverage.changeConfiguration().createRangeset(text);
        }
        if (item >= ExcludeFirstItem && item < IncludeFirstItem + 4) {
            const bool isInclude = item >= IncludeFirstItem;
            const auto kind = CoverageConfiguration::itemKind(item - (isInclude ? IncludeFirstItem : ExcludeFirstItem));
            coverage.resolve(kind, text); // names what does not exist now, not when it is measured
            isInclude ? coverage.changeConfiguration().addInclude(kind, text)
                      : coverage.changeConfiguration().addExclude(kind, text);
            return false;
        }
        switch (item) {
        case ScopeItem:
            coverage.changeConfiguration().setScope(value);
            break;
        case Option1Item:
            coverage.changeConfiguration().setOption1(value);
            break;
        case Option2Item:
            coverage.changeConfiguration().setOption2(value);
            break;
        case RangesetScopeItem:
            coverage.changeConfiguration().setRangesetScope(value);
            break;
        case ActiveRangesetItem:
            text.empty() ? coverage.changeConfiguration().activate(value)
                         : coverage.changeConfiguration().activate(text);
            break;
        case ClearItem:
            coverage.changeConfiguration().clear();
            break;
        default:
            throw badArgument("unknown coverage configuration item " + std::to_string(item)
                              + " (1 to 14, 16)");
        }
        return false;
    });
}

std::vector<SpanSet::Span> CoverageService::activeRanges(const std::string& document)
{
    return m_documents.readCoverage(document, [](CoverageDocument& coverage) { return coverage.activeRanges().spans(); });
}

std::vector<SpanSet::Span> CoverageService::resolve(const std::string& document, std::uint32_t rangeType,
                                                    const std::string& name)
{
    const auto kind = CoverageConfiguration::itemKind(rangeType);
    return m_documents.readCoverage(document,
                                    [&](CoverageDocument& coverage) { return coverage.resolve(kind, name).spans(); });
}

void CoverageService::checkRange(std::uint32_t first, std::uint32_t last)
{
    if (last < first) {
        throw badArgument("the range " + hex(first) + " to " + hex(last) + " ends before it starts");
    }
}

std::vector<std::uint8_t> CoverageService::bitmap(const std::string& document, std::uint32_t first,
                                                  std::uint32_t last)
{
    checkRange(first, last);
    return m_documents.readCoverage(document,
                                    [&](CoverageDocument& coverage) { return coverage.bitmap(first, last); });
}

std::uint32_t CoverageService::statistic(const std::string& document, std::uint32_t type, std::uint32_t first,
                                         std::uint32_t last)
{
    if (type < 1 || type > 7) {
        throw badArgument("unknown coverage statistic " + std::to_string(type)
                          + " (1 bytes, 2 bytes executed, 3 branches, 4 branches executed, 5 taken, 6 not taken, "
                            "7 both)");
    }
    checkRange(first, last);
    return m_documents.readCoverage(
        document, [&](CoverageDocument& coverage) { return coverage.counts(first, last).byNumber(type); });
}

} // namespace quillon::services
