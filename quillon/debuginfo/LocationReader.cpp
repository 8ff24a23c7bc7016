#include "debuginfo/LocationReader.h"

#include "debuginfo/DebugInfoError.h"

#include <dwarf.h>

#include <cstring>

namespace quillon::debuginfo {

namespace {

LocationExpression copy(Dwarf_Attribute* attr, Dwarf_Op* ops, size_t count)
{
    LocationExpression expression;
    expression.reserve(count);
    for (size_t i = 0; i < count; ++i) {
        LocationOp op;
        op.atom = ops[i].atom;
        op.number = ops[i].number;
        op.number2 = ops[i].number2;
        op.offset = ops[i].offset;
        if (op.atom == DW_OP_implicit_value) {
            Dwarf_Block block;
            if (dwarf_getlocation_implicit_value(attr, &ops[i], &block) == 0) {
                op.block.assign(block.data, block.data + block.length);
            }
        }
        expression.push_back(std::move(op));
    }
    return expression;
}

LocationExpression implicitValue(std::vector<std::uint8_t> bytes)
{
    LocationOp op;
    op.atom = DW_OP_implicit_value;
    op.number = bytes.size();
    op.block = std::move(bytes);
    return LocationExpression{std::move(op)};
}

} // namespace

LocationList LocationReader::read(const DwarfDie& entry, int attribute)
{
    LocationList list;
    Dwarf_Attribute attr;
    if (!entry.attribute(attribute, &attr)) {
        return list;
    }
    Dwarf_Addr base = 0, start = 0, end = 0;
    Dwarf_Op* ops = nullptr;
    size_t count = 0;
    ptrdiff_t offset = 0;
    while ((offset = dwarf_getlocations(&attr, offset, &base, &start, &end, &ops, &count)) > 0) {
        if (start < end) {
            list.add(LocationList::Entry{start, end, copy(&attr, ops, count)});
        }
    }
    if (offset < 0) {
        throw DebugInfoError("bad location of '" + entry.name() + "': " + dwarf_errmsg(-1));
    }
    return list;
}

LocationList LocationReader::constant(const DwarfDie& entry, const Type* type)
{
    Dwarf_Attribute attr;
    if (!entry.attribute(DW_AT_const_value, &attr)) {
        return LocationList();
    }
    Dwarf_Block block;
    if (dwarf_whatform(&attr) != DW_FORM_data16 && dwarf_formblock(&attr, &block) == 0) {
        return LocationList::always(implicitValue({block.data, block.data + block.length}));
    }
    if (const char* text = dwarf_formstring(&attr)) {
        return LocationList::always(implicitValue({text, text + std::strlen(text) + 1}));
    }
    const bool isSigned = type && type->isSigned();
    const std::uint64_t value = isSigned ? static_cast<std::uint64_t>(entry.signedValue(DW_AT_const_value).value_or(0))
                                         : entry.unsignedValue(DW_AT_const_value).value_or(0);
    const std::uint64_t size = type && type->size() > 0 && type->size() <= 8 ? type->size() : 4;
    std::vector<std::uint8_t> bytes;
    for (std::uint64_t i = 0; i < size; ++i) {
        bytes.push_back(static_cast<std::uint8_t>(value >> (8 * i)));
    }
    return LocationList::always(implicitValue(std::move(bytes)));
}

} // namespace quillon::debuginfo
