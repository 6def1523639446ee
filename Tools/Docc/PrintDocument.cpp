// SPDX-License-Identifier: LicenseRef-Halyard
#include <stdexcept>

#include "Tools/Docc/DocumentText.h"

namespace brt {
namespace {

bool isNameUnit(char16_t unit, bool isFirst) noexcept {
    const bool isLetter = (unit >= u'a' && unit <= u'z') || (unit >= u'A' && unit <= u'Z') || unit == u'_' ||
                          unit == u':' || unit >= 0x80;
    return isLetter || (!isFirst && ((unit >= u'0' && unit <= u'9') || unit == u'-' || unit == u'.'));
}

[[noreturn]] void refuse(const CElement& element, const std::string& what) {
    throw std::runtime_error("the element '" + element.name.toUtf8() + "' can't be written as text: " + what);
}

std::string nameText(const CElement& element, CStringView name) {
    bool isGood = !name.isEmpty();
    for (int i = 0; i < name.length(); ++i) isGood = isGood && isNameUnit(name[i], i == 0);
    std::string text = CString(name).toUtf8();
    if (!isGood) refuse(element, "'" + text + "' is no tag and no attribute's name");
    return text;
}

// Blanks other than the space would come back as spaces.
std::string quotedText(CStringView value) {
    std::string text = "\"";
    for (const char c : CString(value).toUtf8()) {
        switch (c) {
        case '&': text += "&amp;"; break;
        case '<': text += "&lt;"; break;
        case '>': text += "&gt;"; break;
        case '"': text += "&quot;"; break;
        default:
            if (static_cast<unsigned char>(c) < 0x20)
                text += "&#" + std::to_string(int{c}) + ";";
            else
                text += c;
        }
    }
    return text + "\"";
}

void print(const CElement& element, int depth, std::string& text) {
    const std::string indent(static_cast<std::size_t>(4 * depth), ' ');
    const std::string tag = nameText(element, element.tag);
    text += indent + "<" + tag;
    if (!element.name.isEmpty()) text += " name=" + quotedText(element.name);
    for (const ElementAttribute& attribute : element.attributes) {
        if (attribute.name == CStringView("name")) refuse(element, "it has an attribute 'name'");
        text += " " + nameText(element, attribute.name) + "=" + quotedText(attribute.value);
    }
    if (element.children.empty()) {
        text += "/>\n";
        return;
    }
    text += ">\n";
    for (const auto& child : element.children) print(*child, depth + 1, text);
    text += indent + "</" + tag + ">\n";
}

}  // namespace

std::string printDocument(const CElement& root) {
    std::string text;
    print(root, 0, text);
    return text;
}

}  // namespace brt
