// SPDX-License-Identifier: LicenseRef-Halyard
// The texts and byte blocks of a storage. Its values are numbers; for such data the number is the id of an item here.
//
// Owner: a storage, or a change on its way to one. Threads: the owner's. Ids count upward from 1 and never come again,
// so the items stand in ascending order of their ids; replacing one by one needs no allocation once there is room.
#pragma once

#include <cstdint>
#include <memory>

#include "Core/CByteBuffer.h"
#include "Core/CCheckedObject.h"
#include "Core/CSmallArray.h"
#include "Core/CString.h"

namespace brt {

class CError;
class CInputStream;
class COutputStream;

class CAudioParamDataItem : public CCheckedObject, public CBrtMemAllocator {
public:
    virtual std::unique_ptr<CAudioParamDataItem> clone() const = 0;
    [[nodiscard]] virtual CError* save(COutputStream& stream) const = 0;
    [[nodiscard]] virtual CError* load(CInputStream& stream) = 0;
    virtual std::uint32_t type() const noexcept = 0;
    virtual bool equals(const CAudioParamDataItem& other) const noexcept = 0;
};

class CAudioParamDataItemString final : public CAudioParamDataItem {
public:
    static constexpr std::uint32_t kType = 1;

    CAudioParamDataItemString() = default;
    explicit CAudioParamDataItemString(CStringView text) : m_text(text) {}

    const CString& text() const noexcept { return m_text; }

    std::unique_ptr<CAudioParamDataItem> clone() const override;
    [[nodiscard]] CError* save(COutputStream& stream) const override;
    // A single blank is read as the empty text: older writers stored it so.
    [[nodiscard]] CError* load(CInputStream& stream) override;
    std::uint32_t type() const noexcept override { return kType; }
    bool equals(const CAudioParamDataItem& other) const noexcept override;

private:
    CString m_text;
};

class CAudioParamDataItemRaw final : public CAudioParamDataItem {
public:
    static constexpr std::uint32_t kType = 2;
    static constexpr int kLimitBytes = 16 * 1024 * 1024;

    CAudioParamDataItemRaw() = default;
    CAudioParamDataItemRaw(const void* bytes, int size) { m_bytes.assign(bytes, size); }

    const CByteBuffer& bytes() const noexcept { return m_bytes; }

    std::unique_ptr<CAudioParamDataItem> clone() const override;
    [[nodiscard]] CError* save(COutputStream& stream) const override;
    [[nodiscard]] CError* load(CInputStream& stream) override;
    std::uint32_t type() const noexcept override { return kType; }
    bool equals(const CAudioParamDataItem& other) const noexcept override;

private:
    CByteBuffer m_bytes;
};

class CAudioParamData {
public:
    CAudioParamData() = default;
    ~CAudioParamData() { clear(); }
    CAudioParamData(const CAudioParamData&) = delete;
    CAudioParamData& operator=(const CAudioParamData&) = delete;

    int count() const noexcept { return m_entries.count(); }

    // Adds an item, and gives the value that stands for it.
    double add(std::unique_ptr<CAudioParamDataItem> item);
    double addString(CStringView text) { return add(std::make_unique<CAudioParamDataItemString>(text)); }

    // The item that a value stands for; null if there is none.
    const CAudioParamDataItem* find(double value) const noexcept;
    // Its text; "" if there is none, or if it is none.
    CStringView text(double value) const noexcept;
    // Hands the item over; null if there is none.
    std::unique_ptr<CAudioParamDataItem> take(double value) noexcept;

    // Deletes all items. Ids go on counting.
    void clear() noexcept;

    // The items, with their ids.
    [[nodiscard]] CError* save(COutputStream& stream) const;
    // Takes the place of what is here. On failure it is empty.
    [[nodiscard]] CError* load(CInputStream& stream);

private:
    struct CEntry {
        std::uint32_t id;
        CAudioParamDataItem* item;  // owned
    };

    int indexOf(double value) const noexcept;
    CError* loadItem(CInputStream& stream);

    std::uint32_t m_lastId = 0;
    CSmallArray<CEntry> m_entries;  // ascending by id
};

}  // namespace brt
