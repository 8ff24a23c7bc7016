// The trace and coverage sections of a test specification.
// Declared by hand: only the catalogue's operations are exported, overloads in its order.
// The parent receiver and the libyaml event are opaque handles here.

%{
#include "CTestCoverage.h"
#include "CTestCoverageStatistics.h"
#include "CTestTrace.h"
%}

namespace kestrix {

class ITestParserEventReceiver;
class IEmitter;

class CTestTrace {
public:
    enum ERunMode { rmOff = 0, rmStart = 1 };
    enum EExport { eText = 0, eCSV = 1, eBinary = 2 };

    CTestTrace(ITestParserEventReceiver* parent);
    virtual ~CTestTrace();

    virtual void serialize(std::shared_ptr<IEmitter> emitter);

    ERunMode getRunMode() const;
    bool isDefaultRunMode() const;
    void setRunMode(const std::string& text);
    void setRunMode(ERunMode value);

    std::string getDocumentFileName() const;
    std::string getOpenMode() const;
    std::string getTriggerName() const;
    std::string getExportFileName() const;
    std::string getExportFormat() const;
    void setDocumentFileName(const std::string& text);
    void setTriggerName(const std::string& text);
    void setExportFileName(const std::string& text);
    void setExportFormat(const std::string& text);
    void setOpenMode(const std::string& text);

    bool isSaveAfterTest() const;
    bool isCloseAfterTest() const;
    std::string getSaveAfterTest() const;
    std::string getCloseAfterTest() const;
    void setSaveAfterTest(bool isSave);
    void setCloseAfterTest(bool isClose);
    void clearSaveAfterTest();
    void clearCloseAfterTest();

    bool isEmpty() const;
};

class CTestCoverageStatistics {
public:
    CTestCoverageStatistics(ITestParserEventReceiver* parent);
    CTestCoverageStatistics(ITestParserEventReceiver* parent, const yaml_event_t& event);
    virtual ~CTestCoverageStatistics();

    virtual void serialize(std::shared_ptr<IEmitter> emitter);

    std::string getFunctionName() const;
    bool isDefaultFunction() const;
    void setFunctionName(const std::string& text);

    float getBytesExecuted() const;
    float getBranchExecuted() const;
    float getBranchTaken() const;
    float getBranchNotTaken() const;
    float getBranchBoth() const;
    std::string getBytesExecutedText() const;
    std::string getBranchExecutedText() const;
    std::string getBranchTakenText() const;
    std::string getBranchNotTakenText() const;
    std::string getBranchBothText() const;
    void setCodeExecuted(const std::string& text);
    void setBranchExecuted(const std::string& text);
    void setBranchTaken(const std::string& text);
    void setBranchNotTaken(const std::string& text);
    void setBranchBoth(const std::string& text);
};

class CTestCoverage {
public:
    enum ERunMode { rmOff = 0, rmStart = 1, rmResume = 2 };
    enum EExport { eHTML = 0, eText = 1, eCSV = 2, eXML = 3, eReviewHTML = 4, eReviewText = 5, eXML2 = 6 };

    CTestCoverage(ITestParserEventReceiver* parent);
    CTestCoverage(const CTestCoverage& other);
    virtual ~CTestCoverage();

    virtual void serialize(std::shared_ptr<IEmitter> emitter);

    ERunMode getRunMode() const;
    bool isDefaultRunMode() const;
    void setRunMode(const std::string& text);
    void setRunMode(ERunMode value);

    std::string getDocumentFileName() const;
    std::string getOpenMode() const;
    std::string getRangesetName() const;
    std::string getExportFormat() const;
    std::string getExportFileName() const;
    std::string getBitmapFileName() const;
    void setDocumentFileName(const std::string& text);
    void setOpenMode(const std::string& text);
    void setRangesetName(const std::string& text);
    void setExportFormat(const std::string& text);
    void setExportFileName(const std::string& text);
    void setBitmapFileName(const std::string& text);

    bool isSaveAfterTest() const;
    bool isCloseAfterTest() const;
    bool isDecisionCoverage() const;
    std::string getSaveAfterTest() const;
    std::string getCloseAfterTest() const;
    std::string getDecisionCoverage() const;
    void setSaveAfterTest(bool isSave);
    void setCloseAfterTest(bool isClose);
    void setDecisionCoverage(bool isDecision);
    void clearSaveAfterTest();
    void clearCloseAfterTest();
    void clearDecisionCoverage();

    bool isEmpty() const;

    int getStatisticsSize() const;
    std::shared_ptr<CTestCoverageStatistics> getStatistics(int index) const;
    std::shared_ptr<CTestCoverageStatistics> addStatistics();
    void removeStatistics(int index);
    void swapStatistics(int first, int second);
};

} // namespace kestrix
