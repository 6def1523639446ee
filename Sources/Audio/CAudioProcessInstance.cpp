// SPDX-License-Identifier: LicenseRef-Halyard
// How a definition becomes a running process, and how that process finds its parameters.
#include "Audio/CAudioParamCollector.h"
#include "Audio/CAudioParamDef.h"
#include "Audio/CAudioParamFilter.h"
#include "Audio/CAudioParamFilterDef.h"
#include "Audio/CAudioParamRemapDef.h"
#include "Audio/CAudioParamSharedStorage.h"
#include "Audio/CAudioProcessDefBase.h"
#include "Audio/CAudioProcessMB.h"
#include "Audio/CAudioProcessStack.h"
#include "Audio/ParamNames.h"
#include "Core/CError.h"

namespace brt {
namespace {

CString joined(CStringView path, CStringView relativePath) {
    CString name = path;
    name += relativePath;
    return name;
}

CError* addAliases(const CAudioProcessDefBase& definition, CAudioProcessBase& process) {
    for (const CAudioParamRemapDef* const remap : definition.paramRemaps())
        for (const CAudioParamRemapDef::CPair* const pair : remap->pairs())
            BRT_TRY(process.path(), process.addAlias(resolveParamName(pair->orig, process.path()),
                                                     resolveParamName(pair->target, process.path())));
    return nullptr;
}

CError* addFilters(const CAudioProcessDefBase& definition, CAudioProcessBase& process) {
    for (const auto* const filter : definition.paramFilters())
        BRT_TRY(process.path(), process.addFilter(filter->definition, filter->relativePath));
    return nullptr;
}

}  // namespace

CError* CAudioProcessDefBase::createInstance(std::unique_ptr<CAudioProcessBase>& out, CStringView path,
                                             const CAudioProcessContext& context, int group, int stackIndex,
                                             EProcessRole role) const {
    out.reset();
    std::unique_ptr<CAudioProcessBase> made;
    if (isMultiband() && role != EProcessRole::kBandMember)
        made = std::make_unique<CAudioProcessMB>();
    else if (isStacked() && role == EProcessRole::kWhole)
        made = std::make_unique<CAudioProcessStack>();
    else
        made = createProcess();
    made->setPlace({path, this, &context, group, stackIndexShift() + stackIndex, role == EProcessRole::kStackMember});

    // Once for a stack or a set of bands and its members together.
    if (role == EProcessRole::kWhole) {
        BRT_TRY(path, addAliases(*this, *made));
        registerGlobalParams(path, context.collector);
        BRT_TRY(path, addFilters(*this, *made));
    }
    made->preInit();
    out = std::move(made);
    BRT_TRY(path, out->init());
    return nullptr;
}

void CAudioProcessDefBase::registerGlobalParams(CStringView path, CAudioParamCollector& collector) const {
    for (const auto* const row : params()) {
        const CAudioParamInfo& info = row->definition.info();
        const CString name = joined(path, row->relativePath);
        if (info.isGlobal && !collector.isAliased(name)) collector.getParam(name).setInfo(info, {});
    }
    for (const auto* const row : sharedStorages())
        collector.addShared(joined(path, row->relativePath), row->definition.store(), row->definition.dataName());
}

CAudioParamBinding& CAudioProcessBase::bindParam(CStringView name, bool useAllGroups, bool useAllElements) {
    const CString fullName = joined(joined(path(), "."), name);
    const auto* const child = dynamic_cast<const CAudioParamDef*>(definition().findChild(name));
    if (context().collector.isAliased(fullName) || (child != nullptr && child->info().isGlobal))
        return bindParamByFullName(fullName, useAllGroups, useAllElements);
    CAudioParamBinding& binding = *m_bindings.append(new CAudioParamBinding);
    binding.values = child != nullptr ? &child->info().defaults : &context().collector.noValues();
    return binding;
}

CError* CAudioProcessBase::addFilter(const CAudioParamFilterDef& filterDefinition, CStringView relativePath) {
    std::unique_ptr<CAudioParamFilter> filter = filterDefinition.createFilter();
    const CString base = joined(path(), relativePath);
    CStringList sources;
    CStringList destinations;
    for (const CString* const name : filterDefinition.sources()) sources.append(resolveParamName(*name, base));
    for (const CString* const name : filterDefinition.destinations())
        destinations.append(resolveParamName(*name, base));
    BRT_TRY(path(), filter->init(context().collector, sources, destinations));
    filter->activate();
    m_filters.append(std::move(filter));
    return nullptr;
}

}  // namespace brt
