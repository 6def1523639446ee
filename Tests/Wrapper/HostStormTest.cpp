// SPDX-License-Identifier: LicenseRef-Halyard
// An instance under hosts that do anything.
#include "RandomHost.h"

#include <chrono>
#include <cstdlib>

namespace brt {
namespace {

using HostStormTest = WrapperFixture;

int seconds() {
    const char* const wanted = std::getenv("HALYARD_STORM_SECONDS");
    return wanted != nullptr ? std::atoi(wanted) : 0;
}

// HALYARD_STORM_SECONDS lets it run for longer.
TEST_F(HostStormTest, anInstanceStandsWhateverAHostDoes) {
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(seconds());
    for (unsigned seed = 1; !HasFailure() && (seed <= 3 || std::chrono::steady_clock::now() < end); ++seed) {
        PlainInstance instance;
        instance.start();
        RandomHost host(instance, seed);
        for (int i = 0; i < 300 && !HasFatalFailure(); ++i) host.step();
        instance.deactivate();
        EXPECT_EQ(instance.graph().pool().heldCount(), 0) << seed;
        // It is still what it was: reset, it is a delay again.
        instance.reopen();
        instance.registry().activateFactoryPreset(0);
        instance.setExtParam(0, 1.0);
        play(instance, silence(4096));
        Sound input = silence(4096);
        input[0][0] = 0.5;
        EXPECT_EQ(play(instance, input)[0][1667], 0.5) << seed;
        EXPECT_EQ(instance.latencySamples(), 1667) << seed;
    }
}

}  // namespace
}  // namespace brt
