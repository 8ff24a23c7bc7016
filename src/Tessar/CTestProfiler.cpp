#include "CTestProfiler.h"

#include <utility>

#include "CSectionSetters.h"
#include "CUtil.h"
#include "CYAMLUtil.h"
#include "IEmitter.h"
#include "IllegalArgumentException.h"
#include "IndexOutOfBoundsException.h"

namespace kestrix {

const char* const CTestProfiler::KEY_RUN_MODE = "runMode";
const char* const CTestProfiler::KEY_TRIGGER = "trigger";
const char* const CTestProfiler::KEY_OUT_FILE = "outFile";
const char* const CTestProfiler::KEY_FORCE_OVERWRITE = "isForceOverwrite";
const char* const CTestProfiler::KEY_SAVE_HISTORY = "isSaveHistory";
const char* const CTestProfiler::KEY_CODE_AREAS = "codeAreas";
const char* const CTestProfiler::KEY_DATA_AREAS = "dataAreas";

namespace {

std::string scalarText(const yaml_event_t& event)
{
    return std::string(reinterpret_cast<const char*>(event.data.scalar.value), event.data.scalar.length);
}

} // namespace

CTestProfiler::CTestProfiler(ITestParserEventReceiver* parent) : m_parent(parent) {}

CTestProfiler::CTestProfiler(const CTestProfiler& other)
    : ITestParserEventReceiver(other),
      m_block(other.m_block),
      m_runMode(other.m_runMode),
      m_trigger(other.m_trigger),
      m_outFile(other.m_outFile),
      m_isForceOverwrite(other.m_isForceOverwrite),
      m_isSaveHistory(other.m_isSaveHistory),
      m_codeAreasBlock(other.m_codeAreasBlock),
      m_codeAreas(copyAreas(other.m_codeAreas)),
      m_dataAreasBlock(other.m_dataAreasBlock),
      m_dataAreas(copyAreas(other.m_dataAreas)),
      m_parent(other.m_parent),
      m_section(other.m_section),
      m_key(other.m_key)
{
}

CTestProfiler& CTestProfiler::operator=(const CTestProfiler& other)
{
    if (this != &other) {
        // The parent stays: it is the owner of this section, not of the copied one.
        m_block = other.m_block;
        m_runMode = other.m_runMode;
        m_trigger = other.m_trigger;
        m_outFile = other.m_outFile;
        m_isForceOverwrite = other.m_isForceOverwrite;
        m_isSaveHistory = other.m_isSaveHistory;
        m_codeAreasBlock = other.m_codeAreasBlock;
        m_codeAreas = copyAreas(other.m_codeAreas);
        m_dataAreasBlock = other.m_dataAreasBlock;
        m_dataAreas = copyAreas(other.m_dataAreas);
        m_section = other.m_section;
        m_key = other.m_key;
    }
    return *this;
}

CTestProfiler::~CTestProfiler() = default;

ProfilerAreasVector CTestProfiler::copyAreas(const ProfilerAreasVector& areas)
{
    ProfilerAreasVector copies;
    copies.reserve(areas.size());
    for (const auto& area : areas) {
        copies.push_back(std::make_shared<CProfilerArea>(*area));
    }
    return copies;
}

ITestParserEventReceiver* CTestProfiler::startArea(ProfilerAreasVector& areas, const yaml_event_t& event)
{
    auto area = std::make_shared<CProfilerArea>(this);
    area->mappingStart(event);
    areas.push_back(area);
    return area.get();
}

ITestParserEventReceiver* CTestProfiler::mappingStart(const yaml_event_t& event)
{
    switch (m_section) {
    case BEFORE_MAPPING:
        m_block = CYAMLMap(event);
        m_section = IN_MAPPING;
        // A section given in a file starts the profiler unless it says otherwise.
        m_runMode.setDefault(rmStart);
        return this;
    case IN_CODE_AREAS:
        return startArea(m_codeAreas, event);
    case IN_DATA_AREAS:
        return startArea(m_dataAreas, event);
    default:
        throw IllegalArgumentException(KX_POS, "No mappings allowed in the main section!");
    }
}

ITestParserEventReceiver* CTestProfiler::mappingKey(const yaml_event_t& event)
{
    const std::string key = scalarText(event);
    if (m_section != IN_MAPPING) {
        throw IllegalArgumentException(KX_POS, CSectionSetters::sectionTypeMessage(key, m_section));
    }
    m_key = key;
    if (key == KEY_CODE_AREAS) {
        m_section = CODE_AREAS_KEY;
    } else if (key == KEY_DATA_AREAS) {
        m_section = DATA_AREAS_KEY;
    }
    // Other keys are judged with their value.
    return this;
}

ITestParserEventReceiver* CTestProfiler::mappingValue(const yaml_event_t& event)
{
    if (m_section != IN_MAPPING) {
        throw IllegalArgumentException(KX_POS, CSectionSetters::sectionTypeMessage(m_key, m_section));
    }
    if (m_key == KEY_RUN_MODE) {
        m_runMode = CYAMLEnum<ERunMode>(event);
    } else if (m_key == KEY_TRIGGER) {
        m_trigger = CYAMLScalar(event);
    } else if (m_key == KEY_OUT_FILE) {
        m_outFile = CYAMLScalar(event);
    } else if (m_key == KEY_FORCE_OVERWRITE) {
        m_isForceOverwrite = CYAMLBool(event);
    } else if (m_key == KEY_SAVE_HISTORY) {
        m_isSaveHistory = CYAMLBool(event);
    } else {
        throw IllegalArgumentException(KX_POS, "Unknown tag in the main section of 'profiler': " + m_key);
    }
    return this;
}

ITestParserEventReceiver* CTestProfiler::mappingEnd()
{
    return m_parent;
}

ITestParserEventReceiver* CTestProfiler::sequenceStart(const yaml_event_t& event)
{
    if (m_section == CODE_AREAS_KEY) {
        m_codeAreasBlock = CYAMLSequence(event);
        m_section = IN_CODE_AREAS;
    } else if (m_section == DATA_AREAS_KEY) {
        m_dataAreasBlock = CYAMLSequence(event);
        m_section = IN_DATA_AREAS;
    } else {
        throw IllegalArgumentException(KX_POS, "Sequence not allowed in 'profiler' section!");
    }
    return this;
}

ITestParserEventReceiver* CTestProfiler::sequenceValue(const yaml_event_t& event)
{
    throw IllegalArgumentException(KX_POS, "Sequence scalar not allowed in 'profiler' section: " + scalarText(event));
}

ITestParserEventReceiver* CTestProfiler::sequenceEnd()
{
    if (m_section != IN_CODE_AREAS && m_section != IN_DATA_AREAS) {
        throw IllegalArgumentException(KX_POS, "Sequence not allowed in 'profiler' section!");
    }
    m_section = IN_MAPPING;
    return this;
}

void CTestProfiler::writeAreas(const std::shared_ptr<IEmitter>& emitter, const char* key,
                               const CYAMLSequence& block, const ProfilerAreasVector& areas)
{
    if (areas.empty()) {
        return;
    }
    emitter->write(key);
    emitter->writeSequenceStart(block);
    for (const auto& area : areas) {
        area->serialize(emitter);
    }
    emitter->writeSequenceEnd();
}

void CTestProfiler::serialize(std::shared_ptr<IEmitter> emitter)
{
    IEmitter::checkNotNull(emitter);
    emitter->writeMapStart(m_block);
    emitter->writeMappingPair(KEY_RUN_MODE, m_runMode);
    emitter->writeMappingPair(KEY_TRIGGER, m_trigger);
    emitter->writeMappingPair(KEY_OUT_FILE, m_outFile);
    emitter->writeMappingPair(KEY_FORCE_OVERWRITE, m_isForceOverwrite);
    emitter->writeMappingPair(KEY_SAVE_HISTORY, m_isSaveHistory);

    writeAreas(emitter, KEY_CODE_AREAS, m_codeAreasBlock, m_codeAreas);
    writeAreas(emitter, KEY_DATA_AREAS, m_dataAreasBlock, m_dataAreas);
    emitter->writeMapEnd();
}

CTestProfiler::ERunMode CTestProfiler::getRunMode() const
{
    return m_runMode.getEnum();
}

void CTestProfiler::setRunMode(const std::string& runMode)
{
    CSectionSetters::setRunModeText(m_runMode, runMode);
}

void CTestProfiler::setRunMode(ERunMode runMode)
{
    if (runMode != rmOff && runMode != rmStart) {
        throw IllegalArgumentException(KX_POS, "Invalid profiler 'ERunMode' enum value!", static_cast<int>(runMode));
    }
    m_runMode.setEnum(runMode);
}

bool CTestProfiler::isDefaultRunMode() const
{
    return m_runMode.getValue().empty();
}

std::string CTestProfiler::getTriggerName() const
{
    return m_trigger.getValue();
}

void CTestProfiler::setTriggerName(const std::string& triggerName)
{
    CYAMLUtil::parseScalar(m_trigger, triggerName);
}

std::string CTestProfiler::getOutputFileName() const
{
    return m_outFile.getValue();
}

void CTestProfiler::setOutputFileName(const std::string& fileName)
{
    CYAMLUtil::parseScalar(m_outFile, fileName);
}

bool CTestProfiler::isForceOverwrite() const
{
    return m_isForceOverwrite.getBool();
}

std::string CTestProfiler::getForceOverwrite() const
{
    return m_isForceOverwrite.getValue();
}

void CTestProfiler::setForceOverwrite(bool isForceOverwrite)
{
    m_isForceOverwrite.setBool(isForceOverwrite);
}

void CTestProfiler::clearForceOverwrite()
{
    m_isForceOverwrite.setDefault(false);
}

bool CTestProfiler::isSaveHistory() const
{
    return m_isSaveHistory.getBool();
}

std::string CTestProfiler::getSaveHistory() const
{
    return m_isSaveHistory.getValue();
}

void CTestProfiler::setSaveHistory(bool isSaveHistory)
{
    m_isSaveHistory.setBool(isSaveHistory);
}

void CTestProfiler::clearSaveHistory()
{
    m_isSaveHistory.setDefault(false);
}

bool CTestProfiler::isEmpty() const
{
    return m_runMode.isEmpty() && m_trigger.isEmpty() && m_outFile.isEmpty() && m_isForceOverwrite.isEmpty() &&
           m_isSaveHistory.isEmpty() && m_codeAreas.empty() && m_dataAreas.empty();
}

const ProfilerAreasVector& CTestProfiler::getCodeAreas() const
{
    return m_codeAreas;
}

const ProfilerAreasVector& CTestProfiler::getDataAreas() const
{
    return m_dataAreas;
}

void CTestProfiler::checkAreas(const ProfilerAreasVector& areas)
{
    for (size_t i = 0; i < areas.size(); ++i) {
        if (!areas[i]) {
            throw IllegalArgumentException(KX_POS, "Profiler area must not be null!").add("index", static_cast<int>(i));
        }
    }
}

void CTestProfiler::setCodeAreas(const ProfilerAreasVector& areas)
{
    checkAreas(areas);
    m_codeAreas = areas;
}

void CTestProfiler::setDataAreas(const ProfilerAreasVector& areas)
{
    checkAreas(areas);
    m_dataAreas = areas;
}

ProfilerAreasVector& CTestProfiler::areasOf(EAreaType type)
{
    return const_cast<ProfilerAreasVector&>(static_cast<const CTestProfiler*>(this)->areasOf(type));
}

const ProfilerAreasVector& CTestProfiler::areasOf(EAreaType type) const
{
    switch (type) {
    case AREA_DATA:
        return m_dataAreas;
    case AREA_CODE:
        return m_codeAreas;
    }
    throw IllegalArgumentException(KX_POS, "Invalid profiler area type given as parameter!")
        .add("areaType", static_cast<int>(type));
}

// An index outside the list is refused rather than left undefined.
void CTestProfiler::checkIndex(const ProfilerAreasVector& areas, int index)
{
    if (index < 0 || static_cast<size_t>(index) >= areas.size()) {
        throw IndexOutOfBoundsException(KX_POS, "Profiler area index out of range!")
            .add("index", index)
            .add("noOfAreas", static_cast<int>(areas.size()));
    }
}

int CTestProfiler::getAreasSize(EAreaType type) const
{
    return static_cast<int>(areasOf(type).size());
}

std::shared_ptr<CProfilerArea> CTestProfiler::getArea(EAreaType type, int index) const
{
    const ProfilerAreasVector& areas = areasOf(type);
    checkIndex(areas, index);
    return areas[index];
}

std::shared_ptr<CProfilerArea> CTestProfiler::addArea(EAreaType type)
{
    ProfilerAreasVector& areas = areasOf(type);
    auto area = std::make_shared<CProfilerArea>();
    areas.push_back(area);
    return area;
}

void CTestProfiler::removeArea(EAreaType type, int index)
{
    ProfilerAreasVector& areas = areasOf(type);
    checkIndex(areas, index);
    areas.erase(areas.begin() + index);
}

void CTestProfiler::swapAreas(EAreaType type, int first, int second)
{
    ProfilerAreasVector& areas = areasOf(type);
    checkIndex(areas, first);
    checkIndex(areas, second);
    std::swap(areas[first], areas[second]);
}

} // namespace kestrix
