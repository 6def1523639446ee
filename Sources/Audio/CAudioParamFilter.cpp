// SPDX-License-Identifier: LicenseRef-Halyard
#include "Audio/CAudioParamFilter.h"

#include <algorithm>

#include "Audio/CAudioParamCollector.h"
#include "Audio/CAudioParamLocks.h"
#include "Core/CError.h"

namespace brt {
namespace {

using Params = CAudioParamFilter::Params;

CAudioParamLocks lockAll(const Params& params) {
    return CAudioParamLocks({params.begin(), static_cast<std::size_t>(params.count())});
}

}  // namespace

CAudioParamFilter::~CAudioParamFilter() {
    if (!m_isActive) return;
    const CAudioParamLocks locks = lockAll(m_sources);
    for (CAudioParam* const source : m_sources) source->removeFilter(*this);
}

CError* CAudioParamFilter::init(CAudioParamCollector& collector, const CStringList& sourceNames,
                                const CStringList& destinationNames) {
    const auto fail = [](CStringView message, int count, int required) {
        return makeError(nullptr, __FILE__, __LINE__, "", message, count, required);
    };
    const int sourceCount = sourceNames.count();
    const int destinationCount = destinationNames.count();
    if (sourceCount < minSources())
        return fail(
            "@brtstr_CAudioParamFilter_init_NotEnoughSrcParams Not enough source parameters %1 defined in the "
            "param filter (required %2).",
            sourceCount, minSources());
    if (sourceCount > kMaxParams)
        return fail(
            "@brtstr_CAudioParamFilter_init_TooManySrcParams Too many source parameters %1 defined in the param "
            "filter.",
            sourceCount, 0);
    if (destinationCount < minDestinations())
        return fail(
            "@brtstr_CAudioParamFilter_init_NotEnoughDstParams Not enough destination parameters %1 defined in "
            "the param filter (required %2).",
            destinationCount, minDestinations());
    if (destinationCount > kMaxParams)
        return fail(
            "@brtstr_CAudioParamFilter_init_TooManyDstParams Too many destination parameters %1 defined in the "
            "param filter.",
            destinationCount, 0);
    for (const CString* const name : sourceNames) m_sources.append(&collector.getParam(*name));
    for (const CString* const name : destinationNames) {
        CAudioParam& destination = collector.getParam(*name);
        destination.makeDependent();
        m_destinations.append(&destination);
    }
    m_all.assign(m_sources);
    for (CAudioParam* const param : m_destinations) m_all.append(param);
    return nullptr;
}

void CAudioParamFilter::activate() {
    const CAudioParamLocks locks = lockAll(m_all);
    for (CAudioParam* const source : m_sources) {
        source->addFilter(*this);
        if (source->info() != nullptr) runForPresentValues(*source);
    }
    m_isActive = true;
}

void CAudioParamFilter::runForPresentValues(CAudioParam& source) {
    const CAudioParamStorage& values = source.control();
    if (!values.isValid()) return;
    run(values.describe(kWholeParam), {});
    for (int group = 0; group < values.groupCount(); ++group) run(values.describe(group), {});
}

void CAudioParamFilter::run(const CAudioParamUpdate& update, const CAudioParamChangeContext& context) {
    const CAudioParamLocks locks = lockAll(m_all);
    const auto isValid = [](const CAudioParam* param) { return param->control().isValid(); };
    if (std::all_of(m_all.begin(), m_all.end(), isValid)) runLocked(update, context);
}

void CAudioParamFilter::runLocked(const CAudioParamUpdate& update, const CAudioParamChangeContext& context) {
    const int group = update.group == kWholeParam ? 0 : update.group;
    int rows = update.elementCount;
    if (update.isSetCount)
        for (CAudioParam* const source : m_sources)
            rows = std::max(rows, source->control().elementCount(group) - update.firstElement);

    COwnedArray<CSmallArray<double>> columns;
    for (int i = 0; i < m_destinations.count(); ++i) columns.append(new CSmallArray<double>);
    for (int row = 0; row < rows; ++row) {
        const int element = update.firstElement + row;
        double computed[kMaxParams] = {};
        const int count = compute(group, element, computed);
        for (int i = 0; i < m_destinations.count(); ++i)
            columns[i].append(i < count ? computed[i] : m_destinations[i]->control().value(group, element, 0.0));
    }
    for (int i = 0; i < m_destinations.count(); ++i) {
        CAudioParamUpdate change = update;
        change.elementCount = rows;
        change.format = m_destinations[i]->control().format();
        change.values = columns[i].begin();
        change.data = &m_destinations[i]->control().data();
        const CAudioParamUpdateCopy copy(change);
        m_destinations[i]->update(copy.update(), context);
    }
}

int CAudioParamFilter::compute(int group, int element, double* values) const {
    static_cast<void>(group), static_cast<void>(element), static_cast<void>(values);
    return 0;
}

void CAudioParamFilterBypassGroupSolo::runLocked(const CAudioParamUpdate& update,
                                                 const CAudioParamChangeContext& context) {
    const CAudioParamStorage& solo = sources()[0]->control();
    double isBypassed = 1.0;
    for (int group = 0; group < solo.groupCount(); ++group)
        if (solo.elementCount(group) > 0 && solo.values(group)[0] >= 0.5) isBypassed = 0.0;

    CAudioParam& destination = *destinations()[0];
    CAudioParamUpdate change;
    change.elementCount = 1;
    change.isSetCount = true;
    change.source = update.source;
    change.format = destination.control().format();
    change.values = &isBypassed;
    destination.update(change, context);
}

}  // namespace brt
