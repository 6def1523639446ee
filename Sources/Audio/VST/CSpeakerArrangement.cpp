// SPDX-License-Identifier: LicenseRef-Halyard
#include "Audio/VST/CSpeakerArrangement.h"

#include <algorithm>
#include <cstring>

#include "Audio/VST/VstText.h"

namespace brt {
namespace {

constexpr int kLongestName = 7;

constexpr std::size_t recordOffset(int channel) noexcept {
    return offsetof(VstSpeakerArrangement, speakers) + static_cast<std::size_t>(channel) * sizeof(VstSpeakerProperties);
}

}  // namespace

void CSpeakerArrangement::assign(const VstSpeakerArrangement& arrangement) {
    const std::size_t size = recordOffset(arrangement.numChannels);
    // Whoever reads the whole published form finds zeros behind the last channel.
    auto bytes = std::make_unique<std::byte[]>(std::max(size, sizeof(VstSpeakerArrangement)));
    std::memcpy(bytes.get(), &arrangement, size);
    m_bytes = std::move(bytes);
}

CString CSpeakerArrangement::channelName(int channel) const {
    if (m_bytes == nullptr || channel < 0 || channel >= record()->numChannels) return {};
    VstSpeakerProperties speaker;
    std::memcpy(&speaker, m_bytes.get() + recordOffset(channel), sizeof speaker);
    const CStringView name = readVstText(speaker.name, static_cast<int>(sizeof speaker.name)).slice(0, kLongestName);
    return name == "?" ? CStringView() : name;
}

}  // namespace brt
