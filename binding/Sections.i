// Sections of a test specification: function calls, stubs and the HIL block. Declared by
// hand: the parser event operations are not exported, and overloads keep the callers' numbers.

%{
#include "CTestFunction.h"
#include "CTestHIL.h"
#include "CTestStub.h"
%}

%shared_ptr(kestrix::CTestStub)

namespace kestrix {

class ITestParserEventReceiver;

class CTestFunction {
public:
    CTestFunction(ITestParserEventReceiver* parent);
    CTestFunction();

    bool isEmpty() const;
    std::string getName() const;
    std::string getRetValueName() const;
    bool hasPositionParams() const;
    void getPositionParams(StrVector& params) const;
    void setName(const std::string& name);
    void setRetValueName(const std::string& retValueName);
    void setPositionParameters(const std::string& params);
    void serialize(std::shared_ptr<IEmitter> emitter);
};

class CTestStub {
public:
    CTestStub();
    CTestStub(ITestParserEventReceiver* parent);

    std::string getFunctionName() const;
    std::string getRetValName() const;
    void getParamNames(StrVector& names) const;
    const StrVector& getAssignmentKeys() const;
    void getAssignmentValues(StrVector& values) const;
    CTestFunction& getScriptFunction();
    void setFunctionName(const std::string& name);
    void setRetValName(const std::string& retValName);
    void setParamNames(const std::string& names);
    void setAssignments(const std::string& assignments);
    void serialize(std::shared_ptr<IEmitter> emitter);
};

class CTestHIL {
public:
    CTestHIL(ITestParserEventReceiver* parent);

    const StrVector& getHILParamKeys() const;
    void getHILParamValues(StrVector& values) const;
    void setParams(const std::string& params);
    bool isEmpty() const;
    void serialize(std::shared_ptr<IEmitter> emitter);
};

} // namespace kestrix

%template(StubsVector) std::vector<std::shared_ptr<kestrix::CTestStub> >;
