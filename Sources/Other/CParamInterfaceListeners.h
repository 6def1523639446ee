// SPDX-License-Identifier: LicenseRef-Halyard
// Who hears through a client of parameters and displays. Calls come on the window's thread. A listener may
// remove itself or others in them, and may end the window.
// Owner: whoever listens; it removes itself from the client before it goes.
#pragma once

#include <memory>

#include "Audio/CAudioParamInfo.h"
#include "Audio/CAudioParamUpdate.h"
#include "Core/CInputStream.h"

namespace brt {

class CParamInterfaceParamListener : public CCheckedObject {
public:
    // The definition, or null as long as there is none. The first that a listener hears; later, another definition.
    virtual void onParamInfo(std::unique_ptr<CAudioParamInfo> info) = 0;
    // What has changed, by anybody; valid during the call. The first one behind a definition brings the defaults, as
    // group kWholeParam, and is followed by one for each group that has values.
    virtual void onParamUpdate(const CAudioParamUpdate& update) = 0;
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
