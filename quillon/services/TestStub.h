#pragma once

#include <cstdint>
#include <map>
#include <string>

#include "debuginfo/Function.h"

namespace quillon::services {

/// A stubbed function of a test: the target stops at its entry instead of running its body. Its parameters are
/// named by index; its return value, when named, has a slot in the test frame.
struct TestStub {
    std::uint32_t handle = 0;
    const debuginfo::Function* function = nullptr;
    std::map<unsigned, std::string> parameterNames;
    std::string returnName;
    unsigned hits = 0;
};

} // namespace quillon::services
