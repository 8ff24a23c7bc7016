#include "CCoverageStatistic.h"

#include <sstream>

namespace kestrix {

CCoverageStatistic::CCoverageStatistic(DWORD bytesAll, DWORD bytesExecuted, DWORD branchesAll,
                                       DWORD branchesExecuted, DWORD branchesTaken, DWORD branchesNotTaken,
                                       DWORD branchesBoth)
    : m_bytesAll(bytesAll),
      m_branchesAll(branchesAll),
      m_bytesExecuted(bytesExecuted),
      m_branchesExecuted(branchesExecuted),
      m_branchesTaken(branchesTaken),
      m_branchesNotTaken(branchesNotTaken),
      m_branchesBoth(branchesBoth)
{
}

double CCoverageStatistic::ratio(DWORD count, DWORD all)
{
    return all == 0 ? -1.0 : static_cast<double>(count) / all;
}

std::string CCoverageStatistic::toString() const
{
    std::ostringstream text;
    text << "CCoverageStatistic:" << "\n  bytesAll: " << m_bytesAll << "\n  branchesAll: " << m_branchesAll
         << "\n  bytesExecuted: " << m_bytesExecuted << "\n  branchesExecuted: " << m_branchesExecuted
         << "\n  branchesTaken: " << m_branchesTaken << "\n  branchesNotTaken: " << m_branchesNotTaken
         << "\n  branchesBoth: " << m_branchesBoth;
    return text.str();
}

} // namespace kestrix
