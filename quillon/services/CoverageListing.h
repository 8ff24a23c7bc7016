#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include "services/CoverageCounts.h"
#include "services/CoverageMarks.h"
#include "services/CoverageScope.h"
#include "services/SpanSet.h"
#include "services/SymbolIndex.h"

namespace quillon::services {

/// Coverage of measured functions by source line, for the review exports. Each byte that coverage counts (as in
/// the statistics) belongs to the line of its instruction in the line table; a line's counts are those of its
/// bytes. A function's lines are grouped by source file: the file of its first line first, then other files
/// (inlined code) by name, then the bytes without line information (file "", line 0).
///
/// The file of the function's first line lists every source line from its first to its last line of code, the
/// lines without code included; other files list their lines of code only. Source text is read from the file as
/// the locator finds it; a file that cannot be read lists its lines of code only, without text.
class CoverageListing {
public:
    /// Where a source file of the line table is found: its path, or another one (source paths).
    using Locator = std::function<std::string(const std::string& path)>;

    enum class Status { NoCode, NotExecuted, Partly, Executed };

    struct Branch {
        std::uint32_t address = 0;
        /// "taken", "not taken", "both" or "not executed".
        std::string outcome;
    };

    struct Line {
        unsigned number = 0;
        std::string text;
        SpanSet code;
        CoverageCounts counts;
        std::vector<Branch> branches;

        Status status() const;
    };

    struct SourceFile {
        std::string path;   ///< as the line table names it; "" for code without line information
        std::string found;  ///< where it was read from; "" when it could not be read
        std::vector<Line> lines;
    };

    struct Function {
        std::string name;
        std::uint32_t first = 0;
        std::uint32_t last = 0;
        CoverageCounts counts;
        std::vector<SourceFile> files;
    };

    CoverageListing(const CoverageMarks& marks, const SymbolIndex& symbols, Locator locator);

    /// Adds a function with its measured code.
    void add(const CoverageScope::Function& function);

    const std::vector<Function>& functions() const { return m_functions; }
    CoverageCounts total() const;

    /// "executed", "partly", "not executed" or "" (no code).
    static const char* statusName(Status status);
    /// The outcome of a branch from the marks of its first byte.
    static std::string outcome(std::uint8_t mark);

private:
    using LineKey = std::pair<std::string, unsigned>;

    /// Counts one byte into its line.
    static void countByte(Line& line, std::uint32_t address, std::uint8_t mark);
    SourceFile makeFile(const std::string& path, std::map<unsigned, Line> lines, bool isFunctionFile);
    /// The lines of a source file, read once; nothing if it cannot be read.
    const std::vector<std::string>* sourceText(const std::string& path, std::string& found);

    const CoverageMarks& m_marks;
    const SymbolIndex& m_symbols;
    Locator m_locator;
    std::vector<Function> m_functions;
    struct Source {
        std::string found;
        bool readable = false;
        std::vector<std::string> lines;
    };
    std::map<std::string, Source> m_sources;
};

} // namespace quillon::services
