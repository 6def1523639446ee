// SPDX-License-Identifier: LicenseRef-Halyard
// How far the work is, as one line on the terminal that redraws itself, and nothing at all where standard error is no
// terminal. Owner: the command. Threads: any number of workers advance it.
#pragma once

#include <atomic>
#include <chrono>
#include <cstdint>
#include <mutex>
#include <string>

namespace brt {

class CProgressBar {
public:
    // `totalFrames`: of all files together. `label`: what is being worked on.
    CProgressBar(std::int64_t totalFrames, std::string label);
    ~CProgressBar();  // the line is gone
    CProgressBar(const CProgressBar&) = delete;
    CProgressBar& operator=(const CProgressBar&) = delete;

    // [any] Draws at most ten times a second.
    void advance(std::int64_t frames);

    // [any] Takes the line away, so that other text can be written; the next advance() draws it again.
    void hide();

private:
    using Clock = std::chrono::steady_clock;

    void draw(Clock::time_point now);

    const bool m_isShown;
    const std::int64_t m_totalFrames;
    const std::string m_label;
    const Clock::time_point m_start;
    std::atomic<std::int64_t> m_doneFrames{0};
    std::mutex m_drawing;  // guards what stands below, and the line
    Clock::time_point m_lastDrawn;
    std::size_t m_drawnLength = 0;
};

}  // namespace brt
