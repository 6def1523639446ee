// SPDX-License-Identifier: LicenseRef-Halyard
// One process for each channel group of its input, or for each channel: what a group's modules read are the values of
// that group. Where the definition asks for several units, each follows the one before it.
// Owner: the graph. Threads: see CAudioProcessBase.
#pragma once

#include "Audio/CAudioProcessBase.h"

namespace brt {

class CAudioProcessStack : public CAudioProcessBase {
public:
    static constexpr int kMaxUnits = 32;

    CAudioProcessStack();
    ~CAudioProcessStack() override;

    [[nodiscard]] CError* init() override;
    void reset() override;
    void update() override;
    void process() override;
    void detach() override;

    std::span<CAudioProcessBase* const> running() const noexcept override {
        return {m_running.begin(), static_cast<std::size_t>(m_running.count())};
    }

private:
    // The units of one group, or of one channel.
    struct CChain : CBrtMemAllocator {
        int group = 0;
        int channelNumber = -1;  // -1: all of the group
        COwnedArray<CAudioProcessBase> units;
        CAudioLink* input = nullptr;  // of the first unit
        bool isWanted = false;
    };

    CChain& chainFor(const CAudioChannel& channel);
    CChain* findChain(const CAudioChannel& channel) const noexcept;
    void feed(CChain& chain);
    int unitCount(const CChain& chain) const noexcept;
    void resize(CChain& chain, int count);
    void removeUnit(CChain& chain);
    void makeUnit(CChain& chain);

    CAudioParamBinding* m_stackSize = nullptr;  // null: one unit
    COwnedArray<CChain> m_chains;               // by ascending group, then channel
    CSmallArray<CAudioProcessBase*> m_running;
};

}  // namespace brt
