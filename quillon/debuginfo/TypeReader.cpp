#include "debuginfo/TypeReader.h"

#include <dwarf.h>

namespace quillon::debuginfo {

namespace {

Type::Encoding encodingOf(std::uint64_t ate)
{
    switch (ate) {
    case DW_ATE_signed:
        return Type::Encoding::Signed;
    case DW_ATE_unsigned:
        return Type::Encoding::Unsigned;
    case DW_ATE_signed_char:
        return Type::Encoding::SignedChar;
    case DW_ATE_unsigned_char:
    case DW_ATE_UTF:
        return Type::Encoding::UnsignedChar;
    case DW_ATE_boolean:
        return Type::Encoding::Bool;
    case DW_ATE_float:
        return Type::Encoding::Float;
    default:
        return Type::Encoding::None;
    }
}

// The byte offset of a member: a constant, or the DWARF 2 form DW_OP_plus_uconst.
std::uint64_t memberLocation(const DwarfDie& member)
{
    if (auto constant = member.unsignedValue(DW_AT_data_member_location)) {
        return *constant;
    }
    Dwarf_Attribute attr;
    Dwarf_Op* ops = nullptr;
    size_t count = 0;
    if (member.attribute(DW_AT_data_member_location, &attr) && dwarf_getlocation(&attr, &ops, &count) == 0 &&
        count == 1 && ops[0].atom == DW_OP_plus_uconst) {
        return ops[0].number;
    }
    return 0;
}

// Elements of one array dimension: DW_AT_count, else upper - lower + 1; nothing if not constant.
std::optional<std::uint64_t> dimension(const DwarfDie& subrange)
{
    if (auto count = subrange.unsignedValue(DW_AT_count)) {
        return count;
    }
    auto upper = subrange.signedValue(DW_AT_upper_bound);
    if (!upper) {
        return std::nullopt;
    }
    const std::int64_t lower = subrange.signedValue(DW_AT_lower_bound).value_or(0);
    return *upper < lower ? 0 : static_cast<std::uint64_t>(*upper - lower + 1);
}

} // namespace

const Type* TypeReader::typeOf(const DwarfDie& entry, std::size_t unit)
{
    auto type = entry.type();
    return type ? read(*type, unit) : m_table.voidType();
}

const Type* TypeReader::read(const DwarfDie& entry, std::size_t unit)
{
    if (const Type* known = m_table.forEntry(entry.offset())) {
        return known;
    }
    if (!m_reading.insert(entry.offset()).second) {
        return m_table.voidType(); // a cycle that no struct breaks: malformed
    }
    const Type* type = readUncached(entry, unit);
    m_reading.erase(entry.offset());
    m_table.bindEntry(entry.offset(), type);
    return type;
}

// Creates the type and binds it before its parts are read, so that the parts may refer back.
Type* TypeReader::start(const DwarfDie& entry, Type::Kind kind, std::uint64_t byteSize)
{
    Type* type = m_table.create(kind, entry.name(), byteSize);
    m_table.bindEntry(entry.offset(), type);
    return type;
}

Type* TypeReader::readUncached(const DwarfDie& entry, std::size_t unit)
{
    const std::uint64_t byteSize = entry.unsignedValue(DW_AT_byte_size).value_or(0);
    Type* type = nullptr;
    switch (entry.tag()) {
    case DW_TAG_base_type:
        type = start(entry, Type::Kind::Base, byteSize);
        type->setEncoding(encodingOf(entry.unsignedValue(DW_AT_encoding).value_or(0)));
        break;
    case DW_TAG_unspecified_type:
        type = start(entry, Type::Kind::Void, 0);
        break;
    case DW_TAG_pointer_type:
    case DW_TAG_reference_type:
    case DW_TAG_rvalue_reference_type:
        type = start(entry, Type::Kind::Pointer, byteSize ? byteSize : 4);
        type->setTarget(typeOf(entry, unit));
        break;
    case DW_TAG_const_type:
    case DW_TAG_volatile_type:
    case DW_TAG_restrict_type:
    case DW_TAG_atomic_type: {
        const int tag = entry.tag();
        // _Atomic changes no layout: it reads as volatile.
        const Type::Kind kind = tag == DW_TAG_const_type      ? Type::Kind::Const
                                : tag == DW_TAG_restrict_type ? Type::Kind::Restrict
                                                              : Type::Kind::Volatile;
        type = start(entry, kind, 0);
        type->setTarget(typeOf(entry, unit));
        break;
    }
    case DW_TAG_typedef:
        type = start(entry, Type::Kind::Typedef, 0);
        type->setTarget(typeOf(entry, unit));
        break;
    case DW_TAG_array_type:
        type = start(entry, Type::Kind::Array, 0);
        readArray(entry, type, unit);
        break;
    case DW_TAG_structure_type:
    case DW_TAG_class_type:
    case DW_TAG_union_type:
        type = start(entry, entry.tag() == DW_TAG_union_type ? Type::Kind::Union : Type::Kind::Struct, byteSize);
        type->setDeclaration(entry.flag(DW_AT_declaration));
        readMembers(entry, type, unit);
        break;
    case DW_TAG_enumeration_type:
        type = start(entry, Type::Kind::Enum, byteSize);
        type->setDeclaration(entry.flag(DW_AT_declaration));
        readEnumerators(entry, type, unit);
        break;
    case DW_TAG_subroutine_type:
        type = start(entry, Type::Kind::Function, 0);
        type->setTarget(typeOf(entry, unit));
        readParameters(entry, type, unit);
        break;
    default:
        // Not a C type (pointer to member, ...): a named void, so that a variable of it still reads.
        type = start(entry, Type::Kind::Void, 0);
        break;
    }
    m_table.addNamed(type, unit);
    return type;
}

// int a[2][3] is one DWARF array with two subranges; it becomes an array of 2 arrays of 3 ints.
void TypeReader::readArray(const DwarfDie& entry, Type* array, std::size_t unit)
{
    std::vector<std::optional<std::uint64_t>> dimensions;
    for (const DwarfDie& child : entry.children()) {
        if (child.tag() == DW_TAG_subrange_type) {
            dimensions.push_back(dimension(child));
        }
    }
    if (dimensions.empty()) {
        dimensions.push_back(std::nullopt);
    }
    const Type* element = typeOf(entry, unit);
    for (size_t i = dimensions.size() - 1; i > 0; --i) {
        element = m_table.arrayOf(element, dimensions[i]);
    }
    array->setTarget(element);
    array->setCount(dimensions.front());
}

void TypeReader::readMembers(const DwarfDie& entry, Type* type, std::size_t unit)
{
    for (const DwarfDie& child : entry.children()) {
        if (child.tag() != DW_TAG_member) {
            continue;
        }
        Type::Member member;
        member.name = child.name();
        member.type = typeOf(child, unit);
        member.offset = memberLocation(child);
        member.bitSize = static_cast<unsigned>(child.unsignedValue(DW_AT_bit_size).value_or(0));
        if (member.bitSize != 0) {
            std::int64_t firstBit = 0;
            if (auto dataBitOffset = child.unsignedValue(DW_AT_data_bit_offset)) {
                firstBit = static_cast<std::int64_t>(*dataBitOffset);
            } else {
                // DWARF 2/3: bits counted from the most significant bit of a storage unit of
                // DW_AT_byte_size bytes at the member location; little-endian turns it around.
                const auto storage = static_cast<std::int64_t>(
                    child.unsignedValue(DW_AT_byte_size).value_or(member.type->size()));
                const std::int64_t bitOffset = child.signedValue(DW_AT_bit_offset).value_or(0);
                firstBit = static_cast<std::int64_t>(member.offset) * 8 + storage * 8 - bitOffset -
                           static_cast<std::int64_t>(member.bitSize);
            }
            member.offset = static_cast<std::uint64_t>(firstBit / 8);
            member.bitOffset = static_cast<unsigned>(firstBit % 8);
        }
        type->addMember(std::move(member));
    }
}

void TypeReader::readEnumerators(const DwarfDie& entry, Type* type, std::size_t unit)
{
    if (entry.type()) {
        type->setTarget(typeOf(entry, unit));
    }
    if (auto ate = entry.unsignedValue(DW_AT_encoding)) {
        type->setEncoding(encodingOf(*ate));
    }
    // Without an encoding or an underlying type, only the value's form tells its sign.
    const bool signKnown = entry.hasAttribute(DW_AT_encoding) || entry.type().has_value();
    const bool isSigned = type->isSigned();
    for (const DwarfDie& child : entry.children()) {
        if (child.tag() != DW_TAG_enumerator) {
            continue;
        }
        Dwarf_Attribute value;
        const bool sdata = child.attribute(DW_AT_const_value, &value) && dwarf_whatform(&value) == DW_FORM_sdata;
        Type::Enumerator enumerator;
        enumerator.name = child.name();
        if (signKnown ? isSigned : sdata) {
            enumerator.value = child.signedValue(DW_AT_const_value).value_or(0);
        } else {
            enumerator.value = static_cast<std::int64_t>(child.unsignedValue(DW_AT_const_value).value_or(0));
        }
        type->addEnumerator(std::move(enumerator));
    }
}

void TypeReader::readParameters(const DwarfDie& entry, Type* type, std::size_t unit)
{
    type->setPrototyped(entry.flag(DW_AT_prototyped));
    for (const DwarfDie& child : entry.children()) {
        if (child.tag() == DW_TAG_formal_parameter) {
            type->addParameter(typeOf(child, unit));
        } else if (child.tag() == DW_TAG_unspecified_parameters) {
            type->setVariadic(true);
        }
    }
}

} // namespace quillon::debuginfo
