#pragma once

#include <memory>
#include <string>

#include "Containers.h"
#include "CYAMLBool.h"
#include "CYAMLEnum.h"
#include "CYAMLEnumTables.h"
#include "CYAMLMap.h"
#include "CYAMLMapReceiver.h"
#include "CYAMLScalar.h"
#include "ITestParserEventReceiver.h"

namespace kestrix {

/// The "reportConfig" section of a test file: how test results are reported. Unlike the
/// environment section it writes its own key, so `serialize` belongs inside an open mapping.
class CTestReportConfig : public ITestParserEventReceiver {
public:
    enum EReportContents { rcFull = 0, rcErrorsOnly = 1 };
    enum EOutputFormat { ofXml = 0, ofYaml = 1 };

    static const char* const SECTION_KEY;
    static const char* const KEY_REPORT_CONTENTS;
    static const char* const KEY_OUT_FORMAT;
    static const char* const KEY_FILE_NAME;
    static const char* const KEY_XSLT_FULL;
    static const char* const KEY_XSLT_ERRORS;
    static const char* const KEY_INCLUDE_TEST_SPEC;
    static const char* const KEY_USE_CUSTOM_TIME;
    static const char* const KEY_TEST_INFO;

    /// `parent` takes control at the end of the section; not owned, may be null.
    explicit CTestReportConfig(ITestParserEventReceiver* parent);
    CTestReportConfig();
    ~CTestReportConfig();
    CTestReportConfig(const CTestReportConfig&) = delete;
    CTestReportConfig& operator=(const CTestReportConfig&) = delete;

    /// Makes the keys' values and the block's attributes deep copies of those of `other`.
    void assign(const CTestReportConfig& other);

    ITestParserEventReceiver* mappingStart(const yaml_event_t& event) override;
    ITestParserEventReceiver* mappingKey(const yaml_event_t& event) override;
    ITestParserEventReceiver* mappingValue(const yaml_event_t& event) override;
    ITestParserEventReceiver* mappingEnd() override;
    ITestParserEventReceiver* sequenceStart(const yaml_event_t& event) override;
    ITestParserEventReceiver* sequenceValue(const yaml_event_t& event) override;
    ITestParserEventReceiver* sequenceEnd() override;
    /// Writes "reportConfig" and the section's mapping; nothing at all when empty.
    void serialize(std::shared_ptr<IEmitter> emitter) override;

    /// True when none of the keys has a value.
    bool isEmpty() const;
    /// A YAML document whose root mapping holds the section's key; "{}" when empty.
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
    /// The stylesheet of the selected report contents.
    std::string getSelectedXsltFileName() const;

    bool isIncludeTestSpec() const;
    void setIncludeTestSpec(bool isIncludeTestSpec);
    bool isUseCustomTime() const;
    void setUseCustomTime(bool isUseCustomTime);

    /// Fills `info` with the expression texts of keys and values of "testInfo".
    void getUserInfo(StrStrMap& info) const;
    /// A YAML mapping, such as `{a: 1, b: 2}`; replaces the entries.
    void setUserInfo(const std::string& info);
    /// Adds one entry; an existing key is refused.
    void addUserInfo(const std::string& key, const std::string& value);

private:
    enum EState { BEFORE_MAPPING = 0, IN_MAPPING = 1 };

    /// Fills a field from the value's event; a field set before is refused.
    template <typename T>
    void assignOnce(T& field, const yaml_event_t& event) const;
    /// What `serialize` writes.
    void writeTo(IEmitter& emitter) const;

    ITestParserEventReceiver* m_parent;
    CYAMLMap m_main;
    CYAMLEnum<EReportContents> m_reportContents;
    CYAMLEnum<EOutputFormat> m_outFormat;
    CYAMLScalar m_fileName;
    CYAMLScalar m_xsltFull;
    CYAMLScalar m_xsltErrors;
    CYAMLBool m_isIncludeTestSpec;
    CYAMLBool m_isUseCustomTime;
    CYAMLMap m_userInfo;
    std::unique_ptr<CYAMLMapReceiver> m_mapReceiver;
    int m_state = BEFORE_MAPPING;
    std::string m_key;
};

KX_YAML_ENUM_TABLE(CTestReportConfig::EReportContents, CYAMLEnumTables::REPORT_CONTENTS)
KX_YAML_ENUM_TABLE(CTestReportConfig::EOutputFormat, CYAMLEnumTables::OUTPUT_FORMAT)

typedef std::shared_ptr<CTestReportConfig> CTestReportConfigSPtr;

} // namespace kestrix
