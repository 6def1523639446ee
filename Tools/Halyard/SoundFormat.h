// SPDX-License-Identifier: LicenseRef-Halyard
// The file formats that the tool writes: containers, sample formats, and which goes with which.
// Threads: every operation is [any].
#pragma once

#include <cstdint>
#include <filesystem>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

namespace brt {

enum class SampleFormat { kInt8, kInt16, kInt24, kInt32, kFloat, kDouble };

// "8", "16", "24", "32", "float", "double": what the command line takes.
const std::vector<std::string>& sampleFormatNames();

// REQUIRES: one of the names.
SampleFormat sampleFormatOfName(std::string_view name);

// "24 bit", "32-bit float": for people.
std::string describe(SampleFormat format);

// Bits of an integer sample; 0 for floating point.
int integerBits(SampleFormat format);

int bytesPerSample(SampleFormat format);

// The format that holds every sample of a file with libsndfile's format code, compressed and companded ones included.
SampleFormat sampleFormatHolding(int sndfileFormat);

struct SoundFormat {
    int container = 0;  // libsndfile's major code, such as SF_FORMAT_WAV
    SampleFormat sample = SampleFormat::kInt24;
    int rateHz = 0;
    int channelCount = 0;

    // libsndfile's code of container and sample format together.
    int sndfileCode() const;
};

// libsndfile's code of the container that the file name's ending asks for, 0 if the tool writes none of that ending.
int containerOfExtension(const std::filesystem::path& path);

// "WAV", "FLAC" ...; empty for a container that the tool doesn't write.
std::string containerName(int container);

// Adapts a plain WAV to its content: the extensible header for more than two channels, RF64 where `frameCount` frames
// would not fit into 4 GiB. Throws CToolError, which names `path`, if the container can't hold the sound.
void settleContainer(SoundFormat& format, std::int64_t frameCount, const std::filesystem::path& path);

// libsndfile keeps the reason why a file could not be opened in one place for all threads: held while a file is opened.
std::mutex& soundLibraryMutex();

}  // namespace brt
