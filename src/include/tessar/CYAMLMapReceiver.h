#pragma once

#include "CYAMLMap.h"
#include "CYAMLScalar.h"
#include "CYAMLValidator.h"
#include "ITestParserEventReceiver.h"

namespace kestrix {

/// Fills a `CYAMLMap` from a flat mapping of scalars; any nested block is refused.
class CYAMLMapReceiver : public ITestParserEventReceiver {
public:
    /// `parent` takes control when the mapping ends and may be null at top level; `map` and
    /// `validator` (optional; it checks key names and the whole map) are not owned.
    CYAMLMapReceiver(ITestParserEventReceiver* parent, CYAMLMap* map, CYAMLValidator* validator = nullptr);

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

    [[noreturn]] static void refuseSequence();

    ITestParserEventReceiver* m_parent;
    CYAMLMap* m_map;
    int m_state = BEFORE;
    CYAMLScalar m_key;
    CYAMLValidator* m_validator;
};

} // namespace kestrix
