// The answers of the double's test service, kept apart from the rest of the double.

#include "FakeTestService.h"

extern "C" [[gnu::visibility("default")]] fakeorbel::TestAnswers* fakeorbel_test_answers()
{
    static fakeorbel::TestAnswers answers;
    return &answers;
}
