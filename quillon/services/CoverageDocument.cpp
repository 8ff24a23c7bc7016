#include "services/CoverageDocument.h"

#include <fstream>
#include <ostream>

#include "services/AnalyzerError.h"
#include "services/CoverageReport.h"
#include "services/CoverageReview.h"
#include "services/DocumentFileReader.h"

namespace quillon::services {

namespace {

std::string hex(std::uint64_t value)
{
    char text[24];
    std::snprintf(text, sizeof text, "0x%08llx", static_cast<unsigned long long>(value));
    return text;
}

/// What identifies the downloaded programs: paths, sizes and times of their files.
std::string programsKey(const std::vector<Program>& programs)
{
    std::string key;
    for (const Program& program : programs) {
        std::error_code error;
        const auto size = std::filesystem::file_size(program.path(), error);
        const auto time = std::filesystem::last_write_time(program.path(), error);
        key += program.path() + "|" + std::to_string(size) + "|"
               + std::to_string(time.time_since_epoch().count()) + "\n";
    }
    return key;
}

} // namespace

const std::vector<std::string>& CoverageDocument::formats()
{
    static const std::vector<std::string> names = {"HTML", "Text", "CSV", "XML", "Review (HTML)", "Review (Text)",
                                                   "XML2"};
    return names;
}

CoverageDocument::CoverageDocument(std::string name, target::Target& target, const SymbolIndex& symbols,
                                   std::filesystem::path folder, CoverageListing::Locator locateSource)
    : Document(std::move(name), Kind::Coverage, target), m_symbols(symbols), m_folder(std::move(folder)),
      m_locateSource(std::move(locateSource)), m_marks(executableMemory(target)), m_recorder(m_marks, target)
{
}

SpanSet CoverageDocument::executableMemory(const target::Target& target)
{
    SpanSet areas;
    for (const target::MemoryArea& area : target.memory().areas()) {
        if (area.access() & target::MemoryArea::Execute) {
            areas.add(area.start(), area.end());
        }
    }
    return areas;
}

CoverageConfiguration& CoverageDocument::changeConfiguration()
{
    markModified();
    return m_configuration;
}

void CoverageDocument::clearConfiguration()
{
    m_configuration.clear();
    m_exportFormat = "CSV";
}

void CoverageDocument::prepare(bool fresh)
{
    refreshCode();
    if (fresh) {
        m_marks.clear(CoverageMarks::Recorded);
    }
    m_recorder.setBranches(m_configuration.measuresBranches());
}

void CoverageDocument::refreshCode()
{
    std::string key = programsKey(m_symbols.programs());
    if (key == m_codeKey) {
        return;
    }
    m_code = CodeMap::of(m_symbols.programs(), m_decoder);
    m_codeKey = std::move(key);
    m_marks.clear(CoverageMarks::Static);
    for (const ThumbInstruction& instruction : m_code.instructions()) {
        m_marks.set(instruction.address, std::uint64_t(instruction.address) + instruction.size, CoverageMarks::Code);
        if (std::uint8_t* first = m_marks.at(instruction.address)) {
            *first |= CoverageMarks::Decoded | (instruction.isConditionalBranch ? CoverageMarks::BranchStart : 0);
        }
    }
}

CoverageScope CoverageDocument::scope() const
{
    return CoverageScope(m_symbols, m_marks.areas(), m_code.sections(), m_folder);
}

SpanSet CoverageDocument::activeRanges()
{
    refreshCode();
    return scope().active(m_configuration);
}

SpanSet CoverageDocument::resolve(CoverageConfiguration::ItemKind kind, const std::string& name)
{
    refreshCode();
    return scope().resolve(kind, name);
}

CoverageCounts CoverageDocument::counts(std::uint32_t first, std::uint32_t last)
{
    checkReadable("count the coverage of");
    SpanSet spans = activeRanges();
    spans.intersect(m_marks.areas().intersection(first, std::uint64_t(last) + 1));
    return count(spans);
}

CoverageCounts CoverageDocument::count(const SpanSet& spans)
{
    CoverageCounts counts;
    for (const SpanSet::Span& span : spans.spans()) {
        for (std::uint64_t address = span.begin; address < span.end; ++address) {
            const std::uint8_t mark = *m_marks.at(static_cast<std::uint32_t>(address));
            counts.bytes += (mark & (CoverageMarks::Code | CoverageMarks::Executed)) ? 1 : 0;
            counts.bytesExecuted += (mark & CoverageMarks::Executed) ? 1 : 0;
            if (!(mark & CoverageMarks::BranchStart)) {
                continue;
            }
            ++counts.branches;
            if (mark & CoverageMarks::Executed) {
                ++counts.branchesExecuted;
                const bool taken = mark & CoverageMarks::Taken;
                const bool notTaken = mark & CoverageMarks::NotTaken;
                counts.both += taken && notTaken ? 1 : 0;
                counts.taken += taken && !notTaken ? 1 : 0;
                counts.notTaken += notTaken && !taken ? 1 : 0;
            }
        }
    }
    return counts;
}

std::vector<std::uint8_t> CoverageDocument::bitmap(std::uint32_t first, std::uint32_t last)
{
    checkReadable("read the bitmap of");
    std::vector<std::uint8_t> bytes(std::uint64_t(last) - first + 1, 0);
    SpanSet spans = activeRanges();
    spans.intersect(m_marks.areas().intersection(first, std::uint64_t(last) + 1));
    const auto shown = static_cast<std::uint8_t>(CoverageMarks::Recorded | CoverageMarks::Code
                                                 | CoverageMarks::BranchStart);
    for (const SpanSet::Span& span : spans.spans()) {
        for (std::uint64_t address = span.begin; address < span.end; ++address) {
            bytes[address - first] = *m_marks.at(static_cast<std::uint32_t>(address)) & shown;
        }
    }
    return bytes;
}

void CoverageDocument::setExportFormat(const std::string& format)
{
    for (const std::string& known : formats()) {
        if (known == format) {
            m_exportFormat = format;
            return;
        }
    }
    throw AnalyzerError(AnalyzerError::Kind::InvalidArgument,
                        "unknown export format '" + format + "' for " + title()
                            + " (HTML, Text, CSV, XML, Review (HTML), Review (Text), XML2)");
}

void CoverageDocument::exportTo(const std::filesystem::path& file, std::uint32_t option)
{
    std::string format = m_exportFormat;
    if (option != 0xFFFFFFFFu) {
        if (option >= formats().size()) {
            throw AnalyzerError(AnalyzerError::Kind::InvalidArgument,
                                "unknown export format number " + std::to_string(option) + " for " + title()
                                    + " (0 HTML, 1 Text, 2 CSV, 3 XML, 4 Review (HTML), 5 Review (Text), 6 XML2)");
        }
        format = formats()[option];
    }
    checkReadable("export");
    std::ofstream out(file, std::ios::binary | std::ios::trunc);
    writeExport(out, format);
    out.close();
    if (!out) {
        throw AnalyzerError(AnalyzerError::Kind::Failed,
                            "cannot write the export of " + title() + " to '" + file.string() + "'");
    }
}

void CoverageDocument::writeExport(std::ostream& out, const std::string& format)
{
    const std::vector<CoverageScope::Function> functions = scope().functionsIn(activeRanges());
    const std::string document = name().empty() ? title() : name();
    if (format == "Review (HTML)" || format == "Review (Text)" || format == "XML2") {
        CoverageListing listing(m_marks, m_symbols, m_locateSource);
        for (const CoverageScope::Function& function : functions) {
            listing.add(function);
        }
        const CoverageReview review(document, listing);
        format == "XML2" ? review.writeXml2(out) : format == "Review (HTML)" ? review.writeHtml(out)
                                                                              : review.writeText(out);
        return;
    }
    std::vector<CoverageReport::Row> rows;
    for (const CoverageScope::Function& function : functions) {
        CoverageReport::Row row;
        row.function = function.name;
        row.first = static_cast<std::uint32_t>(function.code.spans().front().begin);
        row.last = static_cast<std::uint32_t>(function.code.spans().back().end - 1);
        row.counts = count(function.code);
        rows.push_back(std::move(row));
    }
    const CoverageReport report(document, std::move(rows));
    if (format == "HTML") {
        report.writeHtml(out);
    } else if (format == "Text") {
        report.writeText(out);
    } else if (format == "CSV") {
        report.writeCsv(out);
    } else {
        report.writeXml(out);
    }
}

void CoverageDocument::write(std::ostream& out) const
{
    out << "exportFormat " << m_exportFormat << '\n';
    out << "scope " << m_configuration.scopeStep() << ' ' << m_configuration.rangesetScopeStep() << '\n';
    out << "options " << m_configuration.option1() << ' ' << m_configuration.option2() << '\n';
    std::string active = "-";
    const auto& rangesets = m_configuration.rangesets();
    for (std::size_t i = 0; i < rangesets.size(); ++i) {
        out << "rangeset " << rangesets[i].name << '\n';
        for (const auto& item : rangesets[i].includes) {
            out << "include " << CoverageConfiguration::itemKindName(item.kind) << ' ' << item.name << '\n';
        }
        for (const auto& item : rangesets[i].excludes) {
            out << "exclude " << CoverageConfiguration::itemKindName(item.kind) << ' ' << item.name << '\n';
        }
        if (&rangesets[i] == m_configuration.active()) {
            active = std::to_string(i);
        }
    }
    out << "active " << active << '\n';
    const SpanSet& areas = m_marks.areas();
    const SpanSet executed = m_marks.spansWith(CoverageMarks::Executed, 0, areas.empty() ? 0 : areas.spans().back().end);
    for (const SpanSet::Span& span : executed.spans()) {
        out << "executed " << hex(span.begin) << ' ' << hex(span.end - 1) << '\n';
    }
    for (const SpanSet::Span& area : areas.spans()) {
        for (std::uint64_t address = area.begin; address < area.end; ++address) {
            const std::uint8_t mark = m_marks.get(static_cast<std::uint32_t>(address));
            if (mark & CoverageMarks::Taken) {
                out << "taken " << hex(address) << '\n';
            }
            if (mark & CoverageMarks::NotTaken) {
                out << "nottaken " << hex(address) << '\n';
            }
        }
    }
}

void CoverageDocument::read(DocumentFileReader& in)
{
    refreshCode();
    CoverageConfiguration configuration;
    std::optional<std::uint32_t> active;
    while (in.next()) {
        const std::string& keyword = in.keyword();
        try {
            if (keyword == "exportFormat") {
                setExportFormat(in.rest());
            } else if (keyword == "scope") {
                const auto steps = in.fields(2);
                configuration.setScope(static_cast<std::uint32_t>(in.number(steps[0])));
                if (const auto step2 = static_cast<std::uint32_t>(in.number(steps[1]))) {
                    configuration.setRangesetScope(step2);
                }
            } else if (keyword == "options") {
                const auto options = in.fields(2);
                configuration.setOption1(static_cast<std::uint32_t>(in.number(options[0])));
                configuration.setOption2(static_cast<std::uint32_t>(in.number(options[1])));
            } else if (keyword == "rangeset") {
                configuration.createRangeset(in.rest());
            } else if (keyword == "include" || keyword == "exclude") {
                const std::size_t blank = in.rest().find(' ');
                const auto kind = CoverageConfiguration::itemKindNamed(in.rest().substr(0, blank));
                if (!kind || blank == std::string::npos) {
                    in.fail("'" + keyword + "' takes a kind (folder, module, function, item) and a name");
                }
                const std::string itemName = in.rest().substr(blank + 1);
                keyword == "include" ? configuration.addInclude(*kind, itemName)
                                     : configuration.addExclude(*kind, itemName);
            } else if (keyword == "active") {
                if (in.rest() != "-") {
                    active = static_cast<std::uint32_t>(in.number(in.rest()));
                }
            } else if (keyword == "executed") {
                const auto bounds = in.fields(2);
                m_marks.set(in.number(bounds[0]), in.number(bounds[1]) + 1, CoverageMarks::Executed);
            } else if (keyword == "taken" || keyword == "nottaken") {
                const auto address = static_cast<std::uint32_t>(in.number(in.fields(1)[0]));
                std::uint8_t* mark = m_marks.at(address);
                if (mark == nullptr) {
                    in.fail("address " + hex(address) + " is in no executable memory area");
                }
                *mark |= keyword == "taken" ? CoverageMarks::Taken : CoverageMarks::NotTaken;
            } else {
                in.fail("unknown entry '" + keyword + "' of a coverage document");
            }
        } catch (const AnalyzerError& error) {
            if (error.kind() == AnalyzerError::Kind::Failed) {
                throw;
            }
            in.fail(error.what());
        }
    }
    configuration.deactivate();
    if (active) {
        try {
            configuration.activate(*active);
        } catch (const AnalyzerError& error) {
            in.fail(error.what());
        }
    }
    m_configuration = std::move(configuration);
}

} // namespace quillon::services
