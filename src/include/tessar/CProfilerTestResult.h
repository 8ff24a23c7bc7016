#pragma once

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "CProfilerStatistic.h"
#include "MinMaxLimits.h"

namespace kestrix {

class CProfilerArea;
class IEmitter;

/// Profiler measurements of one code area, or of one value of a data area, judged against
/// the limits that the area states.
class CProfilerTestResult {
public:
    /// A value against its limits. ERR_BOTH: of several values one was below, one above.
    enum EResultStatus { ERR_NONE = 0, ERR_MIN = 1, ERR_MAX = 2, ERR_BOTH = 3 };

    CProfilerTestResult();
    /// Expected limits of `area`, with no measured entries.
    CProfilerTestResult(const CProfilerArea& area, bool isCodeArea);
    /// Expected limits of `area`, with `measured` as the first entry.
    CProfilerTestResult(const CProfilerArea& area, const CProfilerStatistic& measured, bool isCodeArea);

    MinMaxLimits getMinTimeExpected() const { return m_minTime; }
    MinMaxLimits getMaxTimeExpected() const { return m_maxTime; }
    MinMaxLimits getTotalTimeExpected() const { return m_totalTime; }
    MinMaxLimits getHitsExpected() const { return m_hits; }
    /// The data value this result is for; 0 if the area names none.
    long long getValue() const { return m_value; }
    bool isValueSet() const { return m_isValueSet; }

    void addMeasuredResults(const CProfilerStatistic& measured);
    /// Replaces `measured` with the measured entries.
    void getMeasuredResults(ProfilerStatisticVector& measured) const;
    /// Replaces `withError` with the entries that violate a defined range.
    void getMeasuredResultsWithError(ProfilerStatisticVector& withError) const;

    // Status of all entries against one range; ERR_NONE when the range is not defined.
    EResultStatus validateMinTime() const;
    EResultStatus validateMaxTime() const;
    EResultStatus validateTotalTime() const;
    /// Also ERR_MIN when nothing was measured but at least one hit is expected.
    EResultStatus validateHits() const;

    /// `value` against `limits`, joined with the status of earlier values.
    static EResultStatus validateValue(const MinMaxLimits& limits, long long value, EResultStatus status);
    /// `value` against `limits`; the bounds belong to the range.
    static EResultStatus validateValue(const MinMaxLimits& limits, long long value);

    /// Any of the four validations not ERR_NONE.
    bool isError() const;

    /// Writes the statuses and all measured entries into an open mapping.
    void serialize(std::shared_ptr<IEmitter> emitter) const;
    /// Writes the entries in error only.
    void serializeErrorsOnly(std::shared_ptr<IEmitter> emitter) const;
    /// Writes the specified value, if any, and the list of `results`. With `isAll` false a
    /// parameter within its range is written as a bare `true`.
    void serializeProfilerValues(std::shared_ptr<IEmitter> emitter, const ProfilerStatisticVector& results,
                                 bool isAll) const;
    /// Writes `key` with the expected range and the measured value with its status.
    static void serializeParameter(std::shared_ptr<IEmitter> emitter, const std::string& key, EResultStatus status,
                                   const MinMaxLimits& limits, long long measured, bool isAll);

    /// The word of a status, such as "ERR_MIN".
    static std::string statusToString(EResultStatus status);

private:
    EResultStatus validateAll(const MinMaxLimits& limits, long long (*valueOf)(const CProfilerStatistic&)) const;
    /// Whether `entry` violates one of the defined ranges.
    bool isEntryError(const CProfilerStatistic& entry) const;

    MinMaxLimits m_minTime;
    MinMaxLimits m_maxTime;
    MinMaxLimits m_totalTime;
    MinMaxLimits m_hits;
    long long m_value = 0;
    bool m_isValueSet = false;
    bool m_isCodeArea = false;
    ProfilerStatisticVector m_measured;
};

typedef std::vector<CProfilerTestResult> ProfilerTestResultsVector;
/// Code profiler results by area name.
typedef std::map<std::string, CProfilerTestResult> StrProfilerTestResultsMap;
/// Data profiler results by variable name, one per expected value.
typedef std::map<std::string, ProfilerTestResultsVector> StrProfilerTestResultsVectorMap;

} // namespace kestrix
