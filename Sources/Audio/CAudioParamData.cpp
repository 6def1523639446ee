// SPDX-License-Identifier: LicenseRef-Halyard
#include "Audio/CAudioParamData.h"

#include <algorithm>
#include <cstring>

#include "Audio/CAudioParamFormat.h"
#include "Audio/StreamNumbers.h"

namespace brt {
namespace {

constexpr int kItemLimit = kAudioGroupLimit * kAudioElementLimit;

bool isSameBytes(const CByteBuffer& a, const CByteBuffer& b) noexcept {
    return a.size() == b.size() && std::memcmp(a.data(), b.data(), static_cast<std::size_t>(a.size())) == 0;
}

}  // namespace

std::unique_ptr<CAudioParamDataItem> CAudioParamDataItemString::clone() const {
    return std::make_unique<CAudioParamDataItemString>(m_text);
}

CError* CAudioParamDataItemString::save(COutputStream& stream) const { return stream.writeString(m_text); }

CError* CAudioParamDataItemString::load(CInputStream& stream) {
    BRT_TRY("", stream.readString(m_text));
    if (m_text == " ") m_text.clear();
    return nullptr;
}

bool CAudioParamDataItemString::equals(const CAudioParamDataItem& other) const noexcept {
    return other.type() == kType && static_cast<const CAudioParamDataItemString&>(other).m_text == m_text;
}

std::unique_ptr<CAudioParamDataItem> CAudioParamDataItemRaw::clone() const {
    return std::make_unique<CAudioParamDataItemRaw>(m_bytes.data(), m_bytes.size());
}

CError* CAudioParamDataItemRaw::save(COutputStream& stream) const {
    BRT_TRY("", writeI32(stream, m_bytes.size()));
    return stream.write(m_bytes.data(), m_bytes.size());
}

CError* CAudioParamDataItemRaw::load(CInputStream& stream) {
    int size = 0;
    BRT_TRY("", readCount(stream, size, kLimitBytes, 1));
    if (!m_bytes.trySetSize(size))
        return makeError(nullptr, __FILE__, __LINE__, "",
                         "@brtstr_CAudioParamDataItemRaw_load_Memory There is no memory for %1 bytes.", size);
    return stream.read(m_bytes.data(), size);
}

bool CAudioParamDataItemRaw::equals(const CAudioParamDataItem& other) const noexcept {
    return other.type() == kType && isSameBytes(m_bytes, static_cast<const CAudioParamDataItemRaw&>(other).m_bytes);
}

double CAudioParamData::add(std::unique_ptr<CAudioParamDataItem> item) {
    m_entries.append({++m_lastId, item.release()});
    return m_lastId;
}

// Index of the entry that a value stands for; -1 if there is none. Ids are exact in a double.
int CAudioParamData::indexOf(double value) const noexcept {
    const CEntry* const end = m_entries.end();
    const CEntry* const place =
        std::lower_bound(m_entries.begin(), end, value, [](const CEntry& entry, double id) { return entry.id < id; });
    return place != end && place->id == value ? static_cast<int>(place - m_entries.begin()) : -1;
}

const CAudioParamDataItem* CAudioParamData::find(double value) const noexcept {
    const int index = indexOf(value);
    return index < 0 ? nullptr : m_entries[index].item;
}

CStringView CAudioParamData::text(double value) const noexcept {
    const CAudioParamDataItem* const item = find(value);
    if (item == nullptr || item->type() != CAudioParamDataItemString::kType) return {};
    return static_cast<const CAudioParamDataItemString*>(item)->text();
}

std::unique_ptr<CAudioParamDataItem> CAudioParamData::take(double value) noexcept {
    const int index = indexOf(value);
    if (index < 0) return nullptr;
    std::unique_ptr<CAudioParamDataItem> item(m_entries[index].item);
    m_entries.removeAt(index);
    return item;
}

void CAudioParamData::clear() noexcept {
    while (!m_entries.isEmpty()) delete m_entries.pop().item;
}

CError* CAudioParamData::save(COutputStream& stream) const {
    BRT_TRY("", writeI32(stream, m_entries.count()));
    for (const CEntry& entry : m_entries) {
        BRT_TRY("", writeU32(stream, entry.id));
        BRT_TRY("", writeU32(stream, entry.item->type()));
        BRT_TRY("", entry.item->save(stream));
    }
    return nullptr;
}

CError* CAudioParamData::load(CInputStream& stream) {
    clear();
    m_lastId = 0;
    int count = 0;
    constexpr int kLeastItemBytes = 12;
    BRT_TRY("", readCount(stream, count, kItemLimit, kLeastItemBytes));
    for (int i = 0; i < count; ++i) {
        if (CError* const error = loadItem(stream)) {
            clear();
            return makeError(error, __FILE__, __LINE__, "", "");
        }
    }
    return nullptr;
}

CError* CAudioParamData::loadItem(CInputStream& stream) {
    std::uint32_t id = 0;
    std::uint32_t type = 0;
    BRT_TRY("", readU32(stream, id));
    BRT_TRY("", readU32(stream, type));
    std::unique_ptr<CAudioParamDataItem> item;
    if (type == CAudioParamDataItemString::kType) item = std::make_unique<CAudioParamDataItemString>();
    if (type == CAudioParamDataItemRaw::kType) item = std::make_unique<CAudioParamDataItemRaw>();
    if (!item)
        return makeError(nullptr, __FILE__, __LINE__, "",
                         "@brtstr_CAudioParamData_load_TypeError Unknown data type %1 encountered", type);
    if (id <= m_lastId)
        return makeError(nullptr, __FILE__, __LINE__, "",
                         "@brtstr_CAudioParamData_load_Order The data is damaged: item %1 follows item %2.", id,
                         m_lastId);
    BRT_TRY("", item->load(stream));
    m_lastId = id;
    m_entries.append({id, item.release()});
    return nullptr;
}

}  // namespace brt
