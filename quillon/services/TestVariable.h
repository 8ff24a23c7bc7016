#pragma once

#include <cstdint>
#include <string>

#include "debuginfo/Type.h"

namespace quillon::services {

/// A test-local variable: a name, a type from a C type text, and its slot in the test frame once initialized.
struct TestVariable {
    std::uint32_t handle = 0;
    std::string name;
    const debuginfo::Type* type = nullptr;
};

} // namespace quillon::services
