#pragma once

#include <string>

#include "OrbelTypes.h"

namespace kestrix {

/// A profiler area as Quillon knows it: name, handle and address.
class CAreaProperties {
public:
    CAreaProperties(const std::string& name, DWORD handle, DWORD address)
        : m_name(name), m_handle(handle), m_address(address)
    {
    }

    const std::string& getName() const { return m_name; }
    DWORD getHandle() const { return m_handle; }
    DWORD getAddress() const { return m_address; }

    std::string toString() const;

private:
    std::string m_name;
    DWORD m_handle;
    DWORD m_address;
};

} // namespace kestrix
