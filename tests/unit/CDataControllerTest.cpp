#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#include "CDataController.h"
#include "ControllerTestSupport.h"
#include "Exceptions.h"
#include "OrbelDebugFlags.h"
#include "OrbelIdentifiers.h"
#include "SLine_IN.h"
#include "SScan_IN.h"

using namespace kestrix;

namespace {

const std::string E_FAIL_TEXT = "E_FAIL: kestrix.orbel call failed.";
const std::string MEMORY_ACCESS_TEXT =
    "Memory can not be accessed. This can be caused by bad memory area specification, out of range address, "
    "unavailability of the requested access mode (real-time) or the CPU is not in a mode that allows memory access.";

SType typeOf(BYTE code, BYTE bits)
{
    SType type;
    type.m_byType = code;
    type.m_byBitSize = bits;
    return type;
}

class CDataControllerTest : public ControllerTest {};

} // namespace

TEST_F(CDataControllerTest, ReadMemoryGivesDataThenOneResultBytePerMAU)
{
    answers().readMemory = [](DWORD, BYTE, ADDRESS, DWORD numMAUs, BYTE* data, BYTE bytesPerMAU, BYTE* results) {
        for (DWORD i = 0; i < numMAUs * bytesPerMAU; ++i) {
            data[i] = static_cast<BYTE>(0xA0 + i);
        }
        for (DWORD i = 0; i < numMAUs; ++i) {
            results[i] = static_cast<BYTE>(i + 1);
        }
        return S_OK;
    };
    CDataController data(mgr());
    const VectorBYTE bytes = data.readMemory(OrbelDebugFlags::fRealTime, 2, 0x1000, 4, 2);
    EXPECT_EQ((VectorBYTE{0xA0, 0xA1, 0xA2, 0xA3, 0xA4, 0xA5, 0xA6, 0xA7, 1, 2, 3, 4}), bytes);
    EXPECT_EQ((std::vector<std::string>{"OrbelDebug.ReadMemory(0x1, 2, 0x1000, 4, 2)"}), debugCalls());
}

TEST_F(CDataControllerTest, MemoryFailuresNameTheOperation)
{
    struct Case {
        HRESULT hr;
        std::string words;
    };
    serverError("area 7 is not mapped");
    const std::vector<Case> cases = {
        {ORBEL_E_CAN_NOT_ACCESS, ". " + MEMORY_ACCESS_TEXT + "area 7 is not mapped"},
        {ORBEL_E_SIZE, ". The byBytesPerMAU value is incorrect for the specified memory area.area 7 is not mapped"},
        {S_FALSE, ": Operation failed with error code S_FALSE. / area 7 is not mapped"},
        {E_FAIL, ": " + E_FAIL_TEXT + " / area 7 is not mapped"},
    };
    CDataController data(mgr());
    for (const Case& c : cases) {
        SCOPED_TRACE(c.words);
        answers().readMemory = [&](DWORD, BYTE, ADDRESS, DWORD, BYTE*, BYTE, BYTE*) { return c.hr; };
        answers().writeMemory = answers().readMemory;
        EXPECT_EQ("F. ReadMemory() failed" + c.words,
                  thrownBy<IOException>([&] { data.readMemory(0, 7, 0, 1, 1); }).getDesc());
        EXPECT_EQ("F. WriteMemory() failed" + c.words,
                  thrownBy<IOException>([&] { data.writeMemory(0, 7, 0, 1, 1, VectorBYTE{1}); }).getDesc());
    }
}

TEST_F(CDataControllerTest, WriteMemoryChecksTheBufferAfterLogging)
{
    startLogger();
    VectorBYTE written;
    answers().writeMemory = [&](DWORD, BYTE, ADDRESS, DWORD numMAUs, BYTE* bytes, BYTE bytesPerMAU, BYTE* results) {
        written.assign(bytes, bytes + numMAUs * bytesPerMAU);
        std::memset(results, 0x11, numMAUs);
        return S_OK;
    };
    CDataController data(mgr());
    const auto e = thrownBy<IllegalArgumentException>([&] { data.writeMemory(0, 1, 0x20, 3, 2, VectorBYTE(5)); });
    EXPECT_EQ("'buff' size is smaller than 'bytesPerMAU * aNumMAUs'. size = 5", e.getDesc());
    EXPECT_TRUE(debugCalls().empty());
    EXPECT_EQ(1u, loggedLines("dataCtrl.writeMemory(").size()) << loggedScript();

    // A longer buffer is accepted; only its head is written.
    const VectorBYTE results = data.writeMemory(0, 1, 0x20, 3, 2, VectorBYTE{1, 2, 3, 4, 5, 6, 7});
    EXPECT_EQ((VectorBYTE{1, 2, 3, 4, 5, 6}), written);
    EXPECT_EQ((VectorBYTE{0x11, 0x11, 0x11}), results);
}

TEST_F(CDataControllerTest, RegistersPassValueAndType)
{
    answers().readRegister = [](DWORD, const char*, SValue* value, SType* type) {
        value->m_qwValue = 0x2000FFF0;
        *type = typeOf(SType::tUnsigned, 32);
        return S_OK;
    };
    answers().writeRegister = [](DWORD, const char*, const SValue*, const SType*) { return S_OK; };
    CDataController data(mgr());
    const CValueType sp = data.readRegister(OrbelDebugFlags::fMonitor, "SP");
    EXPECT_TRUE(sp.isTypeUnsigned());
    EXPECT_EQ(32, sp.getBitSize());
    EXPECT_EQ(0x2000FFF0LL, sp.getLong());
    data.writeRegister(OrbelDebugFlags::fRealTime, "R0", CValueType(typeOf(SType::tSigned, 16), -2LL));
    EXPECT_EQ((std::vector<std::string>{"OrbelDebug.ReadRegister(0x0, SP)",
                                        "OrbelDebug.WriteRegister(0x1, R0, t2/16=0xFFFE)"}),
              debugCalls());
}

TEST_F(CDataControllerTest, RegisterFailuresByCode)
{
    struct Case {
        HRESULT hr;
        std::string readWords;  // behind "F. ReadRegister() failed"
        std::string writeWords; // behind "F. WriteRegister() failed"
    };
    serverError("mode");
    const std::vector<Case> cases = {
        {ORBEL_E_CAN_NOT_ACCESS, ". The register can not be accessed in the current CPU mode.mode",
         ". The register can not be accessed in the current CPU mode.mode"},
        {ORBEL_E_SIZE, ". The specified register is to long to fit SValue.mode",
         ". The specified register is to long to fit SValue.mode"},
        {ORBEL_E_BAD_ID, ". The specified register does not exist: XPSR2mode",
         ". The specified register does not exist: XPSR2mode"},
        // A success code of the interface, and yet a failure of a write.
        {ORBEL_S_SIZE,
         ": ORBEL_S_SIZE: Function succeeded but could not return all the data due to output buffer size limitation. / mode",
         ". The specified bit size does not match register size: XPSR2mode"},
        {E_FAIL, ": " + E_FAIL_TEXT + " / mode", ": " + E_FAIL_TEXT + " / mode"},
    };
    CDataController data(mgr());
    for (const Case& c : cases) {
        SCOPED_TRACE(c.hr);
        answers().readRegister = [&](DWORD, const char*, SValue*, SType*) { return c.hr; };
        answers().writeRegister = [&](DWORD, const char*, const SValue*, const SType*) { return c.hr; };
        EXPECT_EQ("F. ReadRegister() failed" + c.readWords,
                  thrownBy<IOException>([&] { data.readRegister(0, "XPSR2"); }).getDesc());
        EXPECT_EQ("F. WriteRegister() failed" + c.writeWords,
                  thrownBy<IOException>([&] { data.writeRegister(0, "XPSR2", CValueType(8, 1LL)); }).getDesc());
    }
}

TEST_F(CDataControllerTest, ValuesAtAnAddress)
{
    answers().readValue = [](DWORD, BYTE, ADDRESS, SValue* value, const SType*) {
        value->m_qwValue = 0xFFFFFF85;
        return S_OK;
    };
    CDataController data(mgr());
    const CValueType value = data.readValue(0, 1, 0x20000010, typeOf(SType::tSigned, 8));
    EXPECT_TRUE(value.isTypeSigned());
    EXPECT_EQ(8, value.getBitSize());
    EXPECT_EQ("OrbelDebug.ReadValue(0x0, 1, 0x20000010, t2/8)", debugCalls().back());

    serverError("no RAM at 0x0");
    answers().readValue = [](DWORD, BYTE, ADDRESS, SValue*, const SType*) { return S_FALSE; };
    EXPECT_EQ("F. ReadValue() failed. no RAM at 0x0",
              thrownBy<IOException>([&] { data.readValue(0, 1, 0, typeOf(1, 8)); }).getDesc());
    answers().readValue = [](DWORD, BYTE, ADDRESS, SValue*, const SType*) { return E_FAIL; };
    EXPECT_EQ("F. ReadValue() failed. " + E_FAIL_TEXT + " / no RAM at 0x0",
              thrownBy<IOException>([&] { data.readValue(0, 1, 0, typeOf(1, 8)); }).getDesc());
    answers().writeValue = [](DWORD, BYTE, ADDRESS, const SValue*, const SType*) { return S_FALSE; };
    EXPECT_EQ("F. WriteValue() failed. Operation failed with error code S_FALSE. / no RAM at 0x0",
              thrownBy<IOException>([&] { data.writeValue(0, 1, 4, CValueType(16, 7LL)); }).getDesc());
    EXPECT_EQ("OrbelDebug.WriteValue(0x0, 1, 0x4, t2/16=0x7)", debugCalls().back());
}

TEST_F(CDataControllerTest, EvaluateOrsTheFlagsAndKeepsTheText)
{
    answers().evaluate = [](DWORD, const char*, char* buffer, DWORD size, SValue* value, SType* type) {
        std::snprintf(buffer, size, "%s", "42");
        value->m_qwValue = 42;
        *type = typeOf(SType::tSigned, 32);
        return S_OK;
    };
    CDataController data(mgr());
    const CValueType both = data.evaluate(OrbelDebugFlags::fRealTime, OrbelDebugFlags::efNoMemAreaDisplay, "g_count");
    const CValueType ored = data.evaluate(OrbelDebugFlags::fRealTime | OrbelDebugFlags::efNoMemAreaDisplay, "g_count");
    EXPECT_EQ("42", both.getResult());
    EXPECT_EQ(42, ored.getInt());
    const std::vector<std::string> calls = debugCalls();
    ASSERT_EQ(2u, calls.size());
    EXPECT_EQ("OrbelDebug.Evaluate(0x1000101, g_count, 512)", calls[0]);
    EXPECT_EQ(calls[0], calls[1]);
}

TEST_F(CDataControllerTest, EvaluateFailureCarriesTheReason)
{
    for (HRESULT hr : {S_FALSE, ORBEL_E_BAD_ID}) {
        answers().evaluate = [&](DWORD, const char*, char* buffer, DWORD size, SValue*, SType*) {
            std::snprintf(buffer, size, "%s", "no symbol 'x' in the current scope");
            return hr;
        };
        CDataController data(mgr());
        const auto e = thrownBy<IOException>([&] { data.evaluate(0, "x + 1"); });
        EXPECT_EQ("F. Evaluate() failed!", e.getDesc());
        EXPECT_EQ("  data:\n    expression: x + 1\n    error: " + WrapperBase::resultCodeText(hr) +
                      "\n    reason: no symbol 'x' in the current scope\n",
                  e.getData());
    }
}

TEST_F(CDataControllerTest, ModifyWithValueOrText)
{
    answers().modify = [](DWORD, const char*, char* buffer, DWORD size, const SValue*, const SType*) {
        std::snprintf(buffer, size, "%s", "17");
        return S_OK;
    };
    CDataController data(mgr());
    EXPECT_EQ("17", data.modify(OrbelDebugFlags::fRealTime, "g_count", CValueType(32, 17LL)));
    EXPECT_EQ("17", data.modify(OrbelDebugFlags::fRealTime, OrbelDebugFlags::efNoMemAreaDisplay, "g_count", "0x11"));
    // The text form passes the text in the buffer, no value and no type, and the text flag.
    EXPECT_EQ((std::vector<std::string>{"OrbelDebug.Modify(0x1, g_count, '', 512, t2/32=0x11)",
                                        "OrbelDebug.Modify(0x1000101, g_count, '0x11', 512, null)"}),
              debugCalls());

    answers().modify = [](DWORD, const char*, char* buffer, DWORD size, const SValue*, const SType*) {
        std::snprintf(buffer, size, "%s", "read-only");
        return ORBEL_E_ERROR;
    };
    const auto e = thrownBy<IOException>([&] { data.modify(0, "K", "1"); });
    EXPECT_EQ("F. Modify() failed!", e.getDesc());
    EXPECT_EQ("  data:\n    expression: K\n    error: " + WrapperBase::resultCodeText(ORBEL_E_ERROR) +
                  "\n    reason: read-only\n",
              e.getData());

    // The buffer holds 511 characters and the zero.
    answers().modify = [](DWORD, const char*, char*, DWORD, const SValue*, const SType*) { return S_OK; };
    EXPECT_NO_THROW(data.modify(0, "s", std::string(511, 'a')));
    EXPECT_THROW(data.modify(0, "s", std::string(512, 'a')), IllegalArgumentException);
}

TEST_F(CDataControllerTest, BatchAccessResults)
{
    struct Case {
        HRESULT hr;
        bool result;
        std::string failure;
    };
    const std::vector<Case> cases = {
        {S_OK, true, ""},
        {S_FALSE, false, ""},
        {E_FAIL, false, "One of accesses in method BatchAccess() failed!"},
        {E_NOTIMPL, false, "Batch access is not implemented!"},
        {ORBEL_E_CAN_NOT_ACCESS, false,
         "Method batchAccess() failed!" + WrapperBase::resultCodeText(ORBEL_E_CAN_NOT_ACCESS)},
    };
    CDataController data(mgr());
    SBatchAccessHeader header;
    header.m_dwNumItems = 2;
    const VectorBatchAccessItem items(2);
    VectorBatchAccessResult results(2);
    for (const Case& c : cases) {
        SCOPED_TRACE(c.hr);
        answers().batchAccess = [&](DWORD, const SBatchAccessHeader*, const SBatchAccessItem* item,
                                    SBatchAccessItemResult* result) {
            EXPECT_EQ(items.data(), item);
            EXPECT_EQ(results.data(), result);
            return c.hr;
        };
        if (c.failure.empty()) {
            EXPECT_EQ(c.result, data.batchAccess(3, &header, items, results));
        } else if (c.hr == E_NOTIMPL) {
            EXPECT_EQ(c.failure, thrownBy<FeatureNotImplementedException>(
                                     [&] { data.batchAccess(3, &header, items, results); })
                                     .getDesc());
        } else {
            EXPECT_EQ(c.failure,
                      thrownBy<IOException>([&] { data.batchAccess(3, &header, items, results); }).getDesc());
        }
    }
    EXPECT_EQ("OrbelDebug2.BatchAccess(0x3, 2)", debugCalls().back());
    VectorBatchAccessResult none;
    EXPECT_THROW(data.batchAccess(0, &header, items, none), IllegalArgumentException);
    EXPECT_THROW(data.batchAccess(0, nullptr, items, results), IllegalArgumentException);
}

TEST_F(CDataControllerTest, JtagScanSizesItsData)
{
    DWORD scanFlags = 0;
    answers().serviceCallData = [&](DWORD, const GUID*, DWORD, const void* in, DWORD, const void*, DWORD, void*,
                                    DWORD outDataSize, void* outData) {
        scanFlags = static_cast<const DebugService_JTAG::SScan_IN*>(in)->m_dwScanFlags;
        if (outData != nullptr) {
            std::memset(outData, 0x5A, outDataSize);
        }
        return S_OK;
    };
    CDataController data(mgr());
    VectorBYTE tdo{9};
    data.jtagScan(0x3, 13, VectorBYTE(), false, tdo);
    EXPECT_EQ(0x603u, scanFlags);
    EXPECT_EQ(VectorBYTE{9}, tdo) << "without a request tdo stays";
    EXPECT_EQ("OrbelIDE3.ServiceCallData(0x10000000, SERVICE_Scan, 20, 0, NULL, 4, 0, NULL, 0)", debugCalls().back());

    const auto e = thrownBy<IndexOutOfBoundsException>([&] { data.jtagScan(0, 13, VectorBYTE{1}, true, tdo); });
    EXPECT_EQ("Invalid input data size!", e.getDesc());
    EXPECT_EQ("  data:\n    expected: 2\n    tdiSize: 1\n", e.getData());

    data.jtagScan(0, 13, VectorBYTE{1, 2}, true, tdo);
    EXPECT_EQ(0u, scanFlags);
    EXPECT_EQ((VectorBYTE{0x5A, 0x5A}), tdo);
    EXPECT_EQ("OrbelIDE3.ServiceCallData(0x10000000, SERVICE_Scan, 20, 2, data, 4, 2, data, 0)", debugCalls().back());

    answers().serviceCallData = [](DWORD, const GUID*, DWORD, const void*, DWORD, const void*, DWORD, void*, DWORD,
                                   void*) { return E_FAIL; };
    EXPECT_EQ("JTAG scan failed!" + E_FAIL_TEXT,
              thrownBy<IOException>([&] { data.jtagScan(0, 8, VectorBYTE{1}, false, tdo); }).getDesc());
}

TEST_F(CDataControllerTest, LinesOfTheOcdPort)
{
    std::vector<std::string> lines;
    HRESULT answer = S_OK;
    answers().serviceCall = [&](DWORD, const GUID*, DWORD, const void* in, DWORD, void*) {
        const auto* line = static_cast<const DebugService_JTAG::SLine_IN*>(in);
        lines.push_back(std::to_string(line->m_dwFlags) + "/" + std::to_string(line->m_dwLine) + "/" +
                        std::to_string(line->m_dwState));
        return answer;
    };
    CDataController data(mgr());
    data.setJtagLine(3, true);
    data.setOcdPortTristate(false);
    EXPECT_EQ((std::vector<std::string>{"1/3/1", "1/9/0"}), lines);
    EXPECT_EQ("OrbelIDE3.ServiceCall(0x10000000, SERVICE_Line, 12, 4, 0)", debugCalls().back());
    answer = S_FALSE;
    EXPECT_EQ("Setting of JTAG line failed!Operation failed with error code S_FALSE.",
              thrownBy<IOException>([&] { data.setJtagLine(1, false); }).getDesc());
    EXPECT_EQ("Setting of OCD Port Tristate failed!Operation failed with error code S_FALSE.",
              thrownBy<IOException>([&] { data.setOcdPortTristate(true); }).getDesc());
}

TEST_F(CDataControllerTest, FlashFailsOnNegativeCodeOrZeroWord)
{
    struct Case {
        HRESULT hr;
        DWORD word;
        bool fails;
    };
    const std::vector<Case> cases = {{S_OK, 1, false}, {S_FALSE, 1, false}, {S_OK, 0, true}, {E_FAIL, 1, true}};
    DWORD command = 0;
    CDataController data(mgr());
    for (const Case& c : cases) {
        answers().serviceCall = [&](DWORD, const GUID*, DWORD, const void* in, DWORD, void* out) {
            command = *static_cast<const DWORD*>(in);
            EXPECT_EQ(0u, *static_cast<DWORD*>(out)) << "the word starts at 0";
            *static_cast<DWORD*>(out) = c.word;
            return c.hr;
        };
        const std::vector<std::pair<std::function<void()>, std::string>> operations = {
            {[&] { data.eraseFlash(); }, "Erasing of flash failed!"},
            {[&] { data.secureFlash(); }, "Securing of flash failed!"},
            {[&] { data.unsecureFlash(); }, "Unsecuring of flash failed!"},
        };
        for (size_t i = 0; i < operations.size(); ++i) {
            if (c.fails) {
                EXPECT_EQ(operations[i].second + WrapperBase::resultCodeText(c.hr),
                          thrownBy<IOException>(operations[i].first).getDesc());
            } else {
                EXPECT_NO_THROW(operations[i].first());
            }
            EXPECT_EQ(i + 1, command);
        }
    }
    EXPECT_EQ("OrbelIDE2.ServiceCall(0x10000000, SERVICE_Flash, 4, 4, 0)", debugCalls().back());
}

TEST_F(CDataControllerTest, ByteBufferHelpers)
{
    CDataController data(mgr());
    BYTE buffer[4] = {1, 2, 3, 4};
    EXPECT_EQ((VectorBYTE{1, 2, 3}), data.byteArrayToVector(buffer, 3));
    data.vectorToByteArray(VectorBYTE{9, 8}, buffer, 4);
    data.setByte(buffer, 3, 7);
    EXPECT_EQ(8, data.getByte(buffer, 1));
    EXPECT_EQ((std::vector<BYTE>{9, 8, 3, 7}), std::vector<BYTE>(buffer, buffer + 4));
    EXPECT_THROW(data.vectorToByteArray(VectorBYTE(5), buffer, 4), IllegalArgumentException);
    EXPECT_THROW(data.byteArrayToVector(nullptr, 2), IllegalArgumentException);
    EXPECT_THROW(data.getByte(buffer, -1), IndexOutOfBoundsException);
    EXPECT_TRUE(debugCalls().empty());
}

TEST_F(CDataControllerTest, MissingInterfaceRaisesAfterTheLogLine)
{
    script().missing = {"OrbelDebug", "OrbelDebug2"};
    auto fresh = std::make_shared<ConnectionMgr>();
    fresh->connect("", 1234);
    useConnection(fresh);
    startLogger();
    {
        CDataController data(mgr());
        const auto e = thrownBy<IOException>([&] { data.readMemory(0, 0, 0, 1, 1); });
        EXPECT_EQ(std::string(WrapperBase::DEBUG_NOT_AVAILABLE), e.getDesc());
        EXPECT_EQ(1u, loggedLines("dataCtrl.readMemory(").size()) << loggedScript();
    }
    EXPECT_EQ(1u, loggedLines("Dtor: ~CDataController").size()) << loggedScript();
}
