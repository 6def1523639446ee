// SPDX-License-Identifier: LicenseRef-Halyard
#include "Tools/Halyard/SoakCommand.h"

#include <chrono>
#include <cstdio>
#include <exception>
#include <mutex>
#include <thread>

#include "Tools/Halyard/CSoakLife.h"
#include "Tools/Halyard/Decibels.h"
#include "Tools/Halyard/HeapCount.h"
#include "Tools/Halyard/Interrupt.h"
#include "Tools/Halyard/Printing.h"
#include "Tools/Halyard/ToolError.h"

namespace brt {
namespace {

using Clock = std::chrono::steady_clock;

// Lives one behind the other on several threads at a time.
class CSoak {
public:
    explicit CSoak(const SoakRequest& request) : m_request(request), m_module(CPluginModule::load(request.plugin)) {}

    SoakFigures run() {
        {
            std::vector<std::jthread> threads;
            for (int i = 0; i < m_request.instanceCount; ++i)
                threads.emplace_back([this, i] { live(m_request.seed + static_cast<std::uint32_t>(i) * 1000003U); });
        }
        throwIfInterrupted();
        if (m_failure) std::rethrow_exception(m_failure);
        return m_figures;
    }

private:
    double secondsLeft() const {
        return m_request.seconds - std::chrono::duration<double>(Clock::now() - m_start).count();
    }

    void live(std::uint32_t seed) {
        std::mt19937 random(seed);
        while (secondsLeft() > 0 && interruptSignal() == 0 && !hasFailed()) {
            try {
                constexpr double kLongestLife = 2.0;
                const double seconds =
                    m_request.isCalm ? secondsLeft() : kLongestLife * static_cast<double>(1 + random() % 1000) / 1000;
                const SoakFigures figures = CSoakLife(m_module, m_request, static_cast<std::uint32_t>(random()))
                                                .run(std::min(seconds, secondsLeft()));
                const std::lock_guard lock(m_lock);
                m_figures.add(figures);
            } catch (...) {
                const std::lock_guard lock(m_lock);
                m_failure = std::current_exception();
            }
        }
    }

    bool hasFailed() {
        const std::lock_guard lock(m_lock);
        return m_failure != nullptr;
    }

    const SoakRequest& m_request;
    const std::shared_ptr<const CPluginModule> m_module;
    const Clock::time_point m_start = Clock::now();
    std::mutex m_lock;
    SoakFigures m_figures;
    std::exception_ptr m_failure;
};

std::string percent(double part) { return formatFixed(100 * part, 1) + " %"; }

std::string worstText(const SoakFigures& figures) {
    if (figures.worstFrames == 0) return "none was long enough";
    return percent(figures.worstPart) + " of its length: " + std::to_string(figures.worstFrames) + " frames at " +
           formatFixed(figures.worstRateHz, 0) + " Hz in " + formatFixed(1e6 * figures.worstSeconds, 0) + " us";
}

void print(const SoakRequest& request, const SoakFigures& figures) {
    const auto number = [](std::int64_t value) { return std::to_string(value); };
    printTable({{"seed", number(request.seed)},
                {"instances", number(request.instanceCount) + " at a time, " + number(figures.lives) + " in all"},
                {"blocks", number(figures.blocks) + ", " + formatFixed(figures.soundSeconds, 1) + " s of sound"},
                {"changes", number(figures.controlCalls) + " calls"},
                {"load", percent(figures.processSeconds / figures.soundSeconds) + " of the sound's length"},
                {"worst block", worstText(figures)},
                {"heap", canCountHeapCalls() ? number(figures.heapCalls) + " calls on audio threads" : "not counted"}});
}

}  // namespace

int runSoak(const SoakRequest& request) {
    try {
        print(request, CSoak(request).run());
        return 0;
    } catch (const CInterrupted&) {
        throw;
    } catch (const CToolError& error) {
        throw CToolError("soak with seed " + std::to_string(request.seed) + ": " + error.what());
    }
}

}  // namespace brt
