#pragma once

#include <memory>
#include <string>

#include "CDocumentController.h"

namespace kestrix {

/// The one terminal document of Quillon, which has no file name.
#ifdef SWIG
// The managed side holds the terminal by a plain handle, so its shared base stays unseen.
class CTerminalDocController {
#else
class CTerminalDocController : public CDocumentController {
#endif
public:
    explicit CTerminalDocController(std::shared_ptr<ConnectionMgr> connectionMgr);
    ~CTerminalDocController() override;

    void close();
    void start();
    void stop();
    void saveAs(const std::string& fileName);

private:
    static std::string method(const char* operation);
};

} // namespace kestrix
