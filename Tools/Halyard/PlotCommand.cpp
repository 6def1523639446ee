// SPDX-License-Identifier: LicenseRef-Halyard
#include "Tools/Halyard/PlotCommand.h"

#include <cstdio>

#include "Tools/Halyard/CPendingFile.h"
#include "Tools/Halyard/CProgressBar.h"
#include "Tools/Halyard/CSoundReader.h"
#include "Tools/Halyard/SignalPicture.h"
#include "Tools/Halyard/ToolError.h"

namespace brt {

int runPlot(const PlotRequest& request) {
    checkPictureName(request.output);
    if (isSameFile(request.input, request.output))
        throw CToolError("cannot draw " + quoted(request.output) + ": it is the input; choose another name");
    ProcessorSettings settings = request.settings;
    settings.plugin = CPluginModule::load(request.plugin);
    CPendingFile png(request.output, request.mayReplace);
    Peak peak;
    {
        CProgressBar progress(CSoundReader(request.input).frameCount(), request.input.filename().string());
        peak = findPeak(request.input, progress);
    }
    drawSignalPicture(request.input, settings, peak, png);
    png.commit();
    std::printf("%s\n", quoted(request.output).c_str());
    return 0;
}

}  // namespace brt
