#include "debuginfo/LineTable.h"

#include "debuginfo/SourcePath.h"

#include <algorithm>

namespace quillon::debuginfo {

std::uint32_t LineTable::addFile(const std::string& path)
{
    auto found = m_fileIndex.find(path);
    if (found != m_fileIndex.end()) {
        return found->second;
    }
    const auto index = static_cast<std::uint32_t>(m_files.size());
    m_files.push_back(path);
    m_fileIndex.emplace(path, index);
    return index;
}

void LineTable::addSequence(Sequence sequence)
{
    if (!sequence.rows.empty() && sequence.rows.front().address < sequence.end) {
        m_sequences.push_back(std::move(sequence));
    }
}

void LineTable::finish()
{
    std::sort(m_sequences.begin(), m_sequences.end(), [](const Sequence& a, const Sequence& b) {
        return a.rows.front().address < b.rows.front().address;
    });
}

std::optional<LineTable::Position> LineTable::locate(std::uint32_t address) const
{
    // Sequences do not overlap: the last one that starts at or below the address is the only candidate.
    auto next = std::upper_bound(m_sequences.begin(), m_sequences.end(), address,
                                 [](std::uint32_t a, const Sequence& s) { return a < s.rows.front().address; });
    if (next == m_sequences.begin()) {
        return std::nullopt;
    }
    const Sequence& sequence = *(next - 1);
    if (address >= sequence.end) {
        return std::nullopt;
    }
    auto row = std::upper_bound(sequence.rows.begin(), sequence.rows.end(), address,
                                [](std::uint32_t a, const Row& r) { return a < r.address; });
    return Position{&sequence, static_cast<size_t>(row - sequence.rows.begin()) - 1};
}

std::optional<LineTable::SourceLine> LineTable::find(std::uint32_t address) const
{
    auto position = locate(address);
    if (!position) {
        return std::nullopt;
    }
    const Row& row = position->sequence->rows[position->row];
    return SourceLine{m_files[row.file], row.line, row.address};
}

bool LineTable::matchesFile(const std::string& query, std::uint32_t file) const
{
    return SourcePath::names(query, m_files[file]);
}

std::vector<std::uint32_t> LineTable::addresses(const std::string& file, unsigned line) const
{
    std::vector<bool> fileMatches(m_files.size());
    for (std::uint32_t i = 0; i < m_files.size(); ++i) {
        fileMatches[i] = matchesFile(file, i);
    }
    std::vector<std::uint32_t> result;
    for (const Sequence& sequence : m_sequences) {
        const std::vector<Row>& rows = sequence.rows;
        bool stretchTaken = false;
        for (size_t i = 0; i < rows.size(); ++i) {
            if (i > 0 && !sameLine(rows[i], rows[i - 1])) {
                stretchTaken = false;
            }
            if (stretchTaken || !rows[i].isStatement || rows[i].line != line || !fileMatches[rows[i].file]) {
                continue;
            }
            // Where another line's rows begin, this line's code ends; if that is right here, the
            // row holds no code of its line.
            size_t other = i + 1;
            while (other < rows.size() && sameLine(rows[other], rows[i])) {
                ++other;
            }
            const std::uint32_t end = other < rows.size() ? rows[other].address : sequence.end;
            if (end == rows[i].address) {
                continue;
            }
            result.push_back(rows[i].address);
            stretchTaken = true;
        }
    }
    std::sort(result.begin(), result.end());
    result.erase(std::unique(result.begin(), result.end()), result.end());
    return result;
}

std::optional<AddressRange> LineTable::lineRange(std::uint32_t address) const
{
    auto position = locate(address);
    if (!position) {
        return std::nullopt;
    }
    const std::vector<Row>& rows = position->sequence->rows;
    const Row& here = rows[position->row];
    size_t first = position->row;
    while (first > 0 && sameLine(rows[first - 1], here)) {
        --first;
    }
    std::uint32_t end = position->sequence->end;
    for (size_t i = position->row + 1; i < rows.size(); ++i) {
        if (rows[i].isStatement && !sameLine(rows[i], here) && rows[i].address > address) {
            end = rows[i].address;
            break;
        }
    }
    return AddressRange{rows[first].address, end};
}

bool LineTable::isStatementStart(std::uint32_t address) const
{
    auto position = locate(address);
    if (!position) {
        return false;
    }
    const std::vector<Row>& rows = position->sequence->rows;
    for (size_t i = position->row + 1; i-- > 0 && rows[i].address == address;) {
        if (rows[i].isStatement) {
            return true;
        }
    }
    return false;
}

std::uint32_t LineTable::afterPrologue(std::uint32_t entry, const AddressRange& function) const
{
    auto position = locate(entry);
    if (!position) {
        return entry;
    }
    // GCC gives the prologue a row of its own and starts another one after it, even on the same line.
    const std::vector<Row>& rows = position->sequence->rows;
    for (size_t i = position->row + 1; i < rows.size() && function.contains(rows[i].address); ++i) {
        if (rows[i].isStatement && rows[i].address > entry) {
            return rows[i].address;
        }
    }
    return entry;
}

} // namespace quillon::debuginfo
