#pragma once

#include "platform/clock.h"
#include "run/run.h"
#include "tests/support/fake_calls.h"
#include "tests/support/fake_database.h"
#include "tests/support/fake_files.h"
#include "tests/support/fake_host.h"
#include "tests/support/fake_window.h"

/// Stand-ins for everything outside, for situations that the real things cannot be brought into.
namespace quillon::fakes {

/// A clock that stands still until a test moves it.
class FakeClock : public Clock {
  public:
    DateTime Now() const override { return now; }
    std::uint32_t Nanoseconds() const override { return nanoseconds; }

    DateTime now = MakeDateTime(2026, 11, 15, 5, 38, 55);
    std::uint32_t nanoseconds = 0;
};

/// A run among fakes that share one list of calls.
struct FakeWorld {
    Calls calls;
    FakeHost host{calls};
    FakeFiles files{calls};
    FakeClock clock;
    FakeWindow window{calls};
    FakeDatabase database{calls};
    Run run{host, files, clock, window};
};

}  // namespace quillon::fakes
