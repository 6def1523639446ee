// SPDX-License-Identifier: LicenseRef-Halyard
// What the user typed, taken apart and checked: the only file that knows the options' names.
#pragma once

#include <string>
#include <variant>

#include "Tools/Halyard/DemoSignal.h"
#include "Tools/Halyard/GraphCommand.h"
#include "Tools/Halyard/InfoCommand.h"
#include "Tools/Halyard/MeasureCommand.h"
#include "Tools/Halyard/ParamsCommand.h"
#include "Tools/Halyard/PlotCommand.h"
#include "Tools/Halyard/PresetCommand.h"
#include "Tools/Halyard/RenderCommand.h"
#include "Tools/Halyard/SoakCommand.h"
#include "Tools/Halyard/TreeCommand.h"

namespace brt {

// Help or the version: a text for standard output.
struct TextRequest {
    std::string text;
};

using Request = std::variant<TextRequest, RenderRequest, PlotRequest, MeasureRequest, DemoSignalRequest, TreeRequest,
                             GraphRequest, ParamsRequest, InfoRequest, SoakRequest, PresetListRequest,
                             PresetShowRequest, PresetConvertRequest, PresetDiffRequest>;

// Throws CUsageError with the one line that tells what is wrong.
Request parseCommandLine(int argumentCount, const char* const* arguments);

}  // namespace brt
