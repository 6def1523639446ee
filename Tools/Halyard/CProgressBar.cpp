// SPDX-License-Identifier: LicenseRef-Halyard
#include "Tools/Halyard/CProgressBar.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

#include "Platform/StandardStreams.h"
#include "Tools/Halyard/Decibels.h"
#include "Tools/Halyard/ToolError.h"

namespace brt {

namespace {

constexpr int kBarLength = 32;
constexpr auto kRedrawInterval = std::chrono::milliseconds(100);

std::string minutesAndSeconds(double seconds) {
    const std::int64_t whole = std::llround(seconds);
    const std::string rest = std::to_string(whole % 60);
    return std::to_string(whole / 60) + (rest.size() < 2 ? ":0" : ":") + rest;
}

}  // namespace

CProgressBar::CProgressBar(std::int64_t totalFrames, std::string label)
    : m_isShown(isTerminal(StandardStream::error)),
      m_totalFrames(std::max<std::int64_t>(totalFrames, 1)),
      m_label(printable(std::move(label))),
      m_start(Clock::now()),
      m_lastDrawn(m_start) {}

CProgressBar::~CProgressBar() { hide(); }

void CProgressBar::advance(std::int64_t frames) {
    m_doneFrames.fetch_add(frames, std::memory_order_relaxed);
    if (!m_isShown) return;
    const std::unique_lock lock(m_drawing, std::try_to_lock);
    const Clock::time_point now = Clock::now();
    if (lock.owns_lock() && now - m_lastDrawn >= kRedrawInterval) draw(now);
}

void CProgressBar::draw(Clock::time_point now) {
    const double done = std::min(
        1.0, static_cast<double>(m_doneFrames.load(std::memory_order_relaxed)) / static_cast<double>(m_totalFrames));
    const double elapsedSeconds = std::chrono::duration<double>(now - m_start).count();
    const int filled = static_cast<int>(done * kBarLength);
    std::string line = m_label + "  [" + std::string(static_cast<std::size_t>(filled), '#') +
                       std::string(static_cast<std::size_t>(kBarLength - filled), '.') + "] " +
                       formatFixed(100 * done, 0) + " %";
    if (done > 0) line += "  " + minutesAndSeconds(elapsedSeconds * (1 - done) / done) + " left";

    const std::size_t length = line.size();
    if (length < m_drawnLength) line.append(m_drawnLength - length, ' ');
    std::fprintf(stderr, "\r%s", line.c_str());
    std::fflush(stderr);
    m_drawnLength = length;
    m_lastDrawn = now;
}

void CProgressBar::hide() {
    const std::lock_guard lock(m_drawing);
    if (m_drawnLength == 0) return;
    std::fprintf(stderr, "\r%s\r", std::string(m_drawnLength, ' ').c_str());
    std::fflush(stderr);
    m_drawnLength = 0;
}

}  // namespace brt
