// SPDX-License-Identifier: LicenseRef-Halyard
// Reads a sound file from front to back, a piece at a time, as 64-bit floats with full scale at 1.0.
// Owner: the job that reads. Threads: one at a time.
#pragma once

#include <sndfile.h>

#include <cstdint>
#include <filesystem>
#include <memory>
#include <vector>

#include "Tools/Halyard/CPlanarBuffer.h"
#include "Tools/Halyard/SoundFormat.h"

namespace brt {

class CSoundReader {
public:
    struct CloseFile {
        void operator()(SNDFILE* file) const noexcept { sf_close(file); }
    };

    // Throws CToolError: not there, a folder, not a sound file, cut off, more than 16 channels.
    explicit CSoundReader(const std::filesystem::path& path);

    const std::filesystem::path& path() const noexcept { return m_path; }
    const SoundFormat& format() const noexcept { return m_format; }
    int rateHz() const noexcept { return m_format.rateHz; }
    int channelCount() const noexcept { return m_format.channelCount; }
    std::int64_t frameCount() const noexcept { return m_frameCount; }

    // Fills the buffer's front; returns the frames read, 0 at the end. Throws CToolError if the file ends earlier than
    // it should or can't be read. Samples that are no number, or beyond all sound, arrive as 0 and are counted.
    int read(CPlanarBuffer& buffer);

    // `frame` from 0 to frameCount().
    void seek(std::int64_t frame);

    std::int64_t invalidCount() const noexcept { return m_invalidCount; }

    // For what stands in the file beside the sound.
    SNDFILE* handle() const noexcept { return m_file.get(); }

private:
    const std::filesystem::path m_path;
    std::unique_ptr<SNDFILE, CloseFile> m_file;
    SoundFormat m_format;
    std::int64_t m_frameCount = 0;
    std::int64_t m_position = 0;
    std::int64_t m_invalidCount = 0;
    std::vector<double> m_interleaved;
};

}  // namespace brt
