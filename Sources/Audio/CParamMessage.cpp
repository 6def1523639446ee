// SPDX-License-Identifier: LicenseRef-Halyard
#include "Audio/CParamMessage.h"

#include <utility>

namespace brt {
namespace {

constexpr int kMostTexts = 65536;  // of one list

}  // namespace

CParamMessage::~CParamMessage() {
    discardError(m_error);  // a message that nobody finishes goes nowhere
}

void CParamMessage::keep(CError* error) {
    if (m_error == nullptr)
        m_error = error;
    else
        discardError(error);  // the first one is told
}

CError* CParamMessage::finish(std::unique_ptr<CParamPacket>& packet, CPacketTopic topic) {
    if (m_error != nullptr) return makeError(std::exchange(m_error, nullptr), __FILE__, __LINE__, "", "");
    packet = std::make_unique<CParamPacket>();
    packet->topic = topic;
    m_stream.moveTo(packet->bytes);
    return nullptr;
}

CError* CParamMessage::write(const CStringList& texts) {
    BRT_TRY("", writeI32(m_stream, texts.count()));
    for (const CString* const text : texts) BRT_TRY("", m_stream.writeString(*text));
    return nullptr;
}

CError* readField(CInputStream& stream, CStringList& texts) {
    int count = 0;
    BRT_TRY("", readCount(stream, count, kMostTexts, 4));
    texts.clear();
    for (int i = 0; i < count; ++i) {
        CString text;
        BRT_TRY("", stream.readString(text));
        texts.append(text);
    }
    return nullptr;
}

}  // namespace brt
