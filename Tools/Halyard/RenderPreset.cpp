// SPDX-License-Identifier: LicenseRef-Halyard
#include "Tools/Halyard/RenderPreset.h"

#include "Tools/Halyard/CToolInstance.h"
#include "Tools/Halyard/Decibels.h"
#include "Tools/Halyard/PresetCommand.h"
#include "Tools/Halyard/PresetFile.h"
#include "Tools/Halyard/ToolError.h"

namespace brt {
namespace {

void readPreset(CAudioPreset& preset, const std::string& nameOrFile) {
    PresetFile file;
    std::error_code ignored;
    if (!std::filesystem::exists(nameOrFile, ignored)) {
        readPresetFile(file, kFactoryBank);
        try {
            preset.assign(file.preset(findPreset(file, nameOrFile)));
        } catch (const CToolError& error) {
            throw CToolError(std::string("no preset to begin with: there is no such file, and ") + error.what());
        }
        return;
    }
    readPresetFile(file, nameOrFile);
    if (file.presetCount() != 1)
        throw CToolError(brt::quoted(nameOrFile) + " holds " + std::to_string(file.presetCount()) +
                         " presets; make a file of one with 'halyard preset convert'");
    preset.assign(file.preset(0));
}

}  // namespace

void usePreset(ProcessorSettings& settings, const std::string& nameOrFile) {
    CToolInstance instance;
    CAudioPreset preset;
    readPreset(preset, nameOrFile);
    instance.activate(preset);
    settings.inputGainDb = factorToDb(instance.get("plugin.modMain.modHal.ingain"));
    settings.hardnessPercent = 100 * instance.get("plugin.modMain.modHal.hardness");
    settings.outputGainDb = factorToDb(instance.get("plugin.modMain.modHal.outgain"));
    settings.residue = instance.get("plugin.modMain.modHal.residue") != 0.0;
}

}  // namespace brt
