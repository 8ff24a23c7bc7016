#include "services/CallConvention.h"

#include <algorithm>

#include "expr/Converter.h"

namespace quillon::services {
namespace {

using debuginfo::Type;
using target::Register;

bool isComposite(const Type* type)
{
    const Type::Kind kind = type->unqualified()->kind();
    return kind == Type::Kind::Struct || kind == Type::Kind::Union || kind == Type::Kind::Array;
}

const Type* nonVoid(const Type* type)
{
    return type == nullptr || type->unqualified()->kind() == Type::Kind::Void ? nullptr : type;
}

Register core(unsigned index)
{
    return static_cast<Register>(static_cast<int>(Register::R0) + static_cast<int>(index));
}

} // namespace

bool CallConvention::returnsInMemory(const Type* type)
{
    return nonVoid(type) != nullptr && isComposite(type) && type->size() > 4;
}

std::vector<expr::Value> CallConvention::entryParameters(const target::Target& target,
                                                         const debuginfo::Function& function)
{
    std::vector<expr::Value> values;
    unsigned ncrn = returnsInMemory(function.returnType) ? 1 : 0;
    std::uint32_t nsaa = target.readRegister(Register::SP);
    bool onStack = false;
    for (const debuginfo::Variable& parameter : function.parameters) {
        const Type* type = parameter.type;
        const std::uint32_t size = static_cast<std::uint32_t>(type->size());
        const unsigned words = (size + 3) / 4;
        const bool doubleAligned = expr::Converter::alignment(type) >= 8;
        if (doubleAligned && ncrn % 2 != 0) {
            ++ncrn;
        }
        if (!onStack && ncrn + words <= 4) {
            if (words == 1 && type->isScalar()) {
                values.push_back(expr::Value::inRegister(type, core(ncrn)));
            } else {
                std::vector<std::uint8_t> bytes;
                for (unsigned i = 0; i < words; ++i) {
                    const std::uint32_t word = target.readRegister(core(ncrn + i));
                    for (unsigned b = 0; b < 4; ++b) {
                        bytes.push_back(static_cast<std::uint8_t>(word >> (8 * b)));
                    }
                }
                bytes.resize(size);
                values.push_back(expr::Value::ofBytes(type, std::move(bytes)));
            }
            ncrn += words;
            continue;
        }
        if (!onStack && isComposite(type) && ncrn < 4) {
            std::vector<std::uint8_t> bytes;
            for (; ncrn < 4; ++ncrn) {
                const std::uint32_t word = target.readRegister(core(ncrn));
                for (unsigned b = 0; b < 4; ++b) {
                    bytes.push_back(static_cast<std::uint8_t>(word >> (8 * b)));
                }
            }
            const std::vector<std::uint8_t> rest = target.readMemory(nsaa, size - bytes.size());
            bytes.insert(bytes.end(), rest.begin(), rest.end());
            nsaa += (static_cast<std::uint32_t>(rest.size()) + 3) & ~3u;
            onStack = true;
            values.push_back(expr::Value::ofBytes(type, std::move(bytes)));
            continue;
        }
        ncrn = 4;
        onStack = true;
        if (doubleAligned) {
            nsaa = (nsaa + 7) & ~7u;
        }
        values.push_back(expr::Value::inMemory(type, nsaa));
        nsaa += words * 4;
    }
    return values;
}

void CallConvention::returnNow(target::Target& target, const Type* type, const std::vector<std::uint8_t>& bytes)
{
    if (returnsInMemory(type)) {
        target.writeMemory(target.readRegister(Register::R0), bytes);
    } else {
        std::uint64_t bits = 0;
        for (std::size_t i = 0; i < bytes.size() && i < 8; ++i) {
            bits |= std::uint64_t(bytes[i]) << (8 * i);
        }
        target.writeRegister(Register::R0, static_cast<std::uint32_t>(bits));
        if (nonVoid(type) != nullptr && type->size() > 4) {
            target.writeRegister(Register::R1, static_cast<std::uint32_t>(bits >> 32));
        }
    }
    target.writeRegister(Register::PC, target.readRegister(Register::LR) & ~1u);
}

} // namespace quillon::services
