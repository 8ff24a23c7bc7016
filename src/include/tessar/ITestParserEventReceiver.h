#pragma once

#include <memory>

#include <yaml.h>

namespace kestrix {

class IEmitter;

/// An object filled from parser events: a section of a test file or a generic receiver.
/// Each event operation returns the receiver of the next event: this object, a child that
/// takes the following block, or the parent once this object's block has ended.
class ITestParserEventReceiver {
public:
    virtual ITestParserEventReceiver* mappingStart(const yaml_event_t& event) = 0;
    virtual ITestParserEventReceiver* mappingKey(const yaml_event_t& event) = 0;
    virtual ITestParserEventReceiver* mappingValue(const yaml_event_t& event) = 0;
    virtual ITestParserEventReceiver* mappingEnd() = 0;
    virtual ITestParserEventReceiver* sequenceStart(const yaml_event_t& event) = 0;
    virtual ITestParserEventReceiver* sequenceValue(const yaml_event_t& event) = 0;
    virtual ITestParserEventReceiver* sequenceEnd() = 0;

    /// Writes the object out; not a parser event.
    virtual void serialize(std::shared_ptr<IEmitter> emitter) = 0;

protected:
    // Receivers are owned and destroyed through their concrete classes.
    ~ITestParserEventReceiver() = default;
};

} // namespace kestrix
