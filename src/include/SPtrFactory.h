#pragma once

#include <memory>

namespace kestrix {

class ConnectionMgr;

/// Hands a managed caller a `ConnectionMgr` under a shared pointer, and the plain object of one.
class SPtrFactory {
public:
    /// A new `ConnectionMgr` made by its default constructor.
    std::shared_ptr<ConnectionMgr> newConnectionMgr();
    /// The object of `mgr`, which stays owned by the shared pointers to it.
    ConnectionMgr* getConnectionMgr(std::shared_ptr<ConnectionMgr> mgr);
};

} // namespace kestrix
