#pragma once

#include <memory>
#include <string>

#include "Containers.h"
#include "CYAMLBool.h"
#include "CYAMLMap.h"
#include "CYAMLScalar.h"
#include "CYAMLSequence.h"
#include "CYAMLSequenceReceiver.h"
#include "ITestParserEventReceiver.h"

namespace kestrix {

/// The "env" section of a test file: where the tests run and how the target is prepared.
/// The section does not write its own key; its owner writes "env" in front of it.
class CTestEnvironmentConfig : public ITestParserEventReceiver {
public:
    static const char* const KEY_WORKSPACE;
    static const char* const KEY_ADDRESS;
    static const char* const KEY_PORT;
    static const char* const KEY_AUTO_CONNECT;
    static const char* const KEY_INIT_BEFORE_RUN;
    static const char* const KEY_DOWNLOAD_ON_INIT;
    static const char* const KEY_RESET_ON_INIT;
    static const char* const KEY_RUN_ON_INIT;
    static const char* const KEY_STOP_FUNCTION;
    static const char* const KEY_DELETE_BPS_ON_INIT;
    static const char* const KEY_SCRIPT_MODULES;
    static const char* const KEY_SCRIPT_PATH;
    static const char* const KEY_DEFAULT_RET_VAL_NAME;

    /// `parent` takes control at the end of the section; not owned, may be null.
    explicit CTestEnvironmentConfig(ITestParserEventReceiver* parent);
    CTestEnvironmentConfig();
    ~CTestEnvironmentConfig();
    CTestEnvironmentConfig(const CTestEnvironmentConfig&) = delete;
    CTestEnvironmentConfig& operator=(const CTestEnvironmentConfig&) = delete;

    ITestParserEventReceiver* mappingStart(const yaml_event_t& event) override;
    ITestParserEventReceiver* mappingKey(const yaml_event_t& event) override;
    ITestParserEventReceiver* mappingValue(const yaml_event_t& event) override;
    ITestParserEventReceiver* mappingEnd() override;
    ITestParserEventReceiver* sequenceStart(const yaml_event_t& event) override;
    ITestParserEventReceiver* sequenceValue(const yaml_event_t& event) override;
    ITestParserEventReceiver* sequenceEnd() override;
    void serialize(std::shared_ptr<IEmitter> emitter) override;

    /// True when none of the keys has a value; the logging parameters do not count.
    bool isEmpty() const;
    /// The section as a YAML document.
    std::string toString() const;

    std::string getWorkspace() const;
    void setWorkspace(const std::string& workspace);
    std::string getAddress() const;
    void setAddress(const std::string& address);
    /// 0 when not set; a text that is not a number fails here.
    int getPort() const;
    /// Port 0 removes the key.
    void setPort(int port);

    bool isAutoConnectToQuillon() const;
    void setAutoConnectToQuillon(bool isAutoConnect);
    bool isAlwaysRunInitSeqBeforeRun() const;
    void setAlwaysRunInitSeqBeforeRun(bool isAlwaysRunInitSeq);
    bool idDownloadOnInit() const;
    void setDownloadOnInit(bool isDownloadOnInit);
    void clearDownloadOnInit();
    bool isResetOnInit() const;
    void setResetOnInit(bool isResetOnInit);
    void clearResetOnInit();
    bool isRunOnInit() const;
    void setRunOnInit(bool isRunOnInit);
    void clearRunOnInit();

    std::string getStopFunction() const;
    void setStopFunction(const std::string& stopFunction);
    bool isDeleteAllBPsOnInit() const;
    void setDeleteAllBPsOnInit(bool isDeleteAllBPs);
    void clearDeleteAllBPsOnInit();

    /// Appends the modules as expression texts.
    void getScriptModules(StrVector& modules) const;
    /// A YAML list, such as `[a, b]`; replaces the items.
    void setScriptModules(const std::string& modules);
    std::string getScriptPath() const;
    void setScriptPath(const std::string& scriptPath);
    std::string getDefaultReturnValueName() const;
    void setDefaultReturnValueName(const std::string& name);

    /// Kept for callers only; neither read from nor written to a file.
    void getLoggingParameters(StrVector& parameters) const;
    void setLoggingParameters(const std::string& parameters);

private:
    enum EState { BEFORE_MAPPING = 0, IN_MAPPING = 1 };

    /// The receiver of "scriptModules", which hands a scalar in place of the list back here.
    class ScriptModulesReceiver;

    /// The scalar field of a key, or null.
    CYAMLScalar* scalarOf(const std::string& key);
    /// The bool field of a key, or null.
    CYAMLBool* boolOf(const std::string& key);
    /// What `serialize` writes.
    void writeTo(IEmitter& emitter) const;

    ITestParserEventReceiver* m_parent;
    std::unique_ptr<ScriptModulesReceiver> m_sequenceReceiver;
    CYAMLMap m_main;
    CYAMLScalar m_workspace;
    CYAMLScalar m_address;
    CYAMLScalar m_port;
    CYAMLBool m_isAutoConnect;
    CYAMLBool m_isInitBeforeRun;
    CYAMLBool m_isDownloadOnInit;
    CYAMLBool m_isResetOnInit;
    CYAMLBool m_isRunOnInit;
    CYAMLScalar m_stopFunction;
    CYAMLBool m_isDeleteBPsOnInit;
    CYAMLSequence m_scriptModules;
    CYAMLScalar m_scriptPath;
    CYAMLScalar m_defaultRetValName;
    CYAMLSequence m_loggingParameters;
    int m_state = BEFORE_MAPPING;
    std::string m_key;
};

typedef std::shared_ptr<CTestEnvironmentConfig> CTestEnvironmentConfigSPtr;

} // namespace kestrix
