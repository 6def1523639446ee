// SPDX-License-Identifier: LicenseRef-Halyard
#include "Tools/Halyard/CSoundWriter.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <mutex>
#include <string>

#include "Tools/Halyard/CSoundReader.h"
#include "Tools/Halyard/ToolError.h"

namespace brt {

namespace {

CPendingFile& pendingFile(void* user) { return *static_cast<CPendingFile*>(user); }

sf_count_t seekPending(sf_count_t offset, int whence, void* user) {
    CPendingFile& file = pendingFile(user);
    const sf_count_t origin = whence == SEEK_SET ? 0 : whence == SEEK_CUR ? file.position() : file.length();
    return file.seek(origin + offset) ? file.position() : -1;
}

// libsndfile writes into the pending file through these, so that a failure keeps the system's own reason.
SF_VIRTUAL_IO pendingFileIo() {
    SF_VIRTUAL_IO io{};
    io.get_filelen = [](void* user) -> sf_count_t { return pendingFile(user).length(); };
    io.seek = seekPending;
    io.read = [](void* bytes, sf_count_t count, void* user) -> sf_count_t {
        return static_cast<sf_count_t>(pendingFile(user).read(bytes, static_cast<std::size_t>(count)));
    };
    io.write = [](const void* bytes, sf_count_t count, void* user) -> sf_count_t {
        return pendingFile(user).write(bytes, static_cast<std::size_t>(count)) ? count : 0;
    };
    io.tell = [](void* user) -> sf_count_t { return pendingFile(user).position(); };
    return io;
}

// Copies one block of information. Says nothing if either file has no place for it: that is the file type's choice.
void copyBlock(SNDFILE* source, SNDFILE* target, int getCommand, int setCommand, void* block, std::size_t size) {
    if (sf_command(source, getCommand, block, static_cast<int>(size)) == SF_TRUE)
        sf_command(target, setCommand, block, static_cast<int>(size));
}

template <class Block>
void copyBlock(SNDFILE* source, SNDFILE* target, int getCommand, int setCommand) {
    const auto block = std::make_unique<Block>();
    copyBlock(source, target, getCommand, setCommand, block.get(), sizeof(Block));
}

}  // namespace

CSoundWriter::CSoundWriter(const std::filesystem::path& path, const SoundFormat& format, bool mayReplace)
    : m_path(path), m_format(format), m_pending(path, mayReplace) {
    SF_INFO info{};
    info.format = format.sndfileCode();
    info.channels = format.channelCount;
    info.samplerate = format.rateHz;
    SF_VIRTUAL_IO io = pendingFileIo();
    {
        const std::lock_guard lock(soundLibraryMutex());
        m_file.reset(sf_open_virtual(&io, SFM_WRITE, &info, &m_pending));
        m_pending.throwIfFailed();
        if (!m_file) throw CToolError("cannot write " + quoted(path) + ": " + sf_strerror(nullptr));
    }
    // The chunk with the peaks carries the time of day.
    sf_command(m_file.get(), SFC_SET_ADD_PEAK_CHUNK, nullptr, SF_FALSE);
}

void CSoundWriter::copyMetadata(const CSoundReader& source) {
    for (int id = SF_STR_FIRST; id <= SF_STR_LAST; ++id)
        if (const char* text = sf_get_string(source.handle(), id)) sf_set_string(m_file.get(), id, text);
    using BroadcastInfo = SF_BROADCAST_INFO_VAR(8192);  // with that much history of the coding
    using Markers = SF_CUES_VAR(2500);                  // the library reads no more of them
    copyBlock<BroadcastInfo>(source.handle(), m_file.get(), SFC_GET_BROADCAST_INFO, SFC_SET_BROADCAST_INFO);
    copyBlock<Markers>(source.handle(), m_file.get(), SFC_GET_CUE, SFC_SET_CUE);
    std::vector<int> places(static_cast<std::size_t>(source.channelCount()));
    copyBlock(source.handle(), m_file.get(), SFC_GET_CHANNEL_MAP_INFO, SFC_SET_CHANNEL_MAP_INFO, places.data(),
              places.size() * sizeof(int));
}

void CSoundWriter::write(const CPlanarBuffer& buffer, int firstFrame, int frameCount) {
    if (frameCount <= 0) return;
    for (int c = 0; c < buffer.channelCount(); ++c) {
        const double* samples = buffer.channel(c) + firstFrame;
        m_overCount += std::count_if(samples, samples + frameCount, [](double s) { return std::fabs(s) > 1; });
    }
    if (integerBits(m_format.sample) != 0)
        writeIntegers(buffer, firstFrame, frameCount);
    else
        writeFloats(buffer, firstFrame, frameCount);
}

void CSoundWriter::writeIntegers(const CPlanarBuffer& buffer, int firstFrame, int frameCount) {
    // libsndfile's own conversion scales by 32767 where its reading scales by 1/32768, which would change every sample.
    // Here full scale is a power of two both ways. The library takes the upper bits of a 32-bit integer.
    const int bits = integerBits(m_format.sample);
    const double scale = std::ldexp(1.0, bits - 1);
    const int channels = buffer.channelCount();
    m_integers.resize(static_cast<std::size_t>(frameCount) * static_cast<std::size_t>(channels));
    for (int c = 0; c < channels; ++c) {
        const double* source = buffer.channel(c) + firstFrame;
        int* target = m_integers.data() + c;
        for (int i = 0; i < frameCount; ++i, target += channels) {
            const double rounded = std::clamp(std::nearbyint(source[i] * scale), -scale, scale - 1);
            *target = static_cast<int>(static_cast<std::int64_t>(rounded) * (std::int64_t{1} << (32 - bits)));
        }
    }
    check(sf_writef_int(m_file.get(), m_integers.data(), frameCount), frameCount);
}

void CSoundWriter::writeFloats(const CPlanarBuffer& buffer, int firstFrame, int frameCount) {
    const int channels = buffer.channelCount();
    m_floats.resize(static_cast<std::size_t>(frameCount) * static_cast<std::size_t>(channels));
    for (int c = 0; c < channels; ++c) {
        const double* source = buffer.channel(c) + firstFrame;
        double* target = m_floats.data() + c;
        for (int i = 0; i < frameCount; ++i, target += channels) *target = source[i];
    }
    check(sf_writef_double(m_file.get(), m_floats.data(), frameCount), frameCount);
}

void CSoundWriter::check(sf_count_t framesWritten, int frameCount) const {
    m_pending.throwIfFailed();
    if (framesWritten != frameCount)
        throw CToolError("cannot write " + quoted(m_path) + ": " + sf_strerror(m_file.get()));
}

void CSoundWriter::finish() {
    if (!m_file) return;
    const int result = sf_close(m_file.release());  // writes what is buffered, and the header with the final length
    m_pending.throwIfFailed();
    if (result != SF_ERR_NO_ERROR) throw CToolError("cannot write " + quoted(m_path) + ": " + sf_error_number(result));
    m_pending.finish();
}

void CSoundWriter::commit() {
    finish();
    m_pending.commit();
}

}  // namespace brt
