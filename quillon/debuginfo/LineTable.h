#pragma once

#include "debuginfo/AddressRange.h"

#include <cstdint>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

namespace quillon::debuginfo {

/// The line table of all compile units, both ways: address to source line, source line to
/// addresses; and the statement boundaries that source-line stepping needs.
class LineTable {
public:
    struct Row {
        std::uint32_t address = 0;
        std::uint32_t file = 0; ///< index into files()
        unsigned line = 0;
        bool isStatement = false;
    };

    /// Rows of ascending addresses; the sequence's code ends at `end`.
    struct Sequence {
        std::vector<Row> rows;
        std::uint32_t end = 0;
    };

    struct SourceLine {
        std::string file;          ///< full path
        unsigned line = 0;
        std::uint32_t address = 0; ///< where the row that holds the address begins
    };

    /// Full paths of the source files that rows name.
    const std::vector<std::string>& files() const { return m_files; }

    /// The source line of the code at the address; nothing outside all sequences.
    std::optional<SourceLine> find(std::uint32_t address) const;
    /// Addresses where code of the line begins: for each stretch of rows of that line, its first
    /// statement row; ascending, without duplicates. The file is matched by full path, or by its
    /// trailing path components ("counter.c", "src/counter.c").
    std::vector<std::uint32_t> addresses(const std::string& file, unsigned line) const;
    /// Step range of the line that holds the address: from the start of its rows to the next
    /// statement row of another line (or the end of the sequence). Nothing outside all sequences.
    std::optional<AddressRange> lineRange(std::uint32_t address) const;
    /// Whether a statement row begins exactly at the address (a place where a line step stops).
    bool isStatementStart(std::uint32_t address) const;
    /// The first statement row inside `function` after the one at its entry: where the prologue
    /// ends and a breakpoint on the function stops. The entry itself if there is none.
    std::uint32_t afterPrologue(std::uint32_t entry, const AddressRange& function) const;
    /// Whether `query` names the file of index `file` (full path or trailing components).
    bool matchesFile(const std::string& query, std::uint32_t file) const;

    // Building, by the reader.
    std::uint32_t addFile(const std::string& path);
    void addSequence(Sequence sequence);
    /// Orders the sequences by address; call once after the last addSequence.
    void finish();

private:
    struct Position {
        const Sequence* sequence;
        size_t row;
    };

    std::optional<Position> locate(std::uint32_t address) const;
    static bool sameLine(const Row& a, const Row& b) { return a.file == b.file && a.line == b.line; }

    std::vector<std::string> m_files;
    std::unordered_map<std::string, std::uint32_t> m_fileIndex;
    std::vector<Sequence> m_sequences; ///< ordered by first address
};

} // namespace quillon::debuginfo
