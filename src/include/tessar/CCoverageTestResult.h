#pragma once

#include <map>
#include <memory>
#include <string>

#include "CCoverageStatistic.h"
#include "CCoverageTestExpected.h"
#include "OrbelTypes.h"

namespace kestrix {

class IEmitter;

/// Coverage of one function judged against its expected fractions: an item is in error when
/// its measured fraction is below the expected one. Nothing in range is no error.
class CCoverageTestResult {
public:
    CCoverageTestResult() = default;
    CCoverageTestResult(const CCoverageTestExpected& expected, const CCoverageStatistic& measured);

    CCoverageTestExpected getExpectedResults() const { return m_expected; }
    CCoverageStatistic getMeasuredResults() const { return m_measured; }

    bool isBytesExecutedError() const;
    bool isBranchesExecutedError() const;
    bool isBranchesTakenError() const;
    bool isBranchesNotTakenError() const;
    bool isBranchesBothError() const;
    /// Any of the five items in error.
    bool isError() const;

    /// Writes the judgement and the figures into an open mapping.
    void serialize(std::shared_ptr<IEmitter> emitter) const;
    /// Writes `key` and a mapping of the expected and measured fraction, and of the absolute
    /// count if that is not negative.
    static void serializeCoverageData(std::shared_ptr<IEmitter> emitter, const std::string& key, double expected,
                                      double measuredRel, long long measuredAbs);

private:
    static bool isBelowExpected(DWORD count, DWORD all, double expected);

    CCoverageTestExpected m_expected;
    CCoverageStatistic m_measured;
};

/// Coverage results by function name.
typedef std::map<std::string, CCoverageTestResult> StrCoverageTestResultsMap;

} // namespace kestrix
