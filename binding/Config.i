// The environment and report configurations of a test file, held by shared pointers.
// Declared by hand: the parser events of the sections are not exported.

%{
#include "CTestEnvironmentConfig.h"
#include "CTestReportConfig.h"
%}

%shared_ptr(kestrix::CTestEnvironmentConfig)
%shared_ptr(kestrix::CTestReportConfig)

namespace kestrix {

class ITestParserEventReceiver;

class CTestEnvironmentConfig {
public:
    CTestEnvironmentConfig(ITestParserEventReceiver* parent);
    CTestEnvironmentConfig();

    void serialize(std::shared_ptr<IEmitter> emitter);
    bool isEmpty() const;
    std::string toString() const;

    std::string getWorkspace() const;
    void setWorkspace(const std::string& workspace);
    std::string getAddress() const;
    void setAddress(const std::string& address);
    int getPort() const;
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

    void getScriptModules(StrVector& modules) const;
    void setScriptModules(const std::string& modules);
    std::string getScriptPath() const;
    void setScriptPath(const std::string& scriptPath);
    std::string getDefaultReturnValueName() const;
    void setDefaultReturnValueName(const std::string& name);

    void getLoggingParameters(StrVector& parameters) const;
    void setLoggingParameters(const std::string& parameters);
};

class CTestReportConfig {
public:
    enum EReportContents { rcFull = 0, rcErrorsOnly = 1 };
    enum EOutputFormat { ofXml = 0, ofYaml = 1 };

    CTestReportConfig(ITestParserEventReceiver* parent);
    CTestReportConfig();

    void assign(const CTestReportConfig& other);
    void serialize(std::shared_ptr<IEmitter> emitter);
    bool isEmpty() const;
    std::string toString() const;

    EReportContents getReportContents() const;
    void setReportContents(EReportContents contents);
    EOutputFormat getOutputFormat() const;
    void setOutputFormat(EOutputFormat format);

    std::string getFileName() const;
    void setFileName(const std::string& fileName);
    std::string getXsltForFullReport() const;
    void setXsltForFullReport(const std::string& fileName);
    std::string getXsltForErrors() const;
    void setXsltForErrors(const std::string& fileName);
    std::string getSelectedXsltFileName() const;

    bool isIncludeTestSpec() const;
    void setIncludeTestSpec(bool isIncludeTestSpec);
    bool isUseCustomTime() const;
    void setUseCustomTime(bool isUseCustomTime);

    void getUserInfo(StrStrMap& info) const;
    void setUserInfo(const std::string& info);
    void addUserInfo(const std::string& key, const std::string& value);
};

} // namespace kestrix
