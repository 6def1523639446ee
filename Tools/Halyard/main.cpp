// SPDX-License-Identifier: LicenseRef-Halyard
// The program `halyard`. Exit status: 0 done; 1 something failed, and one line on standard error tells what; 2 the
// command line is wrong; 128 plus the signal's number after an interruption.
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <string>

#include "Core/CProcess.h"
#include "Modules/ProcessorBuild.h"
#include "Tools/Halyard/CommandLine.h"
#include "Tools/Halyard/Interrupt.h"
#include "Tools/Halyard/ToolError.h"

namespace {

brt::CProcessLifetime g_lifetime;

// Whoever asks for a certain build wants to hear that build, and not another without a word.
void checkProcessorBuild() {
    const char* wanted = std::getenv("HALYARD_BUILD");
    if (wanted && *wanted != '\0' && std::string(wanted) != brt::processorBuildName(brt::processorBuild()))
        throw brt::CUsageError("HALYARD_BUILD=" + std::string(wanted) +
                               ": this machine has no such processor build; use portable, baseline, avx2 or avx512");
}

struct Runner {
    int operator()(const brt::TextRequest& request) const {
        std::fputs(request.text.c_str(), stdout);
        return 0;
    }
    int operator()(const brt::RenderRequest& request) const { return brt::runRender(request); }
    int operator()(const brt::PlotRequest& request) const { return brt::runPlot(request); }
    int operator()(const brt::MeasureRequest& request) const { return brt::runMeasure(request); }
    int operator()(const brt::DemoSignalRequest& request) const { return brt::runDemoSignal(request); }
    int operator()(const brt::TreeRequest& request) const { return brt::runTree(request); }
    int operator()(const brt::GraphRequest& request) const { return brt::runGraph(request); }
    int operator()(const brt::ParamsRequest& request) const { return brt::runParams(request); }
    int operator()(const brt::InfoRequest& request) const { return brt::runInfo(request); }
    int operator()(const brt::SoakRequest& request) const { return brt::runSoak(request); }
    int operator()(const brt::PresetListRequest& request) const { return brt::runPresetList(request); }
    int operator()(const brt::PresetShowRequest& request) const { return brt::runPresetShow(request); }
    int operator()(const brt::PresetConvertRequest& request) const { return brt::runPresetConvert(request); }
    int operator()(const brt::PresetDiffRequest& request) const { return brt::runPresetDiff(request); }
};

int fail(int status, const char* text) {
    std::fprintf(stderr, "halyard: %s\n", text);
    return status;
}

// What was printed must have arrived. A reader that has gone away, as `head` does, knows why: it is told nothing.
int finishOutput(int status) {
    errno = 0;
    if (std::fflush(stdout) == 0 && std::ferror(stdout) == 0) return status;
    if (errno == EPIPE) return 1;
    return fail(1, "cannot write to standard output; free some space or send it elsewhere");
}

}  // namespace

int main(int argumentCount, char** arguments) {
    if (!brt::canRunHere()) return fail(1, "this processor is too old: it can't swap 16 bytes at once (cmpxchg16b)");
    try {
        brt::installSignalHandlers();
        const brt::CProcessInstance instance;
        const brt::Request request = brt::parseCommandLine(argumentCount, arguments);
        if (!std::holds_alternative<brt::TextRequest>(request)) checkProcessorBuild();
        return finishOutput(std::visit(Runner(), request));
    } catch (const brt::CInterrupted& error) {
        return fail(128 + brt::interruptSignal(), error.what());
    } catch (const brt::CUsageError& error) {
        return fail(2, error.what());
    } catch (const std::bad_alloc&) {
        return fail(1, "there is not enough memory; close other programs and try again");
    } catch (const std::exception& error) {
        return fail(1, error.what());
    }
}
