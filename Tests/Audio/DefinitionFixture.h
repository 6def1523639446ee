// SPDX-License-Identifier: LicenseRef-Halyard
// Definitions without a whole document around them: one object with attributes, or a small tree.
#pragma once

#include <initializer_list>
#include <utility>

#include "Audio/AudioTags.h"
#include "Audio/CAudioExtParam.h"
#include "Audio/CAudioExtParamList.h"
#include "Audio/CAudioParamAllocDef.h"
#include "Audio/CAudioParamDef.h"
#include "Audio/CAudioParamFilterDef.h"
#include "Audio/CAudioParamRemapDef.h"
#include "Audio/CAudioParamSharedStorage.h"
#include "Audio/CAudioProcessBypassStateDef.h"
#include "Audio/CAudioProcessDef.h"
#include "Audio/CAudioProcessLinkDef.h"
#include "Audio/CAudioProcessLinkStateDef.h"
#include "Core/CMemoryReader.h"
#include "Core/TreeFixture.h"

namespace brt {

class DefinitionFixture : public TreeFixture {
protected:
    using Attributes = std::initializer_list<std::pair<const char*, const char*>>;

    void SetUp() override {
        TreeFixture::SetUp();
        // No document of the product has link states, so they have no tag.
        m_tags.assign(audioTags().begin(), audioTags().end());
        m_tags.push_back(creatorRow<CAudioProcessLinkStateDef>("test:process-link-state"));
        start("", m_tags);
    }

    // A complete object below the root, and what its stages say; "" if it stands.
    template <class T>
    std::string tryMake(T*& object, CStringView tag, Attributes attributes) {
        CAttrMap map;
        for (const auto& [name, value] : attributes) map.findOrInsert(name).setText(value);
        return messageOf(root().createChild(object, tag, "d", kTemplateOptional, nullptr, &map));
    }
    template <class T>
    T& make(CStringView tag, Attributes attributes) {
        T* object = nullptr;
        EXPECT_EQ(tryMake(object, tag, attributes), "");
        return *object;
    }
    std::string failureOf(CStringView tag, Attributes attributes) {
        CObject* object = nullptr;
        return tryMake(object, tag, attributes);
    }

    // Builds the elements that `write` writes below the root.
    template <class Write>
    std::string load(Write write) {
        const Bytes bytes = document(write);
        CMemoryReader reader(bytes.data(), static_cast<int>(bytes.size()));
        return messageOf(root().loadDocument(reader, "test", kLeaveRoot));
    }
    // Begins an element; `endElement` is the caller's.
    static void begin(CDocumentWriter& writer, CStringView tag, CStringView name, Attributes attributes) {
        writer.beginElement(tag, name);
        for (const auto& [key, value] : attributes) writer.attribute(key, value);
    }
    static void put(CDocumentWriter& writer, CStringView tag, CStringView name, Attributes attributes) {
        begin(writer, tag, name, attributes);
        writer.endElement();
    }

    static std::vector<std::string> texts(const CStringList& list) {
        std::vector<std::string> result;
        for (const CString* const entry : list) result.push_back(entry->toUtf8());
        return result;
    }

private:
    std::vector<CCreatorRow> m_tags;
};

}  // namespace brt
