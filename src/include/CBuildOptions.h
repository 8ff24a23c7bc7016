#pragma once

#include <memory>
#include <string>

#include "OrbelTypes.h"
#include "WrapperBase.h"

namespace kestrix {

/// The options of Quillon's build manager, each named by a scope (the project or one of its files) and an
/// option name, both judged by Quillon. Made by and owned by `CProjectController`.
class CBuildOptions : public WrapperBase {
public:
    /// Size of the buffer of a read.
    static const DWORD VALUE_BUFFER_SIZE = 4100;

    explicit CBuildOptions(std::shared_ptr<ConnectionMgr> connectionMgr);
    ~CBuildOptions() override;

    /// The element `index` of a list option; IllegalStateException past its end.
    std::string get(int index, const std::string& scope, const std::string& option);
    std::string get(const std::string& scope, const std::string& option);
    void set(const std::string& scope, const std::string& option, const std::string& value);
    void add(const std::string& scope, const std::string& option, const std::string& value);
    void remove(const std::string& scope, const std::string& option);
    void move(const std::string& scope, const std::string& option, const std::string& value);

#ifndef SWIG
private:
    static std::string method(const char* name);
    std::string read(DWORD word, const std::string& scope, const std::string& option, HRESULT& hr);
    /// Sends `value` with its terminating zero in a buffer of its exact size.
    HRESULT write(DWORD word, const std::string& scope, const std::string& option, const std::string& value);
    /// Raises the IOException of a failing result of `operation`.
    void check(HRESULT hr, const char* operation) const;
#endif
};

} // namespace kestrix
