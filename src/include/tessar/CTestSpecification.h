#pragma once

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "CLimitedScalarValidator.h"
#include "CTestCoverage.h"
#include "CTestFunction.h"
#include "CTestHIL.h"
#include "CTestProfiler.h"
#include "CTestStub.h"
#include "CTestTrace.h"
#include "CYAMLBool.h"
#include "CYAMLMap.h"
#include "CYAMLMapReceiver.h"
#include "CYAMLScalar.h"
#include "CYAMLSequence.h"
#include "CYAMLSequenceReceiver.h"
#include "Containers.h"
#include "ITestParserEventReceiver.h"

namespace kestrix {

class CTestSpecification;
typedef std::weak_ptr<CTestSpecification> CTestSpecificationWPtr;
typedef std::shared_ptr<CTestSpecification> CTestSpecificationSPtr;

/// One test: function under test, parameters, stubs, locals, initial values, expected
/// expressions and analyzer settings, with the tests derived from it. Always held by a
/// shared pointer; a derived test points to its parent weakly and takes from it what it
/// does not state itself (see `merge`).
class CTestSpecification : public ITestParserEventReceiver,
                           public std::enable_shared_from_this<CTestSpecification> {
public:
    // Keys of a specification block, in the order of writing.
    static constexpr const char* KEY_ID = "id";
    static constexpr const char* KEY_RUN = "run";
    static constexpr const char* KEY_DESC = "desc";
    static constexpr const char* KEY_TAGS = "tags";
    static constexpr const char* KEY_OPTIONS = "options";
    static constexpr const char* KEY_LOCALS = "locals";
    static constexpr const char* KEY_INIT = "init";
    static constexpr const char* KEY_FUNC = "func";
    static constexpr const char* KEY_PARAMS = "params";
    static constexpr const char* KEY_STUBS = "stubs";
    static constexpr const char* KEY_INIT_FUNC = "initFunc";
    static constexpr const char* KEY_END_FUNC = "endFunc";
    static constexpr const char* KEY_EXPECT = "expect";
    static constexpr const char* KEY_TRACE = "trace";
    static constexpr const char* KEY_COVERAGE = "coverage";
    static constexpr const char* KEY_PROFILER = "profiler";
    static constexpr const char* KEY_HIL = "hil";
    static constexpr const char* KEY_TESTS = "tests";

    /// What `m_section` holds while a block is read; `getSectionName` gives the names.
    enum ESection {
        E_SECTION_MAIN,
        E_SECTION_ID,
        E_SECTION_CONFIG,
        E_SECTION_RUN,
        E_SECTION_DESC,
        E_SECTION_TAGS,
        E_SECTION_OPTIONS,
        E_SECTION_INITFUNC,
        E_SECTION_ENDFUNC,
        E_SECTION_LOCALS,
        E_SECTION_INIT,
        E_SECTION_STUBS,
        E_SECTION_STUB_ITEM,
        E_SECTION_FUNC,
        E_SECTION_PARAMS,
        E_SECTION_EXPECT,
        E_SECTION_TRACE,
        E_SECTION_COVERAGE,
        E_SECTION_PROFILER,
        E_SECTION_HIL,
        E_SECTION_DERIVED_TESTS,
        E_SECTION_DERIVED_TEST_SPEC
    };

    CTestSpecification();
    explicit CTestSpecification(CTestSpecificationWPtr parent);
    explicit CTestSpecification(std::shared_ptr<CTestSpecification> parent);
    // Child receivers point into this object: it is never copied.
    CTestSpecification(const CTestSpecification&) = delete;
    CTestSpecification& operator=(const CTestSpecification&) = delete;

    /// Name of a section value for messages.
    static std::string getSectionName(int section);

    // Loading and saving.
    /// Reads a file from `seekPos` on and validates the tree.
    static std::shared_ptr<CTestSpecification> load(const std::string& fileName, int seekPos);
    static std::shared_ptr<CTestSpecification> load(const std::string& fileName);
    /// Reads YAML text and validates the tree.
    static std::shared_ptr<CTestSpecification> parseTestSpec(const std::string& text);
    /// Writes one YAML document; a file that cannot be opened is silently skipped.
    void save(const std::string& fileName, bool isAppend);
    void save(const std::string& fileName);
    std::string toString();
    /// Refuses parameters given both in "func" and "params" of one block, in the whole tree.
    void validate();

    // Parser events.
    ITestParserEventReceiver* mappingStart(const yaml_event_t& event) override;
    ITestParserEventReceiver* mappingKey(const yaml_event_t& event) override;
    ITestParserEventReceiver* mappingValue(const yaml_event_t& event) override;
    ITestParserEventReceiver* mappingEnd() override;
    ITestParserEventReceiver* sequenceStart(const yaml_event_t& event) override;
    ITestParserEventReceiver* sequenceValue(const yaml_event_t& event) override;
    ITestParserEventReceiver* sequenceEnd() override;
    /// Writes the block with its own mapping brackets.
    void serialize(std::shared_ptr<IEmitter> emitter) override;
    /// Without brackets the keys go into a mapping that the caller has opened (a bench does).
    void serialize(std::shared_ptr<IEmitter> emitter, bool isWriteMapBrackets);

    // Tree.
    std::shared_ptr<CTestSpecification> getParentTestSpecification() const;
    bool hasDerivedSpecs() const;
    int getNoOfDerivedSpecs() const;
    std::shared_ptr<CTestSpecification> getDerivedTestSpec(int idx) const;
    /// A new derived test with this one as parent; empty texts are not set.
    std::shared_ptr<CTestSpecification> addDerivedTestSpec(const std::string& testId, const std::string& funcName);
    /// Inserts in front of `idx`, or appends when `idx` is out of range. The parent of
    /// `spec` stays as it was made. A null `spec` or one that holds this test is refused.
    void addDerivedTestSpec(int idx, std::shared_ptr<CTestSpecification> spec);
    /// Index that `spec` had, or -1 when it is not a direct child.
    int deleteDerivedTestSpec(std::shared_ptr<CTestSpecification> spec);
    /// The flat test: each field from the nearest level that states it.
    std::shared_ptr<CTestSpecification> merge();
    bool compare(std::shared_ptr<CTestSpecification> other) const;
    size_t hashCodeAsPtr() const;
    /// This test and all derived ones; with `isRunFlagRespected` a disabled test counts 0.
    int getNoOfTests(bool isRunFlagRespected) const;
    bool isEmptyExceptDerived() const;
    bool isEmpty() const;

    // Getters.
    const std::string& getTestId() const { return m_id.getValue(); }
    const std::string& getDescription() const { return m_desc.getValue(); }
    bool getRunFlag() const;
    void getTags(StrVector& tags) const;
    CTestFunction& getFunctionUnderTest() { return m_func; }
    CTestFunction& getInitFunction() { return m_initFunc; }
    CTestFunction& getEndFunction() { return m_endFunc; }
    bool hasPositionParams() const;
    void getPositionParams(StrVector& params) const;
    StubsVector& getStubs() { return m_stubs; }
    void getLocalVariables(StrStrMap& locals) const;
    const StrVector& getInitKeys() const { return m_init.getKeyTexts(); }
    void getInitValues(StrVector& values) const;
    const StrVector& getOptionKeys() const { return m_options.getKeyTexts(); }
    void getOptionValues(StrVector& values) const;
    void getExpectedResults(StrVector& expected, bool isQuoted) const;
    CTestTrace& getTrace() { return m_trace; }
    CTestCoverage& getCoverage() { return m_coverage; }
    CTestProfiler& getProfiler() { return m_profiler; }
    CTestHIL& getHIL() { return m_hil; }

    // Setters; texts are YAML, quoted as in a file.
    void setTestId(const std::string& text);
    void setDescription(const std::string& text);
    void setRunFlag(bool isRun);
    /// The flag is no longer written and reads true.
    void clearRunFlag();
    void setTags(const std::string& text);
    void setExpectedResults(const std::string& text);
    void setPositionParams(const std::string& text);
    void setLocalVariables(const std::string& text);
    void setInitValues(const std::string& text);
    void setIdeOptions(const std::string& text);
    /// A stub with no parent, not yet in the stubs: add it through `getStubs()`.
    std::shared_ptr<CTestStub> newTestStub();
    void removeStub(int idx);

private:
    /// Levels of the tree from one specification up to the root, the nearest first.
    typedef std::vector<const CTestSpecification*> Levels;

    void enterChildSections();
    /// True when `spec` is this one or lies in its derived tree.
    bool contains(const CTestSpecification* spec) const;
    /// The levels from this one up; `holders` keeps the ancestors alive meanwhile.
    Levels getLevels(std::vector<CTestSpecificationSPtr>& holders) const;
    /// Sets `field` from the nearest level where it is not empty.
    template <typename T>
    void inherit(const Levels& levels, T CTestSpecification::*field);
    void mergeFuncAndParams(const Levels& levels);
    void mergeStubs(const Levels& levels);
    ITestParserEventReceiver* newSequenceReceiver(CYAMLSequence* target, CYAMLValidator* validator);
    ITestParserEventReceiver* newMapReceiver(CYAMLMap* target);
    void writeKey(IEmitter& emitter, const char* key) const;

    CTestSpecificationWPtr m_parent;
    CYAMLScalar m_id;
    CYAMLBool m_run;
    CYAMLScalar m_desc;
    CYAMLSequence m_tags;
    CTestFunction m_initFunc;
    CTestFunction m_endFunc;
    CYAMLSequence m_stubsBlock;
    StubsVector m_stubs;
    CYAMLMap m_locals;
    CYAMLMap m_init;
    CTestFunction m_func;
    CYAMLSequence m_params;
    CYAMLSequence m_expect;
    CTestTrace m_trace;
    CTestCoverage m_coverage;
    CTestProfiler m_profiler;
    CTestHIL m_hil;
    CYAMLMap m_options;
    CYAMLSequence m_testsBlock;
    std::vector<CTestSpecificationSPtr> m_derived;
    std::map<std::string, ITestParserEventReceiver*> m_childSections;
    std::unique_ptr<CYAMLMapReceiver> m_mapReceiver;
    std::unique_ptr<CYAMLSequenceReceiver> m_sequenceReceiver;
    CLimitedScalarValidator m_tagValidator;
    ESection m_section = E_SECTION_MAIN;
    std::string m_key;
    CYAMLMap m_main;
};

} // namespace kestrix
