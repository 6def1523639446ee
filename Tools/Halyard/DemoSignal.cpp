// SPDX-License-Identifier: LicenseRef-Halyard
#include "Tools/Halyard/DemoSignal.h"

#include <array>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <numbers>
#include <string_view>

#include "Tools/Halyard/CSoundWriter.h"
#include "Tools/Halyard/Decibels.h"
#include "Tools/Halyard/Interrupt.h"
#include "Tools/Halyard/Peak.h"
#include "Tools/Halyard/ToolError.h"

namespace brt {

namespace {

constexpr double kSeconds = 10;
constexpr double kFadeSeconds = 0.6;
constexpr double kBeatsPerMinute = 108;
constexpr int kStepsPerBar = 16;
constexpr double kStepSeconds = 60 / kBeatsPerMinute * 4 / kStepsPerBar;
constexpr double kPeakDb = -0.3;
constexpr double kBrightestHz = 9000;  // of any partial

// One letter a step: "x" a hit, "o" a soft one.
using Pattern = std::string_view;
constexpr Pattern kKickPattern = "x......ox.x.....";
constexpr Pattern kSnarePattern = "....x..o.o..x...";
constexpr Pattern kHatPattern = "x.o.x.oox.o.x.ox";
constexpr Pattern kBassPattern = "x..x..x.o.x..xo.";
constexpr Pattern kArpeggioPattern = "x.xx.xx.x.xx.xxx";

struct Chord {
    int bassNote;  // MIDI numbers
    std::array<int, 4> notes;
};
constexpr std::array<Chord, 4> kBars = {{
    {33, {57, 60, 64, 71}},  // A minor with the ninth
    {29, {57, 60, 64, 67}},  // F with seventh and ninth
    {36, {55, 60, 64, 71}},  // C with the seventh
    {31, {55, 59, 62, 69}},  // G with the ninth
}};

double strengthOf(char step) { return step == 'x' ? 1.0 : step == 'o' ? 0.45 : 0.0; }

double noteHz(int note) { return 440 * std::exp2((note - 69) / 12.0); }

// White noise from -1 to 1, the same for the same seed.
class CNoise {
public:
    explicit CNoise(std::uint32_t seed) : m_state(seed * 2654435761u + 1u) {}
    double next() {
        m_state = m_state * 1664525u + 1013904223u;
        return static_cast<double>(m_state) / 2147483648.0 - 1;
    }

private:
    std::uint32_t m_state;
};

class CBand {
public:
    explicit CBand(int rateHz) : m_rateHz(rateHz), m_sound(2, static_cast<int>(kSeconds * rateHz)) {}

    CPlanarBuffer play() {
        for (int bar = 0; bar < static_cast<int>(kBars.size()); ++bar) playBar(bar);
        return std::move(m_sound);
    }

private:
    void playBar(int bar) {
        const Chord& chord = kBars[static_cast<std::size_t>(bar)];
        const double barStart = bar * kStepsPerBar * kStepSeconds;
        for (const int note : chord.notes) pad(barStart, note);
        int arpeggioStep = 0;
        for (int step = 0; step < kStepsPerBar; ++step) {
            const auto index = static_cast<std::size_t>(step);
            const double start = barStart + step * kStepSeconds;
            const auto seed = static_cast<std::uint32_t>(bar * kStepsPerBar + step);
            if (const double s = strengthOf(kKickPattern[index]); s > 0) kick(start, s);
            if (const double s = strengthOf(kSnarePattern[index]); s > 0) snare(start, s, seed);
            if (const double s = strengthOf(kHatPattern[index]); s > 0) hat(start, s, seed);
            if (const double s = strengthOf(kBassPattern[index]); s > 0) bass(start, chord.bassNote, s);
            if (strengthOf(kArpeggioPattern[index]) > 0) {
                const int note = chord.notes[static_cast<std::size_t>(arpeggioStep % 4)] + 12;
                pluck(start, note, arpeggioStep % 2 ? 0.72 : 0.28);
                ++arpeggioStep;
            }
        }
    }

    // Adds `voice(seconds since the start)` to both channels. `place`: 0 left, 1 right, of equal power between.
    template <class Voice>
    void add(double start, double seconds, double place, double level, Voice voice) {
        throwIfInterrupted();
        const auto first = static_cast<int>(std::lround(start * m_rateHz));
        const int last = std::min(m_sound.frameCount(), first + static_cast<int>(seconds * m_rateHz));
        const double left = level * std::cos(place * std::numbers::pi / 2);
        const double right = level * std::sin(place * std::numbers::pi / 2);
        for (int i = first; i < last; ++i) {
            const double sample = voice(static_cast<double>(i - first) / m_rateHz);
            m_sound.channel(0)[i] += left * sample;
            m_sound.channel(1)[i] += right * sample;
        }
    }

    void kick(double start, double strength) {
        add(start, 0.45, 0.5, 1.15 * strength, [](double t) {
            // The phase of a pitch that falls from 190 to 47 Hz.
            const double phase = 2 * std::numbers::pi * (47 * t + 143 * 0.028 * (1 - std::exp(-t / 0.028)));
            const double attack = 1 - std::exp(-t / 0.0004);
            return attack * (std::sin(phase) * std::exp(-t / 0.16) + 0.25 * std::sin(7 * phase) * std::exp(-t / 0.004));
        });
    }

    void snare(double start, double strength, std::uint32_t seed) {
        CNoise noise(seed);
        double smooth = 0;
        add(start, 0.3, 0.47, 0.85 * strength, [&](double t) {
            smooth += 0.55 * (noise.next() - smooth);
            const double body = std::sin(2 * std::numbers::pi * (183 * t + 1.1 * (1 - std::exp(-t / 0.012))));
            return 0.8 * body * std::exp(-t / 0.055) + 0.75 * smooth * std::exp(-t / 0.075);
        });
    }

    void hat(double start, double strength, std::uint32_t seed) {
        CNoise noise(seed + 1000);
        double before = 0;
        double smooth = 0;
        add(start, 0.09, 0.62, 0.17 * strength, [&](double t) {
            const double white = noise.next();
            smooth += 0.6 * (white - before - smooth);  // the difference takes the lows away
            before = white;
            return smooth * std::exp(-t / (strength < 1 ? 0.012 : 0.024));
        });
    }

    void bass(double start, int note, double strength) {
        const double hertz = noteHz(note);
        add(start, 0.42, 0.5, 0.42 * strength, [=](double t) {
            // Partials of a saw whose upper ones die away first, as through a closing filter.
            double sum = 0;
            for (int k = 1; k <= 12; ++k)
                sum += std::sin(2 * std::numbers::pi * k * hertz * t) / k * std::exp(-t * k / 0.5);
            const double release = t < 0.34 ? 1 : std::exp(-(t - 0.34) / 0.02);
            return (1 - std::exp(-t / 0.003)) * release * sum;
        });
    }

    // A chord tone that swells and lasts for a bar, a little out of tune between the sides.
    void pad(double start, int note) {
        constexpr double kBarSeconds = kStepsPerBar * kStepSeconds;
        for (const double place : {0.15, 0.85}) {
            const double hertz = noteHz(note) * (place < 0.5 ? 0.9985 : 1.0015);
            add(start, kBarSeconds + 0.3, place, 0.055, [=](double t) {
                double sum = 0;
                for (int k = 1; k <= 7 && k * hertz < kBrightestHz; ++k)
                    sum += std::sin(2 * std::numbers::pi * k * hertz * t + k) / k;
                const double release = t < kBarSeconds ? 1 : std::exp(-(t - kBarSeconds) / 0.07);
                return (1 - std::exp(-t / 0.06)) * release * sum;
            });
        }
    }

    void pluck(double start, int note, double place) {
        const double hertz = noteHz(note);
        add(start, 0.5, place, 0.13, [=](double t) {
            double sum = 0;
            for (int k = 1; k <= 9 && k * hertz < kBrightestHz; ++k)
                sum += std::sin(2 * std::numbers::pi * k * hertz * t) / k * std::exp(-t * (1 + 0.7 * k) / 0.22);
            return (1 - std::exp(-t / 0.001)) * sum;
        });
    }

    const int m_rateHz;
    CPlanarBuffer m_sound;
};

}  // namespace

CPlanarBuffer makeDemoSignal(int rateHz) {
    CPlanarBuffer sound = CBand(rateHz).play();
    const int frames = sound.frameCount();
    const double fadeFrames = kFadeSeconds * rateHz;
    Peak peak;
    peak.include(sound, 0, frames, 0);
    const double level = dbToFactor(kPeakDb) / peak.level;
    for (int c = 0; c < sound.channelCount(); ++c)
        for (int i = 0; i < frames; ++i)
            sound.channel(c)[i] *= level * std::min(1.0, static_cast<double>(frames - 1 - i) / fadeFrames);
    return sound;
}

int runDemoSignal(const DemoSignalRequest& request) {
    SoundFormat format;
    format.container = containerOfExtension(request.output);
    format.sample = SampleFormat::kInt24;
    format.rateHz = request.rateHz;
    format.channelCount = 2;
    if (format.container == 0)
        throw CToolError("cannot write " + quoted(request.output) +
                         ": its ending names no file type; use .wav or .flac");
    CSoundWriter writer(request.output, format, request.mayReplace);
    const CPlanarBuffer sound = makeDemoSignal(request.rateHz);
    writer.write(sound, 0, sound.frameCount());
    writer.commit();
    std::printf("%s\n", quoted(request.output).c_str());
    return 0;
}

}  // namespace brt
