// SPDX-License-Identifier: LicenseRef-Halyard
// A build of the plug-in: the one that is linked into this program, or a file as hosts load it. Either is reached by
// its entry alone. Owner: shared by its instances. Threads: any.
#pragma once

#include <filesystem>
#include <memory>

#include "Audio/VST/VstInterface.h"
#include "Platform/CNativeModule.h"

namespace brt {

class CPluginModule {
public:
    // Throws CToolError if the file is no plug-in. The empty path: the one that is linked in.
    static std::shared_ptr<const CPluginModule> load(const std::filesystem::path& file);

    using Entry = AEffect* (*)(audioMasterCallback);
    Entry entry() const noexcept { return m_entry; }
    // For messages: "the plug-in", or its file in quotes.
    const std::string& name() const noexcept { return m_name; }

private:
    CPluginModule() = default;

    CNativeModule m_module;
    Entry m_entry = nullptr;
    std::string m_name = "the plug-in";
};

}  // namespace brt
