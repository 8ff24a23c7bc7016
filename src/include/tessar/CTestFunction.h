#pragma once

#include <memory>
#include <string>

#include "CYAMLScalar.h"
#include "CYAMLSequence.h"
#include "Containers.h"
#include "ITestParserEventReceiver.h"

namespace kestrix {

class IEmitter;

/// A function call written as a list: `[name, [parameters], returnValueName]`. Used for the
/// function under test, the init and end functions of a test and the script of a stub.
/// Accepted forms: `[f]`, `[f, []]`, `[f, [a, b]]`, `[f, [], r]`, `[f, [a, b], r]`, and
/// `[f, {}, r]` where an empty mapping stands in for the parameter list.
class CTestFunction final : public ITestParserEventReceiver {
public:
    /// `parent` takes the events after the function's list; not owned, may be null.
    explicit CTestFunction(ITestParserEventReceiver* parent);
    CTestFunction();
    /// Copies content and parse state, and the parent pointer.
    CTestFunction(const CTestFunction& other) = default;
    /// Copies content and parse state; this object keeps its own parent, since an
    /// assignment refills a member of an owner and must not hand it to another owner.
    CTestFunction& operator=(const CTestFunction& other);
    ~CTestFunction() = default;

    ITestParserEventReceiver* mappingStart(const yaml_event_t& event) override;
    ITestParserEventReceiver* mappingKey(const yaml_event_t& event) override;
    ITestParserEventReceiver* mappingValue(const yaml_event_t& event) override;
    ITestParserEventReceiver* mappingEnd() override;
    ITestParserEventReceiver* sequenceStart(const yaml_event_t& event) override;
    ITestParserEventReceiver* sequenceValue(const yaml_event_t& event) override;
    ITestParserEventReceiver* sequenceEnd() override;
    /// Writes `[name]`, `[name, [params]]` or `[name, [params], retVal]`; nothing without a name.
    void serialize(std::shared_ptr<IEmitter> emitter) override;

    /// True when the function has no name.
    bool isEmpty() const;
    std::string getName() const;
    std::string getRetValueName() const;
    bool hasPositionParams() const;
    /// Appends the parameters in expression text (quotes of strings and characters kept).
    void getPositionParams(StrVector& params) const;

    // Setters take YAML text and change the field only when it parses.
    void setName(const std::string& name);
    void setRetValueName(const std::string& retValueName);
    /// Replaces the parameters by the items of a YAML list; anchor, tag and style stay.
    void setPositionParameters(const std::string& params);

    void setParent(ITestParserEventReceiver* parent) { m_parent = parent; }
    ITestParserEventReceiver* getParent() const { return m_parent; }

    const CYAMLScalar& getNameScalar() const { return m_name; }
    const CYAMLSequence& getParameters() const { return m_params; }
    const CYAMLScalar& getRetValueScalar() const { return m_retValName; }

private:
    /// Parse states.
    enum EState {
        S_START = 0,        // nothing read
        S_NAME = 1,         // list open, name expected
        S_NAME_READ = 2,    // name read, parameters expected
        S_PARAMS = 3,       // inside the parameter list
        S_PARAMS_MAP = 4,   // inside a mapping in parameter position
        S_PARAMS_READ = 5,  // parameters read, return value name may follow
        S_FINISHED = 6      // list closed or return value name read
    };

    CYAMLSequence m_block;
    CYAMLScalar m_name;
    CYAMLSequence m_params;
    CYAMLScalar m_retValName;
    ITestParserEventReceiver* m_parent;
    int m_state = S_START;
    CYAMLScalar m_key;
};

} // namespace kestrix
