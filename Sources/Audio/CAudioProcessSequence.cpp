// SPDX-License-Identifier: LicenseRef-Halyard
// How a container works out which children it has now, how they are connected, and in which order they run.
#include "Audio/CAudioProcess.h"
#include "Audio/CAudioProcessDef.h"
#include "Audio/CAudioProcessLinkDef.h"
#include "Core/CError.h"
#include "Core/Log.h"

namespace brt {

void CAudioProcess::sequence() {
    forgetUses();
    if (containerDefinition().isAutoLinks()) addAutoLinks();
    constexpr int kAlways = -1;
    COrderedSet<int> states;
    for (const CLinkState* const state : m_linkStates) states.insert(state->state);
    addLinks(kAlways);
    for (const int state : states)
        if (state != kAlways) addLinks(state);
    removeDeadBranches();
    applyEdges();
    orderRun();
}

void CAudioProcess::forgetUses() noexcept {
    const auto forget = [](CChild& child) {
        for (int i = child.edges.count() - 1; i >= 0; --i) {
            CEdge& edge = child.edges[i];
            edge.previousUses = std::exchange(edge.uses, 0);
            // Nothing hangs on a node's edges: they serve while the others are worked out.
            if (child.isNode) child.edges.removeAt(i);
        }
    };
    for (CChild* const child : m_children) forget(*child);
    forget(m_output);
}

void CAudioProcess::addEdge(CChild& destination, CChild* source, int sourcePort, int destinationPort) {
    for (CEdge& edge : destination.edges) {
        if (edge.source != source || edge.sourcePort != sourcePort || edge.destinationPort != destinationPort) continue;
        ++edge.uses;
        return;
    }
    destination.edges.append({source, sourcePort, destinationPort, 1, 0});
}

// Instead of a node its sources, and theirs. A definition may wire nodes in a circle: it leads nowhere.
void CAudioProcess::addExpandedEdge(CChild& destination, CChild* source, int sourcePort, int destinationPort,
                                    int depth) {
    if (source == nullptr || !source->isNode || destination.isNode)
        return addEdge(destination, source, sourcePort, destinationPort);
    constexpr int kDeepestNodes = 32;
    if (depth >= kDeepestNodes) return;
    for (int i = 0; i < source->edges.count(); ++i) {
        const CEdge edge = source->edges[i];
        if (edge.uses > 0) addExpandedEdge(destination, edge.source, edge.sourcePort, destinationPort, depth + 1);
    }
}

void CAudioProcess::addAutoLinks() {
    CSmallArray<CChild*> chain;
    for (CChild* const child : m_children)
        if (!child->definition->isOutOfOrder() && isInGraph(*child)) chain.append(child);
    // Nodes first, since the others look through them.
    for (const bool isNodePass : {true, false}) {
        CChild* before = nullptr;
        for (CChild* const child : chain) {
            if (child->isNode == isNodePass) addExpandedEdge(*child, before, 0, 0, 0);
            before = child;
        }
    }
    addExpandedEdge(m_output, chain.isEmpty() ? nullptr : chain.last(), 0, 0, 0);
}

void CAudioProcess::addLinks(int state) {
    const CAudioProcessDef::CLinks* const links = containerDefinition().links(state);
    if (links == nullptr) return;
    for (const bool isNodePass : {true, false}) {
        for (const CAudioProcessLinkDef* const link : *links) {
            const CChild* const destination = link->dst() == "*" ? nullptr : findChild(link->dst());
            if ((destination != nullptr && destination->isNode) == isNodePass) addLink(*link);
        }
    }
}

void CAudioProcess::addLink(const CAudioProcessLinkDef& link) {
    for (const int id : link.bypassStateIds())
        if (isBypassed(id)) return;
    const bool isFromInput = link.src() == "*";
    const bool isToOutput = link.dst() == "*";
    if (isFromInput && isToOutput) return;
    CChild* const source = isFromInput ? nullptr : findChild(link.src());
    CChild* const destination = isToOutput ? &m_output : findChild(link.dst());
    if (destination == nullptr || (!isToOutput && !isInGraph(*destination))) return;
    if (!isFromInput && (source == nullptr || !isInGraph(*source))) return;
    const bool isNode = source != nullptr && source->isNode;
    addExpandedEdge(*destination, source, isNode ? 0 : link.srcPort(), link.dstPort(), 0);
}

// Alive is what the container's input reaches through main ports. The others lose their edges, and those to others.
void CAudioProcess::removeDeadBranches() noexcept {
    for (CChild* const child : m_children) child->isAlive = false;
    const auto isFed = [](const CChild& child) {
        for (const CEdge& edge : child.edges)
            if (edge.uses > 0 && edge.destinationPort == 0 && (edge.source == nullptr || edge.source->isAlive))
                return true;
        return false;
    };
    for (bool isChanged = true; isChanged;) {
        isChanged = false;
        for (CChild* const child : m_children) {
            if (child->isAlive || child->isNode || !isFed(*child)) continue;
            child->isAlive = isChanged = true;
        }
    }
    const auto drop = [](CChild& child, bool isAlive) {
        for (CEdge& edge : child.edges)
            if (!isAlive || (edge.source != nullptr && !edge.source->isAlive)) edge.uses = 0;
    };
    for (CChild* const child : m_children)
        if (!child->isNode) drop(*child, child->isAlive);
    drop(m_output, true);
}

// Instances go only when all edges stand, so that a child whose edges changed keeps its history.
void CAudioProcess::applyEdges() {
    const auto apply = [this](CChild& child) {
        for (int i = child.edges.count() - 1; i >= 0; --i) {
            const CEdge edge = child.edges[i];
            if (edge.uses > 0) continue;
            if (edge.previousUses > 0) cut(child, edge);
            child.edges.removeAt(i);
        }
    };
    const auto begin = [this](CChild& child) {
        for (int i = 0; i < child.edges.count(); ++i)
            if (child.edges[i].uses > 0 && child.edges[i].previousUses == 0) join(child, child.edges[i]);
    };
    for (CChild* const child : m_children)
        if (!child->isNode) apply(*child);
    apply(m_output);
    for (CChild* const child : m_children)
        if (!child->isNode) begin(*child);
    begin(m_output);
    removeUnusedInstances();
}

void CAudioProcess::cut(CChild& destination, const CEdge& edge) {
    CChild* const source = edge.source;
    const bool isWhole = (source == nullptr || source->instance) && (&destination == &m_output || destination.instance);
    if (isWhole) {
        if (&destination == &m_output && source != nullptr)
            removeOutputChild(*source->instance, edge.sourcePort, edge.destinationPort);
        else if (source == nullptr && destination.instance)
            disconnectThrough(edge.sourcePort, *destination.instance, edge.destinationPort);
        else if (source != nullptr)
            source->instance->disconnect(*destination.instance, edge.destinationPort, edge.sourcePort);
    }
    if (source != nullptr) --source->references;
    --destination.references;
}

void CAudioProcess::join(CChild& destination, const CEdge& edge) {
    CChild* const source = edge.source;
    if (source != nullptr && ++source->references > 0) makeInstance(*source);
    if (++destination.references > 0 && &destination != &m_output) makeInstance(destination);
    const bool isWhole = (source == nullptr || source->instance) && (&destination == &m_output || destination.instance);
    if (!isWhole) return;
    if (&destination == &m_output && source != nullptr)
        addOutputChild(*source->instance, edge.sourcePort, edge.destinationPort);
    else if (source == nullptr && destination.instance)
        connectThrough(edge.sourcePort, *destination.instance, edge.destinationPort);
    else if (source != nullptr)
        source->instance->connect(*destination.instance, edge.destinationPort, edge.sourcePort);
}

void CAudioProcess::makeInstance(CChild& child) {
    if (child.instance || child.hasFailed) return;
    CString name = path();
    name += ".";
    name += child.name;
    CError* const error =
        child.definition->createInstance(child.instance, name, context(), group(), stackIndex(), EProcessRole::kWhole);
    if (error == nullptr) return;
    logError(error);
    discardError(error);  // the rest of the graph plays on
    child.instance.reset();
    child.hasFailed = true;
    m_isSequenceNeeded = true;
}

void CAudioProcess::removeUnusedInstances() {
    for (CChild* const child : m_children) {
        if (!child->instance || child->references > 0) continue;
        child->instance->detach();
        child->instance.reset();
    }
}

void CAudioProcess::orderRun() {
    m_running.clear();
    int waiting = 0;
    for (CChild* const child : m_children) {
        child->isPlaced = child->references == 0;
        waiting += child->references > 0 ? 1 : 0;
    }
    const auto isReady = [](const CChild& child) {
        for (const CEdge& edge : child.edges)
            if (edge.source != nullptr && !edge.source->isPlaced) return false;
        return true;
    };
    for (bool isChanged = true; isChanged;) {
        isChanged = false;
        for (CChild* const child : m_children) {
            if (child->isPlaced || !isReady(*child)) continue;
            child->isPlaced = isChanged = true;
            --waiting;
            if (child->instance) m_running.append(child->instance.get());
        }
    }
    if (waiting > 0) logLine("%s // process seq err", path());
}

}  // namespace brt
