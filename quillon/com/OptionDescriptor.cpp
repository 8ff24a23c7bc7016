#include "com/OptionDescriptor.h"

#include "OrbelIdentifiers.h"
#include "OrbelResults.h"
#include "SType.h"

namespace quillon::com {

namespace {

using Kind = services::OptionTree::Kind;

const char* kindText(Kind kind, bool isItem)
{
    if (isItem) {
        return "list item";
    }
    switch (kind) {
    case Kind::Bool:
        return "bool";
    case Kind::Integer:
        return "integer";
    default:
        return "list";
    }
}

} // namespace

OptionDescriptor::OptionDescriptor(kestrix::IUnknown& owner, const std::string& path, Kind kind, bool isItem)
    : m_owner(owner), m_path(path), m_kind(kind), m_isItem(isItem), m_info(kindText(kind, isItem))
{
}

HRESULT OptionDescriptor::QueryInterface(const kestrix::GUID& iid, void** object)
{
    if (object != nullptr && iid == kestrix::IID_IDescriptor) {
        *object = static_cast<kestrix::IDescriptor*>(this);
        AddRef();
        return kestrix::S_OK;
    }
    return m_owner.QueryInterface(iid, object);
}

DWORD OptionDescriptor::Type()
{
    const bool isScalar = !m_isItem && m_kind != Kind::List;
    return isScalar ? kestrix::SType::tUnsigned : kestrix::SType::tUndefined;
}

DWORD OptionDescriptor::Size()
{
    if (m_isItem) {
        return 0;
    }
    switch (m_kind) {
    case Kind::Bool:
        return 1;
    case Kind::Integer:
        return 8;
    default:
        return 0;
    }
}

} // namespace quillon::com
