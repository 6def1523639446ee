// SPDX-License-Identifier: LicenseRef-Halyard
// Who hears through a client of parameters and displays. Calls come on the window's thread. A listener may
// remove itself or others in them, and may end the window.
// Owner: whoever listens; it removes itself from the client before it goes.
#pragma once

#include <memory>

#include "Audio/CAudioParamInfo.h"
#include "Audio/CAudioParamUpdate.h"
#include "Audio/CAudioPresetBank.h"
#include "Core/CInputStream.h"
#include "Core/CStringList.h"

namespace brt {

class CParamInterfaceParamListener : public CCheckedObject {
public:
    // The definition, or null as long as there is none. The first that a listener hears; later, another definition.
    virtual void onParamInfo(std::unique_ptr<CAudioParamInfo> info) = 0;
    // What has changed, by anybody; valid during the call. The first one behind a definition brings the defaults, as
    // group kWholeParam, and is followed by one for each group that has values.
    virtual void onParamUpdate(const CAudioParamUpdate& update) = 0;
};

class CParamInterfaceRegistryListener : public CCheckedObject {
public:
    // The full names of the presets of the session, or of those that came with the product, and the index of the
    // current program; -1 and no names from a registry that has no programs.
    virtual void onRegistryUpdate(bool isFactory, const CString& registryId, const CStringList& names, int current) {
        static_cast<void>(isFactory), static_cast<void>(registryId), static_cast<void>(names);
        static_cast<void>(current);
    }
    // What was asked for under that cookie; the listener's from now on.
    virtual void onPresetData(int cookie, std::unique_ptr<CAudioPreset> preset) {
        static_cast<void>(cookie), static_cast<void>(preset);
    }
    virtual void onBankData(int cookie, std::unique_ptr<CAudioPresetBank> bank) {
        static_cast<void>(cookie), static_cast<void>(bank);
    }
};

// Takes what displays show. The streams are those of CAudioVizCollector, up to their ends.
class CAudioInterfaceVizProcessor : public CCheckedObject {
public:
    virtual void onStopViz() = 0;
    // What has been shown so far doesn't count any more.
    virtual void onClearClient() = 0;
    virtual void onStartViz() = 0;
    [[nodiscard]] virtual CError* processVizData(CInputStream& stream) = 0;
    [[nodiscard]] virtual CError* processExportSlots(CInputStream& stream) = 0;
};

}  // namespace brt
