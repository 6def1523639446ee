// SPDX-License-Identifier: LicenseRef-Halyard
#include "Tools/Halyard/SoundFormat.h"

#include <sndfile.h>

#include <algorithm>
#include <array>
#include <cctype>

#include "Tools/Halyard/ToolError.h"

namespace brt {

namespace {

struct SampleFormatEntry {
    SampleFormat format;
    const char* name;
    const char* description;
    int integerBits;
    int bytes;
    int sndfileCode;
};

constexpr std::array<SampleFormatEntry, 6> kSampleFormats = {{
    {SampleFormat::kInt8, "8", "8 bit", 8, 1, SF_FORMAT_PCM_S8},
    {SampleFormat::kInt16, "16", "16 bit", 16, 2, SF_FORMAT_PCM_16},
    {SampleFormat::kInt24, "24", "24 bit", 24, 3, SF_FORMAT_PCM_24},
    {SampleFormat::kInt32, "32", "32 bit", 32, 4, SF_FORMAT_PCM_32},
    {SampleFormat::kFloat, "float", "32-bit float", 0, 4, SF_FORMAT_FLOAT},
    {SampleFormat::kDouble, "double", "64-bit float", 0, 8, SF_FORMAT_DOUBLE},
}};

const SampleFormatEntry& entryOf(SampleFormat format) { return kSampleFormats[static_cast<std::size_t>(format)]; }

struct ContainerEntry {
    int container;
    const char* name;
    std::int64_t maxBytes;  // of sound; 0 for no bound that anybody reaches
};

// The size fields of RIFF and FORM have 32 bits; a little is left for what stands around the sound.
constexpr std::int64_t kMax32BitBytes = (std::int64_t{1} << 32) - (1 << 20);

constexpr std::array<ContainerEntry, 7> kContainers = {{
    {SF_FORMAT_WAV, "WAV", kMax32BitBytes},
    {SF_FORMAT_WAVEX, "WAV", kMax32BitBytes},
    {SF_FORMAT_RF64, "RF64", 0},
    {SF_FORMAT_W64, "W64", 0},
    {SF_FORMAT_AIFF, "AIFF", kMax32BitBytes},
    {SF_FORMAT_CAF, "CAF", 0},
    {SF_FORMAT_FLAC, "FLAC", 0},
}};

struct ExtensionEntry {
    const char* extension;
    int container;
};

constexpr std::array<ExtensionEntry, 10> kExtensions = {{
    {".wav", SF_FORMAT_WAV},
    {".wave", SF_FORMAT_WAV},
    {".bwf", SF_FORMAT_WAV},
    {".rf64", SF_FORMAT_RF64},
    {".w64", SF_FORMAT_W64},
    {".aif", SF_FORMAT_AIFF},
    {".aiff", SF_FORMAT_AIFF},
    {".aifc", SF_FORMAT_AIFF},
    {".caf", SF_FORMAT_CAF},
    {".flac", SF_FORMAT_FLAC},
}};

const ContainerEntry* findContainer(int container) {
    const auto* found =
        std::find_if(kContainers.begin(), kContainers.end(), [&](auto& e) { return e.container == container; });
    return found == kContainers.end() ? nullptr : found;
}

bool canHold(const SoundFormat& format) {
    SF_INFO info{};
    info.format = format.sndfileCode();
    info.channels = format.channelCount;
    info.samplerate = format.rateHz;
    return sf_format_check(&info) != 0;
}

// What to do about a container that can't hold the sound.
std::string adviceFor(const SoundFormat& format) {
    if (format.container != SF_FORMAT_FLAC) return "choose another file type, such as .wav or .caf";
    if (format.channelCount > 8) return "FLAC has room for 8 channels; choose another file type, such as .wav or .caf";
    return "FLAC holds 8, 16 or 24 bit; choose --format 24, or a file type such as .wav that holds it as it is";
}

}  // namespace

const std::vector<std::string>& sampleFormatNames() {
    static const std::vector<std::string> names = [] {
        std::vector<std::string> all;
        for (const auto& entry : kSampleFormats) all.emplace_back(entry.name);
        return all;
    }();
    return names;
}

SampleFormat sampleFormatOfName(std::string_view name) {
    return std::find_if(kSampleFormats.begin(), kSampleFormats.end(), [&](auto& e) { return e.name == name; })->format;
}

std::string describe(SampleFormat format) { return entryOf(format).description; }

int integerBits(SampleFormat format) { return entryOf(format).integerBits; }

int bytesPerSample(SampleFormat format) { return entryOf(format).bytes; }

SampleFormat sampleFormatHolding(int sndfileFormat) {
    switch (sndfileFormat & SF_FORMAT_SUBMASK) {
    case SF_FORMAT_PCM_S8:
    case SF_FORMAT_PCM_U8: return SampleFormat::kInt8;
    case SF_FORMAT_PCM_16:
    case SF_FORMAT_ALAC_16:
    case SF_FORMAT_ULAW:
    case SF_FORMAT_ALAW: return SampleFormat::kInt16;
    case SF_FORMAT_PCM_24:
    case SF_FORMAT_ALAC_20:
    case SF_FORMAT_ALAC_24: return SampleFormat::kInt24;
    case SF_FORMAT_PCM_32:
    case SF_FORMAT_ALAC_32: return SampleFormat::kInt32;
    case SF_FORMAT_DOUBLE: return SampleFormat::kDouble;
    default: return SampleFormat::kFloat;  // what lossy decoders put out
    }
}

int SoundFormat::sndfileCode() const {
    // WAV keeps its 8-bit samples unsigned.
    const bool isWav = container == SF_FORMAT_WAV || container == SF_FORMAT_WAVEX || container == SF_FORMAT_W64 ||
                       container == SF_FORMAT_RF64;
    if (sample == SampleFormat::kInt8 && isWav) return container | SF_FORMAT_PCM_U8;
    return container | entryOf(sample).sndfileCode;
}

int containerOfExtension(const std::filesystem::path& path) {
    std::string extension = path.extension().string();
    for (char& c : extension)
        if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
    for (const auto& entry : kExtensions)
        if (entry.extension == extension) return entry.container;
    return 0;
}

std::string containerName(int container) {
    const ContainerEntry* entry = findContainer(container);
    return entry ? entry->name : "";
}

void settleContainer(SoundFormat& format, std::int64_t frameCount, const std::filesystem::path& path) {
    const std::int64_t soundBytes = frameCount * format.channelCount * bytesPerSample(format.sample);
    if (format.container == SF_FORMAT_WAV || format.container == SF_FORMAT_WAVEX) {
        if (soundBytes > kMax32BitBytes)
            format.container = SF_FORMAT_RF64;
        else if (format.channelCount > 2)
            format.container = SF_FORMAT_WAVEX;
    }
    const ContainerEntry& entry = *findContainer(format.container);
    if (entry.maxBytes != 0 && soundBytes > entry.maxBytes)
        throw CToolError("cannot write " + quoted(path) + ": " + entry.name +
                         " files end at 4 GiB; choose a file type without that bound, such as .caf or .w64");
    if (!canHold(format))
        throw CToolError("cannot write " + quoted(path) + ": " + entry.name + " cannot hold " +
                         std::to_string(format.channelCount) + " channels of " + describe(format.sample) + " at " +
                         std::to_string(format.rateHz) + " Hz; " + adviceFor(format));
}

std::mutex& soundLibraryMutex() {
    static constinit std::mutex mutex;
    return mutex;
}

}  // namespace brt
