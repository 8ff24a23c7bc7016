#pragma once

#include <memory>
#include <string>

#include "CProfilerArea.h"
#include "CYAMLBool.h"
#include "CYAMLEnum.h"
#include "CYAMLEnumTables.h"
#include "CYAMLMap.h"
#include "CYAMLScalar.h"
#include "CYAMLSequence.h"
#include "ITestParserEventReceiver.h"

namespace kestrix {

/// The "profiler" section of a test: whether and from where the profiler runs, where its
/// results go, and the code and data areas it measures with their expected limits.
class CTestProfiler final : public ITestParserEventReceiver {
public:
    enum ERunMode { rmOff = 0, rmStart = 1 };
    /// Selects one of the two area lists.
    enum EAreaType { AREA_DATA = 0, AREA_CODE = 1 };

    static const char* const KEY_RUN_MODE;
    static const char* const KEY_TRIGGER;
    static const char* const KEY_OUT_FILE;
    static const char* const KEY_FORCE_OVERWRITE;
    static const char* const KEY_SAVE_HISTORY;
    static const char* const KEY_CODE_AREAS;
    static const char* const KEY_DATA_AREAS;

    /// `parent` takes control at the end of the section; not owned.
    explicit CTestProfiler(ITestParserEventReceiver* parent);
    /// Deep copy: each area is copied into a new object.
    CTestProfiler(const CTestProfiler& other);
    /// Deep copy of the contents; this section keeps its own parent.
    CTestProfiler& operator=(const CTestProfiler& other);
    ~CTestProfiler();

    ITestParserEventReceiver* mappingStart(const yaml_event_t& event) override;
    ITestParserEventReceiver* mappingKey(const yaml_event_t& event) override;
    ITestParserEventReceiver* mappingValue(const yaml_event_t& event) override;
    ITestParserEventReceiver* mappingEnd() override;
    ITestParserEventReceiver* sequenceStart(const yaml_event_t& event) override;
    ITestParserEventReceiver* sequenceValue(const yaml_event_t& event) override;
    ITestParserEventReceiver* sequenceEnd() override;
    void serialize(std::shared_ptr<IEmitter> emitter) override;

    ERunMode getRunMode() const;
    /// A word of the run mode table; an empty text clears the run mode (off, not written).
    void setRunMode(const std::string& runMode);
    void setRunMode(ERunMode runMode);
    /// True when the run mode has no text: a new section, or one read without "runMode".
    bool isDefaultRunMode() const;

    std::string getTriggerName() const;
    void setTriggerName(const std::string& triggerName);
    std::string getOutputFileName() const;
    void setOutputFileName(const std::string& fileName);

    bool isForceOverwrite() const;
    std::string getForceOverwrite() const;
    void setForceOverwrite(bool isForceOverwrite);
    void clearForceOverwrite();

    bool isSaveHistory() const;
    std::string getSaveHistory() const;
    void setSaveHistory(bool isSaveHistory);
    void clearSaveHistory();

    /// True when no key has a value and both area lists are empty.
    bool isEmpty() const;

    const ProfilerAreasVector& getCodeAreas() const;
    const ProfilerAreasVector& getDataAreas() const;
    void setCodeAreas(const ProfilerAreasVector& areas);
    void setDataAreas(const ProfilerAreasVector& areas);

    int getAreasSize(EAreaType type) const;
    std::shared_ptr<CProfilerArea> getArea(EAreaType type, int index) const;
    /// Appends a new empty area without a parent and returns it.
    std::shared_ptr<CProfilerArea> addArea(EAreaType type);
    void removeArea(EAreaType type, int index);
    void swapAreas(EAreaType type, int first, int second);

private:
    /// States of the reader.
    enum ESection {
        BEFORE_MAPPING = 0,
        IN_MAPPING = 1,
        CODE_AREAS_KEY = 2,
        IN_CODE_AREAS = 3,
        DATA_AREAS_KEY = 4,
        IN_DATA_AREAS = 5
    };

    ProfilerAreasVector& areasOf(EAreaType type);
    const ProfilerAreasVector& areasOf(EAreaType type) const;
    static void checkIndex(const ProfilerAreasVector& areas, int index);
    static ProfilerAreasVector copyAreas(const ProfilerAreasVector& areas);
    /// Refuses null items.
    static void checkAreas(const ProfilerAreasVector& areas);
    static void writeAreas(const std::shared_ptr<IEmitter>& emitter, const char* key, const CYAMLSequence& block,
                           const ProfilerAreasVector& areas);
    ITestParserEventReceiver* startArea(ProfilerAreasVector& areas, const yaml_event_t& event);

    CYAMLMap m_block;
    CYAMLEnum<ERunMode> m_runMode;
    CYAMLScalar m_trigger;
    CYAMLScalar m_outFile;
    CYAMLBool m_isForceOverwrite;
    CYAMLBool m_isSaveHistory;
    CYAMLSequence m_codeAreasBlock;
    ProfilerAreasVector m_codeAreas;
    CYAMLSequence m_dataAreasBlock;
    ProfilerAreasVector m_dataAreas;
    ITestParserEventReceiver* m_parent;
    int m_section = BEFORE_MAPPING;
    std::string m_key;
};

KX_YAML_ENUM_TABLE(CTestProfiler::ERunMode, CYAMLEnumTables::PROFILER_RUN_MODE)

} // namespace kestrix
