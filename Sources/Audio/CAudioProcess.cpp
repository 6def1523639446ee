// SPDX-License-Identifier: LicenseRef-Halyard
#include "Audio/CAudioProcess.h"

#include <cmath>

#include "Audio/CAudioProcessBypassStateDef.h"
#include "Audio/CAudioProcessDef.h"
#include "Audio/CAudioProcessLinkStateDef.h"
#include "Audio/ParamNames.h"
#include "Core/CError.h"

namespace brt {

CAudioProcess::CAudioProcess() { setContainer(); }
CAudioProcess::~CAudioProcess() = default;

const CAudioProcessDef& CAudioProcess::containerDefinition() const noexcept {
    return static_cast<const CAudioProcessDef&>(definition());
}

CError* CAudioProcess::init() {
    BRT_TRY(path(), CAudioProcessBase::init());
    if (dynamic_cast<const CAudioProcessDef*>(&definition()) == nullptr)
        return makeError(
            nullptr, __FILE__, __LINE__, path(),
            "@brtstr_CAudioProcess_init_ProcessDefClassInvalid Audio process def of invalid class supplied.");
    for (const CAudioProcessDefBase* const child : containerDefinition().childProcesses())
        if (!child->isPrototype()) BRT_TRY(path(), addChild(*child));
    addStates();
    return nullptr;
}

CError* CAudioProcess::addChild(const CAudioProcessDefBase& definition) {
    const CStringView name = definition.getShortName();
    if (findChild(name) != nullptr)
        return makeError(nullptr, __FILE__, __LINE__, path(),
                         "@brtstr_CAudioProcess_addProcess_DupeName Duplicate audio process name '%1'.", name);
    CChild* const child = m_children.append(new CChild);
    child->name = name;
    child->definition = &definition;
    child->isNode = definition.tag() == "audio:modNode";
    return nullptr;
}

void CAudioProcess::addStates() {
    const auto bind = [this](CStringView name) {
        return &bindParamByFullName(resolveParamName(name, path()), false, false);
    };
    for (const CAudioProcessBypassStateDef* const definition : containerDefinition().bypassStates()) {
        CBypassState* const state = m_bypassStates.append(new CBypassState);
        state->definition = definition;
        state->param = bind(definition->param());
        if (!definition->andParam().isEmpty()) state->andParam = bind(definition->andParam());
    }
    for (const CAudioProcessLinkStateDef* const definition : containerDefinition().linkStates())
        m_linkStates.append(new CLinkState)->param = bind(definition->param());
}

CAudioProcess::CChild* CAudioProcess::findChild(CStringView name) const noexcept {
    for (CChild* const child : m_children)
        if (child->name == name) return child;
    return nullptr;
}

bool CAudioProcess::isBypassed(int stateId) const noexcept {
    const auto read = [this](const CAudioParamBinding* binding) {
        return binding != nullptr ? binding->values->value(group(), stackIndex(), 0.0) : 0.0;
    };
    for (const CBypassState* const state : m_bypassStates)
        if (state->definition->id() == stateId)
            return state->definition->isActive(read(state->param), read(state->andParam));
    return false;
}

bool CAudioProcess::isInGraph(const CChild& child) const noexcept {
    return !child.hasFailed && !isBypassed(child.definition->bypassStateId());
}

void CAudioProcess::checkStates() {
    for (const CBypassState* const state : m_bypassStates)
        if (state->param->changedGroups != 0 || (state->andParam != nullptr && state->andParam->changedGroups != 0))
            m_isSequenceNeeded = true;
    for (CLinkState* const state : m_linkStates) {
        const auto value = static_cast<int>(std::lround(state->param->values->value(group(), 0, 0.0)));
        if (std::exchange(state->state, value) != value) m_isSequenceNeeded = true;
    }
}

void CAudioProcess::update() {
    checkStates();
    // A child that can't be made asks for another round, without it.
    while (std::exchange(m_isSequenceNeeded, false)) sequence();
}

void CAudioProcess::process() {
    prepare();
    releaseInputs();
    for (CAudioProcessBase* const child : m_running) child->process();
}

void CAudioProcess::reset() {
    CAudioProcessBase::reset();
    for (CAudioProcessBase* const child : m_running) child->reset();
}

// All edges go, and with them the children.
void CAudioProcess::detach() {
    forgetUses();
    applyEdges();
    m_running.clear();
    m_isSequenceNeeded = true;
    CAudioProcessBase::detach();
}

}  // namespace brt
