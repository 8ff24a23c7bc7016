#pragma once

#include <ostream>
#include <string>

#include "AnalyzerFixture.h"
#include "services/CoverageCounts.h"

namespace quillon::services {

inline std::ostream& operator<<(std::ostream& out, const CoverageCounts& c)
{
    return out << "{bytes " << c.bytes << ", executed " << c.bytesExecuted << ", branches " << c.branches
               << ", executed " << c.branchesExecuted << ", taken " << c.taken << ", not taken " << c.notTaken
               << ", both " << c.both << "}";
}

/// The analyzer firmware stopped in main, with the coverage document `kDocument` open.
class CoverageFixture : public AnalyzerFixture {
protected:
    static inline const std::string kDocument = "cov.trd";

    void SetUp() override
    {
        AnalyzerFixture::SetUp();
        runToMain();
        documents->open(kDocument, false, Document::Kind::Coverage, true);
    }

    /// The seven statistics over the function's bytes, as a client asks for them by symbol.
    CoverageCounts of(const std::string& name)
    {
        const SymbolInfo info = function(name);
        CoverageCounts counts;
        std::uint32_t* fields[] = {&counts.bytes, &counts.bytesExecuted, &counts.branches, &counts.branchesExecuted,
                                   &counts.taken, &counts.notTaken,      &counts.both};
        for (std::uint32_t type = 1; type <= 7; ++type) {
            *fields[type - 1] = coverage->statistic(kDocument, type, info.address, info.address + info.size - 1);
        }
        return counts;
    }
};

} // namespace quillon::services
