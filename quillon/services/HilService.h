#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "services/HilChannel.h"
#include "target/Target.h"

namespace quillon::services {

/// The HIL channels of an instance, read and written by name as text. A channel's value is the word of target
/// memory at its address, so the firmware sees each write at once and HIL each of the firmware's writes.
///
/// Texts: `read` takes channel names apart by commas (blanks around them do not count; none names every channel)
/// and answers "name:value" pairs in the same order, apart by commas. `write` takes "name:value" pairs apart by
/// commas or semicolons and writes all of them or, if one is wrong, none. Writing needs a stopped target.
/// Failures are AnalyzerError: NotFound for an unknown channel, InvalidArgument for a bad text or value,
/// IllegalState while the target runs; each names the channel or text.
class HilService {
public:
    /// The channels' addresses must lie in the target's memory.
    HilService(target::Target& target, std::vector<HilChannel> channels);

    const std::vector<HilChannel>& channels() const { return m_channels; }
    /// Writes the channels' initial values; the target must be stopped.
    void writeInitialValues();

    std::string read(const std::string& names) const;
    void write(const std::string& values);

private:
    const HilChannel& channel(const std::string& name) const;
    std::string channelNames() const;

    target::Target& m_target;
    std::vector<HilChannel> m_channels;
};

} // namespace quillon::services
