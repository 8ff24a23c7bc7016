#include "services/HilService.h"

#include <algorithm>
#include <utility>

#include "services/AnalyzerError.h"
#include "target/TargetError.h"

namespace quillon::services {

namespace {

std::string trimmed(const std::string& text)
{
    const std::size_t first = text.find_first_not_of(" \t\r\n");
    if (first == std::string::npos) {
        return std::string();
    }
    const std::size_t last = text.find_last_not_of(" \t\r\n");
    return text.substr(first, last - first + 1);
}

/// The items of a text apart by any of the separators; blank items are dropped.
std::vector<std::string> items(const std::string& text, const char* separators)
{
    std::vector<std::string> result;
    std::size_t start = 0;
    while (start <= text.size()) {
        const std::size_t end = std::min(text.find_first_of(separators, start), text.size());
        std::string item = trimmed(text.substr(start, end - start));
        if (!item.empty()) {
            result.push_back(std::move(item));
        }
        start = end + 1;
    }
    return result;
}

} // namespace

HilService::HilService(target::Target& target, std::vector<HilChannel> channels)
    : m_target(target), m_channels(std::move(channels))
{
}

void HilService::writeInitialValues()
{
    for (const HilChannel& channel : m_channels) {
        if (channel.initial) {
            write(channel.name + ":" + *channel.initial);
        }
    }
}

std::string HilService::channelNames() const
{
    std::string names;
    for (const HilChannel& channel : m_channels) {
        names += (names.empty() ? "" : ", ") + channel.name;
    }
    return names.empty() ? std::string("none") : names;
}

const HilChannel& HilService::channel(const std::string& name) const
{
    auto it = std::find_if(m_channels.begin(), m_channels.end(), [&](const HilChannel& c) { return c.name == name; });
    if (it == m_channels.end()) {
        throw AnalyzerError(AnalyzerError::Kind::NotFound,
                            "no HIL channel '" + name + "' (channels: " + channelNames() + ")");
    }
    return *it;
}

std::string HilService::read(const std::string& names) const
{
    std::vector<const HilChannel*> chosen;
    const std::vector<std::string> asked = items(names, ",");
    if (asked.empty()) {
        for (const HilChannel& c : m_channels) {
            chosen.push_back(&c);
        }
    }
    for (const std::string& name : asked) {
        chosen.push_back(&channel(name));
    }
    std::string text;
    for (const HilChannel* c : chosen) {
        text += (text.empty() ? "" : ",") + c->name + ":"
                + HilChannel::format(c->kind, m_target.readWord(c->address));
    }
    return text;
}

void HilService::write(const std::string& values)
{
    std::vector<std::pair<const HilChannel*, std::uint32_t>> writes;
    for (const std::string& pair : items(values, ",;")) {
        const std::size_t colon = pair.find(':');
        if (colon == std::string::npos) {
            throw AnalyzerError(AnalyzerError::Kind::InvalidArgument,
                                "HIL value '" + pair + "' is no 'name:value' pair");
        }
        const HilChannel& c = channel(trimmed(pair.substr(0, colon)));
        const std::string text = trimmed(pair.substr(colon + 1));
        const std::optional<std::uint32_t> word = HilChannel::parse(c.kind, text);
        if (!word) {
            throw AnalyzerError(AnalyzerError::Kind::InvalidArgument, "bad value '" + text + "' for "
                                                                          + HilChannel::kindName(c.kind)
                                                                          + " HIL channel '" + c.name + "'");
        }
        writes.emplace_back(&c, *word);
    }
    if (writes.empty()) {
        throw AnalyzerError(AnalyzerError::Kind::InvalidArgument, "no 'name:value' pair to write to HIL");
    }
    for (const auto& [c, word] : writes) {
        const std::uint8_t bytes[4] = {static_cast<std::uint8_t>(word), static_cast<std::uint8_t>(word >> 8),
                                       static_cast<std::uint8_t>(word >> 16), static_cast<std::uint8_t>(word >> 24)};
        try {
            m_target.writeMemory(c->address, bytes, sizeof bytes);
        } catch (const target::TargetError& failure) {
            if (failure.kind() == target::TargetError::Kind::Running) {
                throw AnalyzerError(AnalyzerError::Kind::IllegalState,
                                    "cannot write HIL channel '" + c->name + "' while the target runs");
            }
            throw AnalyzerError(AnalyzerError::Kind::Failed,
                                "cannot write HIL channel '" + c->name + "': " + failure.what());
        }
    }
}

} // namespace quillon::services
