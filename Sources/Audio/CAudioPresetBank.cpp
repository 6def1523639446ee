// SPDX-License-Identifier: LicenseRef-Halyard
#include "Audio/CAudioPresetBank.h"

#include <memory>

#include "Audio/PresetStream.h"
#include "Audio/StreamNumbers.h"

namespace brt {
namespace {

// A name and a count, and nothing more.
constexpr int kLeastPresetBytes = 8;
constexpr int kLeastBankBytes = 8;

}  // namespace

void CAudioPresetBank::assign(const CAudioPresetBank& source) {
    if (&source == this) return;
    m_name = source.m_name;
    m_presets.clear();
    for (const CAudioPreset* const preset : source.m_presets) m_presets.append(new CAudioPreset)->assign(*preset);
}

void CAudioPresetBank::take(CAudioPresetBank& source) {
    m_name = source.m_name;
    m_presets.clear();
    while (!source.m_presets.isEmpty()) m_presets.insertAt(0, source.m_presets.take(source.count() - 1).release());
}

CError* CAudioPresetBank::save(COutputStream& stream) const {
    BRT_TRY(m_name, stream.writeString(m_name));
    BRT_TRY(m_name, writeI32(stream, count()));
    for (const CAudioPreset* const preset : m_presets) BRT_TRY(m_name, preset->save(stream));
    return nullptr;
}

CError* CAudioPresetBank::load(CInputStream& stream) {
    CAudioPresetBank loaded;
    int count = 0;
    BRT_TRY("", stream.readString(loaded.m_name));
    BRT_TRY(loaded.m_name, readCount(stream, count, kMaxPresets, kLeastPresetBytes));
    for (int i = 0; i < count; ++i) BRT_TRY(loaded.m_name, loaded.m_presets.append(new CAudioPreset)->load(stream));
    take(loaded);
    return nullptr;
}

CError* CAudioPresetBank::savePacked(COutputStream& stream) const {
    BRT_TRY(m_name, packStored(*this, stream, kBankTag));
    return nullptr;
}

CError* CAudioPresetBank::loadPacked(CInputStream& stream) {
    CAudioPresetBank loaded;
    BRT_TRY("", unpackStored(loaded, stream, kBankTag));
    take(loaded);
    return nullptr;
}

CError* CAudioPresetBank::saveList(COutputStream& stream, const COwnedArray<CAudioPresetBank>& banks) {
    BRT_TRY("", writeI32(stream, banks.count()));
    for (const CAudioPresetBank* const bank : banks) BRT_TRY("", bank->save(stream));
    return nullptr;
}

CError* CAudioPresetBank::loadList(CInputStream& stream, COwnedArray<CAudioPresetBank>& banks) {
    banks.clear();
    int count = 0;
    BRT_TRY("", readCount(stream, count, kMaxBanks, kLeastBankBytes));
    for (int i = 0; i < count; ++i) {
        auto bank = std::make_unique<CAudioPresetBank>();
        CError* const error = bank->load(stream);
        if (error != nullptr) {
            banks.clear();
            return makeError(error, __FILE__, __LINE__, "", "");
        }
        banks.append(std::move(bank));
    }
    return nullptr;
}

}  // namespace brt
