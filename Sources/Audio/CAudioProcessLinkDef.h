// SPDX-License-Identifier: LicenseRef-Halyard
// One directed link between two processes of a container, or between one and the container itself:
//
//     <audio:process-link src="modInputNode" dst="modBypass/1"/>     to port 1 of "modBypass"
//     <audio:process-link src="*" dst="modInGain"/>                  from the container's input
//
// Owner: the process definition that it stands in. Threads: any, once it is initialised.
#pragma once

#include <cstdint>

#include "Core/CObject.h"

namespace brt {

class CAudioProcessLinkDef : public CObject {
public:
    static constexpr CStringView kContainer = "*";  // name of an end: the container's input as `src`, output as `dst`
    static constexpr int kEveryState = -1;

    static void describeClass(CClassInfo& info);
    [[nodiscard]] CError* init() override;

    const CString& src() const noexcept { return m_src; }
    int srcPort() const noexcept { return m_srcPort; }
    const CString& dst() const noexcept { return m_dst; }
    int dstPort() const noexcept { return m_dstPort; }
    // The link state in which the link is active.
    int stateId() const noexcept { return m_stateId; }
    // The link is inactive while one of these bypass states holds.
    const CSmallArray<std::int32_t>& bypassStateIds() const noexcept { return m_bypassStateIds; }

private:
    struct CEndTexts;
    CError* parseEnd(CString& process, int& port, const CEndTexts& texts) const;
    CError* parseState();
    void parseBypassStates();

    CString m_src;
    CString m_dst;
    int m_srcPort = 0;
    int m_dstPort = 0;
    int m_stateId = kEveryState;
    CSmallArray<std::int32_t> m_bypassStateIds;
};

}  // namespace brt
