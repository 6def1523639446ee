// SPDX-License-Identifier: LicenseRef-Halyard
// A container of named processes, wired as its definition says.
//
// The definition's links and states decide which edges are active; whenever a state changes, the edges are worked out
// anew (`sequence`): a child exists as long as an edge holds it, and runs after all that feed it. A branch that does
// not lead from the container's input through main ports is dead and goes. Nodes are names in the definition only: an
// edge from a node stands for one from each of its sources.
// Owner: the graph. Threads: see CAudioProcessBase.
#pragma once

#include "Audio/CAudioProcessBase.h"

namespace brt {

class CAudioProcessBypassStateDef;
class CAudioProcessDef;
class CAudioProcessLinkDef;

class CAudioProcess : public CAudioProcessBase {
public:
    CAudioProcess();
    ~CAudioProcess() override;

    [[nodiscard]] CError* init() override;
    void reset() override;
    void update() override;
    void process() override;
    void detach() override;

    std::span<CAudioProcessBase* const> running() const noexcept override {
        return {m_running.begin(), static_cast<std::size_t>(m_running.count())};
    }

private:
    struct CChild;
    struct CEdge {
        CChild* source;  // null: the container's input
        int sourcePort;
        int destinationPort;
        int uses;          // by active links
        int previousUses;  // of the sequencing before
    };
    struct CChild : CBrtMemAllocator {
        CString name;
        const CAudioProcessDefBase* definition = nullptr;  // null: the container's output
        bool isNode = false;
        std::unique_ptr<CAudioProcessBase> instance;
        CSmallArray<CEdge> edges;  // into it
        int references = 0;        // edges that hold the instance
        bool isAlive = false;      // its main port leads back to the container's input
        bool isPlaced = false;     // in the order of running
        bool hasFailed = false;    // could not be made, and is not tried again
    };
    struct CBypassState : CBrtMemAllocator {
        const CAudioProcessBypassStateDef* definition = nullptr;
        CAudioParamBinding* param = nullptr;
        CAudioParamBinding* andParam = nullptr;  // null: none
    };
    struct CLinkState : CBrtMemAllocator {
        CAudioParamBinding* param = nullptr;
        int state = -99999;
    };

    const CAudioProcessDef& containerDefinition() const noexcept;
    [[nodiscard]] CError* addChild(const CAudioProcessDefBase& definition);
    void addStates();
    CChild* findChild(CStringView name) const noexcept;
    bool isBypassed(int stateId) const noexcept;
    bool isInGraph(const CChild& child) const noexcept;
    void checkStates();

    // Working out the graph.
    void sequence();
    void forgetUses() noexcept;
    void addAutoLinks();
    void addLinks(int state);
    void addLink(const CAudioProcessLinkDef& link);
    static void addEdge(CChild& destination, CChild* source, int sourcePort, int destinationPort);
    static void addExpandedEdge(CChild& destination, CChild* source, int sourcePort, int destinationPort, int depth);
    void removeDeadBranches() noexcept;
    void applyEdges();
    void cut(CChild& destination, const CEdge& edge);
    void join(CChild& destination, const CEdge& edge);
    void makeInstance(CChild& child);
    void removeUnusedInstances();
    void orderRun();

    COwnedArray<CChild> m_children;  // in the order of the definition
    CChild m_output;
    COwnedArray<CBypassState> m_bypassStates;
    COwnedArray<CLinkState> m_linkStates;
    CSmallArray<CAudioProcessBase*> m_running;
    bool m_isSequenceNeeded = true;
};

}  // namespace brt
