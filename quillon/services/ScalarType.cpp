#include "services/ScalarType.h"

#include <algorithm>

#include "debuginfo/Type.h"

namespace quillon::services {

ScalarType ScalarType::of(const debuginfo::Type* type)
{
    using debuginfo::Type;
    if (!type) {
        return {};
    }
    const Type* t = type->unqualified();
    unsigned bits = static_cast<unsigned>(std::min<std::uint64_t>(t->size() * 8, 255));
    switch (t->kind()) {
    case Type::Kind::Void:
    case Type::Kind::Function:
        return {};
    case Type::Kind::Pointer:
        return {Address, bits};
    case Type::Kind::Base:
    case Type::Kind::Enum:
        if (t->isFloat()) {
            return {Float, bits};
        }
        return {t->isSigned() ? Signed : Unsigned, bits};
    default:
        return {Compound, bits};
    }
}

} // namespace quillon::services
