#pragma once

#include "CYAMLSequence.h"
#include "CYAMLValidator.h"
#include "ITestParserEventReceiver.h"

namespace kestrix {

/// Fills a `CYAMLSequence` from a flat sequence of scalars; any nested block is refused.
class CYAMLSequenceReceiver : public ITestParserEventReceiver {
public:
    /// `parent` takes control when the sequence ends and may be null at top level; `sequence`
    /// and `validator` (optional; it checks each item and the whole sequence) are not owned.
    CYAMLSequenceReceiver(ITestParserEventReceiver* parent, CYAMLSequence* sequence,
                          CYAMLValidator* validator = nullptr);

    ITestParserEventReceiver* mappingStart(const yaml_event_t& event) override;
    ITestParserEventReceiver* mappingKey(const yaml_event_t& event) override;
    ITestParserEventReceiver* mappingValue(const yaml_event_t& event) override;
    ITestParserEventReceiver* mappingEnd() override;
    ITestParserEventReceiver* sequenceStart(const yaml_event_t& event) override;
    ITestParserEventReceiver* sequenceValue(const yaml_event_t& event) override;
    ITestParserEventReceiver* sequenceEnd() override;
    /// Refused: a receiver has nothing of its own to write.
    void serialize(std::shared_ptr<IEmitter> emitter) override;

private:
    enum EState { BEFORE = 0, INSIDE = 1, AFTER = 2 };

    ITestParserEventReceiver* m_parent;
    CYAMLSequence* m_sequence;
    int m_state = BEFORE;
    CYAMLValidator* m_validator;
};

} // namespace kestrix
