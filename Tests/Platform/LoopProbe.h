// SPDX-License-Identifier: LicenseRef-Halyard
// A loop on a clock that is set by hand, and targets and sources that do as the test says.
#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "Platform/CMessageLoop.h"

namespace brt {

struct ManualLoop {
    ManualLoop() { EXPECT_EQ(CMessageLoop::obtain(loop, {.clock = &clock}), 0); }
    CMessageLoop* operator->() const { return loop.get(); }

    CManualLoopClock clock;
    std::shared_ptr<CMessageLoop> loop;
};

// Registered for its life. Writes down all it gets, as "name:number" or "name:tick", then calls what it was given.
class CProbe final : public CLoopTarget {
public:
    CProbe(std::shared_ptr<CMessageLoop> loop, std::vector<std::string>& log, std::string name)
        : m_loop(std::move(loop)), m_log(log), m_name(std::move(name)), id(m_loop->addTarget(*this)) {}
    ~CProbe() override { m_loop->removeTarget(id); }

    void post(std::int64_t number) const { EXPECT_EQ(m_loop->addressOf(id).post(1, number), 0); }
    LoopTimerId start(int periodMilliseconds) const { return m_loop->startTimer(id, periodMilliseconds); }

    void handleMessage(std::uint32_t, std::int64_t number) override {
        m_log.push_back(m_name + ":" + std::to_string(number));
        if (const auto action = onMessage) action(number);
    }
    void handleTimer(LoopTimerId timer) override {
        m_log.push_back(m_name + ":tick");
        if (const auto action = onTimer) action(timer);
    }

private:
    std::shared_ptr<CMessageLoop> m_loop;
    std::vector<std::string>& m_log;
    const std::string m_name;

public:
    const LoopTargetId id;
    std::function<void(std::int64_t)> onMessage;
    std::function<void(LoopTimerId)> onTimer;
};

using Log = std::vector<std::string>;

}  // namespace brt
