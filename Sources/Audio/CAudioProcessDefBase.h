// SPDX-License-Identifier: LicenseRef-Halyard
// What the document says about one process of the audio graph, whatever its kind. Each kind derives from this.
// Owner: the shared tree, which outlives every instance. Threads: any, once it is initialised; nothing changes then.
#pragma once

#include <memory>

#include "Audio/CAudioProcessDefBaseInit.h"

namespace brt {

// What becomes of several sources of one channel.
enum class EAudioComboMode : int { kSum = 0, kAverage = 1, kMaximum = 2 };

class CAudioParamCollector;
class CAudioProcessBase;
struct CAudioProcessContext;

// What a process is made as.
enum class EProcessRole : std::uint8_t {
    kWhole,        // as its definition asks: itself, or the stack or the bands around it
    kStackMember,  // one of a stack
    kBandMember,   // one of the bands
};

class CAudioProcessDefBase : public CAudioProcessDefBaseInit {
public:
    static void describeClass(CClassInfo& info);
    [[nodiscard]] CError* init() override;

    // A new process of the definition's own class, and no more than that.
    virtual std::unique_ptr<CAudioProcessBase> createProcess() const = 0;
    // A complete process. If its `init` fails it stays in `out`.
    [[nodiscard]] CError* createInstance(std::unique_ptr<CAudioProcessBase>& out, CStringView path,
                                         const CAudioProcessContext& context, int group, int stackIndex,
                                         EProcessRole role) const;
    // Attaches the definitions of those parameters that exist once for all instances of the process.
    void registerGlobalParams(CStringView path, CAudioParamCollector& collector) const;

    // In the container's graph.
    bool isPrototype() const noexcept { return m_isPrototype; }     // a pattern for others: never instantiated there
    bool isOutOfOrder() const noexcept { return m_isOutOfOrder; }   // explicit links only
    int bypassStateId() const noexcept { return m_bypassStateId; }  // not in the graph while that state holds
    EAudioComboMode inputComboMode() const noexcept { return m_inputComboMode; }
    bool isCompInput() const noexcept { return m_isCompInput; }  // for the alignment delays of its inputs

    // Replication: by channel group, or by channel; the parameter with the number of units, empty for one unit.
    bool isStacked() const noexcept { return m_isStacked; }
    bool isChannelStack() const noexcept { return m_isChannelStack; }
    const CString& stackParam() const noexcept { return m_stackParam; }
    int stackIndexShift() const noexcept { return m_stackIndexShift; }  // 0 or more, added to the index of the unit

    // Band split: the parameters with the split frequencies and the number of bands.
    bool isMultiband() const noexcept { return m_isMultiband; }
    const CString& multibandFreqParam() const noexcept { return m_multibandFreqParam; }
    const CString& multibandCountParam() const noexcept { return m_multibandCountParam; }

    // Modules: one for all channels of a port, not one each; changes are faded in, not made in place.
    bool isTerminalWhole() const noexcept { return m_isTerminalWhole; }
    bool isSmoothUpdate() const noexcept { return m_isSmoothUpdate; }

protected:
    CAudioProcessDefBase() = default;

private:
    CString m_multibandFreqParam;
    CString m_multibandCountParam;
    CString m_stackParam;
    int m_stackIndexShift = 0;
    int m_bypassStateId = 0;
    EAudioComboMode m_inputComboMode = EAudioComboMode::kSum;
    bool m_isStacked = false;
    bool m_isSmoothUpdate = false;
    bool m_isMultiband = false;
    bool m_isTerminalWhole = false;
    bool m_isChannelStack = false;
    bool m_isPrototype = false;
    bool m_isOutOfOrder = false;
    bool m_isCompInput = false;
};

}  // namespace brt
