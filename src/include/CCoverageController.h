#pragma once

#include <memory>
#include <string>
#include <vector>

#include "CAnalyzerDocController.h"
#include "CCoverageStatistic.h"
#include "Containers.h"
#include "SCoverageRange.h"

namespace kestrix {

/// A coverage document of Quillon: what is measured, which ranges are covered, statistics and
/// the coverage bitmap. Every operation is one or a few calls of `OrbelCoverage` on the
/// document's file name; recording and export come from the base classes.
class CCoverageController : public CAnalyzerDocController {
public:
    /// What is measured.
    enum ECoverageScope {
        csEntireMemory = 0,
        csEntireMemoryMinusExcludes = 1,
        csAllDownloadedCode = 2,
        csAllDownloadedCodeMinusExcludes = 3,
        csIncludesOnly = 4
    };

    /// Kind of an item of a rangeset.
    enum ERangeItem { rsFolder = 0, rsModule = 1, rsFunction = 2, rsItem = 3 };

    typedef std::vector<SCoverageRange> RangeVector;

    CCoverageController(std::shared_ptr<ConnectionMgr> connectionMgr, const std::string& fileName,
                        const std::string& openMode);
    ~CCoverageController() override;

    bool isCoverageAvailable();
    bool isBranchCoverageAvailable();
    bool isHWCoverageAvailable();
    bool isOfflineCoverageAvailable();

    void setConfiguration(ECoverageScope scope, DWORD option1, DWORD option2);
    /// True when Quillon answers S_FALSE, as for a name that exists already; false on S_OK.
    bool createRangeset(const std::string& name);
    void setActiveRangeset(const std::string& name);
    void setActiveRangeset(DWORD index);
    void addRangesetExclude(ERangeItem item, const std::string& name);
    void addRangesetInclude(ERangeItem item, const std::string& name);
    void clearConfiguration();

    /// `ranges` gets at most `maxRanges` active ranges.
    void getActiveRanges(RangeVector& ranges, DWORD maxRanges);
    /// `ranges` gets at most `maxRanges` ranges of `name`; `rangeType` is a crt... kind.
    void resolveRange(DWORD rangeType, const std::string& name, RangeVector& ranges, DWORD maxRanges);
    /// One byte per address from `start` to `end`; empty if the two are equal.
    void getCoverageBitmap(DWORD start, DWORD end, VectorBYTE& bitmap);
    /// One number of a csft... kind over the range.
    DWORD getCoverageStatistics(DWORD type, DWORD start, DWORD end);
    /// All seven numbers over the code of a function.
    CCoverageStatistic getStatisticsForSymbol(const std::string& symbol);

#ifdef SWIG
    OrbelCoverage* getOrbelCoverage() const;
#endif

private:
    static std::string method(const char* operation);
    /// The script's text of a scope, its number if it is none.
    static std::string scope2str(int scope);

    /// The value that `GetInfo` gives for `what`.
    DWORD info(DWORD what);
    void setConfigurationItem(DWORD item, const std::string& text, DWORD value);
    void addRangesetItem(const char* operation, DWORD firstItem, ERangeItem item, const std::string& name);
    void getRanges(DWORD kind, const std::string& name, DWORD rangeType, RangeVector& ranges, DWORD maxRanges);
    /// Returns on S_OK; else raises the exception of the document's last error, with `message`.
    void check(HRESULT hr, const std::string& message);
};

} // namespace kestrix
