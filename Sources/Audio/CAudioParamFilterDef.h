// SPDX-License-Identifier: LicenseRef-Halyard
// Declares a parameter filter: the parameters that it follows and those that it writes. Each kind of filter has a
// definition class of its own.
// Owner: the process definition, or group of parameters, that it stands in. Threads: any, once it is initialised.
#pragma once

#include <memory>

#include "Core/CObject.h"
#include "Core/CStringList.h"

namespace brt {

class CAudioParamFilter;

class CAudioParamFilterDef : public CObject {
public:
    static void describeClass(CClassInfo& info);
    [[nodiscard]] CError* init() override;

    // A new filter, not initialised.
    virtual std::unique_ptr<CAudioParamFilter> createFilter() const = 0;

    // Names as `resolveParamName` takes them, from the place of this definition. Never empty.
    const CStringList& sources() const noexcept { return m_sources; }
    const CStringList& destinations() const noexcept { return m_destinations; }

private:
    CStringList m_sources;
    CStringList m_destinations;
};

// Of the filter that tells whether no channel group is soloed.
class CAudioParamFilterBypassGroupSoloDef final : public CAudioParamFilterDef {
public:
    std::unique_ptr<CAudioParamFilter> createFilter() const override;
};

}  // namespace brt
