// The test specification tree and the test bench, held by shared pointers on the managed side.
// Declared by hand: the parser event operations are not exported, and overloads are declared
// in the order of the callers' numbers. Comes after the section files, whose classes it uses.

%{
#include "CTestBench.h"
#include "CTestSpecification.h"
%}

%shared_ptr(kestrix::CTestSpecification)
%shared_ptr(kestrix::CTestBench)

// The catalogue exports `newTestStub` as a free function under the name below; the proxy
// class gets its method back in C#.
%{
static std::shared_ptr<kestrix::CTestStub> new_CTestSpecificationTestStub(kestrix::CTestSpecification* self)
{
    return self->newTestStub();
}
%}
%typemap(cscode) kestrix::CTestSpecification %{
  public CTestStub newTestStub() {
    return kestrixOrbel.new_CTestSpecificationTestStub(this);
  }
%}

namespace kestrix {

class CTestSpecification;
typedef std::weak_ptr<CTestSpecification> CTestSpecificationWPtr;

class CTestSpecification {
public:
    CTestSpecification();
    CTestSpecification(CTestSpecificationWPtr parent);
    CTestSpecification(std::shared_ptr<CTestSpecification> parent);

    static std::shared_ptr<CTestSpecification> load(const std::string& fileName, int seekPos);
    static std::shared_ptr<CTestSpecification> load(const std::string& fileName);
    static std::shared_ptr<CTestSpecification> parseTestSpec(const std::string& text);
    void save(const std::string& fileName, bool isAppend);
    void save(const std::string& fileName);
    std::string toString();
    void validate();
    void serialize(std::shared_ptr<IEmitter> emitter);
    void serialize(std::shared_ptr<IEmitter> emitter, bool isWriteMapBrackets);

    std::shared_ptr<CTestSpecification> getParentTestSpecification() const;
    bool hasDerivedSpecs() const;
    int getNoOfDerivedSpecs() const;
    std::shared_ptr<CTestSpecification> getDerivedTestSpec(int idx) const;
    std::shared_ptr<CTestSpecification> addDerivedTestSpec(const std::string& testId, const std::string& funcName);
    void addDerivedTestSpec(int idx, std::shared_ptr<CTestSpecification> spec);
    int deleteDerivedTestSpec(std::shared_ptr<CTestSpecification> spec);
    std::shared_ptr<CTestSpecification> merge();
    bool compare(std::shared_ptr<CTestSpecification> other) const;
    size_t hashCodeAsPtr() const;
    int getNoOfTests(bool isRunFlagRespected) const;
    bool isEmptyExceptDerived() const;
    bool isEmpty() const;

    const std::string& getTestId() const;
    const std::string& getDescription() const;
    bool getRunFlag() const;
    void getTags(StrVector& tags) const;
    CTestFunction& getFunctionUnderTest();
    CTestFunction& getInitFunction();
    CTestFunction& getEndFunction();
    bool hasPositionParams() const;
    void getPositionParams(StrVector& params) const;
    std::vector<std::shared_ptr<kestrix::CTestStub> >& getStubs();
    void getLocalVariables(StrStrMap& locals) const;
    const StrVector& getInitKeys() const;
    void getInitValues(StrVector& values) const;
    const StrVector& getOptionKeys() const;
    void getOptionValues(StrVector& values) const;
    void getExpectedResults(StrVector& expected, bool isQuoted) const;
    CTestTrace& getTrace();
    CTestCoverage& getCoverage();
    CTestProfiler& getProfiler();
    CTestHIL& getHIL();

    void setTestId(const std::string& text);
    void setDescription(const std::string& text);
    void setRunFlag(bool isRun);
    void clearRunFlag();
    void setTags(const std::string& text);
    void setExpectedResults(const std::string& text);
    void setPositionParams(const std::string& text);
    void setLocalVariables(const std::string& text);
    void setInitValues(const std::string& text);
    void setIdeOptions(const std::string& text);
    void removeStub(int idx);
};

class CTestBench {
public:
    CTestBench();

    static std::shared_ptr<CTestBench> load(const std::string& fileName, int seekPos);
    static std::shared_ptr<CTestBench> load(const std::string& fileName);
    static std::shared_ptr<CTestBench> parse(const std::string& text);
    void save(const std::string& fileName, bool isAppend);
    void save(const std::string& fileName);
    void serialize(std::shared_ptr<IEmitter> emitter);

    std::shared_ptr<CTestSpecification> getTestSpecification() const;
    std::shared_ptr<CTestEnvironmentConfig> getTestEnvironmentConfig() const;
    std::shared_ptr<CTestReportConfig> getTestReportConfig() const;
};

} // namespace kestrix

std::shared_ptr<kestrix::CTestStub> new_CTestSpecificationTestStub(kestrix::CTestSpecification* self);
