#pragma once

#include <memory>
#include <string>

#include "OrbelTypes.h"
#include "WrapperBase.h"

namespace kestrix {

class IVectorVariableDescriptors;

/// Hardware-in-the-loop channels of the debug hardware: read and written by path texts that
/// Quillon interprets, and listed by their descriptors.
class CHILController : public WrapperBase {
public:
    explicit CHILController(std::shared_ptr<ConnectionMgr> connectionMgr);
    ~CHILController() override;

    /// The values of the channels named in `paths`, as Quillon writes them into a buffer of
    /// `bufferSize` bytes; IllegalSizeException if they do not fit.
    std::string read(const std::string& paths, DWORD bufferSize = 4096, DWORD flags1 = 0, DWORD flags2 = 0);
    void write(const std::string& values, DWORD flags1 = 0, DWORD flags2 = 0);
    /// The descriptors of the channels; the list is Quillon's and stays valid while it says so.
    IVectorVariableDescriptors* getDescriptors();

private:
    static std::string method(const char* operation);
};

} // namespace kestrix
