// SPDX-License-Identifier: LicenseRef-Halyard
#include "Tools/Halyard/RenderCommand.h"

#include <algorithm>
#include <atomic>
#include <cstdio>
#include <map>
#include <mutex>
#include <set>
#include <string>
#include <thread>

#include "Platform/Processor.h"
#include "Tools/Halyard/CPendingFile.h"
#include "Tools/Halyard/CProgressBar.h"
#include "Tools/Halyard/CSoundReader.h"
#include "Tools/Halyard/Interrupt.h"
#include "Tools/Halyard/RenderPreset.h"
#include "Tools/Halyard/SignalPicture.h"
#include "Tools/Halyard/SummaryText.h"
#include "Tools/Halyard/ToolError.h"

namespace brt {

namespace {

namespace fs = std::filesystem;

// The request with the settings that it asks for.
RenderRequest withSettings(const RenderRequest& request) {
    RenderRequest result = request;
    ProcessorSettings& settings = result.common.settings;
    settings.plugin = CPluginModule::load(request.plugin);
    if (!request.preset.empty()) usePreset(settings, request.preset);
    settings.inputGainDb = request.given.inputGainDb.value_or(settings.inputGainDb);
    settings.hardnessPercent = request.given.hardnessPercent.value_or(settings.hardnessPercent);
    settings.outputGainDb = request.given.outputGainDb.value_or(settings.outputGainDb);
    settings.residue = settings.residue || request.given.residue;
    return result;
}

std::vector<RenderJob> jobsOf(const RenderRequest& request) {
    if (request.common.settings.residue && request.common.residueOutput)
        throw CUsageError("render: the output is the residue already; leave out --residue, or --residue-out");
    std::vector<RenderJob> jobs;
    if (!request.outputFolder) {
        if (request.files.size() != 2)
            throw CUsageError("render: name one input and one output, or several inputs and a folder for --out-dir");
        jobs.push_back(request.common);
        jobs.back().input = request.files[0];
        jobs.back().output = request.files[1];
        return jobs;
    }
    if (request.files.empty()) throw CUsageError("render: no input is named; see 'halyard render --help'");
    if (request.common.residueOutput || request.common.picture)
        throw CUsageError("render: --residue-out and --plot take one input; leave out --out-dir and name the output");
    std::error_code ignored;
    if (!fs::is_directory(*request.outputFolder, ignored))
        throw CToolError("cannot write into " + quoted(*request.outputFolder) +
                         ": there is no such folder; make it first");
    for (const fs::path& input : request.files) {
        jobs.push_back(request.common);
        jobs.back().input = input;
        jobs.back().output = *request.outputFolder / input.filename();
    }
    return jobs;
}

std::string canonicalName(const fs::path& path) {
    std::error_code ignored;
    return fs::weakly_canonical(path, ignored).string();
}

std::vector<fs::path> outputsOf(const RenderJob& job) {
    std::vector<fs::path> outputs = {job.output};
    if (job.residueOutput) outputs.push_back(*job.residueOutput);
    if (job.picture) outputs.push_back(*job.picture);
    return outputs;
}

// Before the first sample is worked on: no output may be an input, nor may two outputs be one file.
void checkPaths(const std::vector<RenderJob>& jobs) {
    std::set<std::string> inputs;
    for (const RenderJob& job : jobs) inputs.insert(canonicalName(job.input));
    std::map<std::string, fs::path> sourceOfOutput;
    for (const RenderJob& job : jobs) {
        if (job.picture) checkPictureName(*job.picture);
        for (const fs::path& output : outputsOf(job)) {
            if (isSameFile(job.input, output) || inputs.count(canonicalName(output)) != 0)
                throw CToolError("cannot write " + quoted(output) + ": it is an input; choose another name or folder");
            checkDestination(output, job.mayReplace);
            const auto [other, isNew] = sourceOfOutput.emplace(canonicalName(output), job.input);
            if (!isNew && other->second == job.input)
                throw CToolError("cannot write " + quoted(output) + " twice; give each output of " + quoted(job.input) +
                                 " a name of its own");
            if (!isNew)
                throw CToolError("cannot write " + quoted(output) + " twice, from " + quoted(other->second) + " and " +
                                 quoted(job.input) + "; rename one, or render them apart");
        }
    }
}

// Several files, a number of them at a time. What fails is told at once and doesn't stop the others.
class CBatch {
public:
    explicit CBatch(std::vector<RenderJob> jobs)
        : m_jobs(std::move(jobs)), m_progress(countFrames(), std::to_string(m_jobs.size()) + " files") {}

    // False if a file failed. Throws CInterrupted.
    bool run(int workerCount) {
        std::vector<std::jthread> workers;
        for (int i = 1; i < workerCount; ++i) workers.emplace_back([this] { work(); });
        work();
        workers.clear();  // waits for all
        throwIfInterrupted();
        return m_failures == 0;
    }

private:
    // Files that can't be read count for nothing here: the work will tell.
    std::int64_t countFrames() const {
        std::int64_t frames = 0;
        for (const RenderJob& job : m_jobs) {
            try {
                frames += CSoundReader(job.input).frameCount();
            } catch (const CToolError&) {
            }
        }
        return frames;
    }

    void work() {
        for (std::size_t i; (i = m_next.fetch_add(1)) < m_jobs.size() && interruptSignal() == 0;) {
            const RenderJob& job = m_jobs[i];
            try {
                tell(stdout, summaryText(job, render(job, m_progress)));
            } catch (const CInterrupted&) {
                return;  // run() tells it once for all
            } catch (const std::exception& error) {
                ++m_failures;
                tell(stderr, "halyard: " + std::string(error.what()) + "\n");
            }
        }
    }

    void tell(std::FILE* stream, const std::string& text) {
        const std::lock_guard lock(m_telling);
        m_progress.hide();
        std::fputs(text.c_str(), stream);
        std::fflush(stream);
    }

    const std::vector<RenderJob> m_jobs;
    CProgressBar m_progress;
    std::mutex m_telling;
    std::atomic<std::size_t> m_next{0};
    std::atomic<int> m_failures{0};
};

}  // namespace

int runRender(const RenderRequest& request) {
    std::vector<RenderJob> jobs = jobsOf(withSettings(request));
    checkPaths(jobs);
    if (jobs.size() == 1) {
        RenderSummary summary;
        {
            CProgressBar progress(CSoundReader(jobs[0].input).frameCount(), jobs[0].input.filename().string());
            summary = render(jobs[0], progress);
        }
        std::fputs(summaryText(jobs[0], summary).c_str(), stdout);
        return 0;
    }
    const int workerCount = std::min(request.jobCount.value_or(processorCount()), static_cast<int>(jobs.size()));
    return CBatch(std::move(jobs)).run(workerCount) ? 0 : 1;
}

}  // namespace brt
