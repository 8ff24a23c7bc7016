#include "services/TraceDocument.h"

#include <fstream>
#include <ostream>
#include <set>

#include "services/AnalyzerError.h"
#include "services/DocumentFileReader.h"
#include "services/TraceWriter.h"

namespace quillon::services {

namespace {

std::string hex(std::uint32_t value)
{
    char text[16];
    std::snprintf(text, sizeof text, "0x%08x", value);
    return text;
}

} // namespace

const std::vector<std::string>& TraceDocument::formats()
{
    static const std::vector<std::string> names = {"Text", "CSV", "Binary"};
    return names;
}

TraceDocument::TraceDocument(std::string name, target::Target& target, const SymbolIndex& symbols,
                             std::vector<TraceTrigger> triggers)
    : Document(std::move(name), Kind::Analyzer, target), m_symbols(symbols), m_clockHz(target.clockHz()),
      m_recorder(target)
{
    m_triggers.push_back(TraceTrigger{});
    m_triggers.insert(m_triggers.end(), triggers.begin(), triggers.end());
}

void TraceDocument::clearConfiguration()
{
    m_trigger = TraceTrigger{};
    m_exportFormat = "CSV";
}

std::string TraceDocument::triggerNames() const
{
    std::string names;
    for (const TraceTrigger& trigger : m_triggers) {
        names += (names.empty() ? "" : ", ") + trigger.name;
    }
    return names;
}

void TraceDocument::selectTrigger(const std::string& trigger)
{
    for (const TraceTrigger& known : m_triggers) {
        if (known.name == trigger) {
            m_trigger = known;
            markModified();
            return;
        }
    }
    throw AnalyzerError(AnalyzerError::Kind::NotFound,
                        title() + " has no trigger '" + trigger + "' (it has " + triggerNames() + ")");
}

void TraceDocument::setExportFormat(const std::string& format)
{
    for (const std::string& known : formats()) {
        if (known == format) {
            m_exportFormat = format;
            return;
        }
    }
    throw AnalyzerError(AnalyzerError::Kind::InvalidArgument,
                        "unknown export format '" + format + "' for " + title() + " (Text, CSV, Binary)");
}

void TraceDocument::exportTo(const std::filesystem::path& file, std::uint32_t option)
{
    std::string format = m_exportFormat;
    if (option != 0xFFFFFFFFu) {
        if (option >= formats().size()) {
            throw AnalyzerError(AnalyzerError::Kind::InvalidArgument, "unknown export format number "
                                                                          + std::to_string(option) + " for " + title()
                                                                          + " (0 Text, 1 CSV, 2 Binary)");
        }
        format = formats()[option];
    }
    checkReadable("export");
    const TraceWriter writer(m_recorder, m_clockHz, name().empty() ? title() : name(), m_trigger.name);
    std::ofstream out(file, std::ios::binary | std::ios::trunc);
    if (format == "Text") {
        writer.writeText(out);
    } else if (format == "CSV") {
        writer.writeCsv(out);
    } else {
        writer.writeBinary(out);
    }
    out.close();
    if (!out) {
        throw AnalyzerError(AnalyzerError::Kind::Failed,
                            "cannot write the export of " + title() + " to '" + file.string() + "'");
    }
}

void TraceDocument::setMarker(std::uint32_t value)
{
    checkReadable("set a marker in");
    if (target().isRunning()) {
        throw AnalyzerError(AnalyzerError::Kind::IllegalState,
                            "cannot set a marker in " + title() + " while the target runs");
    }
    m_recorder.addMarker(target().cycles() + 1, target().pc(), value);
    markModified();
}

void TraceDocument::clearMarkers()
{
    checkReadable("clear the markers of");
    m_recorder.clearMarkers();
    markModified();
}

std::vector<TraceFunction> TraceDocument::functions() const
{
    std::vector<TraceFunction> result;
    std::set<std::uint32_t> entries;
    for (const Program& program : m_symbols.programs()) {
        if (const debuginfo::DebugInfo* debug = program.debugInfo()) {
            for (const debuginfo::Function& f : debug->functions()) {
                const debuginfo::AddressRange extent = f.extent();
                if (entries.insert(f.entry).second) {
                    result.push_back(TraceFunction{f.name, f.entry, extent.low, extent.high});
                }
            }
        }
        for (const auto& symbol : program.elf().symbols()) {
            if (symbol.kind == debuginfo::ElfImage::SymbolKind::Function && entries.insert(symbol.address).second) {
                result.push_back(TraceFunction{symbol.name, symbol.address, symbol.address,
                                               symbol.address + std::max<std::uint32_t>(symbol.size, 2)});
            }
        }
    }
    return result;
}

void TraceDocument::prepare(bool fresh)
{
    std::vector<TraceFunction> known = functions();
    std::optional<std::uint32_t> startEntry;
    if (!m_trigger.startFunction.empty()) {
        for (const TraceFunction& f : known) {
            if (f.name == m_trigger.startFunction) {
                startEntry = f.entry;
                break;
            }
        }
        if (!startEntry) {
            throw AnalyzerError(AnalyzerError::Kind::NotFound,
                                "trigger '" + m_trigger.name + "' of " + title() + " starts at function '"
                                    + m_trigger.startFunction + "', which the downloaded programs do not have");
        }
    }
    if (fresh) {
        m_recorder.clear();
    }
    m_clockHz = target().clockHz();
    m_recorder.prepare(std::move(known), m_trigger.instructions, startEntry);
}

void TraceDocument::write(std::ostream& out) const
{
    out << "trigger " << m_trigger.name << '\n';
    out << "exportFormat " << m_exportFormat << '\n';
    out << "clock " << m_clockHz << '\n';
    out << "full " << (m_recorder.isFull() ? 1 : 0) << '\n';
    for (const std::string& name : m_recorder.names()) {
        out << "function " << name << '\n';
    }
    for (const TraceEvent& event : m_recorder.events()) {
        out << "event " << event.cycle << ' ' << TraceWriter::eventName(event.kind) << ' ' << hex(event.address)
            << ' ';
        if (event.function == TraceEvent::kNoFunction) {
            out << '-';
        } else {
            out << event.function;
        }
        out << ' ' << event.value << '\n';
    }
}

void TraceDocument::read(DocumentFileReader& in)
{
    std::vector<std::string> names;
    std::vector<TraceEvent> events;
    bool full = false;
    while (in.next()) {
        const std::string& keyword = in.keyword();
        if (keyword == "trigger") {
            try {
                selectTrigger(in.rest());
            } catch (const AnalyzerError& error) {
                in.fail(error.what());
            }
        } else if (keyword == "exportFormat") {
            try {
                setExportFormat(in.rest());
            } catch (const AnalyzerError& error) {
                in.fail(error.what());
            }
        } else if (keyword == "clock") {
            m_clockHz = in.number(in.fields(1)[0], 64);
        } else if (keyword == "full") {
            full = in.number(in.fields(1)[0], 1) != 0;
        } else if (keyword == "function") {
            names.push_back(in.rest());
        } else if (keyword == "event") {
            const std::vector<std::string> fields = in.fields(5);
            TraceEvent event;
            event.cycle = in.number(fields[0], 64);
            if (fields[1] == "entry") {
                event.kind = TraceEvent::Kind::Entry;
            } else if (fields[1] == "instruction") {
                event.kind = TraceEvent::Kind::Instruction;
            } else if (fields[1] == "marker") {
                event.kind = TraceEvent::Kind::Marker;
            } else {
                in.fail("unknown event '" + fields[1] + "' (entry, instruction, marker)");
            }
            event.address = static_cast<std::uint32_t>(in.number(fields[2]));
            if (fields[3] != "-") {
                event.function = static_cast<std::uint32_t>(in.number(fields[3]));
                if (event.function >= names.size()) {
                    in.fail("function number " + fields[3] + " before its 'function' line");
                }
            }
            event.value = static_cast<std::uint32_t>(in.number(fields[4]));
            events.push_back(event);
        } else {
            in.fail("unknown entry '" + keyword + "' of an analyzer document");
        }
    }
    m_recorder.restore(std::move(names), std::move(events), full);
}

} // namespace quillon::services
