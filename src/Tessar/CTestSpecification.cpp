#include "CTestSpecification.h"

#include <algorithm>

#include "CSectionSetters.h"
#include "CUtil.h"
#include "CYAMLDocumentWriter.h"
#include "CYAMLUtil.h"
#include "IEmitter.h"
#include "IOException.h"
#include "IllegalArgumentException.h"
#include "IllegalStateException.h"
#include "IndexOutOfBoundsException.h"
#include "ParserException.h"

namespace kestrix {

namespace {

// Names of the section values, by value.
const char* const SECTION_NAMES[] = {
    "E_SECTION_MAIN",
    "E_SECTION_ID",
    "E_SECTION_CONFIG",
    "E_SECTION_RUN",
    "E_SECTION_DESC",
    "E_SECTION_TAGS",
    "E_SECTION_OPTIONS",
    "E_SECTION_INITFUNC",
    "E_SECTION_ENDFUNC",
    "E_SECTION_LOCALS",
    "E_SECTION_INIT",
    "E_SECTION_STUBS",
    "E_SECTION_STUB_ITEM",
    "E_SECTION_FUNC",
    "E_SECTION_PARAMS",
    "E_SECTION_EXPECT",
    "E_SECTION_TRACE",
    "E_SECTION_COVERAGE",
    "E_SECTION_PROFILER",
    "E_SECTION_HIL",
    "E_SECTION_DERIVED_TESTS",
    "E_SECTION_DERIVED_TEST_SPEC",
};

const int NO_OF_SECTIONS = sizeof(SECTION_NAMES) / sizeof(SECTION_NAMES[0]);

std::string scalarText(const yaml_event_t& event)
{
    return CYAMLScalar(event).getValue();
}

void checkStubs(const StubsVector& stubs)
{
    for (size_t i = 0; i < stubs.size(); ++i) {
        if (!stubs[i]) {
            throw IllegalArgumentException(KX_POS, "Stub must not be null!").add("index", static_cast<int>(i));
        }
    }
}

} // namespace

CTestSpecification::CTestSpecification()
    : m_initFunc(this), m_endFunc(this), m_func(this), m_trace(this), m_coverage(this), m_profiler(this),
      m_hil(this)
{
    enterChildSections();
}

CTestSpecification::CTestSpecification(CTestSpecificationWPtr parent)
    : m_parent(parent), m_initFunc(this), m_endFunc(this), m_func(this), m_params(YAML_FLOW_SEQUENCE_STYLE),
      m_trace(this), m_coverage(this), m_profiler(this), m_hil(this)
{
    enterChildSections();
}

CTestSpecification::CTestSpecification(std::shared_ptr<CTestSpecification> parent)
    : CTestSpecification(CTestSpecificationWPtr(parent))
{
}

void CTestSpecification::enterChildSections()
{
    m_childSections[KEY_FUNC] = &m_func;
    m_childSections[KEY_INIT_FUNC] = &m_initFunc;
    m_childSections[KEY_END_FUNC] = &m_endFunc;
    m_childSections[KEY_TRACE] = &m_trace;
    m_childSections[KEY_COVERAGE] = &m_coverage;
    m_childSections[KEY_PROFILER] = &m_profiler;
    m_childSections[KEY_HIL] = &m_hil;
}

std::string CTestSpecification::getSectionName(int section)
{
    if (section >= 0 && section < NO_OF_SECTIONS) {
        return SECTION_NAMES[section];
    }
    return "ERR: invalid section value: " + CUtil::i2a(section);
}

// ---- loading and saving

std::shared_ptr<CTestSpecification> CTestSpecification::load(const std::string& fileName, int seekPos)
{
    auto spec = std::make_shared<CTestSpecification>();
    CYAMLUtil::parseYAML(*spec, fileName, seekPos);
    spec->validate();
    return spec;
}

std::shared_ptr<CTestSpecification> CTestSpecification::load(const std::string& fileName)
{
    return load(fileName, 0);
}

std::shared_ptr<CTestSpecification> CTestSpecification::parseTestSpec(const std::string& text)
{
    auto spec = std::make_shared<CTestSpecification>();
    CYAMLUtil::parseYAML(*spec, text);
    spec->validate();
    return spec;
}

void CTestSpecification::save(const std::string& fileName, bool isAppend)
{
    CYAMLDocumentWriter::save(*this, fileName, isAppend);
}

void CTestSpecification::save(const std::string& fileName)
{
    save(fileName, false);
}

std::string CTestSpecification::toString()
{
    return CYAMLDocumentWriter::toString(*this);
}

void CTestSpecification::validate()
{
    if (m_func.hasPositionParams() && !m_params.isEmpty()) {
        throw ParserException(KX_POS,
                              "Function parameters must not be specified in 'func' and 'params' sections. "
                              "Remove one of sections!");
    }
    for (const auto& derived : m_derived) {
        derived->validate();
    }
}

// ---- parser events

ITestParserEventReceiver* CTestSpecification::mappingStart(const yaml_event_t& event)
{
    switch (m_section) {
    case E_SECTION_MAIN:
        m_main = CYAMLMap(event);
        return this;
    case E_SECTION_STUB_ITEM: {
        auto stub = std::make_shared<CTestStub>(this);
        m_stubs.push_back(stub);
        return stub->mappingStart(event);
    }
    case E_SECTION_DERIVED_TEST_SPEC: {
        auto derived = std::make_shared<CTestSpecification>(weak_from_this());
        m_derived.push_back(derived);
        return derived->mappingStart(event);
    }
    default:
        throw ParserException(KX_POS, "Invalid section for mapping start: " + getSectionName(m_section) +
                                          ".  Key: '" + m_key + "'");
    }
}

ITestParserEventReceiver* CTestSpecification::mappingKey(const yaml_event_t& event)
{
    m_key = scalarText(event);
    if (m_section != E_SECTION_MAIN) {
        throw ParserException(KX_POS, "Invalid section for mapping key: '" + m_key + "'  Section: " +
                                          getSectionName(m_section));
    }
    auto child = m_childSections.find(m_key);
    if (child != m_childSections.end()) {
        return child->second;
    }
    if (m_key == KEY_ID) {
        m_section = E_SECTION_ID;
    } else if (m_key == KEY_RUN) {
        m_section = E_SECTION_RUN;
    } else if (m_key == KEY_DESC) {
        m_section = E_SECTION_DESC;
    } else if (m_key == KEY_TAGS) {
        if (!m_tags.isEmpty()) {
            throw ParserException(KX_POS, "Tags are already defined!");
        }
        return newSequenceReceiver(&m_tags, &m_tagValidator);
    } else if (m_key == KEY_STUBS) {
        m_section = E_SECTION_STUBS;
    } else if (m_key == KEY_PARAMS) {
        return newSequenceReceiver(&m_params, nullptr);
    } else if (m_key == KEY_LOCALS) {
        return newMapReceiver(&m_locals);
    } else if (m_key == KEY_INIT) {
        if (!m_init.isEmpty()) {
            throw IllegalStateException(KX_POS, "Init section is already defined for this test specification!");
        }
        return newMapReceiver(&m_init);
    } else if (m_key == KEY_OPTIONS) {
        return newMapReceiver(&m_options);
    } else if (m_key == KEY_EXPECT) {
        return newSequenceReceiver(&m_expect, nullptr);
    } else if (m_key == KEY_TESTS) {
        m_section = E_SECTION_DERIVED_TESTS;
    } else {
        throw ParserException(KX_POS, "Invalid section in test specification: " + m_key);
    }
    return this;
}

ITestParserEventReceiver* CTestSpecification::newSequenceReceiver(CYAMLSequence* target, CYAMLValidator* validator)
{
    m_sequenceReceiver = std::make_unique<CYAMLSequenceReceiver>(this, target, validator);
    return m_sequenceReceiver.get();
}

ITestParserEventReceiver* CTestSpecification::newMapReceiver(CYAMLMap* target)
{
    m_mapReceiver = std::make_unique<CYAMLMapReceiver>(this, target);
    return m_mapReceiver.get();
}

ITestParserEventReceiver* CTestSpecification::mappingValue(const yaml_event_t& event)
{
    switch (m_section) {
    case E_SECTION_MAIN:
        throw ParserException(KX_POS, "Scalars are not allowed in the main section: " + scalarText(event));
    case E_SECTION_ID:
        if (!m_id.isEmpty()) {
            throw ParserException(KX_POS, "ID already set to: '" + m_id.getValue() + "'");
        }
        m_id = CYAMLScalar(event);
        m_tagValidator.validate(m_id, "Test ID may not contain spaces and some symbols.");
        break;
    case E_SECTION_RUN:
        if (!m_run.isEmpty()) {
            throw ParserException(KX_POS, "'run' mode already set to: '" + m_run.getValue() + "'");
        }
        m_run = CYAMLBool(event);
        break;
    case E_SECTION_DESC:
        if (!m_desc.isEmpty()) {
            throw ParserException(KX_POS, "Description already set to: '" + m_desc.getValue() + "'");
        }
        m_desc = CYAMLScalar(event);
        break;
    default:
        throw ParserException(KX_POS, "Scalar values not allowed for section '" + getSectionName(m_section) +
                                          "'  Key: '" + m_key + "', value: " + scalarText(event));
    }
    m_section = E_SECTION_MAIN;
    return this;
}

ITestParserEventReceiver* CTestSpecification::mappingEnd()
{
    if (m_section != E_SECTION_MAIN) {
        throw ParserException(KX_POS, "Mapping end is not allowed in section: " + CUtil::i2a(int(m_section)));
    }
    return getParentTestSpecification().get();
}

ITestParserEventReceiver* CTestSpecification::sequenceStart(const yaml_event_t& event)
{
    switch (m_section) {
    case E_SECTION_STUBS:
        m_stubsBlock = CYAMLSequence(event);
        m_section = E_SECTION_STUB_ITEM;
        return this;
    case E_SECTION_DERIVED_TESTS:
        m_testsBlock = CYAMLSequence(event);
        m_section = E_SECTION_DERIVED_TEST_SPEC;
        return this;
    default:
        throw ParserException(KX_POS, "Invalid section for sequence. Section: " + getSectionName(m_section));
    }
}

ITestParserEventReceiver* CTestSpecification::sequenceValue(const yaml_event_t& event)
{
    throw ParserException(KX_POS, "Invalid section for sequence start (value = '" + scalarText(event) +
                                      "'): " + getSectionName(m_section));
}

ITestParserEventReceiver* CTestSpecification::sequenceEnd()
{
    if (m_section != E_SECTION_STUB_ITEM && m_section != E_SECTION_DERIVED_TEST_SPEC) {
        throw ParserException(KX_POS, "Invalid section for sequence end: " + getSectionName(m_section));
    }
    m_section = E_SECTION_MAIN;
    return this;
}

// ---- writing

void CTestSpecification::serialize(std::shared_ptr<IEmitter> emitter)
{
    serialize(emitter, true);
}

void CTestSpecification::writeKey(IEmitter& emitter, const char* key) const
{
    emitter.write(std::string(key));
}

void CTestSpecification::serialize(std::shared_ptr<IEmitter> emitter, bool isWriteMapBrackets)
{
    IEmitter::checkNotNull(emitter);
    checkStubs(m_stubs);
    IEmitter& out = *emitter;
    if (isWriteMapBrackets) {
        out.writeMapStart(m_main);
    }
    out.writeMappingPair(KEY_ID, m_id);
    out.writeMappingPair(KEY_RUN, m_run);
    out.writeMappingPair(KEY_DESC, m_desc);
    out.writeMappingPair(KEY_TAGS, m_tags);
    out.writeMappingPair(KEY_OPTIONS, m_options);
    out.writeMappingPair(KEY_LOCALS, m_locals);
    out.writeMappingPair(KEY_INIT, m_init);
    if (!m_func.isEmpty()) {
        writeKey(out, KEY_FUNC);
        m_func.serialize(emitter);
    }
    if (!m_params.isEmpty()) {
        writeKey(out, KEY_PARAMS);
        out.write(m_params);
    }
    if (!m_stubs.empty()) {
        writeKey(out, KEY_STUBS);
        out.writeSequenceStart(m_stubsBlock);
        for (const auto& stub : m_stubs) {
            stub->serialize(emitter);
        }
        out.writeSequenceEnd();
    }
    if (!m_initFunc.isEmpty()) {
        writeKey(out, KEY_INIT_FUNC);
        m_initFunc.serialize(emitter);
    }
    if (!m_endFunc.isEmpty()) {
        writeKey(out, KEY_END_FUNC);
        m_endFunc.serialize(emitter);
    }
    out.writeMappingPair(KEY_EXPECT, m_expect);
    if (!m_trace.isEmpty()) {
        writeKey(out, KEY_TRACE);
        m_trace.serialize(emitter);
    }
    if (!m_coverage.isEmpty()) {
        writeKey(out, KEY_COVERAGE);
        m_coverage.serialize(emitter);
    }
    if (!m_profiler.isEmpty()) {
        writeKey(out, KEY_PROFILER);
        m_profiler.serialize(emitter);
    }
    if (!m_hil.isEmpty()) {
        writeKey(out, KEY_HIL);
        m_hil.serialize(emitter);
    }
    if (!m_derived.empty()) {
        writeKey(out, KEY_TESTS);
        out.writeSequenceStart(m_testsBlock);
        for (const auto& derived : m_derived) {
            derived->serialize(emitter);
        }
        out.writeSequenceEnd();
    }
    if (isWriteMapBrackets) {
        out.writeMapEnd();
    }
}

// ---- tree

std::shared_ptr<CTestSpecification> CTestSpecification::getParentTestSpecification() const
{
    return m_parent.lock();
}

bool CTestSpecification::hasDerivedSpecs() const
{
    return !m_derived.empty();
}

int CTestSpecification::getNoOfDerivedSpecs() const
{
    return static_cast<int>(m_derived.size());
}

std::shared_ptr<CTestSpecification> CTestSpecification::getDerivedTestSpec(int idx) const
{
    if (idx < 0 || idx >= getNoOfDerivedSpecs()) {
        throw IndexOutOfBoundsException(KX_POS, "No derived test specificatin at the given index exists!")
            .add("idx", idx)
            .add("noOfDerivedTestSpecs", getNoOfDerivedSpecs());
    }
    return m_derived[idx];
}

std::shared_ptr<CTestSpecification> CTestSpecification::addDerivedTestSpec(const std::string& testId,
                                                                           const std::string& funcName)
{
    auto derived = std::make_shared<CTestSpecification>(weak_from_this());
    if (!testId.empty()) {
        derived->setTestId(testId);
    }
    if (!funcName.empty()) {
        derived->m_func.setName(funcName);
    }
    m_derived.push_back(derived);
    return derived;
}

void CTestSpecification::addDerivedTestSpec(int idx, std::shared_ptr<CTestSpecification> spec)
{
    // A null item or a cycle would break every later walk of the tree.
    if (!spec || spec->contains(this)) {
        throw IllegalArgumentException(KX_POS, "A derived test specification must be neither null nor an ancestor!")
            .add("idx", idx);
    }
    if (idx >= 0 && idx < getNoOfDerivedSpecs()) {
        m_derived.insert(m_derived.begin() + idx, spec);
    } else {
        m_derived.push_back(spec);
    }
}

bool CTestSpecification::contains(const CTestSpecification* spec) const
{
    return spec == this ||
           std::any_of(m_derived.begin(), m_derived.end(), [spec](const auto& d) { return d->contains(spec); });
}

int CTestSpecification::deleteDerivedTestSpec(std::shared_ptr<CTestSpecification> spec)
{
    auto found = std::find(m_derived.begin(), m_derived.end(), spec);
    if (found == m_derived.end()) {
        return -1;
    }
    int idx = static_cast<int>(found - m_derived.begin());
    m_derived.erase(found);
    return idx;
}

bool CTestSpecification::compare(std::shared_ptr<CTestSpecification> other) const
{
    return other.get() == this;
}

size_t CTestSpecification::hashCodeAsPtr() const
{
    return reinterpret_cast<size_t>(this);
}

int CTestSpecification::getNoOfTests(bool isRunFlagRespected) const
{
    bool isDisabled = isRunFlagRespected && !m_run.isEmpty() && !m_run.getBool();
    int count = isDisabled ? 0 : 1;
    for (const auto& derived : m_derived) {
        count += derived->getNoOfTests(isRunFlagRespected);
    }
    return count;
}

bool CTestSpecification::isEmptyExceptDerived() const
{
    return m_id.isEmpty() && m_run.isEmpty() && m_desc.isEmpty() && m_tags.isEmpty() && m_options.isEmpty() &&
           m_locals.isEmpty() && m_init.isEmpty() && m_func.isEmpty() && m_params.isEmpty() && m_stubs.empty() &&
           m_initFunc.isEmpty() && m_endFunc.isEmpty() && m_expect.isEmpty() && m_trace.isEmpty() &&
           m_coverage.isEmpty() && m_profiler.isEmpty() && m_hil.isEmpty();
}

bool CTestSpecification::isEmpty() const
{
    return isEmptyExceptDerived() && m_derived.empty();
}

// ---- merge

CTestSpecification::Levels CTestSpecification::getLevels(std::vector<CTestSpecificationSPtr>& holders) const
{
    Levels levels{this};
    for (auto parent = getParentTestSpecification(); parent; parent = parent->getParentTestSpecification()) {
        holders.push_back(parent);
        levels.push_back(parent.get());
    }
    return levels;
}

template <typename T>
void CTestSpecification::inherit(const Levels& levels, T CTestSpecification::*field)
{
    for (const CTestSpecification* level : levels) {
        if (!(level->*field).isEmpty()) {
            this->*field = level->*field;
            return;
        }
    }
}

std::shared_ptr<CTestSpecification> CTestSpecification::merge()
{
    std::vector<CTestSpecificationSPtr> holders;
    const Levels levels = getLevels(holders);
    auto merged = std::make_shared<CTestSpecification>(weak_from_this());

    // Each field comes whole from the nearest level that states it; maps and lists of
    // different levels are never combined. Run flag, main block and derived tests stay empty.
    merged->inherit(levels, &CTestSpecification::m_id);
    merged->inherit(levels, &CTestSpecification::m_desc);
    merged->inherit(levels, &CTestSpecification::m_tags);
    merged->inherit(levels, &CTestSpecification::m_options);
    merged->inherit(levels, &CTestSpecification::m_locals);
    merged->inherit(levels, &CTestSpecification::m_init);
    merged->inherit(levels, &CTestSpecification::m_initFunc);
    merged->inherit(levels, &CTestSpecification::m_endFunc);
    merged->mergeFuncAndParams(levels);
    merged->mergeStubs(levels);
    merged->inherit(levels, &CTestSpecification::m_expect);
    merged->inherit(levels, &CTestSpecification::m_trace);
    merged->inherit(levels, &CTestSpecification::m_coverage);
    merged->inherit(levels, &CTestSpecification::m_profiler);
    merged->inherit(levels, &CTestSpecification::m_hil);
    return merged;
}

void CTestSpecification::mergeFuncAndParams(const Levels& levels)
{
    // One walk, so that the nearer of "func" parameters and "params" wins.
    for (const CTestSpecification* level : levels) {
        if (!level->m_func.isEmpty() && m_func.isEmpty()) {
            m_func = level->m_func;
            if (!m_params.isEmpty()) {
                m_func.setPositionParameters("[]");
            }
        }
        if (!level->m_params.isEmpty() && m_params.isEmpty() && !m_func.hasPositionParams()) {
            m_params = level->m_params;
        }
    }
}

void CTestSpecification::mergeStubs(const Levels& levels)
{
    for (const CTestSpecification* level : levels) {
        if (!level->m_stubs.empty()) {
            checkStubs(level->m_stubs);
            m_stubsBlock = level->m_stubsBlock;
            for (const auto& stub : level->m_stubs) {
                auto copy = std::make_shared<CTestStub>(*stub);
                copy->setParent(this);
                m_stubs.push_back(copy);
            }
            return;
        }
    }
}

// ---- getters

bool CTestSpecification::getRunFlag() const
{
    return m_run.isEmpty() ? true : m_run.getBool();
}

void CTestSpecification::getTags(StrVector& tags) const
{
    for (const auto& tag : m_tags.getItems()) {
        tags.push_back(tag.getValue());
    }
}

bool CTestSpecification::hasPositionParams() const
{
    return !m_params.isEmpty() || m_func.hasPositionParams();
}

void CTestSpecification::getPositionParams(StrVector& params) const
{
    if (m_func.hasPositionParams()) {
        m_func.getPositionParams(params);
        return;
    }
    for (const auto& param : m_params.getItems()) {
        params.push_back(param.getValue());
    }
}

void CTestSpecification::getLocalVariables(StrStrMap& locals) const
{
    m_locals.getMap(locals);
}

void CTestSpecification::getInitValues(StrVector& values) const
{
    m_init.getValues(values);
}

void CTestSpecification::getOptionValues(StrVector& values) const
{
    m_options.getValues(values);
}

void CTestSpecification::getExpectedResults(StrVector& expected, bool isQuoted) const
{
    if (isQuoted) {
        m_expect.getQuotedVector(expected);
    } else {
        m_expect.getVector(expected);
    }
}

// ---- setters

void CTestSpecification::setTestId(const std::string& text)
{
    CYAMLUtil::parseScalar(m_id, text);
}

void CTestSpecification::setDescription(const std::string& text)
{
    CYAMLUtil::parseScalar(m_desc, text);
}

void CTestSpecification::setRunFlag(bool isRun)
{
    m_run.setBool(isRun);
}

void CTestSpecification::clearRunFlag()
{
    m_run.setDefault(true);
}

void CTestSpecification::setTags(const std::string& text)
{
    CSectionSetters::setSequenceItems(m_tags, text);
}

void CTestSpecification::setExpectedResults(const std::string& text)
{
    CSectionSetters::setSequenceItems(m_expect, text);
}

void CTestSpecification::setPositionParams(const std::string& text)
{
    if (m_func.hasPositionParams()) {
        throw IOException(KX_POS, "Parameters must not be assigned in both the 'func' section and 'params' section.")
            .add("params", text);
    }
    CSectionSetters::setSequenceItems(m_params, text);
}

void CTestSpecification::setLocalVariables(const std::string& text)
{
    CSectionSetters::setMapEntries(m_locals, text);
}

void CTestSpecification::setInitValues(const std::string& text)
{
    CSectionSetters::setMapEntries(m_init, text);
}

void CTestSpecification::setIdeOptions(const std::string& text)
{
    CSectionSetters::setMapEntries(m_options, text);
}

std::shared_ptr<CTestStub> CTestSpecification::newTestStub()
{
    return std::make_shared<CTestStub>();
}

void CTestSpecification::removeStub(int idx)
{
    // A managed caller may pass any index: refuse a wrong one rather than corrupt the vector.
    if (idx < 0 || idx >= static_cast<int>(m_stubs.size())) {
        throw IndexOutOfBoundsException(KX_POS, "No stub at the given index exists!")
            .add("idx", idx)
            .add("noOfStubs", static_cast<int>(m_stubs.size()));
    }
    m_stubs.erase(m_stubs.begin() + idx);
}

} // namespace kestrix
