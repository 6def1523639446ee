// SPDX-License-Identifier: LicenseRef-Halyard
#include "Audio/Wrapper/CProductInfo.h"

#include "Audio/CAudioLink.h"
#include "Core/CError.h"
#include "Core/CObject.h"
#include "Core/NumberText.h"

namespace brt {
namespace {

constexpr int kMostGroups = 8;

}  // namespace

CError* CProductInfo::read(const CObject& project) {
    BRT_TRY(project.getFullName(), readNames(project));
    BRT_TRY(project.getFullName(), readCounts(project));
    BRT_TRY(project.getFullName(), acquirePluginCode(project.getAttrString("plugin-code")));
    BRT_TRY(project.getFullName(), parseVersion(project.getAttrString("app-version")));
    hasTail = !project.getAttrString("plugin-tail").isEmpty();
    tailSeconds = hasTail ? project.getAttrDouble("plugin-tail") : 0.0;
    autoOversamplingMode = project.getAttrInt("auto-oversampling-rtmode");
    isVizAlwaysActive = project.getAttrBool("is-viz-always-active");
    isSymmetricIo = project.getAttrBool("is-symmetric-io");
    usesHostBpm = project.getAttrBool("use-host-bpm");
    usesHostRecording = project.getAttrBool("use-host-recording");
    usesRouting = project.getAttrBool("use-routing");
    usesWindowResizing = project.getAttrBool("use-window-resizing");
    minWindowWidth = project.getAttrInt("min-window-width");
    minWindowHeight = project.getAttrInt("min-window-height");
    return nullptr;
}

CError* CProductInfo::readNames(const CObject& project) {
    appName = project.getAttrString("app-name");
    vendorName = project.getAttrString("app-vendor");
    if (appName.isEmpty())
        return makeError(nullptr, __FILE__, __LINE__, "",
                         "@brtstr_CAudioWrapper_init_PluginNameEmpty Plug-in name is empty.");
    if (vendorName.isEmpty())
        return makeError(nullptr, __FILE__, __LINE__, "",
                         "@brtstr_CAudioWrapper_init_VendorNameEmpty Vendor name is empty.");
    return nullptr;
}

CError* CProductInfo::readCounts(const CObject& project) {
    internalChannelCount = project.getAttrInt("plugin-intchannel-count");
    if (internalChannelCount < 1 || internalChannelCount > kAudioChannelLimit)
        return makeError(nullptr, __FILE__, __LINE__, "",
                         "@brtstr_CAudioWrapper_init_InvalidIntChannelCount Invalid 'plugin-intchannel-count' "
                         "attribute value.");
    groupCount = project.getAttrInt("plugin-group-count");
    if (groupCount < 1 || groupCount > kMostGroups)
        return makeError(nullptr, __FILE__, __LINE__, "",
                         "@brtstr_CAudioWrapper_init_InvalidGroupCount Invalid 'plugin-group-count' attribute value.");
    return nullptr;
}

CError* CProductInfo::acquirePluginCode(CStringView text) {
    bool isCode = text.length() == 4;
    std::uint32_t code = 0;
    for (int i = 0; isCode && i < text.length(); ++i) {
        isCode = text[i] < 0x80;
        code = code << 8 | text[i];
    }
    if (!isCode)
        return makeError(nullptr, __FILE__, __LINE__, "",
                         "@brtstr_CAudioWrapper_acquirePluginCode_PluginCodeError Invalid plug-in code in string "
                         "'%1'.",
                         text);
    pluginCode = code;
    return nullptr;
}

CError* CProductInfo::parseVersion(CStringView text) {
    CStringList parts;
    CString(text).split(parts, u'.', true, true);
    bool isVersion = parts.count() == 2 || parts.count() == 3;
    version = {};
    for (int i = 0; isVersion && i < parts.count(); ++i) {
        constexpr std::int64_t kMost = 0xFFFF;
        std::int64_t number = 0;
        isVersion = parseInteger(parts[i], number) && number >= 0 && number <= kMost;
        version[static_cast<std::size_t>(i)] = static_cast<int>(number);
    }
    if (isVersion) return nullptr;
    return makeError(nullptr, __FILE__, __LINE__, "",
                     "@brtstr_CAudioWrapper_parseVersion_InvalidVersion Invalid version specification in string '%1'.",
                     text);
}

}  // namespace brt
