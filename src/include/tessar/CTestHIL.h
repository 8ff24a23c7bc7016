#pragma once

#include <memory>
#include <string>

#include "CYAMLMap.h"
#include "CYAMLMapReceiver.h"
#include "CYAMLScalar.h"
#include "Containers.h"
#include "ITestParserEventReceiver.h"

namespace kestrix {

class IEmitter;

/// The "hil" block of a test: hardware-in-the-loop parameters written before the test starts.
///
///     hil:
///       params:
///         Out1: 1
///         AnalogIn: 2.5
class CTestHIL final : public ITestParserEventReceiver {
public:
    static const char* const KEY_PARAMS;

    /// `parent` takes the events after the block; not owned, may be null.
    explicit CTestHIL(ITestParserEventReceiver* parent);
    /// Copies block and parameters (not the parse-time receiver) and the parent pointer.
    CTestHIL(const CTestHIL& other);
    /// Copies block, parameters and parse state; this object keeps its own parent.
    CTestHIL& operator=(const CTestHIL& other);

    ITestParserEventReceiver* mappingStart(const yaml_event_t& event) override;
    ITestParserEventReceiver* mappingKey(const yaml_event_t& event) override;
    ITestParserEventReceiver* mappingValue(const yaml_event_t& event) override;
    ITestParserEventReceiver* mappingEnd() override;
    ITestParserEventReceiver* sequenceStart(const yaml_event_t& event) override;
    ITestParserEventReceiver* sequenceValue(const yaml_event_t& event) override;
    ITestParserEventReceiver* sequenceEnd() override;
    /// Writes the block's mapping, with "params" when there are parameters.
    void serialize(std::shared_ptr<IEmitter> emitter) override;
    ~CTestHIL();

    /// Parameter names, in file order.
    const StrVector& getHILParamKeys() const;
    /// Appends the parameter values in expression text, in the order of the keys.
    void getHILParamValues(StrVector& values) const;
    /// Replaces the parameters by the pairs of a YAML mapping; anchor, tag and style stay.
    void setParams(const std::string& params);
    /// True when there are no parameters.
    bool isEmpty() const;

    const CYAMLMap& getParams() const { return m_params; }
    void setParent(ITestParserEventReceiver* parent) { m_parent = parent; }
    ITestParserEventReceiver* getParent() const { return m_parent; }

private:
    enum EState { S_START = 0, S_BLOCK = 1 };

    CYAMLMap m_main;
    CYAMLMap m_params;
    ITestParserEventReceiver* m_parent;
    int m_state = S_START;
    CYAMLScalar m_key;
    std::unique_ptr<CYAMLMapReceiver> m_mapReceiver;
};

} // namespace kestrix
