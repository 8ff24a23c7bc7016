#include "services/TraceWriter.h"

#include <cstdio>
#include <iomanip>

namespace quillon::services {

namespace {

std::string hex(std::uint32_t value)
{
    char text[16];
    std::snprintf(text, sizeof text, "0x%08x", value);
    return text;
}

std::string fixed(double value, int decimals)
{
    char text[64];
    std::snprintf(text, sizeof text, "%.*f", decimals, value);
    return text;
}

std::string csvField(const std::string& text)
{
    if (text.find_first_of(",\"\n") == std::string::npos) {
        return text;
    }
    std::string quoted = "\"";
    for (char c : text) {
        quoted += c == '"' ? std::string("\"\"") : std::string(1, c);
    }
    return quoted + "\"";
}

template <class T> void put(std::ostream& out, T value, int bytes)
{
    for (int i = 0; i < bytes; ++i) {
        out.put(static_cast<char>((static_cast<std::uint64_t>(value) >> (8 * i)) & 0xFF));
    }
}

} // namespace

TraceWriter::TraceWriter(const TraceRecorder& recording, std::uint64_t clockHz, std::string title, std::string trigger)
    : m_recording(recording), m_clockHz(clockHz == 0 ? 1 : clockHz), m_title(std::move(title)),
      m_trigger(std::move(trigger))
{
}

const char* TraceWriter::eventName(TraceEvent::Kind kind)
{
    switch (kind) {
    case TraceEvent::Kind::Entry:
        return "entry";
    case TraceEvent::Kind::Instruction:
        return "instruction";
    case TraceEvent::Kind::Marker:
        return "marker";
    }
    return "entry";
}

double TraceWriter::nanoseconds(std::uint64_t cycle) const
{
    return cycle == 0 ? 0.0 : static_cast<double>(cycle - 1) * 1e9 / static_cast<double>(m_clockHz);
}

std::string TraceWriter::functionName(const TraceEvent& event) const
{
    return event.function < m_recording.names().size() ? m_recording.names()[event.function] : std::string();
}

void TraceWriter::writeCsv(std::ostream& out) const
{
    out << "index,cycle,time_ns,event,address,function,value\n";
    std::size_t index = 0;
    for (const TraceEvent& event : m_recording.events()) {
        out << index++ << ',' << event.cycle << ',' << fixed(nanoseconds(event.cycle), 3) << ','
            << eventName(event.kind) << ',' << hex(event.address) << ',' << csvField(functionName(event)) << ',';
        if (event.kind == TraceEvent::Kind::Marker) {
            out << event.value;
        }
        out << '\n';
    }
}

void TraceWriter::writeText(std::ostream& out) const
{
    out << "Trace of " << m_title << ": " << m_recording.events().size() << " events, clock " << m_clockHz
        << " Hz, trigger " << m_trigger << '\n';
    out << std::setw(8) << "index" << std::setw(14) << "cycle" << std::setw(16) << "time [us]" << "  "
        << std::left << std::setw(12) << "event" << std::setw(12) << "address" << "function" << std::right << '\n';
    std::size_t index = 0;
    for (const TraceEvent& event : m_recording.events()) {
        out << std::setw(8) << index++ << std::setw(14) << event.cycle << std::setw(16)
            << fixed(nanoseconds(event.cycle) / 1000.0, 4) << "  " << std::left << std::setw(12)
            << eventName(event.kind) << std::setw(12) << hex(event.address) << functionName(event) << std::right;
        if (event.kind == TraceEvent::Kind::Marker) {
            out << " (marker " << event.value << ')';
        }
        out << '\n';
    }
    if (m_recording.isFull()) {
        out << "(the trace buffer was full)\n";
    }
}

void TraceWriter::writeBinary(std::ostream& out) const
{
    out.write("QTRC", 4);
    put(out, 1u, 4);
    put(out, m_clockHz, 8);
    put(out, m_recording.names().size(), 4);
    put(out, m_recording.events().size(), 4);
    put(out, m_recording.isFull() ? 1u : 0u, 4);
    for (const std::string& name : m_recording.names()) {
        const std::size_t length = std::min<std::size_t>(name.size(), 0xFFFF);
        put(out, length, 2);
        out.write(name.data(), static_cast<std::streamsize>(length));
    }
    for (const TraceEvent& event : m_recording.events()) {
        put(out, event.cycle, 8);
        put(out, event.address, 4);
        put(out, event.function, 4);
        put(out, event.value, 4);
        put(out, static_cast<std::uint8_t>(event.kind), 1);
        put(out, 0u, 3);
    }
}

} // namespace quillon::services
