// SPDX-License-Identifier: LicenseRef-Halyard
// A copy of an arrangement of speakers that a host has asked for. Owner: the effect. Threads: one at a time.
#pragma once

#include <cstddef>
#include <memory>

#include "Audio/VST/VstInterface.h"
#include "Core/CString.h"

namespace brt {

class CSpeakerArrangement {
public:
    // REQUIRES: a count of channels that is not negative, and as many records.
    void assign(const VstSpeakerArrangement& arrangement);

    // What the host calls the channel, at most 7 characters; empty where it has no name, or there is no such channel.
    CString channelName(int channel) const;
    // For the host; null if none was assigned. Stays where it is until the next `assign`.
    VstSpeakerArrangement* record() const noexcept { return reinterpret_cast<VstSpeakerArrangement*>(m_bytes.get()); }

private:
    std::unique_ptr<std::byte[]> m_bytes;  // of the published form, with as many records as there are channels
};

}  // namespace brt
