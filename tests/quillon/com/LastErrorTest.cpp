#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>
#include <string>

#include "OrbelResults.h"
#include "com/LastError.h"

namespace quillon::com {
namespace {

TEST(LastError, KindDecidesTheAnswerAndTheTextIsCutToTheBuffer)
{
    struct Case {
        LastError::Kind kind;
        DWORD size;
        HRESULT answer;
        const char* text;
    };
    const Case cases[] = {
        {LastError::Kind::Error, 64, kestrix::ORBEL_S_MSG_FAIL, "target stopped"},
        {LastError::Kind::Warning, 64, kestrix::ORBEL_S_WARNING, "target stopped"},
        {LastError::Kind::Warning, 7, kestrix::ORBEL_S_WARNING, "target"},
        {LastError::Kind::Error, 1, kestrix::ORBEL_S_MSG_FAIL, ""},
        {LastError::Kind::None, 64, kestrix::S_OK, ""},
    };
    for (const Case& c : cases) {
        LastError error;
        if (c.kind == LastError::Kind::Error) {
            error.setError("target stopped");
        } else if (c.kind == LastError::Kind::Warning) {
            error.setWarning("target stopped");
        }
        char buffer[80];
        std::fill(std::begin(buffer), std::end(buffer), 'x');
        EXPECT_EQ(c.answer, error.copyTo(buffer, c.size));
        EXPECT_STREQ(c.text, buffer);
        EXPECT_EQ('x', buffer[c.size]) << "nothing written past the size";
        EXPECT_EQ(c.kind, error.kind());
    }
}

TEST(LastError, ClearForgetsTheMessage)
{
    LastError error;
    error.setWarning("slow");
    error.clear();
    EXPECT_EQ(LastError::Kind::None, error.kind());
    EXPECT_EQ("", error.message());
}

} // namespace
} // namespace quillon::com
