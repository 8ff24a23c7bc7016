#pragma once

#include <memory>
#include <string>

#include "CIDEData.h"
#include "COptionValue.h"
#include "CQuillonVersion.h"
#include "SQuillonVersionInfo.h"
#include "WrapperBase.h"

namespace kestrix {

/// Quillon as an application: its version and folders, its main window, its message boxes and
/// its options. An option is addressed by module bits, scope and name, or by a URL
/// "/module/scope/option" or "/module/option" that carries all three.
class CIDEController : public WrapperBase {
public:
    /// Module parts of an option URL.
    static const char* const OPT_DEST_IDE;
    static const char* const OPT_DEST_DOCUMENT;
    static const char* const OPT_DEST_VALKE;
    static const char* const OPT_DEST_PLUGIN;
    static const char* const OPT_DEST_HIL;

    explicit CIDEController(std::shared_ptr<ConnectionMgr> connectionMgr);
    ~CIDEController() override;

    CQuillonVersion getQuillonVersion();
    /// One of Quillon's folders; `pathType` 0, 1 or 2.
    std::string getPath(int pathType);
    DWORD getNumClients();
    void bringQuillonToTop();

    CIDEData activate();
    CIDEData minimize();
    CIDEData restore();
    CIDEData maximize();
    CIDEData move(int left, int top, int right, int bottom);

    void setMsgBoxHook(bool isOn);
    void setMsgBoxHookMode(int mode);
    /// Always raises FeatureNotImplementedException.
    int getMsgBoxHookMode();
    bool isMsgBoxHookOn();

    /// The option operation as it stands: `flags` are sent unchanged.
    bool option(DWORD flags, const std::string& scope, const std::string& name, COptionValue& value);

    void setOption(DWORD flags, const std::string& scope, const std::string& name, const std::string& value);
    void setOption(const std::string& url, const std::string& value);
    void setOption(DWORD flags, const std::string& scope, const std::string& name, DWORD value);
    void setOption(const std::string& url, DWORD value);
    void setOption(DWORD flags, const std::string& scope, const std::string& name, double value);
    void setOption(const std::string& url, double value);

    std::string getOptionStr(DWORD flags, const std::string& scope, const std::string& name);
    std::string getOptionStr(const std::string& url);
    DWORD getOptionInt(DWORD flags, const std::string& scope, const std::string& name);
    DWORD getOptionInt(const std::string& url);
    double getOptionFloat(DWORD flags, const std::string& scope, const std::string& name);
    double getOptionFloat(const std::string& url);

    DWORD getDynamicOptionSize(DWORD flags, const std::string& scope, const std::string& name);
    DWORD getDynamicOptionSize(const std::string& url);
    void addDynamicOption(DWORD flags, const std::string& scope, const std::string& name, int index = 0);
    void addDynamicOption(const std::string& url, int index = 0);
    void removeDynamicOption(DWORD flags, const std::string& scope, const std::string& name, int index = 0);
    void removeDynamicOption(const std::string& url, int index = 0);

    void commitOptions(DWORD flags);

#ifndef SWIG
    /// The parts of an option URL.
    struct OptionUrl {
        DWORD module = 0;
        std::string scope;
        std::string name;
    };
    /// Splits `url`; IllegalArgumentException naming it for a malformed one.
    static OptionUrl parseOptionUrl(const std::string& url);

    /// Size of the output buffer of a text read.
    static const DWORD OPTION_STRING_SIZE = 0x1000;
    /// Size of the output buffer of a commit.
    static const DWORD COMMIT_STRING_SIZE = 1024;

private:
    std::string method(const char* name) const;
    /// The information block with the answer to `request`; raises `failure` and the result text.
    SQuillonVersionInfo information(DWORD request, const char* failure);
    CIDEData application(DWORD command, int left = 0, int top = 0, int right = 0, int bottom = 0);
    /// Sends one hook command; any result but S_OK raises.
    void hookCommand(DWORD command);
    /// Runs `operation` with the logger off, so that nested calls write nothing. An exception
    /// leaves the logger off.
    template <class F>
    auto silently(F&& operation);
    /// An option operation by flags: a value of the kind given, sent with the logger off.
    void sendOption(DWORD flags, const std::string& scope, const std::string& name, COptionValue& value);
#endif
};

} // namespace kestrix
