// SPDX-License-Identifier: LicenseRef-Halyard
// A complete message on its way, and a list of them.
//
// Messages that tell the present state of something carry a topic: a newer one says all that an older one said, so that
// a queue needs to keep no more than one of each, however long nobody reads it.
// Owner: the sender, then the queue, then the reader. Threads: one at a time; a queue has a lock of its own.
#pragma once

#include <cstdint>
#include <memory>
#include <utility>

#include "Audio/CAudioParamFormat.h"
#include "Audio/ParamMessages.h"
#include "Core/CBrtMemAllocator.h"
#include "Core/CByteBuffer.h"

namespace brt {

// What an instance tells all its clients. One that starts or stops has said so once: of starts the last one counts.
enum class EInstanceState : std::uint8_t {
    kUndoHistory,
    kVizStarted,
    kVizStopped,
    kVizCleared,
    kInternalChannelCount,
    kGroupCount,
    kIoChannelCounts,
    kSampleRate,
    kExportSlotNames,
};

// Which topics a message makes superfluous; its own is the last of them. 0: none.
struct CPacketTopic {
    std::uint64_t first = 0;
    std::uint64_t last = 0;

    bool isNone() const noexcept { return last == 0; }

    // The values of one group; the whole parameter, all its groups included.
    static constexpr CPacketTopic ofGroup(ParamHandle handle, int group) noexcept {
        return at(base(kParam, handle) + static_cast<unsigned>(group));
    }
    static constexpr CPacketTopic ofParam(ParamHandle handle) noexcept {
        return {base(kParam, handle), base(kParam, handle) + kWholeParam};
    }
    static constexpr CPacketTopic ofRegistry(ParamHandle handle, bool isFactory) noexcept {
        return at(base(kRegistry, handle) + (isFactory ? 1 : 0));
    }
    static constexpr CPacketTopic ofInstance(EInstanceState state) noexcept {
        return at(base(kInstance, 0) + static_cast<std::uint64_t>(state));
    }

private:
    enum EKind : std::uint64_t { kParam = 1, kRegistry = 2, kInstance = 3 };
    static constexpr std::uint64_t base(EKind kind, ParamHandle handle) noexcept {
        return static_cast<std::uint64_t>(kind) << 56 | std::uint64_t{handle} << 16;
    }
    static constexpr CPacketTopic at(std::uint64_t topic) noexcept { return {topic, topic}; }
};

struct CParamPacket : CBrtMemAllocator {
    CByteBuffer bytes;
    CPacketTopic topic;

    // In a list.
    CParamPacket* previous = nullptr;
    CParamPacket* next = nullptr;

    std::unique_ptr<CParamPacket> clone() const {
        auto copy = std::make_unique<CParamPacket>();
        copy->bytes.assign(bytes.data(), bytes.size());
        copy->topic = topic;
        return copy;
    }
};

// First in, first out; owns what is in it.
class CPacketList {
public:
    CPacketList() = default;
    ~CPacketList() {
        while (takeFirst()) {
        }
    }
    CPacketList(const CPacketList&) = delete;
    CPacketList& operator=(const CPacketList&) = delete;

    bool isEmpty() const noexcept { return m_first == nullptr; }

    CParamPacket* append(std::unique_ptr<CParamPacket> packet) noexcept {
        packet->previous = m_last;
        packet->next = nullptr;
        (m_last != nullptr ? m_last->next : m_first) = packet.get();
        return m_last = packet.release();
    }

    // REQUIRES: it is in this list.
    std::unique_ptr<CParamPacket> take(CParamPacket* packet) noexcept {
        (packet->previous != nullptr ? packet->previous->next : m_first) = packet->next;
        (packet->next != nullptr ? packet->next->previous : m_last) = packet->previous;
        return std::unique_ptr<CParamPacket>(packet);
    }
    // Null if there is none.
    std::unique_ptr<CParamPacket> takeFirst() noexcept { return m_first != nullptr ? take(m_first) : nullptr; }

    // Takes over all of `other`, behind what is here.
    void appendAll(CPacketList& other) noexcept {
        if (other.isEmpty()) return;
        other.m_first->previous = m_last;
        (m_last != nullptr ? m_last->next : m_first) = std::exchange(other.m_first, nullptr);
        m_last = std::exchange(other.m_last, nullptr);
    }

private:
    CParamPacket* m_first = nullptr;
    CParamPacket* m_last = nullptr;
};

}  // namespace brt
