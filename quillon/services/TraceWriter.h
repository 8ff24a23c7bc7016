#pragma once

#include <cstdint>
#include <ostream>
#include <string>
#include <vector>

#include "services/TraceRecorder.h"

namespace quillon::services {

/// The exports of a trace. Time is simulated: an event's instruction begins (cycle - 1) / clock seconds after
/// the reset, as the cycle count numbers instructions from 1.
///
/// - CSV: the header line `index,cycle,time_ns,event,address,function,value`, then one line an event: its index
///   from 0, cycle, time in nanoseconds with three decimals, `entry`, `instruction` or `marker`, the address as
///   0x and eight hex digits, the function's name (empty outside every function; quoted as CSV does where
///   needed), and a marker's value (empty for the others).
/// - Text: a title line with the number of events, the clock and the trigger, a line of column names, one aligned
///   line an event (time in microseconds), and "(the trace buffer was full)" at the end of a full recording.
/// - Binary, little-endian: "QTRC", u32 version 1, u64 clock in Hz, u32 number of names, u32 number of events,
///   u32 1 if the recording was full else 0; each name as u16 length and its bytes; each event as u64 cycle,
///   u32 address, u32 name index (0xFFFFFFFF: none), u32 value, u8 kind (0 entry, 1 instruction, 2 marker) and
///   three zero bytes.
class TraceWriter {
public:
    TraceWriter(const TraceRecorder& recording, std::uint64_t clockHz, std::string title, std::string trigger);

    void writeCsv(std::ostream& out) const;
    void writeText(std::ostream& out) const;
    void writeBinary(std::ostream& out) const;

    static const char* eventName(TraceEvent::Kind kind);
    /// Nanoseconds from the reset to the start of the cycle's instruction.
    double nanoseconds(std::uint64_t cycle) const;

private:
    std::string functionName(const TraceEvent& event) const;

    const TraceRecorder& m_recording;
    std::uint64_t m_clockHz;
    std::string m_title;
    std::string m_trigger;
};

} // namespace quillon::services
