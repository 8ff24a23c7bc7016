#pragma once

#include <memory>
#include <string>
#include <vector>

#include "CTestFunction.h"
#include "CYAMLMap.h"
#include "CYAMLMapReceiver.h"
#include "CYAMLScalar.h"
#include "CYAMLSequence.h"
#include "CYAMLSequenceReceiver.h"
#include "Containers.h"
#include "ITestParserEventReceiver.h"

namespace kestrix {

class IEmitter;

/// One item of a test's "stubs" list: a function replaced during the test, the variable that
/// takes its return value, its parameter names, assignments made at each call, and an
/// optional script function.
///
///     - func: [read_sensor, srv]
///       params: [p1, p2]
///       assign: {srv: 42}
///       script: [on_stub, [p1], r]
class CTestStub final : public ITestParserEventReceiver {
public:
    static const char* const KEY_FUNC;
    static const char* const KEY_PARAMS;
    static const char* const KEY_ASSIGN;
    static const char* const KEY_SCRIPT;

    CTestStub();
    /// `parent` takes the events after the stub's mapping; not owned, may be null.
    explicit CTestStub(ITestParserEventReceiver* parent);
    /// Deep copy of the content, with the same parent; the script's parent is the copy.
    CTestStub(const CTestStub& other);
    CTestStub& operator=(const CTestStub& other) = delete;
    ~CTestStub();

    ITestParserEventReceiver* mappingStart(const yaml_event_t& event) override;
    ITestParserEventReceiver* mappingKey(const yaml_event_t& event) override;
    ITestParserEventReceiver* mappingValue(const yaml_event_t& event) override;
    ITestParserEventReceiver* mappingEnd() override;
    ITestParserEventReceiver* sequenceStart(const yaml_event_t& event) override;
    ITestParserEventReceiver* sequenceValue(const yaml_event_t& event) override;
    ITestParserEventReceiver* sequenceEnd() override;
    /// Writes the stub's mapping: "func" always, then "params", "assign", "script" if set.
    void serialize(std::shared_ptr<IEmitter> emitter) override;

    std::string getFunctionName() const;
    std::string getRetValName() const;
    /// Appends the parameter names in expression text.
    void getParamNames(StrVector& names) const;
    /// Assigned variables, in file order.
    const StrVector& getAssignmentKeys() const;
    /// Appends the assigned values in expression text, in the order of the keys.
    void getAssignmentValues(StrVector& values) const;
    CTestFunction& getScriptFunction() { return m_script; }
    const CTestFunction& getScriptFunction() const { return m_script; }

    // Setters take YAML text and change the field only when it parses.
    void setFunctionName(const std::string& name);
    void setRetValName(const std::string& retValName);
    /// Replaces the parameter names by the items of a YAML list; anchor, tag and style stay.
    void setParamNames(const std::string& names);
    /// Replaces the assignments by the pairs of a YAML mapping; anchor, tag and style stay.
    void setAssignments(const std::string& assignments);

    void setParent(ITestParserEventReceiver* parent) { m_parent = parent; }
    ITestParserEventReceiver* getParent() const { return m_parent; }

    const CYAMLSequence& getParamNamesSequence() const { return m_paramNames; }
    const CYAMLMap& getAssignments() const { return m_assign; }

private:
    /// Parse states.
    enum EState {
        S_START = 0,         // before the stub's mapping
        S_MAPPING = 1,       // inside the mapping
        S_FUNC_NAME = 2,     // in "func", function name expected
        S_FUNC_RETVAL = 3    // in "func", return value name may follow
    };

    CYAMLMap m_block;
    CYAMLScalar m_functionName;
    CYAMLScalar m_retValName;
    CYAMLSequence m_funcBlock;
    CYAMLSequence m_paramNames;
    CYAMLMap m_assign;
    CTestFunction m_script;
    int m_state = S_START;
    CYAMLScalar m_key;
    std::unique_ptr<CYAMLSequenceReceiver> m_seqReceiver;
    std::unique_ptr<CYAMLMapReceiver> m_mapReceiver;
    ITestParserEventReceiver* m_parent;
};

typedef std::shared_ptr<CTestStub> CTestStubSPtr;
/// The stubs of a test specification.
typedef std::vector<std::shared_ptr<CTestStub>> StubsVector;

} // namespace kestrix
