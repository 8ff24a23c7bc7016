// The answers of the double's profiler, kept apart from the rest of the double.

#include "FakeProfiler.h"

extern "C" [[gnu::visibility("default")]] fakeorbel::ProfilerAnswers* fakeorbel_profiler_answers()
{
    static fakeorbel::ProfilerAnswers answers;
    return &answers;
}
