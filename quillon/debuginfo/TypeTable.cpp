#include "debuginfo/TypeTable.h"

#include <sstream>

namespace quillon::debuginfo {

namespace {

std::vector<std::string> words(const std::string& text)
{
    std::istringstream in(text);
    std::vector<std::string> result;
    for (std::string word; in >> word;) {
        result.push_back(word);
    }
    return result;
}

struct StandardBase {
    const char* name;
    std::uint64_t size;
    Type::Encoding encoding;
};

// ARM EABI: plain char is unsigned, long is 32 bits, long double is double.
const StandardBase standardBases[] = {
    {"char", 1, Type::Encoding::UnsignedChar},
    {"signed char", 1, Type::Encoding::SignedChar},
    {"unsigned char", 1, Type::Encoding::UnsignedChar},
    {"short int", 2, Type::Encoding::Signed},
    {"short unsigned int", 2, Type::Encoding::Unsigned},
    {"int", 4, Type::Encoding::Signed},
    {"unsigned int", 4, Type::Encoding::Unsigned},
    {"long int", 4, Type::Encoding::Signed},
    {"long unsigned int", 4, Type::Encoding::Unsigned},
    {"long long int", 8, Type::Encoding::Signed},
    {"long long unsigned int", 8, Type::Encoding::Unsigned},
    {"_Bool", 1, Type::Encoding::Bool},
    {"float", 4, Type::Encoding::Float},
    {"double", 8, Type::Encoding::Float},
    {"long double", 8, Type::Encoding::Float},
};

} // namespace

TypeTable::TypeTable()
{
    m_void = create(Type::Kind::Void, "void", 0);
}

std::optional<std::string> TypeTable::canonicalBaseName(const std::string& text)
{
    int isSigned = 0, isUnsigned = 0, shorts = 0, longs = 0, chars = 0, ints = 0, bools = 0, floats = 0, doubles = 0;
    const std::vector<std::string> list = words(text);
    for (const std::string& word : list) {
        if (word == "signed") {
            ++isSigned;
        } else if (word == "unsigned") {
            ++isUnsigned;
        } else if (word == "short") {
            ++shorts;
        } else if (word == "long") {
            ++longs;
        } else if (word == "char") {
            ++chars;
        } else if (word == "int") {
            ++ints;
        } else if (word == "_Bool") {
            ++bools;
        } else if (word == "float") {
            ++floats;
        } else if (word == "double") {
            ++doubles;
        } else {
            return std::nullopt;
        }
    }
    const int sign = isSigned + isUnsigned;
    if (list.empty() || sign > 1 || shorts > 1 || longs > 2 || chars > 1 || ints > 1 || (shorts && longs)) {
        return std::nullopt;
    }
    const int others = sign + shorts + longs + chars + ints;
    if (bools || floats) {
        return list.size() == 1 ? std::optional<std::string>(list.front()) : std::nullopt;
    }
    if (doubles) {
        if (doubles > 1 || others != longs || longs > 1) {
            return std::nullopt;
        }
        return longs ? "long double" : "double";
    }
    if (chars) {
        if (shorts || longs || ints) {
            return std::nullopt;
        }
        return isSigned ? "signed char" : isUnsigned ? "unsigned char" : "char";
    }
    const std::string size = shorts ? "short " : longs == 1 ? "long " : longs == 2 ? "long long " : "";
    return size + (isUnsigned ? "unsigned int" : "int");
}

std::optional<std::string> TypeTable::lookupKey(const std::string& text)
{
    const std::vector<std::string> list = words(text);
    if (list.empty()) {
        return std::nullopt;
    }
    if (list[0] == "struct" || list[0] == "union" || list[0] == "enum") {
        if (list.size() != 2) {
            return std::nullopt;
        }
        return list[0] + " " + list[1];
    }
    if (auto base = canonicalBaseName(text)) {
        return base;
    }
    if (list.size() == 1) {
        return list[0];
    }
    return std::nullopt;
}

const Type* TypeTable::find(const std::string& text, std::optional<std::size_t> preferredUnit) const
{
    const auto key = lookupKey(text);
    if (!key) {
        return nullptr;
    }
    if (*key == "void") {
        return m_void;
    }
    auto found = m_named.find(*key);
    if (found == m_named.end()) {
        return nullptr;
    }
    const Named* best = nullptr;
    auto rank = [&](const Named& n) {
        return (n.type->isDeclaration() ? 0 : 2) + (preferredUnit && n.unit == *preferredUnit ? 1 : 0);
    };
    // Complete definitions first, among them those of the preferred unit.
    for (const Named& named : found->second) {
        if (best == nullptr || rank(named) > rank(*best)) {
            best = &named;
        }
    }
    return best->type;
}

const Type* TypeTable::findEnumeratorType(const std::string& name) const
{
    std::lock_guard<std::mutex> lock(m_mutex);
    for (const auto& type : m_types) {
        if (type->kind() == Type::Kind::Enum && type->findEnumerator(name) != nullptr) {
            return type.get();
        }
    }
    return nullptr;
}

const Type* TypeTable::pointerTo(const Type* target)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    const auto key = std::make_tuple(target, static_cast<int>(Type::Kind::Pointer), std::uint64_t(0));
    auto found = m_derived.find(key);
    if (found != m_derived.end()) {
        return found->second;
    }
    Type* pointer = createLocked(Type::Kind::Pointer, "", 4);
    pointer->setTarget(target);
    m_derived.emplace(key, pointer);
    return pointer;
}

const Type* TypeTable::arrayOf(const Type* element, std::optional<std::uint64_t> count)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    // An unknown count is keyed apart from every real count.
    const auto key = std::make_tuple(element, static_cast<int>(Type::Kind::Array) + (count ? 0 : 100),
                                     count.value_or(0));
    auto found = m_derived.find(key);
    if (found != m_derived.end()) {
        return found->second;
    }
    Type* array = createLocked(Type::Kind::Array, "", 0);
    array->setTarget(element);
    array->setCount(count);
    m_derived.emplace(key, array);
    return array;
}

const Type* TypeTable::qualified(const Type* target, Type::Kind qualifier)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    const auto key = std::make_tuple(target, static_cast<int>(qualifier), std::uint64_t(0));
    auto found = m_derived.find(key);
    if (found != m_derived.end()) {
        return found->second;
    }
    Type* type = createLocked(qualifier, "", 0);
    type->setTarget(target);
    m_derived.emplace(key, type);
    return type;
}

std::size_t TypeTable::size() const
{
    std::lock_guard<std::mutex> lock(m_mutex);
    return m_types.size();
}

Type* TypeTable::create(Type::Kind kind, std::string identifier, std::uint64_t byteSize)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    return createLocked(kind, std::move(identifier), byteSize);
}

Type* TypeTable::createLocked(Type::Kind kind, std::string identifier, std::uint64_t byteSize)
{
    m_types.push_back(std::make_unique<Type>(kind, std::move(identifier), byteSize));
    return m_types.back().get();
}

const Type* TypeTable::forEntry(std::uint64_t entryOffset) const
{
    auto found = m_byEntry.find(entryOffset);
    return found == m_byEntry.end() ? nullptr : found->second;
}

void TypeTable::bindEntry(std::uint64_t entryOffset, const Type* type)
{
    m_byEntry[entryOffset] = type;
}

void TypeTable::addNamed(const Type* type, std::size_t unit)
{
    if (type->identifier().empty()) {
        return;
    }
    std::string key;
    switch (type->kind()) {
    case Type::Kind::Struct:
        key = "struct " + type->identifier();
        break;
    case Type::Kind::Union:
        key = "union " + type->identifier();
        break;
    case Type::Kind::Enum:
        key = "enum " + type->identifier();
        break;
    case Type::Kind::Base:
        key = canonicalBaseName(type->identifier()).value_or(type->identifier());
        break;
    case Type::Kind::Typedef:
        key = type->identifier();
        break;
    default:
        return;
    }
    m_named[key].push_back(Named{type, unit});
}

void TypeTable::completeBaseTypes()
{
    for (const StandardBase& base : standardBases) {
        if (m_named.count(base.name) != 0) {
            continue;
        }
        Type* type = create(Type::Kind::Base, base.name, base.size);
        type->setEncoding(base.encoding);
        m_named[base.name].push_back(Named{type, static_cast<std::size_t>(-1)});
    }
}

} // namespace quillon::debuginfo
