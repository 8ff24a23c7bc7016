#include "CTestStub.h"

#include "CSectionSetters.h"
#include "CYAMLUtil.h"
#include "IEmitter.h"
#include "ParserException.h"

namespace kestrix {

const char* const CTestStub::KEY_FUNC = "func";
const char* const CTestStub::KEY_PARAMS = "params";
const char* const CTestStub::KEY_ASSIGN = "assign";
const char* const CTestStub::KEY_SCRIPT = "script";

CTestStub::CTestStub() : CTestStub(nullptr) {}

// The function name is written even when empty, so it starts as an empty plain scalar, which
// an emitter accepts (a scalar without implicit flags and tag would be refused).
CTestStub::CTestStub(ITestParserEventReceiver* parent)
    : m_functionName(std::string()), m_script(this), m_parent(parent)
{
}

CTestStub::CTestStub(const CTestStub& other)
    : m_block(other.m_block),
      m_functionName(other.m_functionName),
      m_retValName(other.m_retValName),
      m_funcBlock(other.m_funcBlock),
      m_paramNames(other.m_paramNames),
      m_assign(other.m_assign),
      m_script(other.m_script),
      m_state(other.m_state),
      m_key(other.m_key),
      m_parent(other.m_parent)
{
    // The receivers belong to a parse of the original and are not copied.
    m_script.setParent(this);
}

CTestStub::~CTestStub() = default;

ITestParserEventReceiver* CTestStub::mappingStart(const yaml_event_t& event)
{
    if (m_state != S_START) {
        throw ParserException(KX_POS, "Mapping not allowed at that point!");
    }
    m_block = CYAMLMap(event);
    m_state = S_MAPPING;
    return this;
}

ITestParserEventReceiver* CTestStub::mappingKey(const yaml_event_t& event)
{
    m_key = CYAMLScalar(event);
    const std::string& key = m_key.getValue();
    if (m_state != S_MAPPING) {
        throw ParserException(KX_POS, "Invalid section for mapping key: ", key);
    }
    if (key == KEY_FUNC) {
        return this;
    }
    if (key == KEY_PARAMS) {
        m_seqReceiver.reset(new CYAMLSequenceReceiver(this, &m_paramNames));
        return m_seqReceiver.get();
    }
    if (key == KEY_ASSIGN) {
        m_mapReceiver.reset(new CYAMLMapReceiver(this, &m_assign));
        return m_mapReceiver.get();
    }
    if (key == KEY_SCRIPT) {
        return &m_script;
    }
    throw ParserException(KX_POS, "Invalid item defined in stub: ", key);
}

ITestParserEventReceiver* CTestStub::mappingValue(const yaml_event_t& event)
{
    if (m_state == S_MAPPING) {
        throw ParserException(KX_POS, "Scalar value not allowed for stub section: ", m_key.getValue());
    }
    throw ParserException(KX_POS, "Scalar value not allowed for the main 'stub' section: ",
                          CYAMLScalar(event).getValue());
}

ITestParserEventReceiver* CTestStub::mappingEnd()
{
    m_seqReceiver.reset();
    m_mapReceiver.reset();
    return m_parent;
}

ITestParserEventReceiver* CTestStub::sequenceStart(const yaml_event_t& event)
{
    // A list nested in "func" is refused too: it would silently replace the names read so far.
    if (m_key.getValue() != KEY_FUNC || m_state != S_MAPPING) {
        throw ParserException(KX_POS, "Sequence not allowed for stub item: '" + m_key.getValue() + "'");
    }
    // A repeated "func" replaces both names.
    m_funcBlock = CYAMLSequence(event);
    m_functionName = CYAMLScalar(std::string());
    m_retValName = CYAMLScalar(std::string());
    m_state = S_FUNC_NAME;
    return this;
}

ITestParserEventReceiver* CTestStub::sequenceValue(const yaml_event_t& event)
{
    switch (m_state) {
    case S_FUNC_NAME:
        m_functionName = CYAMLScalar(event);
        m_state = S_FUNC_RETVAL;
        return this;
    case S_FUNC_RETVAL:
        m_retValName = CYAMLScalar(event);
        m_state = S_MAPPING;
        return this;
    default:
        throw ParserException(KX_POS, "At most two scalars are allowed for stub function section: "
                                      "'func. name' and 'retValName'");
    }
}

ITestParserEventReceiver* CTestStub::sequenceEnd()
{
    if (m_key.getValue() != KEY_FUNC) {
        throw ParserException(KX_POS, "Sequence not allowed in place of stub mapping!");
    }
    m_state = S_MAPPING;
    return this;
}

void CTestStub::serialize(std::shared_ptr<IEmitter> emitter)
{
    IEmitter::checkNotNull(emitter);
    emitter->writeMapStart(m_block);

    emitter->write(std::string(KEY_FUNC));
    emitter->writeSequenceStart(m_funcBlock);
    emitter->write(m_functionName);
    if (!m_retValName.isEmpty()) {
        emitter->write(m_retValName);
    }
    emitter->writeSequenceEnd();

    if (!m_paramNames.isEmpty()) {
        emitter->write(std::string(KEY_PARAMS));
        emitter->write(m_paramNames);
    }
    if (!m_assign.isEmpty()) {
        emitter->write(std::string(KEY_ASSIGN));
        emitter->write(m_assign);
    }
    if (!m_script.isEmpty()) {
        emitter->write(std::string(KEY_SCRIPT));
        m_script.serialize(emitter);
    }
    emitter->writeMapEnd();
}

std::string CTestStub::getFunctionName() const
{
    return m_functionName.getValue();
}

std::string CTestStub::getRetValName() const
{
    return m_retValName.getValue();
}

void CTestStub::getParamNames(StrVector& names) const
{
    m_paramNames.getVector(names);
}

const StrVector& CTestStub::getAssignmentKeys() const
{
    return m_assign.getKeyTexts();
}

void CTestStub::getAssignmentValues(StrVector& values) const
{
    m_assign.getValues(values);
}

void CTestStub::setFunctionName(const std::string& name)
{
    CYAMLUtil::parseScalar(m_functionName, name);
}

void CTestStub::setRetValName(const std::string& retValName)
{
    CYAMLUtil::parseScalar(m_retValName, retValName);
}

void CTestStub::setParamNames(const std::string& names)
{
    CSectionSetters::setSequenceItems(m_paramNames, names);
}

void CTestStub::setAssignments(const std::string& assignments)
{
    CSectionSetters::setMapEntries(m_assign, assignments);
}

} // namespace kestrix
