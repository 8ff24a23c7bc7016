#pragma once

#include <memory>
#include <string>
#include <vector>

#include "CIntervalValidator.h"
#include "CYAMLMap.h"
#include "CYAMLScalar.h"
#include "CYAMLSequence.h"
#include "CYAMLSequenceReceiver.h"
#include "ITestParserEventReceiver.h"
#include "MinMaxLimits.h"

namespace kestrix {

/// One item of the profiler's "codeAreas" or "dataAreas" list: a function or a variable
/// (with the value measured), and the expected limits of its times and hits.
class CProfilerArea final : public ITestParserEventReceiver {
public:
    static const char* const KEY_NAME;
    static const char* const KEY_VALUE;
    static const char* const KEY_MIN_TIME;
    static const char* const KEY_MAX_TIME;
    static const char* const KEY_TOTAL_TIME;
    static const char* const KEY_HITS;

    CProfilerArea();
    /// `parent` takes control at the end of the area's mapping; not owned.
    explicit CProfilerArea(ITestParserEventReceiver* parent);
    /// Deep copy; the reader's receiver is not copied.
    CProfilerArea(const CProfilerArea& other);
    CProfilerArea& operator=(const CProfilerArea& other);
    ~CProfilerArea();

    ITestParserEventReceiver* mappingStart(const yaml_event_t& event) override;
    ITestParserEventReceiver* mappingKey(const yaml_event_t& event) override;
    ITestParserEventReceiver* mappingValue(const yaml_event_t& event) override;
    ITestParserEventReceiver* mappingEnd() override;
    ITestParserEventReceiver* sequenceStart(const yaml_event_t& event) override;
    ITestParserEventReceiver* sequenceValue(const yaml_event_t& event) override;
    ITestParserEventReceiver* sequenceEnd() override;
    void serialize(std::shared_ptr<IEmitter> emitter) override;

    std::string getAreaName() const;
    /// Text parsed as YAML scalar.
    void setAreaName(const std::string& name);

    /// The value text as a decimal or hexadecimal number.
    long long getAreaValue() const;
    /// Sets the decimal text and marks the value as set.
    void setAreaValue(long long value);
    bool isAreaValueSet() const;
    /// Marks the value as not set; its text stays.
    void disableAreaValue();

    MinMaxLimits getMinTime() const;
    void setMinTime(const MinMaxLimits& limits);
    MinMaxLimits getMaxTime() const;
    void setMaxTime(const MinMaxLimits& limits);
    MinMaxLimits getTotalTime() const;
    void setTotalTime(const MinMaxLimits& limits);
    MinMaxLimits getHits() const;
    void setHits(const MinMaxLimits& limits);

private:
    enum ESection { BEFORE_MAPPING = 0, IN_MAPPING = 1 };

    static MinMaxLimits toLimits(const CYAMLSequence& sequence);
    static void fromLimits(CYAMLSequence& sequence, const MinMaxLimits& limits);
    /// The list of a limits key, or null for any other key.
    CYAMLSequence* limitsOf(const std::string& key);

    CYAMLMap m_block;
    CYAMLScalar m_name;
    CYAMLScalar m_value;
    CYAMLSequence m_minTime;
    CYAMLSequence m_maxTime;
    CYAMLSequence m_totalTime;
    CYAMLSequence m_hits;
    bool m_isValueSet = false;
    CIntervalValidator m_intervalValidator;
    ITestParserEventReceiver* m_parent = nullptr;
    int m_section = BEFORE_MAPPING;
    std::string m_key;
    std::unique_ptr<CYAMLSequenceReceiver> m_sequenceReceiver;
};

typedef std::vector<std::shared_ptr<CProfilerArea>> ProfilerAreasVector;

} // namespace kestrix
