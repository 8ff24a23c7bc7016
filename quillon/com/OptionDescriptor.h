#pragma once

#include <string>

#include "IDataDescriptor.h"
#include "IDescriptor.h"
#include "IVariableDescriptor.h"
#include "IVectorVariableDescriptors.h"
#include "services/OptionTree.h"

namespace quillon::com {

/// The descriptor of one option, or of one item of a list option: a list of one variable
/// descriptor, which is the descriptor itself. `Name` is the path, `Info` the kind ("bool",
/// "integer", "list", "list item"); a bool is a 1-byte and an integer an 8-byte tUnsigned
/// scalar; a list is a container of texts (type tUndefined, size 0) whose `Dimension` is its
/// number of items when it was last described; an item is a text. It belongs to an automation
/// object, to which its IUnknown operations go, and lives as long as that object.
class OptionDescriptor final : public kestrix::IDescriptor,
                               public kestrix::IVectorVariableDescriptors,
                               public kestrix::IVariableDescriptor,
                               public kestrix::IDataDescriptor {
public:
    OptionDescriptor(kestrix::IUnknown& owner, const std::string& path, services::OptionTree::Kind kind, bool isItem);
    virtual ~OptionDescriptor() = default;
    OptionDescriptor(const OptionDescriptor&) = delete;
    OptionDescriptor& operator=(const OptionDescriptor&) = delete;

    /// Takes the number of items of a list option.
    void setItemCount(DWORD count) { m_itemCount = count; }

    HRESULT QueryInterface(const kestrix::GUID& iid, void** object) override;
    ULONG AddRef() override { return m_owner.AddRef(); }
    ULONG Release() override { return m_owner.Release(); }
    kestrix::IVectorVariableDescriptors* VariableDescriptors() override { return this; }

    DWORD size() override { return 1; }
    kestrix::IVariableDescriptor* at(DWORD index) override { return index == 0 ? this : nullptr; }

    const char* Name() override { return m_path.c_str(); }
    kestrix::IDataDescriptor* DataDescriptor() override { return this; }
    DWORD Dimension() override { return isList() ? m_itemCount : 0; }
    DWORD ArrayIndex() override { return 0; }
    const char* Info() override { return m_info; }
    DWORD Options() override { return 0; }
    DWORD Data() override { return 0; }

    DWORD Type() override;
    DWORD Size() override;
    kestrix::IVectorElementDescriptors* Struct() override { return nullptr; }
    kestrix::IVectorEnumMaps* Enum() override { return nullptr; }
    DWORD Container() override { return isList() ? 1 : 0; }

private:
    bool isList() const { return m_kind == services::OptionTree::Kind::List && !m_isItem; }

    kestrix::IUnknown& m_owner;
    const std::string m_path;
    const services::OptionTree::Kind m_kind;
    const bool m_isItem;
    const char* m_info;
    DWORD m_itemCount = 0;
};

} // namespace quillon::com
