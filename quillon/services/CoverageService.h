#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "services/CoverageCounts.h"
#include "services/DocumentService.h"
#include "services/SpanSet.h"

namespace quillon::services {

/// Coverage by document name, as the coverage interface asks for it: availability, configuration items, ranges,
/// bitmaps and statistics of the open coverage documents of a DocumentService. Failures are AnalyzerError.
class CoverageService {
public:
    /// Availability bits: code coverage and branch (decision) coverage.
    static constexpr std::uint32_t kAvailable = 0x3;
    /// Kind of coverage: recorded in software from executed instructions; neither hardware (1) nor offline (2).
    static constexpr std::uint32_t kKind = 0;

    /// Items of `configure`.
    enum Item : std::uint32_t {
        ScopeItem = 1,
        Option1Item = 2,
        Option2Item = 3,
        CreateRangesetItem = 4,
        RangesetScopeItem = 5,
        ExcludeFirstItem = 6,  ///< 6..9: exclude a folder, module, function, item
        IncludeFirstItem = 10, ///< 10..13: include a folder, module, function, item
        ActiveRangesetItem = 14,
        ClearItem = 16,
    };

    explicit CoverageService(DocumentService& documents) : m_documents(documents) {}

    /// `what` 1: the availability bits; 2: the kind. InvalidArgument for another.
    static std::uint32_t info(std::uint32_t what);

    /// One configuration item with its text and value; true only when item 4 finds the rangeset existing.
    bool configure(const std::string& document, std::uint32_t item, const std::string& text, std::uint32_t value);
    /// Spans of the active ranges.
    std::vector<SpanSet::Span> activeRanges(const std::string& document);
    /// Spans of a folder (0), module (1), function (2) or item (3) of that name.
    std::vector<SpanSet::Span> resolve(const std::string& document, std::uint32_t rangeType, const std::string& name);
    /// One byte for each address of [first, last].
    std::vector<std::uint8_t> bitmap(const std::string& document, std::uint32_t first, std::uint32_t last);
    /// Statistic 1..7 (CoverageCounts::byNumber) over [first, last].
    std::uint32_t statistic(const std::string& document, std::uint32_t type, std::uint32_t first, std::uint32_t last);

private:
    static void checkRange(std::uint32_t first, std::uint32_t last);

    DocumentService& m_documents;
};

} // namespace quillon::services
