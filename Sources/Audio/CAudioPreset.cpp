// SPDX-License-Identifier: LicenseRef-Halyard
#include "Audio/CAudioPreset.h"

#include "Audio/PresetStream.h"
#include "Audio/StreamNumbers.h"

namespace brt {
namespace {

// A key and a block without a byte in them.
constexpr int kLeastEntryBytes = 8;

CError* readBlock(CInputStream& stream, CByteBuffer& block) {
    int size = 0;
    BRT_TRY("", readCount(stream, size, CAudioPreset::kMaxBlockBytes, 1));
    if (!block.trySetSize(size))
        return makeError(nullptr, __FILE__, __LINE__, "",
                         "@brtstr_CAudioPreset_load_NoMemory There is no memory for a value of %1 bytes in a preset.",
                         size);
    BRT_TRY("", stream.read(block.data(), size));
    return nullptr;
}

}  // namespace

void CAudioPreset::assign(const CAudioPreset& source) {
    if (&source == this) return;
    m_name = source.m_name;
    m_entries.clear();
    for (const auto& [key, block] : source.m_entries) m_entries.findOrInsert(key).assign(block.data(), block.size());
}

CError* CAudioPreset::save(COutputStream& stream) const {
    BRT_TRY(m_name, stream.writeString(m_name));
    BRT_TRY(m_name, writeI32(stream, m_entries.count()));
    for (const auto& [key, block] : m_entries) {
        BRT_TRY(m_name, stream.writeString(key));
        BRT_TRY(m_name, writeI32(stream, block.size()));
        BRT_TRY(m_name, stream.write(block.data(), block.size()));
    }
    return nullptr;
}

CError* CAudioPreset::load(CInputStream& stream) {
    CAudioPreset loaded;
    BRT_TRY("", stream.readString(loaded.m_name));
    BRT_TRY(loaded.m_name, loaded.loadEntries(stream));
    m_name = loaded.m_name;
    m_entries.swap(loaded.m_entries);
    return nullptr;
}

CError* CAudioPreset::loadEntries(CInputStream& stream) {
    int count = 0;
    BRT_TRY("", readCount(stream, count, kMaxEntries, kLeastEntryBytes));
    for (int i = 0; i < count; ++i) {
        CString key;
        BRT_TRY("", stream.readString(key));
        BRT_TRY(key, readBlock(stream, m_entries.findOrInsert(key)));
    }
    return nullptr;
}

CError* CAudioPreset::savePacked(COutputStream& stream) const {
    BRT_TRY(m_name, packStored(*this, stream, appDataTag::kPreset));
    return nullptr;
}

CError* CAudioPreset::loadPacked(CInputStream& stream) {
    CAudioPreset loaded;
    BRT_TRY("", unpackStored(loaded, stream, appDataTag::kPreset));
    m_name = loaded.m_name;
    m_entries.swap(loaded.m_entries);
    return nullptr;
}

void CAudioPreset::splitName(CStringView fullName, CString& id, CString& name) {
    const int colon = fullName.find(u':');
    id = colon < 0 ? CStringView() : fullName.slice(0, colon);
    name = colon < 0 ? fullName : fullName.slice(colon + 1);
}

}  // namespace brt
