// SPDX-License-Identifier: LicenseRef-Halyard
#include "Tools/Halyard/TreeCommand.h"

#include <cstdio>

#include "Core/CApplication.h"
#include "Core/CObject.h"
#include "Tools/Halyard/CToolInstance.h"
#include "Tools/Halyard/ToolError.h"
#include "Tools/NearName.h"

namespace brt {
namespace {

constexpr CStringView kPrefix = "shared::";

std::string utf8(CStringView text) { return CString(text).toUtf8(); }

const char* stateName(CObject::EState state) {
    switch (state) {
    case CObject::kConstructed: return "constructed";
    case CObject::kAttributesSet: return "attributes set";
    case CObject::kHandlersRun: return "handlers run";
    case CObject::kChildrenMade: return "children made";
    case CObject::kComplete: return "complete";
    }
    return "";
}

// In quotes and on one line.
std::string valueText(const CAttrValue& value) {
    if (value.type() == CAttrValue::EType::kPointer) return "(an address)";
    std::string text = "\"";
    for (const char c : utf8(value.asString())) {
        if (c == '"' || c == '\\') text += '\\';
        if (c == '\n')
            text += "\\n";
        else
            text += static_cast<unsigned char>(c) < 0x20 ? '?' : c;
    }
    return text + "\"";
}

void print(const CObject& object, int depth, std::string& text) {
    const std::string indent(static_cast<std::size_t>(2 * depth), ' ');
    if (!object.parent())
        text += indent + utf8(kPrefix);
    else
        text += indent + (object.getShortName().isEmpty() ? "(no name)" : utf8(object.getShortName())) + " <" +
                object.tag().toUtf8() + ">";
    text += std::string(" ") + stateName(object.state()) + "\n";
    for (const auto& [name, value] : object.attributes())
        if (name != CStringView("full-name")) text += indent + "    " + name.toUtf8() + " = " + valueText(value) + "\n";
    for (const CObject* const child : object.children()) print(*child, depth + 1, text);
}

// Step by step, so that the message can tell which one leads nowhere.
const CObject& follow(const CObject& root, CStringView path) {
    const CObject* object = &root;
    for (int start = 0; start < path.length();) {
        int end = path.find(u'.', start);
        if (end < 0) end = path.length();
        const CStringView step = path.slice(start, end - start);
        start = end + 1;
        if (step.isEmpty()) continue;
        const CObject* const child = object->findChild(step);
        if (!child) {
            CNearName near(step);
            for (const CObject* const other : object->children()) near.consider(other->getShortName());
            throw CToolError("tree: " + brt::quoted(utf8(kPrefix) + utf8(object->getFullName())) + " has no child " +
                             brt::quoted(utf8(step)) + near.question());
        }
        object = child;
    }
    return *object;
}

}  // namespace

int runTree(const TreeRequest& request) {
    startApplication();
    const CObject* const shared = CApplication::sharedObject();
    const CString path = CString::fromUtf8(request.path);
    const CObject& top = follow(*shared, path.startsWith(kPrefix) ? path.slice(kPrefix.length()) : path.view());
    std::string text;
    print(top, 0, text);
    std::fputs(text.c_str(), stdout);
    return 0;
}

}  // namespace brt
