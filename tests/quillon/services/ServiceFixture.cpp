#include "ServiceFixture.h"

#include <fstream>

#include "debuginfo/ElfImage.h"

namespace quillon::services {

std::string servicesElf()
{
    return std::string(FIRMWARE_DIR) + "/services_test.elf";
}

std::string servicesSource()
{
    return std::string(KESTRIX_SOURCE_DIR) + "/tests/firmware/services/services_test.c";
}

target::TargetConfig boardConfig()
{
    target::TargetConfig config;
    config.memory = {{"flash", 0x00000000, 0x40000, target::MemoryArea::Read | target::MemoryArea::Execute},
                     {"sram", 0x20000000, 0x10000,
                      target::MemoryArea::Read | target::MemoryArea::Write | target::MemoryArea::Execute}};
    return config;
}

void ServiceFixture::SetUp()
{
    target = std::make_unique<target::Target>(boardConfig());
    service = std::make_unique<DebugService>(*target, std::vector<std::string>{servicesElf()});
    service->download();
}

unsigned ServiceFixture::lineOf(const std::string& text)
{
    std::ifstream in(servicesSource());
    std::string lineText;
    for (unsigned number = 1; std::getline(in, lineText); ++number) {
        if (lineText.find(text) != std::string::npos) {
            return number;
        }
    }
    ADD_FAILURE() << "no line holds '" << text << "'";
    return 0;
}

std::uint32_t ServiceFixture::addressOfLine(const std::string& text) const
{
    std::vector<std::uint32_t> addresses = service->addressesOfLine("services_test.c", lineOf(text));
    EXPECT_FALSE(addresses.empty()) << text;
    return addresses.empty() ? 0 : addresses.front();
}

std::uint32_t ServiceFixture::elfSymbol(const std::string& name)
{
    static const debuginfo::ElfImage elf = debuginfo::ElfImage::open(servicesElf());
    const debuginfo::ElfImage::Symbol* symbol = elf.findSymbol(name);
    EXPECT_NE(symbol, nullptr) << name;
    return symbol ? symbol->address : 0;
}

std::uint32_t ServiceFixture::word(std::uint32_t address) const
{
    return static_cast<std::uint32_t>(service->readValue(0, address, ScalarType{ScalarType::Unsigned, 32}));
}

void ServiceFixture::setWord(std::uint32_t address, std::uint32_t value)
{
    service->writeValue(0, address, TypedBits{ScalarType{ScalarType::Unsigned, 32}, value});
}

unsigned ServiceFixture::line() const
{
    auto line = service->sourceLineAt(service->status().pc);
    return line ? line->line : 0;
}

CpuStatus ServiceFixture::stopped() const
{
    EXPECT_TRUE(service->waitUntilStopped(std::chrono::seconds(10)));
    return service->status();
}

void ServiceFixture::runToMain()
{
    service->runUntilFunction("main");
    CpuStatus status = stopped();
    ASSERT_EQ(status.cause, StopCause::UntilReached) << status.message;
}

} // namespace quillon::services
