#include "Platform.h"

#include <dlfcn.h>

#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <thread>

namespace kestrix {
namespace platform {

namespace {

// Seconds from 1601-01-01 to 1970-01-01.
constexpr int64_t EPOCH_DIFF_SECONDS = 11644473600LL;
constexpr int64_t UNITS_PER_SECOND = 10000000LL;

// Days since 1970-01-01 of a proleptic Gregorian date.
int64_t daysFromCivil(int64_t y, unsigned m, unsigned d)
{
    y -= m <= 2;
    const int64_t era = (y >= 0 ? y : y - 399) / 400;
    const unsigned yoe = static_cast<unsigned>(y - era * 400);
    const unsigned doy = (153 * (m + (m > 2 ? -3 : 9)) + 2) / 5 + d - 1;
    const unsigned doe = yoe * 365 + yoe / 4 - yoe / 100 + doy;
    return era * 146097 + static_cast<int64_t>(doe) - 719468;
}

} // namespace

uint32_t getTickCount()
{
    timespec ts{};
    clock_gettime(CLOCK_MONOTONIC, &ts);
    uint64_t ms = static_cast<uint64_t>(ts.tv_sec) * 1000u + static_cast<uint64_t>(ts.tv_nsec) / 1000000u;
    return static_cast<uint32_t>(ms);
}

uint64_t getSystemTimeAsFileTime()
{
    timespec ts{};
    clock_gettime(CLOCK_REALTIME, &ts);
    return static_cast<uint64_t>((ts.tv_sec + EPOCH_DIFF_SECONDS) * UNITS_PER_SECOND + ts.tv_nsec / 100);
}

bool systemTimeToFileTime(int year, int month, int day, int hour, int minute, int second, uint64_t& fileTime)
{
    static const int daysInMonth[] = {31, 29, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    if (year < 1601 || year > 30827 || month < 1 || month > 12 || day < 1 || day > daysInMonth[month - 1]
        || hour < 0 || hour > 23 || minute < 0 || minute > 59 || second < 0 || second > 59) {
        errno = EINVAL;
        return false;
    }
    const bool leap = (year % 4 == 0 && year % 100 != 0) || year % 400 == 0;
    if (month == 2 && day == 29 && !leap) {
        errno = EINVAL;
        return false;
    }
    int64_t seconds = daysFromCivil(year, static_cast<unsigned>(month), static_cast<unsigned>(day)) * 86400
                      + hour * 3600 + minute * 60 + second;
    fileTime = static_cast<uint64_t>((seconds + EPOCH_DIFF_SECONDS) * UNITS_PER_SECOND);
    return true;
}

void sleep(uint32_t milliseconds)
{
    std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
}

int getLastError()
{
    return errno;
}

std::string formatMessage(int errorCode)
{
    char buffer[256];
    // GNU strerror_r returns the text, which may or may not be the buffer.
    return strerror_r(errorCode, buffer, sizeof(buffer));
}

void* loadLibrary(const char* path)
{
    return dlopen(path, RTLD_NOW | RTLD_LOCAL);
}

void* getProcAddress(void* library, const char* name)
{
    return dlsym(library, name);
}

bool freeLibrary(void* library)
{
    return dlclose(library) == 0;
}

std::string lastLoadError()
{
    const char* text = dlerror();
    return text != nullptr ? text : "";
}

std::string appDataDir()
{
    if (const char* appData = std::getenv("APPDATA")) {
        return appData;
    }
    // Without a home folder there is no per-user folder either: empty, as an unset APPDATA.
    const char* home = std::getenv("HOME");
    if (home == nullptr || *home == '\0') {
        return "";
    }
    return std::string(home) + "/.config";
}

bool setForegroundWindow(uint32_t)
{
    return false;
}

} // namespace platform
} // namespace kestrix
