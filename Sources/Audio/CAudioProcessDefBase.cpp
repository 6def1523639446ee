// SPDX-License-Identifier: LicenseRef-Halyard
#include "Audio/CAudioProcessDefBase.h"

#include "Core/CClassInfo.h"
#include "Core/CError.h"

namespace brt {
namespace {

EAudioComboMode comboModeOf(CStringView word) noexcept {
    if (word == "avg") return EAudioComboMode::kAverage;
    return word == "max" ? EAudioComboMode::kMaximum : EAudioComboMode::kSum;
}

}  // namespace

void CAudioProcessDefBase::describeClass(CClassInfo& info) {
    CObject::describeClass(info);
    static constexpr CAttrInfo kAttributes[] = {
        attr::integer("bypass-state-id").required().help("bypass state that takes the process away; -1: none"),
        attr::word("input-combo-mode", "sum avg max")
            .byDefault("sum")
            .help("what becomes of several sources of one channel"),
        attr::flag("is-channel-stack").byDefault("false").help("stacked by channel, not by channel group"),
        attr::flag("is-comp-input").byDefault("false").help("for the alignment delays of the inputs"),
        attr::flag("is-multiband").byDefault("false").help("wrapped in a band split"),
        attr::flag("is-outoforder").byDefault("false").help("automatic links leave it out"),
        attr::flag("is-prototype").byDefault("false").help("a pattern: the container makes no process of it"),
        attr::flag("is-smooth-update").byDefault("false").help("changes of its parameters are faded in"),
        attr::flag("is-stacked").byDefault("false").help("replicated, once a channel group"),
        attr::flag("is-terminal-whole").byDefault("false").help("one module for all channels of a port"),
        attr::text("multiband-count-param").help("parameter with the number of bands"),
        attr::text("multiband-freq-param").help("parameter with the split frequencies"),
        // Read by the band split itself.
        attr::object("multiband-hp").ofClass<CAudioProcessDefBase>().help("high pass of a band's split"),
        attr::object("multiband-lp").ofClass<CAudioProcessDefBase>().help("low pass of a band's split"),
        attr::object("multiband-pre").ofClass<CAudioProcessDefBase>().help("process in front of the band split"),
        attr::text("multiband-pt-ports").help("ports that bypass the band split, parted by commas"),
        attr::integer("stack-index-shift").atLeast(0).byDefault("0").help("added to the index of a unit of a stack"),
        attr::text("stack-param").help("parameter with the number of units of a stack; none: one unit"),
        // Read by processes that hold modules.
        attr::number("xfade-length").atLeast(0.0001).byDefault("0.0001").help("seconds of the fade between modules"),
    };
    info.addAttributes(kAttributes);
    info.requireName();  // processes and their parameters are found by it
}

CError* CAudioProcessDefBase::init() {
    BRT_TRY(getFullName(), CAudioProcessDefBaseInit::init());
    m_multibandFreqParam = getAttrString("multiband-freq-param");
    m_multibandCountParam = getAttrString("multiband-count-param");
    m_stackParam = getAttrString("stack-param");
    m_isStacked = getAttrBool("is-stacked");
    m_isSmoothUpdate = getAttrBool("is-smooth-update");
    m_stackIndexShift = getAttrInt("stack-index-shift");
    if (m_stackIndexShift < 0)
        return makeError(nullptr, __FILE__, __LINE__, getFullName(),
                         "@brtstr_CAudioProcessDefBase_init_InvalidStackIndexShift Invalid stack index shift value "
                         "'%1' specified.",
                         m_stackIndexShift);
    m_isMultiband = getAttrBool("is-multiband");
    m_isTerminalWhole = getAttrBool("is-terminal-whole");
    m_isChannelStack = getAttrBool("is-channel-stack");
    m_isPrototype = getAttrBool("is-prototype");
    m_isOutOfOrder = getAttrBool("is-outoforder");
    m_bypassStateId = getAttrInt("bypass-state-id");
    m_isCompInput = getAttrBool("is-comp-input");
    m_inputComboMode = comboModeOf(getAttrString("input-combo-mode"));
    return nullptr;
}

}  // namespace brt
