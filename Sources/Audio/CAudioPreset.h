// SPDX-License-Identifier: LicenseRef-Halyard
// The state of a registry's parameters at one time: for each parameter, by its name below the registry's hierarchy, the
// bytes that the parameter has saved. Nothing is read from these bytes until the preset is activated.
//
// A preset's name is "<id>:<name>"; the id tells which registry it belongs to. A preset file is the stored form in a
// compressed block. Owner: a bank, or whoever works on it. Threads: those of the owner; not locked.
#pragma once

#include "Core/CByteBuffer.h"
#include "Core/COrderedMap.h"
#include "Core/CString.h"

namespace brt {

class CError;
class CInputStream;
class COutputStream;

class CAudioPreset : public CBrtMemAllocator {
public:
    static constexpr int kMaxEntries = 65536;
    static constexpr int kMaxBlockBytes = 16 * 1024 * 1024;

    CAudioPreset() = default;
    explicit CAudioPreset(CStringView name) : m_name(name) {}
    CAudioPreset(const CAudioPreset&) = delete;
    CAudioPreset& operator=(const CAudioPreset&) = delete;

    const CString& name() const noexcept { return m_name; }
    void setName(CStringView name) { m_name = name; }

    COrderedMap<CString, CByteBuffer>& entries() noexcept { return m_entries; }
    const COrderedMap<CString, CByteBuffer>& entries() const noexcept { return m_entries; }

    // Without entries; the name stays.
    void clear() { m_entries.clear(); }
    // A copy of all of it.
    void assign(const CAudioPreset& source);

    // The stored form. On failure of `load` it is what it was. A key that comes again replaces the one before it.
    [[nodiscard]] CError* save(COutputStream& stream) const;
    [[nodiscard]] CError* load(CInputStream& stream);
    // A preset file. The block must hold a preset and nothing else.
    [[nodiscard]] CError* savePacked(COutputStream& stream) const;
    [[nodiscard]] CError* loadPacked(CInputStream& stream);

    // At the first ":". Without one the id is empty, and the whole text is the name.
    static void splitName(CStringView fullName, CString& id, CString& name);

private:
    [[nodiscard]] CError* loadEntries(CInputStream& stream);

    CString m_name;
    COrderedMap<CString, CByteBuffer> m_entries;
};

}  // namespace brt
