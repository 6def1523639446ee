// SPDX-License-Identifier: LicenseRef-Halyard
// What settings do to a sound, as a picture: the wave before and after around the loudest sample, the transfer curve,
// and the spectrum before and after. Only the neighbourhood of the loudest sample is sent through the clipper, so a
// picture of a long file takes no longer than one of a short one. All curves are measured on the chain itself.
#pragma once

#include <filesystem>

#include "Tools/Halyard/CProcessor.h"
#include "Tools/Halyard/Peak.h"

namespace brt {

class CPendingFile;
class CProgressBar;

// Throws CToolError unless the name ends in ".png": a slip of the pen must not put a picture in a sound's place.
void checkPictureName(const std::filesystem::path& path);

// Finds the loudest sample of a file. Throws CToolError.
Peak findPeak(const std::filesystem::path& input, CProgressBar& progress);

// `peak`: the loudest sample of `input`. The PNG is written, and left to the caller to commit. Throws CToolError.
void drawSignalPicture(const std::filesystem::path& input, const ProcessorSettings& settings, const Peak& peak,
                       CPendingFile& png);

}  // namespace brt
