#include "CProfilerTestResult.h"

#include "CProfilerArea.h"
#include "CUtil.h"
#include "IEmitter.h"
#include "IllegalArgumentException.h"

namespace kestrix {

namespace {

long long minTimeOf(const CProfilerStatistic& entry) { return entry.getMinTime(); }
long long maxTimeOf(const CProfilerStatistic& entry) { return entry.getMaxTime(); }
long long totalTimeOf(const CProfilerStatistic& entry) { return entry.getTotalTime(); }
long long hitsOf(const CProfilerStatistic& entry) { return entry.getNumHits(); }

bool isViolated(const MinMaxLimits& limits, long long value)
{
    return limits.m_isDefined && CProfilerTestResult::validateValue(limits, value) != CProfilerTestResult::ERR_NONE;
}

} // namespace

CProfilerTestResult::CProfilerTestResult() = default;

CProfilerTestResult::CProfilerTestResult(const CProfilerArea& area, bool isCodeArea)
    : m_minTime(area.getMinTime()), m_maxTime(area.getMaxTime()), m_totalTime(area.getTotalTime()),
      m_hits(area.getHits()), m_value(area.isAreaValueSet() ? area.getAreaValue() : 0),
      m_isValueSet(area.isAreaValueSet()), m_isCodeArea(isCodeArea)
{
}

CProfilerTestResult::CProfilerTestResult(const CProfilerArea& area, const CProfilerStatistic& measured,
                                         bool isCodeArea)
    : CProfilerTestResult(area, isCodeArea)
{
    m_measured.push_back(measured);
}

void CProfilerTestResult::addMeasuredResults(const CProfilerStatistic& measured)
{
    m_measured.push_back(measured);
}

void CProfilerTestResult::getMeasuredResults(ProfilerStatisticVector& measured) const
{
    measured = m_measured;
}

void CProfilerTestResult::getMeasuredResultsWithError(ProfilerStatisticVector& withError) const
{
    withError.clear();
    for (const auto& entry : m_measured) {
        if (isEntryError(entry)) {
            withError.push_back(entry);
        }
    }
}

bool CProfilerTestResult::isEntryError(const CProfilerStatistic& entry) const
{
    return isViolated(m_minTime, entry.getMinTime()) || isViolated(m_maxTime, entry.getMaxTime()) ||
           isViolated(m_totalTime, entry.getTotalTime()) || isViolated(m_hits, entry.getNumHits());
}

CProfilerTestResult::EResultStatus CProfilerTestResult::validateAll(
    const MinMaxLimits& limits, long long (*valueOf)(const CProfilerStatistic&)) const
{
    EResultStatus status = ERR_NONE;
    if (!limits.m_isDefined) {
        return status;
    }
    for (const auto& entry : m_measured) {
        status = validateValue(limits, valueOf(entry), status);
    }
    return status;
}

CProfilerTestResult::EResultStatus CProfilerTestResult::validateMinTime() const
{
    return validateAll(m_minTime, minTimeOf);
}

CProfilerTestResult::EResultStatus CProfilerTestResult::validateMaxTime() const
{
    return validateAll(m_maxTime, maxTimeOf);
}

CProfilerTestResult::EResultStatus CProfilerTestResult::validateTotalTime() const
{
    return validateAll(m_totalTime, totalTimeOf);
}

CProfilerTestResult::EResultStatus CProfilerTestResult::validateHits() const
{
    // An area that was never hit has no entry; it fails when hits are expected.
    if (m_hits.m_isDefined && m_measured.empty() && m_hits.m_min > 0) {
        return ERR_MIN;
    }
    return validateAll(m_hits, hitsOf);
}

CProfilerTestResult::EResultStatus CProfilerTestResult::validateValue(const MinMaxLimits& limits, long long value,
                                                                      EResultStatus status)
{
    if (value < limits.m_min) {
        return (status == ERR_MAX || status == ERR_BOTH) ? ERR_BOTH : ERR_MIN;
    }
    if (value > limits.m_max) {
        return (status == ERR_MIN || status == ERR_BOTH) ? ERR_BOTH : ERR_MAX;
    }
    return status;
}

CProfilerTestResult::EResultStatus CProfilerTestResult::validateValue(const MinMaxLimits& limits, long long value)
{
    return validateValue(limits, value, ERR_NONE);
}

bool CProfilerTestResult::isError() const
{
    return validateMinTime() != ERR_NONE || validateMaxTime() != ERR_NONE || validateTotalTime() != ERR_NONE ||
           validateHits() != ERR_NONE;
}

std::string CProfilerTestResult::statusToString(EResultStatus status)
{
    switch (status) {
    case ERR_NONE:
        return "ERR_NONE";
    case ERR_MIN:
        return "ERR_MIN";
    case ERR_MAX:
        return "ERR_MAX";
    case ERR_BOTH:
        return "ERR_BOTH";
    }
    // A number from a managed caller that names no status.
    return "ERR_" + CUtil::i2a(static_cast<int>(status));
}

void CProfilerTestResult::serialize(std::shared_ptr<IEmitter> emitter) const
{
    IEmitter::checkNotNull(emitter);
    emitter->writeMappingPair("isError", isError());
    emitter->writeMappingPair("minTimeStatus", statusToString(validateMinTime()));
    emitter->writeMappingPair("maxTimeStatus", statusToString(validateMaxTime()));
    emitter->writeMappingPair("totalTimeStatus", statusToString(validateTotalTime()));
    emitter->writeMappingPair("hitsStatus", statusToString(validateHits()));
    serializeProfilerValues(emitter, m_measured, true);
}

void CProfilerTestResult::serializeErrorsOnly(std::shared_ptr<IEmitter> emitter) const
{
    IEmitter::checkNotNull(emitter);
    ProfilerStatisticVector withError;
    getMeasuredResultsWithError(withError);
    serializeProfilerValues(emitter, withError, false);
}

void CProfilerTestResult::serializeProfilerValues(std::shared_ptr<IEmitter> emitter,
                                                  const ProfilerStatisticVector& results, bool isAll) const
{
    IEmitter::checkNotNull(emitter);
    if (m_isValueSet) {
        emitter->writeMappingPair("specifiedValue", m_value);
    }
    emitter->write("measuredProfilerResults");
    emitter->sequenceStart();

    EResultStatus hitsStatus = validateHits();
    if (results.empty() && hitsStatus != ERR_NONE) {
        // Never hit: only the hits can tell.
        emitter->mapStart();
        emitter->writeMappingPair("minTime", true);
        emitter->writeMappingPair("maxTime", true);
        emitter->writeMappingPair("totalTime", true);
        serializeParameter(emitter, "hits", ERR_MIN, m_hits, 0, isAll);
        emitter->mapEnd();
    }

    EResultStatus minTimeStatus = validateMinTime();
    EResultStatus maxTimeStatus = validateMaxTime();
    EResultStatus totalTimeStatus = validateTotalTime();
    for (const auto& entry : results) {
        emitter->mapStart();
        if (!m_isCodeArea) {
            emitter->writeMappingPair("measuredValue", static_cast<unsigned int>(entry.getValue()));
            emitter->writeMappingPair("isError", isEntryError(entry));
        }
        serializeParameter(emitter, "minTime", minTimeStatus, m_minTime, entry.getMinTime(), isAll);
        serializeParameter(emitter, "maxTime", maxTimeStatus, m_maxTime, entry.getMaxTime(), isAll);
        serializeParameter(emitter, "totalTime", totalTimeStatus, m_totalTime, entry.getTotalTime(), isAll);
        serializeParameter(emitter, "hits", hitsStatus, m_hits, entry.getNumHits(), isAll);
        emitter->mapEnd();
    }
    emitter->sequenceEnd();
}

void CProfilerTestResult::serializeParameter(std::shared_ptr<IEmitter> emitter, const std::string& key,
                                             EResultStatus status, const MinMaxLimits& limits, long long measured,
                                             bool isAll)
{
    IEmitter::checkNotNull(emitter);
    if (!isAll && status == ERR_NONE) {
        emitter->writeMappingPair(key, true);
        return;
    }
    emitter->write(key);
    emitter->mapStart();
    emitter->write("expected");
    emitter->sequenceStart(IEmitter::STYLE_FLOW);
    emitter->write(CUtil::i2a(limits.m_min));
    emitter->write(CUtil::i2a(limits.m_max));
    emitter->sequenceEnd();
    emitter->write("measured");
    emitter->sequenceStart(IEmitter::STYLE_FLOW);
    emitter->write(CUtil::i2a(measured));
    emitter->write(statusToString(status));
    emitter->sequenceEnd();
    emitter->mapEnd();
}

} // namespace kestrix
