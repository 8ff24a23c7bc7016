#pragma once

#include <string>

namespace kestrix {

class CTestCoverageStatistics;

/// Expected coverage of one function, as fractions from 0 to 1 of the percentages that the
/// coverage section of a test states.
class CCoverageTestExpected {
public:
    /// A percentage that is not stated gives 0.
    explicit CCoverageTestExpected(const CTestCoverageStatistics& statistics);
    CCoverageTestExpected();

    double getBytesExecutedRel() const { return m_bytesExecutedExpected; }
    double getBranchesExecutedRel() const { return m_branchesExecutedExpected; }
    double getBranchesTakenRel() const { return m_branchesTakenExpected; }
    double getBranchesNotTakenRel() const { return m_branchesNotTakenExpected; }
    double getBranchesBothRel() const { return m_branchesBothExpected; }

    /// One line with the name and value of each field.
    std::string toString() const;

private:
    double m_bytesExecutedExpected = 0;
    double m_branchesExecutedExpected = 0;
    double m_branchesTakenExpected = 0;
    double m_branchesNotTakenExpected = 0;
    double m_branchesBothExpected = 0;
};

} // namespace kestrix
