// SPDX-License-Identifier: LicenseRef-Halyard
// The program `halyard`. Exit status: 0 done; 1 something failed, and one line on standard error tells what; 2 the
// command line is wrong; 128 plus the signal's number after an interruption.
#include <cstdio>
#include <exception>

#include "Tools/Halyard/CommandLine.h"
#include "Tools/Halyard/Interrupt.h"
#include "Tools/Halyard/ToolError.h"

namespace {

struct Runner {
    int operator()(const brt::TextRequest& request) const {
        std::fputs(request.text.c_str(), stdout);
        return 0;
    }
    int operator()(const brt::RenderRequest& request) const { return brt::runRender(request); }
    int operator()(const brt::PlotRequest& request) const { return brt::runPlot(request); }
    int operator()(const brt::MeasureRequest& request) const { return brt::runMeasure(request); }
    int operator()(const brt::DemoSignalRequest& request) const { return brt::runDemoSignal(request); }
};

int fail(int status, const char* text) {
    std::fprintf(stderr, "halyard: %s\n", text);
    return status;
}

}  // namespace

int main(int argumentCount, char** arguments) {
    try {
        brt::installSignalHandlers();
        return std::visit(Runner(), brt::parseCommandLine(argumentCount, arguments));
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
