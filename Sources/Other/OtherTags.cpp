// SPDX-License-Identifier: LicenseRef-Halyard
#include "Other/OtherTags.h"

#include "Other/CAudioInterfaceClient.h"
#include "Other/CParamInterfaceBaseConnectorUni.h"
#include "Other/CParamInterfaceClientConnectorUni.h"

namespace brt {

std::span<const CCreatorRow> otherTags() noexcept {
    static constexpr CCreatorRow kTags[] = {
        creatorRow<CAudioInterfaceClient>("audio:interface-client"),
        creatorRow<CParamInterfaceBaseConnectorUni>("other:param-interface-base-connector-uni"),
        creatorRow<CParamInterfaceClientConnectorUni>("other:param-interface-client-connector-uni"),
    };
    return kTags;
}

}  // namespace brt
