// SPDX-License-Identifier: LicenseRef-Halyard
#include "Tools/Docc/CompiledDocument.h"

#include <stdexcept>
#include <string>

#include "Core/CDocument.h"
#include "Core/CDocumentWriter.h"
#include "Core/CMemoryReader.h"
#include "Tools/Docc/ThrowError.h"

namespace brt {
namespace {

void writeElement(CDocumentWriter& writer, const CElement& element) {
    for (const ElementAttribute& attribute : element.attributes) writer.attribute(attribute.name, attribute.value);
    for (const auto& child : element.children) {
        if (child->isTemplate()) {
            writer.beginTemplate(child->name, child->body().tag);
            writeElement(writer, child->body());
        } else {
            writer.beginElement(child->tag, child->name);
            writeElement(writer, *child);
        }
        writer.endElement();
    }
}

// The loader takes such an element for a plain object; no text stands for it.
void refuseTemplateTag(const CElement& element) {
    if (element.isTemplate()) throw std::runtime_error("an element has the tag 'template', and is none");
}

// The cursor stands at the attributes. The document has been checked, so that reading can't fail.
void readElement(const CDocument& document, CDocumentCursor& cursor, CElement& element) {
    for (int rest = cursor.read16(); rest > 0; --rest) {
        const CString& name = document.string(cursor.read16());
        element.attributes.push_back({name, document.string(cursor.read16())});
    }
    for (int rest = cursor.read16(); rest > 0; --rest) {
        CElement& child = element.addChild(document.string(cursor.read16()));
        child.name = document.string(cursor.read16());
        if (cursor.read8() == CDocument::kElement) {
            refuseTemplateTag(child);
            readElement(document, cursor, child);
            continue;
        }
        CElement& bodyElement = child.addChild(document.string(cursor.read16()));
        refuseTemplateTag(bodyElement);
        const std::uint32_t length = cursor.read32();
        CDocumentCursor body = document.element(cursor.position(), length);
        readElement(document, body, bodyElement);
        cursor.skip(length);
    }
}

}  // namespace

std::vector<std::uint8_t> compileDocument(const CElement& root) {
    CDocumentWriter writer;
    writeElement(writer, root);
    std::vector<std::uint8_t> bytes;
    throwIf(writer.finish(bytes));
    return bytes;
}

std::unique_ptr<CElement> readCompiledDocument(std::span<const std::uint8_t> bytes, CStringView name) {
    CMemoryReader reader(bytes.data(), static_cast<int>(bytes.size()));
    const CRef<CDocument> document(new CDocument);
    throwIf(document->open(reader, name));
    auto root = std::make_unique<CElement>();
    root->tag = CElement::kRootTag;
    CDocumentCursor cursor = document->root();
    readElement(*document, cursor, *root);
    return root;
}

}  // namespace brt
