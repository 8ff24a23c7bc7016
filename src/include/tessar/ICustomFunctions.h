#pragma once

#include <string>

#include "Containers.h"

namespace kestrix {

class CTestStub;

/// Script functions of a test run, implemented by the caller: init and end functions, and the
/// handling of a stub stop. Each gives an integer that the run ignores. The run calls the
/// `StrVector` forms and `stub`; it owns no such object and never deletes one.
class ICustomFunctions {
public:
    virtual int init(const std::string& functionName, const StrStrMap& params) = 0;
    virtual int init(const std::string& functionName, const StrVector& params) = 0;
    virtual int end(const std::string& functionName, const StrStrMap& params) = 0;
    virtual int end(const std::string& functionName, const StrVector& params) = 0;
    virtual int stub(const CTestStub& stub) = 0;
};

} // namespace kestrix
