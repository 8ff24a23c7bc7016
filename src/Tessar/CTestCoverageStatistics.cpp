#include "CTestCoverageStatistics.h"

#include "CUtil.h"
#include "CYAMLUtil.h"
#include "IEmitter.h"
#include "ParserException.h"

namespace kestrix {

const char* const CTestCoverageStatistics::KEY_FUNC = "func";
const char* const CTestCoverageStatistics::KEY_CODE = "code";
const char* const CTestCoverageStatistics::KEY_BRANCHES = "branches";
const char* const CTestCoverageStatistics::KEY_TAKEN = "taken";
const char* const CTestCoverageStatistics::KEY_NOT_TAKEN = "notTaken";
const char* const CTestCoverageStatistics::KEY_BOTH = "both";

CTestCoverageStatistics::CTestCoverageStatistics(ITestParserEventReceiver* parent) : m_parent(parent)
{
}

CTestCoverageStatistics::CTestCoverageStatistics(ITestParserEventReceiver* parent, const yaml_event_t& event)
    : m_block(event), m_parent(parent), m_section(IN_BLOCK)
{
}

CTestCoverageStatistics::CTestCoverageStatistics(const CTestCoverageStatistics& other,
                                                 ITestParserEventReceiver* parent)
    : CTestCoverageStatistics(other)
{
    m_parent = parent;
}

CYAMLScalar* CTestCoverageStatistics::fieldOf(const std::string& key)
{
    if (key == KEY_FUNC) {
        return &m_function;
    }
    if (key == KEY_CODE) {
        return &m_code;
    }
    if (key == KEY_BRANCHES) {
        return &m_branches;
    }
    if (key == KEY_TAKEN) {
        return &m_taken;
    }
    if (key == KEY_NOT_TAKEN) {
        return &m_notTaken;
    }
    if (key == KEY_BOTH) {
        return &m_both;
    }
    return nullptr;
}

ITestParserEventReceiver* CTestCoverageStatistics::mappingStart(const yaml_event_t& event)
{
    if (m_section != BEFORE_BLOCK) {
        throw ParserException(KX_POS, "Mapping not allowed at that point!");
    }
    m_block = CYAMLMap(event);
    m_section = IN_BLOCK;
    return this;
}

ITestParserEventReceiver* CTestCoverageStatistics::mappingKey(const yaml_event_t& event)
{
    m_key = CYAMLScalar(event).getValue();
    if (m_section != IN_BLOCK) {
        throw ParserException(KX_POS, "Invalid section for coverage statistics mapping key: " + m_key);
    }
    if (fieldOf(m_key) == nullptr) {
        throw ParserException(KX_POS, "Invalid item defined in coverage statistics: " + m_key);
    }
    return this;
}

ITestParserEventReceiver* CTestCoverageStatistics::mappingValue(const yaml_event_t& event)
{
    if (m_section != IN_BLOCK) {
        throw ParserException(KX_POS, "Illegal secion in coverage statistics: " + std::to_string(m_section));
    }
    CYAMLScalar* field = fieldOf(m_key);
    if (field == nullptr) {
        throw ParserException(KX_POS, "Invalid value defined in coverage statistics: " + m_key);
    }
    *field = CYAMLScalar(event);
    if (field != &m_function) {
        CUtil::a2d(field->getValue());
    }
    return this;
}

ITestParserEventReceiver* CTestCoverageStatistics::mappingEnd()
{
    return m_parent;
}

ITestParserEventReceiver* CTestCoverageStatistics::sequenceStart(const yaml_event_t&)
{
    throw ParserException(KX_POS, "Sequence not allowed for coverage statistics item: '" + m_key + "'");
}

ITestParserEventReceiver* CTestCoverageStatistics::sequenceValue(const yaml_event_t&)
{
    throw ParserException(KX_POS, "Sequence not allowed for coverage statistics item: '" + m_key + "'");
}

ITestParserEventReceiver* CTestCoverageStatistics::sequenceEnd()
{
    throw ParserException(KX_POS, "Sequence not allowed for coverage statistics item: '" + m_key + "'");
}

void CTestCoverageStatistics::serialize(std::shared_ptr<IEmitter> emitter)
{
    IEmitter::checkNotNull(emitter);
    emitter->writeMapStart(m_block);
    const std::pair<const char*, const CYAMLScalar*> fields[] = {
        {KEY_FUNC, &m_function},   {KEY_CODE, &m_code},          {KEY_BRANCHES, &m_branches},
        {KEY_TAKEN, &m_taken},     {KEY_NOT_TAKEN, &m_notTaken}, {KEY_BOTH, &m_both},
    };
    for (const auto& field : fields) {
        if (!field.second->isEmpty()) {
            emitter->write(std::string(field.first));
            emitter->write(*field.second);
        }
    }
    emitter->writeMapEnd();
}

void CTestCoverageStatistics::setFunctionName(const std::string& text)
{
    CYAMLUtil::parseScalar(m_function, text);
}

float CTestCoverageStatistics::toPercent(const CYAMLScalar& field)
{
    return field.isEmpty() ? 0.0f : static_cast<float>(CUtil::a2d(field.getValue()));
}

void CTestCoverageStatistics::setNumber(CYAMLScalar& field, const std::string& text)
{
    if (!text.empty()) {
        CUtil::a2d(text);
    }
    CYAMLUtil::parseScalar(field, text);
}

void CTestCoverageStatistics::setCodeExecuted(const std::string& text)
{
    setNumber(m_code, text.empty() ? "0" : text);
}

void CTestCoverageStatistics::setBranchExecuted(const std::string& text)
{
    setNumber(m_branches, text.empty() ? "0" : text);
}

void CTestCoverageStatistics::setBranchTaken(const std::string& text)
{
    setNumber(m_taken, text.empty() ? "0" : text);
}

void CTestCoverageStatistics::setBranchNotTaken(const std::string& text)
{
    // Unlike the other numbers, an empty text clears this one.
    setNumber(m_notTaken, text);
}

void CTestCoverageStatistics::setBranchBoth(const std::string& text)
{
    setNumber(m_both, text.empty() ? "0" : text);
}

} // namespace kestrix
