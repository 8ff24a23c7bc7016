#pragma once

#include <memory>
#include <string>

#include "CTestEnvironmentConfig.h"
#include "CTestReportConfig.h"
#include "CTestSpecification.h"
#include "CYAMLMap.h"
#include "ITestParserEventReceiver.h"

namespace kestrix {

/// A whole test file: "env", "reportConfig" and the tree of tests under "tests". The root
/// receiver of a file's parse, and the root object when the file is written back.
class CTestBench : public ITestParserEventReceiver {
public:
    // Keys of the root mapping, in the order of writing.
    static constexpr const char* KEY_ENV = "env";
    static constexpr const char* KEY_REPORT_CONFIG = "reportConfig";
    static constexpr const char* KEY_TESTS = "tests";

    CTestBench();
    CTestBench(const CTestBench&) = delete;
    CTestBench& operator=(const CTestBench&) = delete;

    /// Reads a file from `seekPos` on. Unlike a lone specification, the tree is not validated.
    static std::shared_ptr<CTestBench> load(const std::string& fileName, int seekPos);
    static std::shared_ptr<CTestBench> load(const std::string& fileName);
    static std::shared_ptr<CTestBench> parse(const std::string& text);
    /// Writes one YAML document; a file that cannot be opened is silently skipped.
    void save(const std::string& fileName, bool isAppend);
    void save(const std::string& fileName);

    ITestParserEventReceiver* mappingStart(const yaml_event_t& event) override;
    ITestParserEventReceiver* mappingKey(const yaml_event_t& event) override;
    ITestParserEventReceiver* mappingValue(const yaml_event_t& event) override;
    ITestParserEventReceiver* mappingEnd() override;
    ITestParserEventReceiver* sequenceStart(const yaml_event_t& event) override;
    ITestParserEventReceiver* sequenceValue(const yaml_event_t& event) override;
    ITestParserEventReceiver* sequenceEnd() override;
    /// "env", "reportConfig", then the root specification's keys and "tests", flat in one mapping.
    void serialize(std::shared_ptr<IEmitter> emitter) override;

    std::shared_ptr<CTestSpecification> getTestSpecification() const { return m_specification; }
    std::shared_ptr<CTestEnvironmentConfig> getTestEnvironmentConfig() const { return m_environment; }
    std::shared_ptr<CTestReportConfig> getTestReportConfig() const { return m_report; }

private:
    enum EState { S_BEFORE = 0, S_INSIDE = 1, S_AFTER = 2 };

    CYAMLMap m_main;
    std::shared_ptr<CTestSpecification> m_specification;
    std::shared_ptr<CTestEnvironmentConfig> m_environment;
    std::shared_ptr<CTestReportConfig> m_report;
    int m_state = S_BEFORE;
    std::string m_key;
};

} // namespace kestrix
