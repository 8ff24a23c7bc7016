#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>
#include <numeric>
#include <sstream>
#include <string>

#include "CLogger.h"
#include "IOException.h"
#include "IllegalArgumentException.h"

using namespace kestrix;

namespace {

// A script file in the test's temporary folder, with a clock the test moves by hand.
class CLoggerTest : public ::testing::Test {
protected:
    void SetUp() override { std::remove(m_path.c_str()); }
    void TearDown() override { std::remove(m_path.c_str()); }
    void useClock(CLogger& logger) { logger.setTickSource([this] { return m_ticks; }); }

    std::string script() const
    {
        std::ostringstream text;
        text << std::ifstream(m_path, std::ios::binary).rdbuf();
        return text.str();
    }
    /// The description of the exception `E` that `action` throws.
    template <class E, class F>
    static std::string descOf(F action)
    {
        try {
            action();
        } catch (const E& e) {
            return e.getDesc();
        }
        return "nothing thrown";
    }

    const std::string m_path = ::testing::TempDir() + "kx_logger_" +
                               ::testing::UnitTest::GetInstance()->current_test_info()->name() + ".txt";
    uint32_t m_ticks = 100000;
};

} // namespace

TEST_F(CLoggerTest, PythonSession)
{
    CLogger logger(m_path, CLogger::PYTHON);
    useClock(logger);
    logger.log("connectionMgr", "kestrix::ConnectionMgr::connectMRU");
    logger.createSType("rdType", SType{SType::tUnsigned, 32});
    logger.logf("dataCtrl", "kestrix::CDataController::readValue", "viDv", CLogger::obDebugAccessFlags2str(0), 0,
                4096u, "rdType");
    m_ticks += 3500;
    logger.log("connectionMgr", "kestrix::ConnectionMgr::disconnect", DWORD(0));
    logger.logc("Dtor: ~ConnectionMgr");

    // Pauses up to the ignorable difference leave no wait line; a longer one does.
    m_ticks += 1000;
    logger.createVar("bytes", "VectorBYTE");
    logger.setIndent(4);
    VectorBYTE bytes(27);
    std::iota(bytes.begin(), bytes.end(), BYTE(0));
    logger.fillVectorBYTE("bytes", bytes);
    logger.createCValueType("wrValue", CValueType(SType{SType::tSigned, 16}, -5LL));
    logger.logf("dataCtrl", "writeValue", "uibla1s", 7u, -3, true, -40000000000LL, &bytes[0], 4, "x y");
    m_ticks += 1001;
    logger.logf("dataCtrl", "kestrix::CDataController::evaluate", "Ed", 0x01000100,
                &CLogger::obDebugEvaluateFlags2str, 0.25);
    logger.setIndent(0);
    logger.resetStartTime();
    m_ticks += 60000;
    logger.log("execCtrl", "kestrix::CExecutionController::run", std::string("main"));
    m_ticks += 2000;
    logger.loggingOff();
    logger.log("hidden");
    logger.logc("hidden");
    logger.loggingOn();
    logger.logf("x", "m", "");
    logger.closeLog("# end\n");
    logger.log("after close");
    EXPECT_EQ("connectionMgr.connectMRU();\n"
              "rdType = kestrix.orbel.SType()\n"
              "rdType.m_byBitSize = 32\n"
              "rdType.m_byType = kestrix.orbel.SType.tUnsigned\n"
              "dataCtrl.readValue(OrbelDebug.fMonitor, 0, 4096, rdType);\n"
              "waitUntil(3.5);\n"
              "connectionMgr.disconnect(0);\n"
              "# Dtor: ~ConnectionMgr\n"
              "bytes = VectorBYTE()\n"
              "    bytes = kestrix.orbel.VectorBYTE([0, \n"
              "1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16, 17, 18, 19, 20, 21, 22, 23, 24, 25, \n"
              "26, ])\n"
              "    __sType = kestrix.orbel.SType()\n"
              "    __sType.m_byBitSize = 16\n"
              "    __sType.m_byType = kestrix.orbel.SType.tSigned\n"
              "    wrValue = kestrix.orbel.CValueType(__sType, \"-5\")\n"
              "    dataCtrl.writeValue(7, -3, 1, -40000000000, , \"x y\");\n"
              "    waitUntil(5.501);\n"
              "    dataCtrl.evaluate(OrbelDebug.efNoMemAreaDisplay, 0.25);\n"
              "execCtrl.run(\"main\");\n"
              "waitUntil(2);\n"
              "x.m();\n"
              "# end\n",
              script());
}

TEST_F(CLoggerTest, JavaSessionWithHeader)
{
    {
        CLogger logger(m_path, CLogger::JAVA, 0.5, "// generated");
        useClock(logger);
        logger.createVar("bpCtrl", "CBreakpointController");
        logger.log("bpCtrl", "kestrix::CBreakpointController::deleteAll");
        m_ticks += 500;
        logger.log("bpCtrl", "kestrix::CBreakpointController::setBP", std::string("main"));
        m_ticks += 2000;
        logger.logf("profilerCtrl", "kestrix::CProfilerController::getStatus", "E", 1, nullptr);
        logger.logf("dataCtrl", "kestrix::CDataController::readMemory", "a2i", 9);
        logger.setIgnorableTimeDiff(0);
        logger.log("a");
        m_ticks += 1;
        logger.log("b");
        logger.logc("Dtor: ~CBreakpointController");
        logger.setIndent(2);
        EXPECT_TRUE(logger.writeHeader("// tail"));
    }
    EXPECT_EQ("// generated\n"
              "CBreakpointController bpCtrl = new CBreakpointController()\n"
              "bpCtrl.deleteAll();\n"
              "bpCtrl.setBP(\"main\");\n"
              "OBUtil.waitUntil(2500);\n"
              "profilerCtrl.getStatus(1);\n"
              "dataCtrl.readMemory(\nCLogger ERROR: Unsupported array element size: 2\n, 9);\n"
              "a\n"
              "OBUtil.waitUntil(2501);\n"
              "b\n"
              "// Dtor: ~CBreakpointController\n"
              "// tail\n",
              script());
}

TEST_F(CLoggerTest, FormatLettersNeedFittingArguments)
{
    CLogger logger(m_path, CLogger::PYTHON);
    EXPECT_THROW(logger.logf("x", "m", "i"), IllegalArgumentException);
    EXPECT_THROW(logger.logf("x", "m", "s", 5), IllegalArgumentException);
    EXPECT_THROW(logger.logf("x", "m", "i", 1, 2), IllegalArgumentException);
    EXPECT_THROW(logger.logf("x", "m", "a1", 1), IllegalArgumentException);
    EXPECT_EQ("Log format letter without a fitting argument: v",
              descOf<IllegalArgumentException>([&] { logger.logf("dataCtrl", "m", "iv", 1, 2); }));
    // Unknown letters take nothing but still get a separator.
    logger.logf("x", "m", "?i", 4);
    logger.logf("x", "m", "vs", "a", std::string("b"));
    EXPECT_THROW(logger.setIndent(-1), IllegalArgumentException);
    logger.closeLog("");
    EXPECT_EQ("x.m(, 4);\nx.m(a, \"b\");\n", script());
}

TEST_F(CLoggerTest, OpeningFailures)
{
    EXPECT_EQ("Can not open log file: /nonexistent-dir/log.py",
              descOf<IOException>([] { CLogger logger("/nonexistent-dir/log.py", CLogger::PYTHON); }));
    EXPECT_EQ("Invalid output language selected for log file: 5",
              descOf<IOException>([&] { CLogger logger(m_path, static_cast<CLogger::ELanguage>(5)); }));
    EXPECT_TRUE(std::ifstream(m_path).good()) << "the file is opened before the language is checked";
}

// The combined and field flags, the numbered range, and the fallback texts that name their kind.
TEST(CLoggerPrinters, TextsOfFlagsAndEnumerations)
{
    EXPECT_EQ("OrbelDebug.fRealTime | OrbelDebug.fSFR | OrbelDebug.fCacheDefault", CLogger::obDebugAccessFlags2str(0x15));
    EXPECT_EQ("OrbelDebug.fCacheCode | OrbelDebug.fNoRefresh", CLogger::obDebugAccessFlags2str(0x70));
    EXPECT_EQ("OrbelDebug.fCacheStop", CLogger::obDebugAccessFlags2str(0x22));
    EXPECT_EQ("", CLogger::obDebugAccessFlags2str(0x02));
    EXPECT_EQ("OrbelDebug.ESymbolFlags = 3", CLogger::obDebugSymbolFlags2str(3));
    EXPECT_EQ("OrbelDebug.EGetAddressFlags = 12288", CLogger::obDebugAddressFlags2str(0x3000));
    EXPECT_EQ("OrbelDebug.EEvaluate = 16777216", CLogger::obDebugEvaluateFlags2str(0x01000000));
    EXPECT_EQ("kestrix.orbel.SType.m_byType = 5", CLogger::obSTypeType2str(5));
    EXPECT_EQ("OrbelProfiler.cfTimeStampM0", CLogger::obProfilerConfigFlags2str(0x10));
    EXPECT_EQ("OrbelProfiler.cfTimeStampM9", CLogger::obProfilerConfigFlags2str(0x19));
    EXPECT_EQ("26", CLogger::obProfilerConfigFlags2str(0x1A));
}
