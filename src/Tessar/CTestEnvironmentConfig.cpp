#include "CTestEnvironmentConfig.h"

#include "CSectionSetters.h"
#include "CUtil.h"
#include "CYAMLDocumentWriter.h"
#include "CYAMLUtil.h"
#include "IEmitter.h"
#include "ParserException.h"

namespace kestrix {

const char* const CTestEnvironmentConfig::KEY_WORKSPACE = "workspace";
const char* const CTestEnvironmentConfig::KEY_ADDRESS = "address";
const char* const CTestEnvironmentConfig::KEY_PORT = "port";
const char* const CTestEnvironmentConfig::KEY_AUTO_CONNECT = "autoConnect";
const char* const CTestEnvironmentConfig::KEY_INIT_BEFORE_RUN = "initBeforeRun";
const char* const CTestEnvironmentConfig::KEY_DOWNLOAD_ON_INIT = "downloadOnInit";
const char* const CTestEnvironmentConfig::KEY_RESET_ON_INIT = "resetOnInit";
const char* const CTestEnvironmentConfig::KEY_RUN_ON_INIT = "runOnInit";
const char* const CTestEnvironmentConfig::KEY_STOP_FUNCTION = "stopFunction";
const char* const CTestEnvironmentConfig::KEY_DELETE_BPS_ON_INIT = "deleteBreakpointsOnInit";
const char* const CTestEnvironmentConfig::KEY_SCRIPT_MODULES = "scriptModules";
const char* const CTestEnvironmentConfig::KEY_SCRIPT_PATH = "scriptPath";
const char* const CTestEnvironmentConfig::KEY_DEFAULT_RET_VAL_NAME = "defaultRetValName";

namespace {

std::string scalarText(const yaml_event_t& event)
{
    return std::string(reinterpret_cast<const char*>(event.data.scalar.value), event.data.scalar.length);
}

} // namespace

/// Reads the list of script modules. A scalar in place of the list comes back to the section,
/// which answers it with its own message.
class CTestEnvironmentConfig::ScriptModulesReceiver final : public CYAMLSequenceReceiver {
public:
    ScriptModulesReceiver(CTestEnvironmentConfig* section, CYAMLSequence* modules)
        : CYAMLSequenceReceiver(section, modules), m_section(section)
    {
    }

    ITestParserEventReceiver* mappingValue(const yaml_event_t& event) override
    {
        return m_section->mappingValue(event);
    }

private:
    CTestEnvironmentConfig* m_section;
};

CTestEnvironmentConfig::CTestEnvironmentConfig(ITestParserEventReceiver* parent) : m_parent(parent) {}

CTestEnvironmentConfig::CTestEnvironmentConfig() : m_parent(nullptr) {}

CTestEnvironmentConfig::~CTestEnvironmentConfig() = default;

CYAMLScalar* CTestEnvironmentConfig::scalarOf(const std::string& key)
{
    const std::pair<const char*, CYAMLScalar*> fields[] = {
        {KEY_WORKSPACE, &m_workspace},         {KEY_ADDRESS, &m_address},
        {KEY_PORT, &m_port},                   {KEY_STOP_FUNCTION, &m_stopFunction},
        {KEY_SCRIPT_PATH, &m_scriptPath},      {KEY_DEFAULT_RET_VAL_NAME, &m_defaultRetValName},
    };
    for (const auto& field : fields) {
        if (key == field.first) {
            return field.second;
        }
    }
    return nullptr;
}

CYAMLBool* CTestEnvironmentConfig::boolOf(const std::string& key)
{
    const std::pair<const char*, CYAMLBool*> fields[] = {
        {KEY_AUTO_CONNECT, &m_isAutoConnect},       {KEY_INIT_BEFORE_RUN, &m_isInitBeforeRun},
        {KEY_DOWNLOAD_ON_INIT, &m_isDownloadOnInit}, {KEY_RESET_ON_INIT, &m_isResetOnInit},
        {KEY_RUN_ON_INIT, &m_isRunOnInit},           {KEY_DELETE_BPS_ON_INIT, &m_isDeleteBPsOnInit},
    };
    for (const auto& field : fields) {
        if (key == field.first) {
            return field.second;
        }
    }
    return nullptr;
}

ITestParserEventReceiver* CTestEnvironmentConfig::mappingStart(const yaml_event_t& event)
{
    if (m_state != BEFORE_MAPPING) {
        throw ParserException(KX_POS, "No mappings allowed in the main section!");
    }
    m_main = CYAMLMap(event);
    m_state = IN_MAPPING;
    return this;
}

ITestParserEventReceiver* CTestEnvironmentConfig::mappingKey(const yaml_event_t& event)
{
    const std::string key = scalarText(event);
    if (m_state != IN_MAPPING) {
        throw ParserException(KX_POS, CSectionSetters::sectionTypeMessage(key, m_state));
    }
    m_key = key;
    if (key == KEY_SCRIPT_MODULES) {
        if (!m_scriptModules.isEmpty()) {
            throw ParserException(KX_POS, "Script modules are already defined!");
        }
        m_sequenceReceiver.reset(new ScriptModulesReceiver(this, &m_scriptModules));
        return m_sequenceReceiver.get();
    }
    // Other keys are judged with their value.
    return this;
}

ITestParserEventReceiver* CTestEnvironmentConfig::mappingValue(const yaml_event_t& event)
{
    if (m_state != IN_MAPPING) {
        throw ParserException(KX_POS, CSectionSetters::sectionTypeMessage(m_key, m_state));
    }
    if (CYAMLScalar* field = scalarOf(m_key)) {
        if (!field->isEmpty()) {
            throw ParserException(KX_POS, "Data already defined in this specification: " + m_key);
        }
        *field = CYAMLScalar(event);
    } else if (CYAMLBool* flag = boolOf(m_key)) {
        if (!flag->isEmpty()) {
            throw ParserException(KX_POS, "Data already defined in this specification: " + m_key);
        }
        *flag = CYAMLBool(event);
    } else if (m_key == KEY_SCRIPT_MODULES) {
        throw ParserException(KX_POS, "Section modules must contain list, not scalar. Use '[' and ']'!");
    } else {
        throw ParserException(KX_POS, "Unknown tag in the main section of 'config': " + m_key);
    }
    return this;
}

ITestParserEventReceiver* CTestEnvironmentConfig::mappingEnd()
{
    // The state stays, so that a second mapping for the section is refused.
    return m_parent;
}

ITestParserEventReceiver* CTestEnvironmentConfig::sequenceStart(const yaml_event_t&)
{
    throw ParserException(KX_POS, "Sequence not allowed in 'config' section!");
}

ITestParserEventReceiver* CTestEnvironmentConfig::sequenceValue(const yaml_event_t& event)
{
    throw ParserException(KX_POS, "Sequence scalar not allowed in 'config' section: " + scalarText(event));
}

ITestParserEventReceiver* CTestEnvironmentConfig::sequenceEnd()
{
    throw ParserException(KX_POS, "Sequence not allowed in 'config' section!");
}

void CTestEnvironmentConfig::serialize(std::shared_ptr<IEmitter> emitter)
{
    IEmitter::checkNotNull(emitter);
    writeTo(*emitter);
}

void CTestEnvironmentConfig::writeTo(IEmitter& emitter) const
{
    emitter.writeMapStart(m_main);
    emitter.writeMappingPair(KEY_WORKSPACE, m_workspace);
    emitter.writeMappingPair(KEY_ADDRESS, m_address);
    emitter.writeMappingPair(KEY_PORT, m_port);
    emitter.writeMappingPair(KEY_AUTO_CONNECT, m_isAutoConnect);
    emitter.writeMappingPair(KEY_INIT_BEFORE_RUN, m_isInitBeforeRun);
    emitter.writeMappingPair(KEY_DOWNLOAD_ON_INIT, m_isDownloadOnInit);
    emitter.writeMappingPair(KEY_RESET_ON_INIT, m_isResetOnInit);
    emitter.writeMappingPair(KEY_RUN_ON_INIT, m_isRunOnInit);
    emitter.writeMappingPair(KEY_STOP_FUNCTION, m_stopFunction);
    emitter.writeMappingPair(KEY_DELETE_BPS_ON_INIT, m_isDeleteBPsOnInit);
    emitter.writeMappingPair(KEY_SCRIPT_MODULES, m_scriptModules);
    emitter.writeMappingPair(KEY_SCRIPT_PATH, m_scriptPath);
    emitter.writeMappingPair(KEY_DEFAULT_RET_VAL_NAME, m_defaultRetValName);
    emitter.writeMapEnd();
}

bool CTestEnvironmentConfig::isEmpty() const
{
    return m_workspace.isEmpty() && m_address.isEmpty() && m_port.isEmpty() && m_isAutoConnect.isEmpty() &&
           m_isInitBeforeRun.isEmpty() && m_isDownloadOnInit.isEmpty() && m_isResetOnInit.isEmpty() &&
           m_isRunOnInit.isEmpty() && m_stopFunction.isEmpty() && m_isDeleteBPsOnInit.isEmpty() &&
           m_scriptModules.isEmpty() && m_scriptPath.isEmpty() && m_defaultRetValName.isEmpty();
}

std::string CTestEnvironmentConfig::toString() const
{
    return CYAMLDocumentWriter::toString([this](IEmitter& emitter) { writeTo(emitter); });
}

std::string CTestEnvironmentConfig::getWorkspace() const
{
    return m_workspace.getValue();
}

void CTestEnvironmentConfig::setWorkspace(const std::string& workspace)
{
    CYAMLUtil::parseScalar(m_workspace, workspace);
}

std::string CTestEnvironmentConfig::getAddress() const
{
    return m_address.getValue();
}

void CTestEnvironmentConfig::setAddress(const std::string& address)
{
    CYAMLUtil::parseScalar(m_address, address);
}

int CTestEnvironmentConfig::getPort() const
{
    if (m_port.getValue().empty()) {
        return 0;
    }
    return static_cast<int>(CUtil::a2l(m_port.getValue()));
}

void CTestEnvironmentConfig::setPort(int port)
{
    CYAMLUtil::parseScalar(m_port, port == 0 ? std::string() : CUtil::i2a(port));
}

bool CTestEnvironmentConfig::isAutoConnectToQuillon() const
{
    return m_isAutoConnect.getBool();
}

void CTestEnvironmentConfig::setAutoConnectToQuillon(bool isAutoConnect)
{
    m_isAutoConnect.setBool(isAutoConnect);
}

bool CTestEnvironmentConfig::isAlwaysRunInitSeqBeforeRun() const
{
    return m_isInitBeforeRun.getBool();
}

void CTestEnvironmentConfig::setAlwaysRunInitSeqBeforeRun(bool isAlwaysRunInitSeq)
{
    m_isInitBeforeRun.setBool(isAlwaysRunInitSeq);
}

bool CTestEnvironmentConfig::idDownloadOnInit() const
{
    return m_isDownloadOnInit.getBool();
}

void CTestEnvironmentConfig::setDownloadOnInit(bool isDownloadOnInit)
{
    m_isDownloadOnInit.setBool(isDownloadOnInit);
}

void CTestEnvironmentConfig::clearDownloadOnInit()
{
    m_isDownloadOnInit.setDefault(false);
}

bool CTestEnvironmentConfig::isResetOnInit() const
{
    return m_isResetOnInit.getBool();
}

void CTestEnvironmentConfig::setResetOnInit(bool isResetOnInit)
{
    m_isResetOnInit.setBool(isResetOnInit);
}

void CTestEnvironmentConfig::clearResetOnInit()
{
    m_isResetOnInit.setDefault(false);
}

bool CTestEnvironmentConfig::isRunOnInit() const
{
    return m_isRunOnInit.getBool();
}

void CTestEnvironmentConfig::setRunOnInit(bool isRunOnInit)
{
    m_isRunOnInit.setBool(isRunOnInit);
}

void CTestEnvironmentConfig::clearRunOnInit()
{
    m_isRunOnInit.setDefault(false);
}

std::string CTestEnvironmentConfig::getStopFunction() const
{
    return m_stopFunction.getValue();
}

void CTestEnvironmentConfig::setStopFunction(const std::string& stopFunction)
{
    CYAMLUtil::parseScalar(m_stopFunction, stopFunction);
}

bool CTestEnvironmentConfig::isDeleteAllBPsOnInit() const
{
    return m_isDeleteBPsOnInit.getBool();
}

void CTestEnvironmentConfig::setDeleteAllBPsOnInit(bool isDeleteAllBPs)
{
    m_isDeleteBPsOnInit.setBool(isDeleteAllBPs);
}

void CTestEnvironmentConfig::clearDeleteAllBPsOnInit()
{
    m_isDeleteBPsOnInit.setDefault(false);
}

void CTestEnvironmentConfig::getScriptModules(StrVector& modules) const
{
    m_scriptModules.getVector(modules);
}

void CTestEnvironmentConfig::setScriptModules(const std::string& modules)
{
    CSectionSetters::setSequenceItems(m_scriptModules, modules);
}

std::string CTestEnvironmentConfig::getScriptPath() const
{
    return m_scriptPath.getValue();
}

void CTestEnvironmentConfig::setScriptPath(const std::string& scriptPath)
{
    CYAMLUtil::parseScalar(m_scriptPath, scriptPath);
}

std::string CTestEnvironmentConfig::getDefaultReturnValueName() const
{
    return m_defaultRetValName.getValue();
}

void CTestEnvironmentConfig::setDefaultReturnValueName(const std::string& name)
{
    CYAMLUtil::parseScalar(m_defaultRetValName, name);
}

void CTestEnvironmentConfig::getLoggingParameters(StrVector& parameters) const
{
    m_loggingParameters.getVector(parameters);
}

void CTestEnvironmentConfig::setLoggingParameters(const std::string& parameters)
{
    CSectionSetters::setSequenceItems(m_loggingParameters, parameters);
}

} // namespace kestrix
