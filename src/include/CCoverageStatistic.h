#pragma once

#include <map>
#include <string>

#include "OrbelTypes.h"

namespace kestrix {

/// Coverage counts of one range: bytes and branches, in all and as executed.
class CCoverageStatistic {
public:
    CCoverageStatistic() = default;
    /// Note the order: bytes executed comes before branches all here, unlike the fields.
    CCoverageStatistic(DWORD bytesAll, DWORD bytesExecuted, DWORD branchesAll, DWORD branchesExecuted,
                       DWORD branchesTaken, DWORD branchesNotTaken, DWORD branchesBoth);

    DWORD getBytesAll() const { return m_bytesAll; }
    DWORD getBranchesAll() const { return m_branchesAll; }
    DWORD getBytesExecutedAbs() const { return m_bytesExecuted; }
    DWORD getBranchesExecutedAbs() const { return m_branchesExecuted; }
    DWORD getBranchesTakenAbs() const { return m_branchesTaken; }
    DWORD getBranchesNotTakenAbs() const { return m_branchesNotTaken; }
    DWORD getBranchesBothAbs() const { return m_branchesBoth; }

    /// Fractions from 0.0 to 1.0 of bytes all or branches all; -1.0 when that is 0.
    double getBytesExecutedRel() const { return ratio(m_bytesExecuted, m_bytesAll); }
    double getBranchesExecutedRel() const { return ratio(m_branchesExecuted, m_branchesAll); }
    double getBranchesTakenRel() const { return ratio(m_branchesTaken, m_branchesAll); }
    double getBranchesNotTakenRel() const { return ratio(m_branchesNotTaken, m_branchesAll); }
    double getBranchesBothRel() const { return ratio(m_branchesBoth, m_branchesAll); }

    std::string toString() const;

private:
    static double ratio(DWORD count, DWORD all);

    DWORD m_bytesAll = 0;
    DWORD m_branchesAll = 0;
    DWORD m_bytesExecuted = 0;
    DWORD m_branchesExecuted = 0;
    DWORD m_branchesTaken = 0;
    DWORD m_branchesNotTaken = 0;
    DWORD m_branchesBoth = 0;
};

/// Coverage measured per function or area name.
typedef std::map<std::string, CCoverageStatistic> CoverageStatisticMap;

} // namespace kestrix
