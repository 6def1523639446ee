// SPDX-License-Identifier: LicenseRef-Halyard
// A process that holds modules: one for each channel of its main port, or one for the whole port.
//
// Where a parameter can't change without a click, a fresh module with the new values runs beside the old one until its
// own latency is over, and then the output fades from the old to the new. A change during a fade waits for its end.
// Modules that are not needed now are kept as spares. Owner: the graph. Threads: see CAudioProcessBase.
#pragma once

#include "Audio/CAudioModule.h"
#include "Audio/CAudioProcessBase.h"
#include "Core/COrderedMap.h"

namespace brt {

class CAudioProcessTerminalBase : public CAudioProcessBase {
public:
    CAudioProcessTerminalBase() = default;
    ~CAudioProcessTerminalBase() override;

    [[nodiscard]] CError* init() override;
    void reset() override;
    void update() override;

    // The values of the parameter that the definition allocates at that index; null if it allocates none.
    const CAudioParamStorage* paramValues(int index) const noexcept;
    // A module's latency has changed: those behind are told at the end of this update.
    void requestOutputTable() noexcept { m_isTableStale = true; }

protected:
    // A new module of the process's own class.
    virtual std::unique_ptr<CAudioModule> createModule() = 0;
    // Whether its modules deliver a channel for each that they take.
    virtual bool hasOutputs() const noexcept = 0;

    // The modules to run in this block; during a fade also the old ones.
    const CSmallArray<CAudioModule*>& runningModules() const noexcept { return m_running; }
    // Fades, hands the outputs on and ends the block. The modules have run.
    void finishBlock();
    void setBlockLength(CAudioModule& module) const noexcept { module.m_blockLength = blockLength(); }

private:
    struct CParam {
        CAudioParamBinding* binding = nullptr;
        bool isSmoothUpdate = false;
        bool useAllGroups = false;
    };
    // From an old module to a fresh one.
    struct CCrossfade : CBrtMemAllocator {
        CCrossfade(std::unique_ptr<CAudioModule> oldModule, CAudioModule* newModule, int fadeSamples)
            : from(std::move(oldModule)), to(newModule), fadeLeft(fadeSamples) {
            for (int i = 0; i < to->outputCount(); ++i) curves.append(CRaisedCosine(fadeSamples));
        }

        std::unique_ptr<CAudioModule> from;
        CAudioModule* to;  // stands among the process's modules
        int waitLeft = 0;  // samples until the fresh module's own latency is over
        int fadeLeft;
        CSmallArray<CRaisedCosine> curves;  // one an output
        bool isFinished = false;
        bool isRestartWanted = false;
    };

    void updateLayout();
    void updateModules();
    bool flagModules();
    void updateNow(CAudioModule& module);
    void finishFades();
    void rebuildOutputs();

    void listModules();
    int findModule(int channelNumber) const noexcept;
    std::unique_ptr<CAudioModule> obtainModule();
    void connectModule(CAudioModule& module, int firstPosition, int count);
    CCrossfade* findFade(const CAudioModule& module) const noexcept;
    void startFade(int moduleIndex);
    void endFade(int fadeIndex);
    void runFade(CCrossfade& fade);

    COrderedMap<int, CParam> m_params;  // by allocation index
    COwnedArray<CAudioModule> m_modules;
    COwnedArray<CAudioModule> m_spares;
    COwnedArray<CCrossfade> m_fades;
    CSmallArray<CAudioModule*> m_running;
    double m_fadeSeconds = 0.0;
    int m_fadeSamples = 1;
    bool m_isTableStale = false;
};

// The process around a module class M, whose `void process()` runs one block.
template <class M>
class CAudioProcessTerminal : public CAudioProcessTerminalBase {
public:
    void process() override {
        prepare();
        for (CAudioModule* const module : runningModules()) {
            setBlockLength(*module);
            static_cast<M*>(module)->process();
        }
        finishBlock();
    }

protected:
    std::unique_ptr<CAudioModule> createModule() override { return std::make_unique<M>(*this); }
    bool hasOutputs() const noexcept override { return M::kHasOutputs; }
};

}  // namespace brt
