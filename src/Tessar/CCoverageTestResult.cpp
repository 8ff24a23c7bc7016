#include "CCoverageTestResult.h"

#include <cstdint>

#include "IEmitter.h"
#include "IllegalArgumentException.h"

namespace kestrix {

CCoverageTestResult::CCoverageTestResult(const CCoverageTestExpected& expected, const CCoverageStatistic& measured)
    : m_expected(expected), m_measured(measured)
{
}

bool CCoverageTestResult::isBelowExpected(DWORD count, DWORD all, double expected)
{
    if (all == 0) {
        return false;
    }
    return static_cast<double>(count) / static_cast<double>(all) < expected;
}

bool CCoverageTestResult::isBytesExecutedError() const
{
    return isBelowExpected(m_measured.getBytesExecutedAbs(), m_measured.getBytesAll(),
                           m_expected.getBytesExecutedRel());
}

bool CCoverageTestResult::isBranchesExecutedError() const
{
    return isBelowExpected(m_measured.getBranchesExecutedAbs(), m_measured.getBranchesAll(),
                           m_expected.getBranchesExecutedRel());
}

bool CCoverageTestResult::isBranchesTakenError() const
{
    return isBelowExpected(m_measured.getBranchesTakenAbs(), m_measured.getBranchesAll(),
                           m_expected.getBranchesTakenRel());
}

bool CCoverageTestResult::isBranchesNotTakenError() const
{
    return isBelowExpected(m_measured.getBranchesNotTakenAbs(), m_measured.getBranchesAll(),
                           m_expected.getBranchesNotTakenRel());
}

bool CCoverageTestResult::isBranchesBothError() const
{
    return isBelowExpected(m_measured.getBranchesBothAbs(), m_measured.getBranchesAll(),
                           m_expected.getBranchesBothRel());
}

bool CCoverageTestResult::isError() const
{
    return isBytesExecutedError() || isBranchesExecutedError() || isBranchesTakenError() ||
           isBranchesNotTakenError() || isBranchesBothError();
}

namespace {

// Counts travel as signed 32-bit numbers, so one of 2^31 or more reads as negative and its
// absolute figure is left out of the report.
long long asSignedCount(DWORD count)
{
    return static_cast<int32_t>(count);
}

} // namespace

void CCoverageTestResult::serialize(std::shared_ptr<IEmitter> emitter) const
{
    IEmitter::checkNotNull(emitter);
    emitter->writeMappingPair("isError", isError());
    emitter->writeMappingPair("isBytesExecutedError", isBytesExecutedError());
    emitter->writeMappingPair("isBranchesExecutedError", isBranchesExecutedError());
    emitter->writeMappingPair("isBranchesTakenError", isBranchesTakenError());
    emitter->writeMappingPair("isBranchesNotTakenError", isBranchesNotTakenError());
    emitter->writeMappingPair("isBranchesBothError", isBranchesBothError());
    emitter->writeMappingPair("bytesAll", static_cast<unsigned int>(m_measured.getBytesAll()));
    emitter->writeMappingPair("branchesAll", static_cast<unsigned int>(m_measured.getBranchesAll()));

    serializeCoverageData(emitter, "bytesExecuted", m_expected.getBytesExecutedRel(),
                          m_measured.getBytesExecutedRel(), asSignedCount(m_measured.getBytesExecutedAbs()));
    serializeCoverageData(emitter, "branchesExecuted", m_expected.getBranchesExecutedRel(),
                          m_measured.getBranchesExecutedRel(), asSignedCount(m_measured.getBranchesExecutedAbs()));
    serializeCoverageData(emitter, "branchesTaken", m_expected.getBranchesTakenRel(),
                          m_measured.getBranchesTakenRel(), asSignedCount(m_measured.getBranchesTakenAbs()));
    serializeCoverageData(emitter, "branchesNotTaken", m_expected.getBranchesNotTakenRel(),
                          m_measured.getBranchesNotTakenRel(), asSignedCount(m_measured.getBranchesNotTakenAbs()));
    serializeCoverageData(emitter, "branchesBoth", m_expected.getBranchesBothRel(),
                          m_measured.getBranchesBothRel(), asSignedCount(m_measured.getBranchesBothAbs()));
}

void CCoverageTestResult::serializeCoverageData(std::shared_ptr<IEmitter> emitter, const std::string& key,
                                                double expected, double measuredRel, long long measuredAbs)
{
    IEmitter::checkNotNull(emitter);
    emitter->write(key);
    emitter->mapStart();
    emitter->writeMappingPair("expected", expected);
    emitter->writeMappingPair("measuredRel", measuredRel);
    if (measuredAbs >= 0) {
        emitter->writeMappingPair("measuredAbs", measuredAbs);
    }
    emitter->mapEnd();
}

} // namespace kestrix
