// SPDX-License-Identifier: LicenseRef-Halyard
// Writes a sound file a piece at a time. It appears under its name when commit() has succeeded, and not before.
// Integer formats round to the nearest step, without dither, and cut what stands above full scale; floating-point
// formats keep it. The same sound gives the same bytes. Owner: the job that writes. Threads: one at a time.
#pragma once

#include <sndfile.h>

#include <cstdint>
#include <filesystem>
#include <memory>
#include <vector>

#include "Tools/Halyard/CPendingFile.h"
#include "Tools/Halyard/CPlanarBuffer.h"
#include "Tools/Halyard/SoundFormat.h"

namespace brt {

class CSoundReader;

class CSoundWriter {
public:
    // Throws CToolError.
    CSoundWriter(const std::filesystem::path& path, const SoundFormat& format, bool mayReplace);
    CSoundWriter(const CSoundWriter&) = delete;
    CSoundWriter& operator=(const CSoundWriter&) = delete;

    // Titles, broadcast information, markers and the channels' places, as far as both files know them.
    // REQUIRES: nothing is written yet.
    void copyMetadata(const CSoundReader& source);

    // Throws CToolError, as on a full disk.
    void write(const CPlanarBuffer& buffer, int firstFrame, int frameCount);

    // As those of CPendingFile. Throw CToolError.
    void finish();
    void commit();

    const SoundFormat& format() const noexcept { return m_format; }
    // Samples written so far that stand above full scale, by however little.
    std::int64_t overCount() const noexcept { return m_overCount; }

private:
    struct CloseFile {
        void operator()(SNDFILE* file) const noexcept { sf_close(file); }
    };

    void writeIntegers(const CPlanarBuffer& buffer, int firstFrame, int frameCount);
    void writeFloats(const CPlanarBuffer& buffer, int firstFrame, int frameCount);
    void check(sf_count_t framesWritten, int frameCount) const;

    const std::filesystem::path m_path;
    const SoundFormat m_format;
    CPendingFile m_pending;
    std::unique_ptr<SNDFILE, CloseFile> m_file;  // writes into m_pending, so it goes first
    std::int64_t m_overCount = 0;
    std::vector<int> m_integers;
    std::vector<double> m_floats;
};

}  // namespace brt
