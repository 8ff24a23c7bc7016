#include "services/CoverageListing.h"

#include <algorithm>
#include <fstream>

namespace quillon::services {

CoverageListing::CoverageListing(const CoverageMarks& marks, const SymbolIndex& symbols, Locator locator)
    : m_marks(marks), m_symbols(symbols), m_locator(std::move(locator))
{
}

CoverageListing::Status CoverageListing::Line::status() const
{
    if (counts.bytes == 0) {
        return Status::NoCode;
    }
    if (counts.bytesExecuted == 0) {
        return Status::NotExecuted;
    }
    return counts.bytesExecuted == counts.bytes ? Status::Executed : Status::Partly;
}

const char* CoverageListing::statusName(Status status)
{
    switch (status) {
    case Status::Executed: return "executed";
    case Status::Partly: return "partly";
    case Status::NotExecuted: return "not executed";
    case Status::NoCode: break;
    }
    return "";
}

std::string CoverageListing::outcome(std::uint8_t mark)
{
    if (!(mark & CoverageMarks::Executed)) {
        return "not executed";
    }
    const bool taken = mark & CoverageMarks::Taken;
    const bool notTaken = mark & CoverageMarks::NotTaken;
    if (taken && notTaken) {
        return "both";
    }
    if (taken) {
        return "taken";
    }
    // An executed branch whose outcome was not recorded (code coverage only) counts as neither way.
    return notTaken ? "not taken" : "executed";
}

CoverageCounts CoverageListing::total() const
{
    CoverageCounts sum;
    for (const Function& function : m_functions) {
        sum += function.counts;
    }
    return sum;
}

void CoverageListing::countByte(Line& line, std::uint32_t address, std::uint8_t mark)
{
    line.code.add(address, std::uint64_t(address) + 1);
    ++line.counts.bytes;
    line.counts.bytesExecuted += (mark & CoverageMarks::Executed) ? 1 : 0;
    if (!(mark & CoverageMarks::BranchStart)) {
        return;
    }
    ++line.counts.branches;
    const std::string way = outcome(mark);
    line.branches.push_back(Branch{address, way});
    if (mark & CoverageMarks::Executed) {
        ++line.counts.branchesExecuted;
        line.counts.taken += way == "taken" ? 1 : 0;
        line.counts.notTaken += way == "not taken" ? 1 : 0;
        line.counts.both += way == "both" ? 1 : 0;
    }
}

void CoverageListing::add(const CoverageScope::Function& function)
{
    Function result;
    result.name = function.name;
    result.first = static_cast<std::uint32_t>(function.code.spans().front().begin);
    result.last = static_cast<std::uint32_t>(function.code.spans().back().end - 1);

    // Bytes by (file, line): each instruction's bytes go to the line of its first byte.
    std::map<LineKey, Line> lines;
    std::vector<std::string> fileOrder;
    Line* current = nullptr;
    for (const SpanSet::Span& span : function.code.spans()) {
        current = nullptr;
        for (std::uint64_t at = span.begin; at < span.end; ++at) {
            const auto address = static_cast<std::uint32_t>(at);
            const std::uint8_t mark = m_marks.get(address);
            if (!(mark & (CoverageMarks::Code | CoverageMarks::Executed))) {
                current = nullptr;
                continue;
            }
            if (current == nullptr || (mark & CoverageMarks::Decoded)) {
                const auto source = m_symbols.lineAt(address);
                const LineKey key = source ? LineKey{source->file, source->line} : LineKey{"", 0};
                if (std::find(fileOrder.begin(), fileOrder.end(), key.first) == fileOrder.end()) {
                    fileOrder.push_back(key.first);
                }
                current = &lines[key];
                current->number = key.second;
            }
            countByte(*current, address, mark);
        }
    }
    for (const auto& entry : lines) {
        result.counts += entry.second.counts;
    }

    // The function's own file (that of its first line) first, other files by name, code without lines last.
    const auto own = std::find_if(fileOrder.begin(), fileOrder.end(), [](const std::string& f) { return !f.empty(); });
    const std::string ownFile = own == fileOrder.end() ? std::string() : *own;
    std::sort(fileOrder.begin(), fileOrder.end(), [&](const std::string& a, const std::string& b) {
        auto rank = [&](const std::string& f) { return f.empty() ? 2 : f == ownFile ? 0 : 1; };
        return rank(a) != rank(b) ? rank(a) < rank(b) : a < b;
    });
    for (const std::string& path : fileOrder) {
        std::map<unsigned, Line> ofFile;
        for (auto it = lines.lower_bound(LineKey{path, 0}); it != lines.end() && it->first.first == path; ++it) {
            ofFile.emplace(it->first.second, std::move(it->second));
        }
        result.files.push_back(makeFile(path, std::move(ofFile), !path.empty() && path == ownFile));
    }
    m_functions.push_back(std::move(result));
}

CoverageListing::SourceFile CoverageListing::makeFile(const std::string& path, std::map<unsigned, Line> lines,
                                                      bool isFunctionFile)
{
    SourceFile file;
    file.path = path;
    const std::vector<std::string>* text = path.empty() ? nullptr : sourceText(path, file.found);
    if (text != nullptr && isFunctionFile && !lines.empty()) {
        for (unsigned number = lines.begin()->first; number <= lines.rbegin()->first; ++number) {
            lines[number].number = number; // lines without code join in
        }
    }
    for (auto& [number, line] : lines) {
        if (text != nullptr && number >= 1 && number <= text->size()) {
            line.text = (*text)[number - 1];
        }
        file.lines.push_back(std::move(line));
    }
    return file;
}

const std::vector<std::string>* CoverageListing::sourceText(const std::string& path, std::string& found)
{
    auto it = m_sources.find(path);
    if (it == m_sources.end()) {
        Source source;
        source.found = m_locator ? m_locator(path) : path;
        std::ifstream in(source.found, std::ios::binary);
        source.readable = static_cast<bool>(in);
        for (std::string line; source.readable && std::getline(in, line);) {
            if (!line.empty() && line.back() == '\r') {
                line.pop_back();
            }
            source.lines.push_back(std::move(line));
        }
        it = m_sources.emplace(path, std::move(source)).first;
    }
    if (!it->second.readable) {
        return nullptr;
    }
    found = it->second.found;
    return &it->second.lines;
}

} // namespace quillon::services
