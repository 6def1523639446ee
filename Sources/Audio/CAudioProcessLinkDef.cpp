// SPDX-License-Identifier: LicenseRef-Halyard
#include "Audio/CAudioProcessLinkDef.h"

#include <limits>

#include "Core/CClassInfo.h"
#include "Core/CError.h"
#include "Core/NumberText.h"

namespace brt {
namespace {

bool parseAtLeast(CStringView text, int lowest, int& number) {
    std::int64_t parsed = 0;
    if (!parseInteger(text, parsed) || parsed < lowest || parsed > std::numeric_limits<int>::max()) return false;
    number = static_cast<int>(parsed);
    return true;
}

}  // namespace

void CAudioProcessLinkDef::describeClass(CClassInfo& info) {
    CObject::describeClass(info);
    static constexpr CAttrInfo kAttributes[] = {
        attr::text("src").required().help("process that the sound comes from, with \"/PORT\" if the port isn't 0"),
        attr::text("dst").required().help("process that the sound goes to, with \"/PORT\" if the port isn't 0"),
        attr::integer("state-id").atLeast(kEveryState).byDefault("-1").help("link state of the link; -1: every one"),
        attr::text("bypass-state-id").help("bypass states that take the link away, parted by blanks"),
    };
    info.addAttributes(kAttributes);
}

struct CAudioProcessLinkDef::CEndTexts {
    CStringView attribute;
    CStringView noValue;
    CStringView badPort;
    CStringView noName;
};

CError* CAudioProcessLinkDef::init() {
    static constexpr CEndTexts kSrc = {
        "src", "@brtstr_CAudioProcessLinkDef_init_NoSrc No 'src' attribute defined.",
        "@brtstr_CAudioProcessLinkDef_init_SrcPortError Invalid port in the 'src' attribute value '%1' specified.",
        "@brtstr_CAudioProcessLinkDef_init_SrcNameError Invalid process in the 'src' attribute value '%1' specified."};
    static constexpr CEndTexts kDst = {
        "dst", "@brtstr_CAudioProcessLinkDef_init_NoDst No 'dst' attribute defined.",
        "@brtstr_CAudioProcessLinkDef_init_DstPortError Invalid port in the 'dst' attribute value '%1' specified.",
        "@brtstr_CAudioProcessLinkDef_init_DstNameError Invalid process in the 'dst' attribute value '%1' specified."};
    BRT_TRY(getFullName(), CObject::init());
    BRT_TRY(getFullName(), parseEnd(m_src, m_srcPort, kSrc));
    BRT_TRY(getFullName(), parseEnd(m_dst, m_dstPort, kDst));
    BRT_TRY(getFullName(), parseState());
    parseBypassStates();
    return nullptr;
}

CError* CAudioProcessLinkDef::parseEnd(CString& process, int& port, const CEndTexts& texts) const {
    const CStringView value = getAttrString(texts.attribute);
    if (value.isEmpty()) return makeError(nullptr, __FILE__, __LINE__, getFullName(), texts.noValue);
    const int slash = value.find(u'/');
    if (slash >= 0 && !parseAtLeast(value.slice(slash + 1), 0, port))
        return makeError(nullptr, __FILE__, __LINE__, getFullName(), texts.badPort, value);
    process = value.slice(0, slash);
    if (process.isEmpty()) return makeError(nullptr, __FILE__, __LINE__, getFullName(), texts.noName, value);
    return nullptr;
}

CError* CAudioProcessLinkDef::parseState() {
    const CStringView value = getAttrString("state-id");
    if (value.isEmpty() || parseAtLeast(value, kEveryState, m_stateId)) return nullptr;
    return makeError(nullptr, __FILE__, __LINE__, getFullName(),
                     "@brtstr_CAudioProcessLinkDef_init_StateError Invalid state identifier '%1' specified.", value);
}

// What is no id is skipped.
void CAudioProcessLinkDef::parseBypassStates() {
    CStringList ids;
    CString(getAttrString("bypass-state-id")).split(ids, u' ', true, true);
    for (const CString* const text : ids) {
        int id = 0;
        if (parseAtLeast(*text, 0, id)) m_bypassStateIds.append(id);
    }
}

}  // namespace brt
