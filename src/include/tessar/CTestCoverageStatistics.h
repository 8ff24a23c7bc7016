#pragma once

#include <memory>
#include <string>

#include "CYAMLMap.h"
#include "CYAMLScalar.h"
#include "ITestParserEventReceiver.h"

namespace kestrix {

class IEmitter;

/// One item of the "statistics" list of a coverage block: a function and the percentages
/// of coverage expected for it. The numbers stay text as written; only their form is checked.
class CTestCoverageStatistics : public ITestParserEventReceiver {
public:
    static const char* const KEY_FUNC;
    static const char* const KEY_CODE;
    static const char* const KEY_BRANCHES;
    static const char* const KEY_TAKEN;
    static const char* const KEY_NOT_TAKEN;
    static const char* const KEY_BOTH;

    /// Empty, waiting for the item's mapping; `parent` is not owned.
    explicit CTestCoverageStatistics(ITestParserEventReceiver* parent);
    /// Inside the item's mapping, whose anchor, tag and style come from `event`.
    CTestCoverageStatistics(ITestParserEventReceiver* parent, const yaml_event_t& event);
    /// A copy of `other` that belongs to `parent`.
    CTestCoverageStatistics(const CTestCoverageStatistics& other, ITestParserEventReceiver* parent);
    CTestCoverageStatistics(const CTestCoverageStatistics& other) = default;
    CTestCoverageStatistics& operator=(const CTestCoverageStatistics& other) = default;
    virtual ~CTestCoverageStatistics() = default;

    ITestParserEventReceiver* mappingStart(const yaml_event_t& event) override;
    ITestParserEventReceiver* mappingKey(const yaml_event_t& event) override;
    ITestParserEventReceiver* mappingValue(const yaml_event_t& event) override;
    ITestParserEventReceiver* mappingEnd() override;
    ITestParserEventReceiver* sequenceStart(const yaml_event_t& event) override;
    ITestParserEventReceiver* sequenceValue(const yaml_event_t& event) override;
    ITestParserEventReceiver* sequenceEnd() override;
    void serialize(std::shared_ptr<IEmitter> emitter) override;

    std::string getFunctionName() const { return m_function.getValue(); }
    /// True while no function is named: the item stands for the default function.
    bool isDefaultFunction() const { return m_function.getValue().empty(); }
    void setFunctionName(const std::string& text);

    // Percentages: 0 for an empty field, else the text as a 32-bit float.
    float getBytesExecuted() const { return toPercent(m_code); }
    float getBranchExecuted() const { return toPercent(m_branches); }
    float getBranchTaken() const { return toPercent(m_taken); }
    float getBranchNotTaken() const { return toPercent(m_notTaken); }
    float getBranchBoth() const { return toPercent(m_both); }

    std::string getBytesExecutedText() const { return m_code.getValue(); }
    std::string getBranchExecutedText() const { return m_branches.getValue(); }
    std::string getBranchTakenText() const { return m_taken.getValue(); }
    std::string getBranchNotTakenText() const { return m_notTaken.getValue(); }
    std::string getBranchBothText() const { return m_both.getValue(); }

    // A number setter refuses text that is not a number. An empty text stores "0", but in
    // `setBranchNotTaken`, where it clears the field.
    void setCodeExecuted(const std::string& text);
    void setBranchExecuted(const std::string& text);
    void setBranchTaken(const std::string& text);
    void setBranchNotTaken(const std::string& text);
    void setBranchBoth(const std::string& text);

private:
    enum ESection { BEFORE_BLOCK = 0, IN_BLOCK = 1 };

    static float toPercent(const CYAMLScalar& field);
    /// Checks the form of a number, then stores the YAML text in `field`.
    static void setNumber(CYAMLScalar& field, const std::string& text);
    /// The field of a key, or null for a key not of this item.
    CYAMLScalar* fieldOf(const std::string& key);

    CYAMLMap m_block;
    CYAMLScalar m_function;
    CYAMLScalar m_code;
    CYAMLScalar m_branches;
    CYAMLScalar m_taken;
    CYAMLScalar m_notTaken;
    CYAMLScalar m_both;
    ITestParserEventReceiver* m_parent;
    int m_section = BEFORE_BLOCK;
    std::string m_key;
};

typedef std::shared_ptr<CTestCoverageStatistics> CTestCoverageStatisticsSPtr;

} // namespace kestrix
