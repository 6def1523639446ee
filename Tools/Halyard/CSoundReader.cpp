// SPDX-License-Identifier: LicenseRef-Halyard
#include "Tools/Halyard/CSoundReader.h"

#include <cmath>
#include <mutex>
#include <string>

#include "Tools/Halyard/CProcessor.h"
#include "Tools/Halyard/ChunkCheck.h"
#include "Tools/Halyard/Interrupt.h"
#include "Tools/Halyard/ToolError.h"

namespace brt {

namespace {

namespace fs = std::filesystem;

// Whatever a 32-bit float holds is taken for sound. What stands above is damage, and its square would overflow.
constexpr double kLoudest = 1e50;

[[noreturn]] void failReading(const fs::path& path, const std::string& reasonAndAdvice) {
    throw CToolError("cannot read " + quoted(path) + ": " + reasonAndAdvice);
}

void checkSource(const fs::path& path) {
    std::error_code error;
    const fs::file_status status = fs::status(path, error);
    if (!fs::exists(status))
        failReading(path, fs::is_other(status) || status.type() == fs::file_type::none
                              ? error.message() + "; check the name and who may read it"
                              : "no such file; check the name");
    if (fs::is_directory(status)) failReading(path, "it is a folder; name the sound files in it");
    if (!fs::is_regular_file(status)) failReading(path, "it is a device or a pipe; name a file on disk");
    const auto missing = findMissingSound(path);
    if (missing && missing->promisedBytes == 0)
        failReading(path, "it was never finished: its header tells of no sound, but " +
                              std::to_string(missing->presentBytes) +
                              " bytes follow; repair it with a recording program");
    if (missing)
        failReading(path, "it is cut off: " + std::to_string(missing->presentBytes) + " of " +
                              std::to_string(missing->promisedBytes) + " bytes of sound are there; copy it anew");
}

// libsndfile's own words, as a part of a sentence.
std::string libraryReason(SNDFILE* file) {
    std::string text = sf_strerror(file);
    if (text.starts_with("Error : ")) text.erase(0, 8);
    while (!text.empty() && (text.back() == '.' || text.back() == '\n')) text.pop_back();
    return text;
}

// REQUIRES: the library's mutex is held since the failure.
[[noreturn]] void failOpening(const fs::path& path) {
    const std::string reason = libraryReason(nullptr);
    if (sf_error(nullptr) == SF_ERR_SYSTEM) failReading(path, reason + "; check who may read it");
    failReading(path, "it is not a sound file that halyard reads (" + reason +
                          "); give a WAV, FLAC, AIFF, CAF, W64 or RF64 file");
}

using SoundFile = std::unique_ptr<SNDFILE, CSoundReader::CloseFile>;

SoundFile openSound(const fs::path& path, SF_INFO& info) {
    const std::lock_guard lock(soundLibraryMutex());
    SoundFile file(sf_open(path.string().c_str(), SFM_READ, &info));
    if (!file) failOpening(path);
    return file;
}

// By reading it all: for files that don't tell, as FLAC files that went through a pipe.
std::int64_t countFrames(const fs::path& path) {
    SF_INFO info{};
    const SoundFile file = openSound(path, info);
    constexpr int kPieceFrames = 4096;
    std::vector<double> piece(static_cast<std::size_t>(kPieceFrames) * static_cast<std::size_t>(info.channels));
    std::int64_t frames = 0;
    while (const sf_count_t got = sf_readf_double(file.get(), piece.data(), kPieceFrames)) {
        throwIfInterrupted();
        frames += got;
    }
    return frames;
}

}  // namespace

CSoundReader::CSoundReader(const fs::path& path) : m_path(path) {
    checkSource(path);
    SF_INFO info{};
    m_file = openSound(path, info);
    if (info.channels > ProcessorSettings::kMaxChannels)
        failReading(path, "it has " + std::to_string(info.channels) + " channels; halyard takes 1 to " +
                              std::to_string(ProcessorSettings::kMaxChannels) + ", so split it first");
    m_frameCount = info.frames == SF_COUNT_MAX ? countFrames(path) : info.frames;
    m_format.container = info.format & SF_FORMAT_TYPEMASK;
    m_format.sample = sampleFormatHolding(info.format);
    m_format.rateHz = info.samplerate;
    m_format.channelCount = info.channels;
}

int CSoundReader::read(CPlanarBuffer& buffer) {
    const int channels = channelCount();
    m_interleaved.resize(static_cast<std::size_t>(buffer.frameCount()) * static_cast<std::size_t>(channels));
    const auto count = static_cast<int>(sf_readf_double(m_file.get(), m_interleaved.data(), buffer.frameCount()));
    if (sf_error(m_file.get()) != SF_ERR_NO_ERROR)
        failReading(m_path, "it is cut off or damaged at frame " + std::to_string(m_position + count) + " (" +
                                libraryReason(m_file.get()) + "); copy it anew");
    m_position += count;
    if (count < buffer.frameCount() && m_position != m_frameCount)
        failReading(m_path, "it is cut off: " + std::to_string(m_position) + " of " + std::to_string(m_frameCount) +
                                " frames are there; copy it anew");

    for (int c = 0; c < channels; ++c) {
        double* samples = buffer.channel(c);
        const double* source = m_interleaved.data() + c;
        for (int i = 0; i < count; ++i, source += channels) {
            samples[i] = *source;
            if (std::fabs(samples[i]) <= kLoudest) continue;
            samples[i] = 0;
            ++m_invalidCount;
        }
    }
    return count;
}

void CSoundReader::seek(std::int64_t frame) {
    if (sf_seek(m_file.get(), frame, SF_SEEK_SET) != frame) failReading(m_path, "seeking in it failed; copy it anew");
    m_position = frame;
}

}  // namespace brt
