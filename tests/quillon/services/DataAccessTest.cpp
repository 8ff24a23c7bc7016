#include "ServiceFixture.h"

namespace quillon::services {
namespace {

using DataAccessTest = ServiceFixture;

constexpr std::uint32_t scratch = 0x20000100;

TEST_F(DataAccessTest, MemoryWritesReadBackAndTheDebuggerMayWriteFlash)
{
    std::vector<std::uint8_t> bytes{1, 2, 3, 4, 5};
    service->writeMemory(0, scratch, 5, 1, bytes);
    EXPECT_EQ(service->readMemory(0, scratch, 5, 1), bytes);
    // the core may not write flash (a fault), the debugger may
    service->writeMemory(0, 0x1000, 2, 1, {0xAA, 0xBB});
    EXPECT_EQ(service->readMemory(0, 0x1000, 2, 1), (std::vector<std::uint8_t>{0xAA, 0xBB}));
    // a longer buffer writes only the MAUs asked for
    service->writeMemory(0, scratch, 2, 1, {9, 9, 9, 9});
    EXPECT_EQ(service->readMemory(0, scratch, 4, 1), (std::vector<std::uint8_t>{9, 9, 3, 4}));
}

TEST_F(DataAccessTest, MemoryErrorsNameWhatIsWrong)
{
    struct Case {
        std::function<void()> call;
        ServiceError::Kind kind;
        const char* message;
    };
    const Case cases[] = {
        {[&] { service->readMemory(0, 0x30000000, 4, 1); }, ServiceError::Kind::CannotAccess,
         "cannot read 4 bytes at 0x30000000"},
        {[&] { service->readMemory(0, 0x2000fffe, 4, 1); }, ServiceError::Kind::CannotAccess,
         "cannot read 4 bytes at 0x2000fffe"},
        {[&] { service->readMemory(0, 0xfffffffe, 4, 1); }, ServiceError::Kind::CannotAccess,
         "cannot read 4 bytes at 0xfffffffe: beyond 0xffffffff"},
        {[&] { service->writeMemory(0, 0x30000000, 1, 1, {0}); }, ServiceError::Kind::CannotAccess,
         "cannot write 1 bytes at 0x30000000"},
        {[&] { service->readMemory(1, 0, 4, 1); }, ServiceError::Kind::CannotAccess,
         "no memory area 1: the core has memory area 0 only"},
        {[&] { service->readMemory(0, 0, 4, 2); }, ServiceError::Kind::BadSize,
         "memory area 0 has 1 byte per MAU, not 2"},
        {[&] { service->writeMemory(0, scratch, 4, 1, {1, 2}); }, ServiceError::Kind::BadSize,
         "write of 4 bytes with only 2 given"},
    };
    for (const Case& c : cases) {
        ServiceError error = errorOf(c.call);
        EXPECT_EQ(error.kind(), c.kind) << c.message;
        EXPECT_EQ(std::string(error.what()).rfind(c.message, 0), 0u) << error.what();
    }
    // nothing of a failed write lands
    EXPECT_EQ(errorOf([&] { service->writeMemory(0, 0x2000fffe, 4, 1, {7, 7, 7, 7}); }).kind(),
              ServiceError::Kind::CannotAccess);
    EXPECT_EQ(service->readMemory(0, 0x2000fffe, 2, 1), (std::vector<std::uint8_t>{0, 0}));
}

TEST_F(DataAccessTest, RegistersByNameInAnyCase)
{
    service->writeRegister("r5", TypedBits{ScalarType{ScalarType::Unsigned, 32}, 0x12345678});
    TypedBits r5 = service->readRegister("R5");
    EXPECT_EQ(r5.bits, 0x12345678u);
    EXPECT_EQ(r5.type, (ScalarType{ScalarType::Unsigned, 32}));
    EXPECT_EQ(service->readRegister("sp").bits, elfSymbol("_estack")); // from the vector table at reset
    EXPECT_EQ(service->readRegister("pc").bits, elfSymbol("Reset_Handler"));

    ServiceError unknown = errorOf([&] { service->readRegister("r16"); });
    EXPECT_EQ(unknown.kind(), ServiceError::Kind::NotFound);
    EXPECT_STREQ(unknown.what(), "no register 'r16'");
    ServiceError narrow =
        errorOf([&] { service->writeRegister("r0", TypedBits{ScalarType{ScalarType::Unsigned, 16}, 1}); });
    EXPECT_EQ(narrow.kind(), ServiceError::Kind::BadSize);
    EXPECT_STREQ(narrow.what(), "register 'r0' holds a 32-bit integer, not 16 bits of type code 1");
    EXPECT_EQ(errorOf([&] { service->writeRegister("nope", TypedBits{ScalarType{ScalarType::Unsigned, 32}, 1}); })
                  .kind(),
              ServiceError::Kind::NotFound);
}

TEST_F(DataAccessTest, ValuesAreLittleEndianOfTheirWidth)
{
    service->writeMemory(0, scratch, 8, 1, {1, 2, 3, 4, 5, 6, 7, 8});
    struct Case {
        ScalarType type;
        std::uint64_t value;
    };
    const Case cases[] = {
        {{ScalarType::Unsigned, 8}, 0x01},
        {{ScalarType::Signed, 16}, 0x0201},
        {{ScalarType::Address, 32}, 0x04030201},
        {{ScalarType::Unsigned, 64}, 0x0807060504030201},
        {{ScalarType::Float, 32}, 0x04030201},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(service->readValue(0, scratch, c.type), c.value) << c.type.bits;
    }
    service->writeValue(0, scratch, TypedBits{ScalarType{ScalarType::Unsigned, 16}, 0xBEEF});
    EXPECT_EQ(service->readMemory(0, scratch, 3, 1), (std::vector<std::uint8_t>{0xEF, 0xBE, 3}));

    const ScalarType bad[] = {{ScalarType::Unsigned, 24}, {ScalarType::Float, 16}, {ScalarType::Compound, 32}};
    for (const ScalarType& type : bad) {
        EXPECT_EQ(errorOf([&] { service->readValue(0, scratch, type); }).kind(), ServiceError::Kind::BadSize);
    }
}

TEST_F(DataAccessTest, BatchItemsFailAlone)
{
    BatchItem write{true, 4, 0, scratch, {0x11, 0x22, 0x33, 0x44}};
    BatchItem read{false, 2, 0, scratch + 2, {}};
    BatchItem unmapped{false, 4, 0, 0x30000000, {}};
    BatchItem tooWide{false, 9, 0, scratch, {}};
    std::vector<BatchResult> results = service->batchAccess({write, read, unmapped, tooWide});
    ASSERT_EQ(results.size(), 4u);
    EXPECT_TRUE(results[0].ok);
    EXPECT_TRUE(results[1].ok);
    EXPECT_EQ(results[1].data[0], 0x33);
    EXPECT_EQ(results[1].data[1], 0x44);
    EXPECT_FALSE(results[2].ok);
    EXPECT_FALSE(results[3].ok);
}

} // namespace
} // namespace quillon::services
