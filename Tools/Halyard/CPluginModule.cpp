// SPDX-License-Identifier: LicenseRef-Halyard
#include "Tools/Halyard/CPluginModule.h"

#include "Audio/VST/CAudioWrapperVST.h"
#include "Platform/PathText.h"
#include "Tools/Halyard/ToolError.h"

namespace brt {

std::shared_ptr<const CPluginModule> CPluginModule::load(const std::filesystem::path& file) {
    const std::shared_ptr<CPluginModule> module(new CPluginModule);
    module->m_entry = &makeEffect;
    if (file.empty()) return module;
    module->m_name = quoted(file);
    const std::string reason = module->m_module.open(pathFromSystem(file.string()));
    if (!reason.empty()) throw CToolError("cannot load " + module->m_name + ": " + printable(reason));
    module->m_entry = reinterpret_cast<Entry>(module->m_module.find("VSTPluginMain"));
    if (module->m_entry == nullptr)
        throw CToolError(module->m_name + " is no plug-in: it has no VSTPluginMain; name a VST 2 file");
    return module;
}

}  // namespace brt
