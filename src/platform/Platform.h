#pragma once

// The few operating-system services the library needs, under the names of the calls they stand for.

#include <cstdint>
#include <string>

namespace kestrix {
namespace platform {

/// Milliseconds of a monotonic clock, wrapping at 32 bits.
uint32_t getTickCount();

/// The wall clock as 100 ns units since 1601-01-01 00:00:00 UTC.
uint64_t getSystemTimeAsFileTime();

/// A calendar date and time (UTC) as 100 ns units since 1601-01-01; false for a date out of range.
bool systemTimeToFileTime(int year, int month, int day, int hour, int minute, int second, uint64_t& fileTime);

void sleep(uint32_t milliseconds);

/// Code and text of the last failed system call (errno).
int getLastError();
std::string formatMessage(int errorCode);

/// Shared libraries: null on failure, with the reason in `lastLoadError()`.
void* loadLibrary(const char* path);
void* getProcAddress(void* library, const char* name);
bool freeLibrary(void* library);
std::string lastLoadError();

/// The per-user application data folder: $APPDATA, else $HOME/.config; empty if neither is known.
std::string appDataDir();

/// Brings the window of `handle` to the front; false where there is no window system to ask.
bool setForegroundWindow(uint32_t handle);

} // namespace platform
} // namespace kestrix
