// SPDX-License-Identifier: LicenseRef-Halyard
// Writes a message, field by field, and reads the fields of one.
//
//     CParamMessage message(toBase::kRenamePreset, handle, index, name);
//     BRT_TRY(getFullName(), message.finish(packet));
//     ...
//     BRT_TRY(getFullName(), readFields(stream, handle, index, name));
//
// Numbers have 32 bits or are doubles, flags are numbers, strings have their stored form. What fails while a message is
// written is told at its end. Threads: one at a time.
#pragma once

#include <memory>

#include "Audio/CAudioParamUpdate.h"
#include "Audio/CParamPacket.h"
#include "Audio/StreamNumbers.h"
#include "Core/CString.h"
#include "Core/CWriteSeqBuffer.h"

namespace brt {

class CParamMessage {
public:
    explicit CParamMessage(CStringView name) { keep(m_stream.writeString(CString(name))); }
    template <class... Fields>
    explicit CParamMessage(CStringView name, const Fields&... fields) : CParamMessage(name) {
        add(fields...);
    }
    ~CParamMessage();
    CParamMessage(const CParamMessage&) = delete;
    CParamMessage& operator=(const CParamMessage&) = delete;

    template <class... Fields>
    void add(const Fields&... fields) {
        (keep(m_error == nullptr ? write(fields) : nullptr), ...);
    }
    // For what writes itself; its error belongs to the message.
    COutputStream& stream() noexcept { return m_stream; }
    void keep(CError* error);

    // The message in one piece. On failure `packet` is unchanged.
    [[nodiscard]] CError* finish(std::unique_ptr<CParamPacket>& packet, CPacketTopic topic = {});

private:
    CError* write(std::uint32_t value) { return writeU32(m_stream, value); }
    CError* write(std::int32_t value) { return writeI32(m_stream, value); }
    CError* write(bool value) { return writeBool(m_stream, value); }
    CError* write(double value) { return writeF64(m_stream, value); }
    CError* write(const CString& text) { return m_stream.writeString(text); }
    CError* write(CStringView text) { return m_stream.writeString(CString(text)); }
    CError* write(const CAudioParamUpdate& update) { return CAudioParamUpdateCopy(update).save(m_stream); }
    CError* write(const CStringList& texts);

    CWriteSeqBuffer m_stream{CWriteSeqBuffer::kStringBlockBytes};
    CError* m_error = nullptr;  // owned; the first one
};

[[nodiscard]] inline CError* readField(CInputStream& stream, std::uint32_t& value) { return readU32(stream, value); }
[[nodiscard]] inline CError* readField(CInputStream& stream, std::int32_t& value) { return readI32(stream, value); }
[[nodiscard]] inline CError* readField(CInputStream& stream, bool& value) { return readBool(stream, value); }
[[nodiscard]] inline CError* readField(CInputStream& stream, double& value) { return readF64(stream, value); }
[[nodiscard]] inline CError* readField(CInputStream& stream, CString& text) { return stream.readString(text); }
[[nodiscard]] inline CError* readField(CInputStream& stream, CAudioParamUpdateCopy& update) {
    return update.load(stream);
}
[[nodiscard]] CError* readField(CInputStream& stream, CStringList& texts);

// In this order, up to the first that fails; those before it have been set.
template <class... Fields>
[[nodiscard]] CError* readFields(CInputStream& stream, Fields&... fields) {
    CError* error = nullptr;
    const auto isLast = [&](CError* failure) { return (error = failure) != nullptr; };
    static_cast<void>((isLast(readField(stream, fields)) || ...));
    return error;
}

}  // namespace brt
