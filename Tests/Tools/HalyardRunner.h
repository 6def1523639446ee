// SPDX-License-Identifier: LicenseRef-Halyard
// Runs the program `halyard` in a folder of its own, and reads and writes sound files by libsndfile alone, so that the
// tool's own reader and writer are held against something that isn't theirs.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

namespace brt {

struct Outcome {
    int status = -1;  // exit status; -1 if the program ended by a signal
    std::string output;
    std::string errors;
};

struct Sound {
    int channelCount = 0;
    int rateHz = 48000;
    int format = 0;               // libsndfile's code
    std::vector<double> samples;  // interleaved

    std::int64_t frameCount() const { return static_cast<std::int64_t>(samples.size()) / channelCount; }
};

// Owner: one test, which runs in a new empty folder that is removed afterwards.
class HalyardTest : public testing::Test {
protected:
    HalyardTest();
    ~HalyardTest() override;

    std::filesystem::path path(const std::string& name) const { return m_folder / name; }

    // The arguments as one would type them, in the test's folder.
    Outcome run(const std::string& arguments) const;

    // Fails the test unless the program succeeds without a word on standard error.
    std::string runWell(const std::string& arguments) const;

    void write(const std::string& name, const Sound& sound) const;
    Sound read(const std::string& name) const;
    std::string bytes(const std::string& name) const;

    // Names of all files in the folder, hidden ones too.
    std::vector<std::string> files() const;

private:
    std::filesystem::path m_folder;
};

// `format`: such as SF_FORMAT_WAV | SF_FORMAT_DOUBLE.
Sound soundOf(std::vector<double> samples, int format, int channelCount = 1);

// Five sines below 0.2 of the rate, swelling and fading, never louder than `amplitude`.
std::vector<double> quietMusic(int frameCount, double amplitude);

}  // namespace brt
