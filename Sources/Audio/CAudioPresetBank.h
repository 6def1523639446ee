// SPDX-License-Identifier: LicenseRef-Halyard
// A named list of presets: the programs of the product, those of a session, the ones that a list in a window offers.
// A bank file is the stored form in a compressed block. Owner: a registry, or whoever works on it. Threads: those of
// the owner; not locked.
#pragma once

#include "Audio/CAudioPreset.h"
#include "Core/COwnedArray.h"

namespace brt {

class CAudioPresetBank : public CBrtMemAllocator {
public:
    static constexpr int kMaxPresets = 65536;
    static constexpr int kMaxBanks = 4096;  // of a list

    CAudioPresetBank() = default;
    CAudioPresetBank(const CAudioPresetBank&) = delete;
    CAudioPresetBank& operator=(const CAudioPresetBank&) = delete;

    const CString& name() const noexcept { return m_name; }
    void setName(CStringView name) { m_name = name; }

    int count() const noexcept { return m_presets.count(); }
    // REQUIRES: 0 <= index < count.
    CAudioPreset& operator[](int index) noexcept { return m_presets[index]; }
    const CAudioPreset& operator[](int index) const noexcept { return m_presets[index]; }
    COwnedArray<CAudioPreset>& presets() noexcept { return m_presets; }
    const COwnedArray<CAudioPreset>& presets() const noexcept { return m_presets; }

    // A copy of all of it.
    void assign(const CAudioPresetBank& source);

    // The stored form. On failure of `load` it is what it was.
    [[nodiscard]] CError* save(COutputStream& stream) const;
    [[nodiscard]] CError* load(CInputStream& stream);
    // A bank file. The block must hold a bank and nothing else.
    [[nodiscard]] CError* savePacked(COutputStream& stream) const;
    [[nodiscard]] CError* loadPacked(CInputStream& stream);

    // The lists of banks among the settings. On failure of `loadList` the list is empty.
    [[nodiscard]] static CError* saveList(COutputStream& stream, const COwnedArray<CAudioPresetBank>& banks);
    [[nodiscard]] static CError* loadList(CInputStream& stream, COwnedArray<CAudioPresetBank>& banks);

private:
    void take(CAudioPresetBank& source);

    CString m_name;
    COwnedArray<CAudioPreset> m_presets;
};

}  // namespace brt
