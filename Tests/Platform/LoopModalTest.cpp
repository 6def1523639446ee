// SPDX-License-Identifier: LicenseRef-Halyard
#include <gtest/gtest.h>

#include <memory>
#include <optional>

#include "Platform/LoopProbe.h"

namespace brt {
namespace {

TEST(LoopModal, servesItsTargetAloneWhileOthersWaitInOrder) {
    ManualLoop loop;
    Log log;
    CProbe a(loop.loop, log, "a");
    CProbe box(loop.loop, log, "box");
    a.start(10);
    box.start(20);
    a.onMessage = [&](std::int64_t number) {
        if (number != 1) return;
        a.post(6);
        box.post(7);
        EXPECT_EQ(loop->runModal(box.id), 0);
        log.push_back("box closed");
    };
    box.onMessage = [&](std::int64_t) {
        EXPECT_FALSE(loop->pump());
        loop.clock.advance(1.0);
        a.post(8);
    };
    box.onTimer = [&](LoopTimerId) {
        box.post(9);
        loop->endModal(box.id);
    };
    for (int i = 1; i <= 3; ++i) a.post(i);
    box.post(4);
    a.post(5);
    EXPECT_TRUE(loop->pump());
    EXPECT_EQ(log, (Log{"a:1", "box:4", "box:7", "box:tick", "box closed", "a:2", "a:3", "a:5", "a:tick"}));
    log.clear();
    box.onMessage = {};
    EXPECT_TRUE(loop->pump());
    EXPECT_EQ(log, (Log{"a:6", "a:8", "a:8", "box:9"}));
}

TEST(LoopModal, nestsAndEndsFromTheInside) {
    const ManualLoop loop;
    Log log;
    CProbe outer(loop.loop, log, "outer");
    CProbe inner(loop.loop, log, "inner");
    outer.onMessage = [&](std::int64_t number) {
        if (number == 1) {
            EXPECT_EQ(loop->runModal(inner.id), 0);
            log.push_back("inner closed");
        }
    };
    inner.onMessage = [&](std::int64_t number) { loop->endModal(number == 2 ? outer.id : inner.id); };
    outer.post(1);
    inner.post(2);
    inner.post(3);
    outer.post(4);
    EXPECT_EQ(loop->runModal(outer.id), 0);  // not in a handler: as for an error on opening
    EXPECT_EQ(log, (Log{"outer:1", "inner:2", "inner:3", "inner closed"}));
    loop->endModal(outer.id);
    EXPECT_TRUE(loop->pump());
    EXPECT_EQ(log.back(), "outer:4");
}

TEST(LoopModal, endsWithItsTargetAndAtQuit) {
    const ManualLoop loop;
    Log log;
    auto box = std::make_unique<CProbe>(loop.loop, log, "box");
    const LoopTargetId boxId = box->id;
    box->onMessage = [&](std::int64_t) { box.reset(); };
    box->post(1);
    box->post(2);
    EXPECT_EQ(loop->runModal(boxId), 0);
    EXPECT_EQ(loop->runModal(boxId), 0);  // has gone: returns at once
    EXPECT_EQ(loop->runModal(LoopTargetId::none), 0);

    CProbe outer(loop.loop, log, "outer");
    CProbe inner(loop.loop, log, "inner");
    outer.onMessage = [&](std::int64_t) { EXPECT_EQ(loop->runModal(inner.id), 0); };
    inner.onMessage = [&](std::int64_t) { loop->quit(); };
    outer.post(3);
    inner.post(4);
    inner.post(5);
    EXPECT_EQ(loop->run(), 0);
    EXPECT_EQ(log, (Log{"box:1", "outer:3", "inner:4"}));
}

}  // namespace
}  // namespace brt
