#include "CCoverageTestExpected.h"

#include <sstream>

#include "CTestCoverageStatistics.h"

namespace kestrix {

// The section gives percentages as 32-bit floats, 0 when not stated.
CCoverageTestExpected::CCoverageTestExpected(const CTestCoverageStatistics& statistics)
    : m_bytesExecutedExpected(statistics.getBytesExecuted() / 100.0),
      m_branchesExecutedExpected(statistics.getBranchExecuted() / 100.0),
      m_branchesTakenExpected(statistics.getBranchTaken() / 100.0),
      m_branchesNotTakenExpected(statistics.getBranchNotTaken() / 100.0),
      m_branchesBothExpected(statistics.getBranchBoth() / 100.0)
{
}

CCoverageTestExpected::CCoverageTestExpected() = default;

std::string CCoverageTestExpected::toString() const
{
    std::ostringstream text;
    text << "CCoverageTestExpected:"
         << "  m_bytesExecutedExpected" << m_bytesExecutedExpected
         << "  m_branchesExecutedExpected" << m_branchesExecutedExpected
         << "  m_branchesTakenExpected" << m_branchesTakenExpected
         << "  m_branchesNotTakenExpected" << m_branchesNotTakenExpected
         << "  m_branchesBothExpected" << m_branchesBothExpected;
    return text.str();
}

} // namespace kestrix
