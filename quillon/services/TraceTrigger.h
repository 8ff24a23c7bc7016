#pragma once

#include <string>

namespace quillon::services {

/// A trigger of analyzer documents: when a trace recording begins and what it records. "Trigger0", which every
/// analyzer document has, records the entries of functions from the start of the recording.
struct TraceTrigger {
    static constexpr const char* kDefault = "Trigger0";

    std::string name = kDefault;
    /// The function whose first entry begins the recording; "" to begin at once.
    std::string startFunction;
    /// Records every instruction besides the entries of functions.
    bool instructions = false;
};

} // namespace quillon::services
