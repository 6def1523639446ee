// SPDX-License-Identifier: LicenseRef-Halyard
// A window's client of an audio instance: besides parameters it knows how many channels there are and at what rate they
// run, and asks for what displays show. When a number has arrived, this object fires an event of the message's name.
// Owner and threads: as CParamInterfaceClient.
#pragma once

#include "Other/CParamInterfaceClient.h"
#include "Other/CParamMirror.h"

namespace brt {

class CAudioInterfaceClient final : public CParamInterfaceClient {
public:
    static void describeClass(CClassInfo& info);

    [[nodiscard]] CError* init() override;
    void releaseLinks() override;

    // 0 until they have arrived.
    int internalChannelCount() const noexcept { return m_internalChannelCount; }
    int groupCount() const noexcept { return m_groupCount; }
    int inputChannelCount() const noexcept { return m_inputChannelCount; }
    int outputChannelCount() const noexcept { return m_outputChannelCount; }
    int sidechainChannelCount() const noexcept { return m_sidechainChannelCount; }
    double sampleRate() const noexcept { return m_sampleRate; }  // in Hz

    // What a user called the group; its number, from 1, where nobody did.
    CString getGroupName(int group) const;
    // Has the instance name its channels as the host does.
    void importChannelLabels();

    // Displays. The processor gets what is asked for; null: nobody. Slot -1: of this instance.
    void setVizProcessor(CAudioInterfaceVizProcessor* processor) noexcept { m_vizProcessor = processor; }
    ParamHandle addVizListener(int exportSlot, CStringView name);
    void removeVizListener(ParamHandle handle);
    void requestVizData(double framesPerSecond);
    void requestExportSlotNames();

private:
    // Hears the names that users gave to channel groups.
    class CGroupNamesParamListener final : public CParamMirror {};

    CError* onUpdateInternalChannelCount();
    CError* onUpdateGroupCount();
    CError* onUpdateIoChannelCounts();
    CError* onUpdateSampleRate();
    CError* onStartViz();
    CError* onStopViz();
    CError* onClearClient();
    CError* onVizData();
    CError* onExportSlotNames();

    int m_internalChannelCount = 0;
    int m_groupCount = 0;
    int m_inputChannelCount = 0;
    int m_outputChannelCount = 0;
    int m_sidechainChannelCount = 0;
    double m_sampleRate = 0.0;
    CGroupNamesParamListener m_groupNames;
    ParamHandle m_groupNamesHandle = 0;
    int m_lastViz = 0;
    COrderedMap<ParamHandle, int> m_vizListeners;           // their export slots
    CAudioInterfaceVizProcessor* m_vizProcessor = nullptr;  // not owned
};

}  // namespace brt
