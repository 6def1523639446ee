// SPDX-License-Identifier: LicenseRef-Halyard
// One instance of the product inside the tool: its object tree, its parameters, its running graph.
// Owner: the job that renders, measures or prints. Threads: one at a time.
#pragma once

#include <memory>

#include "Audio/CAudioExtParamList.h"
#include "Core/CObject.h"
#include "Core/CProcess.h"
#include "Modules/CAudioGraph.h"

namespace brt {

class CAudioParamRegistry;
class CAudioPreset;

// Makes what all instances share, unless it is there. Throws CToolError if it can't be.
void startApplication();

class CToolInstance {
public:
    // Throws CToolError.
    CToolInstance();
    ~CToolInstance();
    CToolInstance(const CToolInstance&) = delete;
    CToolInstance& operator=(const CToolInstance&) = delete;

    // Channels in groups of `groupSize`. Afterwards the graph stands, with all its parameters, and holds silence.
    void setLayout(int channelCount, double sampleRate, int groupSize = kAudioChannelLimit);
    // A value of channel group 0 by its full name, in the module's own terms.
    void set(CStringView name, double value);
    double get(CStringView name) const { return m_collector->getParam(name).getFloat(0, 0, 0.0); }
    // Takes the values of a preset of the product, for all channel groups; what belongs to a session stays. Throws
    // CToolError.
    void activate(const CAudioPreset& preset);
    // Has somebody watch the process of that path, so that it measures.
    void watch(CStringView path);
    void unwatch(CStringView path);
    // Ends all fades, and is silent then.
    void settle();
    void reset() { m_graph->reset(); }

    // At most 512 frames at a time are handed to the graph.
    void process(const double* const* inputs, double* const* outputs, int frameCount);

    int latencySamples() const noexcept { return m_collector->env().latencySamples(); }
    CAudioParamCollector& collector() const noexcept { return *m_collector; }
    const CAudioExtParamList& hostParams() const noexcept { return *m_hostParams; }
    CAudioGraph& graph() const noexcept { return *m_graph; }

private:
    struct CRelease {
        void operator()(CObject* object) const { CObject::release(object); }
    };

    const CProcessInstance m_processInstance;
    std::unique_ptr<CObject, CRelease> m_root;
    CAudioParamCollector* m_collector = nullptr;
    CAudioVizCollector* m_viz = nullptr;
    CAudioExtParamList* m_hostParams = nullptr;
    CAudioParamRegistry* m_registry = nullptr;
    std::unique_ptr<CAudioGraph> m_graph;
    int m_channelCount = 0;
    double m_sampleRate = 0.0;
};

}  // namespace brt
