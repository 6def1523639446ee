// SPDX-License-Identifier: LicenseRef-Halyard
// What an instance asks of the system while it plays: nothing, also where the sound or its ways have just been changed.
#include "Audio/NoSystemCalls.h"
#include "WrapperFixture.h"

namespace brt {
namespace {

using SteadyInstanceTest = WrapperFixture;

TEST_F(SteadyInstanceTest, asksTheSystemForNothing) {
    PlainInstance instance;
    instance.start();
    const Channel left(4096, 0.9);
    Channel out(4096);
    const void* const inputs[] = {left.data(), left.data()};
    void* const outputs[] = {out.data(), out.data()};
    const auto playBlocks = [&] {
        for (int block = 0; block < 24; ++block) instance.process(inputs, outputs, block * 67);
    };
    playBlocks();
    expectNoSystemCalls(playBlocks);
    // What another thread has just changed.
    for (int i = 0; i < instance.extParamCount(); ++i) instance.setExtParam(i, 0.3);
    expectNoSystemCalls(playBlocks);
    playBlocks();
    instance.registry().activateFactoryPreset(3);
    expectNoSystemCalls(playBlocks);
    playBlocks();
    instance.param("io-params.grouping").setFloatAt(0, 1, 1, nullptr);
    instance.param("io-params.out-routing").setFloatAt(0, 1, 1, nullptr);
    expectNoSystemCalls(playBlocks);
    playBlocks();
    // Events within the block, as a host has queued them before.
    for (const int frame : {5, 70, 71, 1500})
        instance.queueEvent({.frameOffset = frame, .kind = CHostEvent::EKind::kMidi});
    expectNoSystemCalls(playBlocks);
}

}  // namespace
}  // namespace brt
