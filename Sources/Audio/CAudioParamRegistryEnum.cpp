// SPDX-License-Identifier: LicenseRef-Halyard
// Registries whose presets follow the value of a parameter.
#include "Audio/CAudioParamRegistry.h"

#include <cmath>

#include "Audio/CAudioParam.h"
#include "Audio/CAudioParamRegistry_p.h"

namespace brt {

// The values that select presets, kept until the thread holds no lock.
class CAudioParamRegistry::CFollowCall final : public CDeferredCall {
public:
    CFollowCall(CAudioParamRegistry& registry, const CAudioParamUpdate& update)
        : m_registry(registry), m_copy(update) {}

    void run() override {
        const CAudioParamUpdate& update = m_copy.update();
        CPresetPlace place{.group = update.group};
        for (int i = 0; i < update.elementCount; ++i) {
            if (m_registry.m_isElementEnum) {
                place.element = update.firstElement + i;
                place.isLastElement = i == update.elementCount - 1;
            }
            m_registry.applyEnumerated(indexOf(update.values[i]), place);
            if (!m_registry.m_isElementEnum) return;
        }
    }

private:
    // -1 for what can't be an index.
    static int indexOf(double value) noexcept {
        const double rounded = std::round(value);
        return rounded >= 0.0 && rounded < CAudioPresetBank::kMaxPresets ? static_cast<int>(rounded) : -1;
    }

    CAudioParamRegistry& m_registry;
    const CAudioParamUpdateCopy m_copy;
};

void CAudioParamRegistry::followParam(CAudioParam& param, const CAudioParamUpdate& update,
                                      const CAudioParamChangeContext& context) {
    static_cast<void>(param), static_cast<void>(context);
    if (!m_enumeratedBank || update.source == this) return;
    if (!m_isElementEnum && update.firstElement > 0) return;
    deferCall(std::unique_ptr<CDeferredCall>(new CFollowCall(*this, update)));
}

// An index that is none stands for an empty preset: all parameters go back to their definitions.
void CAudioParamRegistry::applyEnumerated(int index, const CPresetPlace& place) {
    const CRankedLock lock(m_programSection);
    const CAudioPreset empty;
    const bool isThere = index >= 0 && index < m_enumeratedBank->count();
    applyOwnPreset(isThere ? (*m_enumeratedBank)[index] : empty, place, false, nullptr);
}

}  // namespace brt
