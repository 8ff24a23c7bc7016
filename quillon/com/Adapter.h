#pragma once

#include <exception>
#include <string>

#include "IUnknown.h"
#include "OrbelResults.h"
#include "com/LastError.h"

namespace quillon::com {

/// Base of the adapter of one automation interface: it belongs to the automation object, to
/// which it forwards the operations of `IUnknown`, and it runs each operation through `call`,
/// so that no exception leaves an operation and every failure leaves its message.
template <class Interface>
class Adapter : public Interface {
public:
    Adapter(kestrix::IUnknown& owner, LastError& lastError) : m_owner(owner), m_lastError(lastError) {}
    Adapter(const Adapter&) = delete;
    Adapter& operator=(const Adapter&) = delete;

    HRESULT QueryInterface(const kestrix::GUID& iid, void** object) override
    {
        return m_owner.QueryInterface(iid, object);
    }
    ULONG AddRef() override { return m_owner.AddRef(); }
    ULONG Release() override { return m_owner.Release(); }

protected:
    ~Adapter() = default;

    /// Clears the last error and runs `operation` (named "Interface::Operation" for messages),
    /// which returns the result code. An exception becomes E_FAIL with the message
    /// "<name>: <what>".
    template <class F>
    HRESULT call(const char* name, F&& operation) noexcept
    {
        try {
            m_lastError.clear();
            return operation();
        } catch (const std::exception& error) {
            return failed(name, error.what());
        } catch (...) {
            return failed(name, "unexpected failure");
        }
    }

    /// The answer of an operation that a later step brings.
    HRESULT notImplemented(const char* name) noexcept
    {
        return call(name, [&] { return fail(kestrix::E_NOTIMPL, std::string(name) + " is not implemented"); });
    }

    /// Keeps `message` as the last error and answers `code`.
    HRESULT fail(HRESULT code, std::string message)
    {
        m_lastError.setError(std::move(message));
        return code;
    }

    LastError& lastError() { return m_lastError; }
    /// The automation object the adapter belongs to.
    kestrix::IUnknown& owner() { return m_owner; }

private:
    HRESULT failed(const char* name, const char* what) noexcept
    {
        try {
            m_lastError.setError(std::string(name) + ": " + what);
        } catch (...) {
            // No memory for the message: the code alone must do.
        }
        return kestrix::E_FAIL;
    }

    kestrix::IUnknown& m_owner;
    LastError& m_lastError;
};

} // namespace quillon::com
