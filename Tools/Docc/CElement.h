// SPDX-License-Identifier: LicenseRef-Halyard
// A document as a tree of elements, between its text and its compiled form.
// Owner: the root owns all. Threads: one at a time.
#pragma once

#include <cstddef>
#include <memory>
#include <vector>

#include "Core/CString.h"

namespace brt {

struct ElementAttribute {
    CString name;
    CString value;
    std::size_t namePlace = 0;  // in the text; 0 where there is none
    std::size_t valuePlace = 0;
};

struct CElement {
    static constexpr CStringView kRootTag = "document";
    static constexpr CStringView kTemplateTag = "template";
    static constexpr CStringView kContentTag = "content";  // of a text within an element, and the name of that child

    CString tag;
    CString name;  // "": unnamed
    std::vector<ElementAttribute> attributes;
    std::vector<std::unique_ptr<CElement>> children;  // of a template: its body, and nothing else
    CElement* parent = nullptr;                       // null: the root
    std::size_t place = 0;                            // of the tag in the text
    std::size_t namePlace = 0;

    bool isRoot() const noexcept { return parent == nullptr; }
    bool isTemplate() const noexcept { return tag == kTemplateTag; }
    bool isBody() const noexcept { return parent && parent->isTemplate(); }
    const CElement& body() const noexcept { return *children.front(); }

    CElement& addChild(CStringView childTag) {
        CElement& child = *children.emplace_back(std::make_unique<CElement>());
        child.tag = childTag;
        child.parent = this;
        return child;
    }
};

}  // namespace brt
