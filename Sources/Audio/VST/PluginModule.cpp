// SPDX-License-Identifier: LicenseRef-Halyard
// The module's only entry, and the life of what it keeps between its load and its unload.
#include "Audio/VST/CAudioWrapperVST.h"

namespace {

brt::CProcessLifetime g_lifetime;

}  // namespace

// [any] Null where the plug-in refuses the host, or can't be made.
extern "C" BRT_EXPORT brt::AEffect* VSTPluginMain(brt::audioMasterCallback audioMaster) {
    return brt::makeEffect(audioMaster);
}
