#include <gtest/gtest.h>

#include "IllegalStateException.h"
#include "Platform.h"
#include "Stopwatch.h"

using namespace kestrix;

TEST(Stopwatch, CountsOnlyWhileRunningAndStartsOnce)
{
    Stopwatch watch;
    EXPECT_EQ(0, watch.getTime());
    watch.start();
    platform::sleep(20);
    EXPECT_GE(watch.getTimeMs(), 20);
    try {
        watch.start();
        FAIL() << "second start accepted";
    } catch (const IllegalStateException& e) {
        EXPECT_EQ("Time measurement already started.", e.getDesc());
    }
}

TEST(Platform, FileTimeOfACalendarDate)
{
    uint64_t fileTime = 0;
    ASSERT_TRUE(platform::systemTimeToFileTime(1970, 1, 1, 0, 0, 0, fileTime));
    EXPECT_EQ(116444736000000000ull, fileTime);
    ASSERT_TRUE(platform::systemTimeToFileTime(2000, 1, 1, 0, 0, 0, fileTime));
    EXPECT_EQ(125911584000000000ull, fileTime);
    EXPECT_FALSE(platform::systemTimeToFileTime(2001, 2, 29, 0, 0, 0, fileTime));
    EXPECT_FALSE(platform::systemTimeToFileTime(1600, 1, 1, 0, 0, 0, fileTime));
    EXPECT_GT(platform::getSystemTimeAsFileTime(), 125911584000000000ull);
}
