// SPDX-License-Identifier: LicenseRef-Halyard
#include "Tools/Halyard/Render.h"

#include <sndfile.h>

#include <algorithm>
#include <chrono>

#include "Tools/Halyard/CPendingFile.h"
#include "Tools/Halyard/CPlanarBuffer.h"
#include "Tools/Halyard/CProgressBar.h"
#include "Tools/Halyard/CSoundReader.h"
#include "Tools/Halyard/CSoundWriter.h"
#include "Tools/Halyard/Decibels.h"
#include "Tools/Halyard/Interrupt.h"
#include "Tools/Halyard/SignalPicture.h"
#include "Tools/Halyard/ToolError.h"

namespace brt {

namespace {

constexpr int kPieceFrames = 4096;

int containerFor(const std::filesystem::path& output, const CSoundReader& reader) {
    if (const int container = containerOfExtension(output)) return container;
    const bool canFollowInput = !output.has_extension() && !containerName(reader.format().container).empty();
    if (canFollowInput) return reader.format().container;
    throw CToolError(
        "cannot write " + quoted(output) +
        ": its ending names no file type that halyard writes; use .wav, .flac, .aiff, .caf, .w64 or .rf64");
}

SoundFormat outputFormatFor(const RenderJob& job, const CSoundReader& reader, std::int64_t frameCount) {
    SoundFormat format = reader.format();
    format.container = containerFor(job.output, reader);
    if (job.sampleFormat) format.sample = *job.sampleFormat;
    settleContainer(format, frameCount, job.output);
    return format;
}

// What is removed may stand far above full scale, so an integer format would bend it. FLAC has nothing else.
SoundFormat residueFormatFor(const RenderJob& job, const SoundFormat& outputFormat, std::int64_t frameCount) {
    SoundFormat format = outputFormat;
    const int container = containerOfExtension(*job.residueOutput);
    if (container != 0) format.container = container;
    if (format.container == SF_FORMAT_FLAC)
        format.sample = SampleFormat::kInt24;
    else if (format.sample != SampleFormat::kDouble)
        format.sample = SampleFormat::kFloat;
    settleContainer(format, frameCount, *job.residueOutput);
    return format;
}

// The clipper's sound on its way into a file, the latency taken off its front.
class COutputLine {
public:
    COutputLine(const std::filesystem::path& path, const SoundFormat& format, const CSoundReader& source,
                const RenderJob& job, CProcessor& processor)
        : m_processor(processor),
          m_toSkip(job.keepLatency ? 0 : processor.latencySamples()),
          m_writer(path, format, job.mayReplace),
          m_buffer(format.channelCount, kPieceFrames) {
        m_writer.copyMetadata(source);
    }

    void process(CPlanarBuffer& input, int frameCount) {
        m_processor.process(input.channels(), m_buffer.channels(), frameCount);
        const int skipped = static_cast<int>(std::min<std::int64_t>(m_toSkip, frameCount));
        m_toSkip -= skipped;
        m_peak.include(m_buffer, skipped, frameCount - skipped, m_writtenFrames);
        m_writer.write(m_buffer, skipped, frameCount - skipped);
        m_writtenFrames += frameCount - skipped;
    }

    void finish() { m_writer.finish(); }
    void commit() { m_writer.commit(); }

    const CSoundWriter& writer() const noexcept { return m_writer; }
    const Peak& peak() const noexcept { return m_peak; }
    std::int64_t writtenFrames() const noexcept { return m_writtenFrames; }

private:
    CProcessor& m_processor;
    std::int64_t m_toSkip;
    CSoundWriter m_writer;
    CPlanarBuffer m_buffer;
    Peak m_peak;
    std::int64_t m_writtenFrames = 0;
};

std::int64_t countAbove(const CPlanarBuffer& buffer, int frameCount, double threshold) {
    std::int64_t count = 0;
    for (int c = 0; c < buffer.channelCount(); ++c)
        count += std::count_if(buffer.channel(c), buffer.channel(c) + frameCount,
                               [=](double sample) { return std::fabs(sample) > threshold; });
    return count;
}

// Sends the whole input through the lines, and silence behind it until the last of it has come out.
void pump(CSoundReader& reader, const ProcessorSettings& settings, int latencySamples,
          const std::vector<COutputLine*>& lines, RenderSummary& summary, CProgressBar& progress) {
    CPlanarBuffer piece(reader.channelCount(), kPieceFrames);
    const double clipLevel = 1 / dbToFactor(settings.inputGainDb);
    int silenceLeft = latencySamples;
    for (;;) {
        throwIfInterrupted();
        const int soundFrames = reader.read(piece);
        summary.inputPeak.include(piece, 0, soundFrames, summary.inputFrames);
        summary.clippedSamples += countAbove(piece, soundFrames, clipLevel);
        summary.inputFrames += soundFrames;

        const int silentFrames = std::min(kPieceFrames - soundFrames, silenceLeft);
        for (int c = 0; c < piece.channelCount(); ++c) std::fill_n(piece.channel(c) + soundFrames, silentFrames, 0.0);
        silenceLeft -= silentFrames;
        if (soundFrames + silentFrames == 0) return;
        for (COutputLine* line : lines) line->process(piece, soundFrames + silentFrames);
        progress.advance(soundFrames);
    }
}

}  // namespace

RenderSummary render(const RenderJob& job, CProgressBar& progress) {
    const auto start = std::chrono::steady_clock::now();
    CSoundReader reader(job.input);
    CProcessor processor(reader.channelCount(), job.settings);
    const int latency = processor.latencySamples();
    const std::int64_t outputFrames = reader.frameCount() + (job.keepLatency ? latency : 0);

    RenderSummary summary;
    summary.inputFormat = reader.format();
    summary.outputFormat = outputFormatFor(job, reader, outputFrames);
    COutputLine output(job.output, summary.outputFormat, reader, job, processor);
    std::vector<COutputLine*> lines = {&output};

    std::optional<CProcessor> residueProcessor;
    std::optional<COutputLine> residue;
    if (job.residueOutput) {
        ProcessorSettings settings = job.settings;
        settings.residue = true;
        residueProcessor.emplace(reader.channelCount(), settings);
        const SoundFormat format = residueFormatFor(job, summary.outputFormat, outputFrames);
        summary.residueFormat = format.sample;
        residue.emplace(*job.residueOutput, format, reader, job, *residueProcessor);
        lines.push_back(&*residue);
    }
    std::optional<CPendingFile> picture;
    if (job.picture) picture.emplace(*job.picture, job.mayReplace);

    pump(reader, job.settings, latency, lines, summary, progress);
    summary.outputFrames = output.writtenFrames();
    summary.outputPeak = output.peak();
    summary.overSamples = output.writer().overCount();
    summary.invalidSamples = reader.invalidCount();
    summary.largestReductionDb = reductionDb(job.settings, summary.inputPeak.level);
    summary.seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    if (residue) summary.residueOverSamples = residue->writer().overCount();

    // All is made before the first file appears, so that a late failure leaves none.
    if (picture) drawSignalPicture(job.input, job.settings, summary.inputPeak, *picture);
    output.finish();
    if (residue) residue->finish();
    if (picture) picture->finish();
    output.commit();
    if (residue) residue->commit();
    if (picture) picture->commit();
    return summary;
}

}  // namespace brt
