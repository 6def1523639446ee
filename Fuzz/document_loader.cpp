// SPDX-License-Identifier: LicenseRef-Halyard
// A compiled document: built in place and from a copy, both give the same tree, what its templates make too.
#include "Core/CApplication.h"
#include "Core/CError.h"
#include "Core/CMemoryReader.h"
#include "Fuzz/FuzzTarget.h"

#include <string>

namespace brt::fuzz {

// Fails where its attributes say so, and queues handlers from handlers.
class CFuzzed : public CObject {
public:
    static void describeClass(CClassInfo& info) {
        CObject::describeClass(info);
        static constexpr CAttrInfo kAttributes[] = {
            attr::text("a").runs<&CFuzzed::attrA>(),
            attr::text("b").runs<&CFuzzed::attrB>(),
            attr::object("o"),
        };
        info.addAttributes(kAttributes);
    }

    CError* initDone() override {
        CObject* object = nullptr;
        if (findAttr("o")) BRT_TRY(getFullName(), findObjectByAttr("o", object));
        return CObject::initDone();
    }

private:
    CError* attrA(const CAttrValue& value) { return setAttr("b", value.asString(), kDeferred); }
    CError* attrB(const CAttrValue& value) { return setAttrDouble("a", value.asDouble(), kDeferred); }
};

void startOnce() {
    static const bool isStarted = [] {
        static constexpr CCreatorRow kTags[] = {bagRow("core:object"), creatorRow<CFuzzed>("f")};
        static constexpr std::span<const CCreatorRow> kTables[] = {kTags};
        CApplication::start({kTables, nullptr, ""});
        return true;
    }();
    require(isStarted, "the application starts");
}

void dump(const CObject& object, std::string& text) {
    text += '<' + object.tag().toUtf8() + '|' + std::to_string(object.id()) + std::to_string(object.state());
    for (const auto& [name, value] : object.attributes())
        text += ' ' + name.toUtf8() + '=' + CString(value.asString()).toUtf8();
    for (const CObject* const child : object.children()) dump(*child, text);
    text += '>';
}

// What a document makes: the tree, or the error, and a child from each template of the root.
std::string build(CPosInputStream& stream) {
    CObject* root = nullptr;
    require(!discardError(CApplication::initRootObject(root, "")), "a root is made");
    std::string text;
    CString error;
    errorToText(root->loadDocument(stream, "x", kLeaveRoot), error, false);
    text += error.toUtf8();
    const int count = root->children().count();
    for (int i = 0; i < count; ++i) {
        const CString name = root->children()[i]->getShortName();
        if (!root->hasTemplate(name)) continue;
        CObject* made = nullptr;
        errorToText(root->createChild(made, name, "made", kTemplateRequired), error, false);
        text += error.toUtf8();
    }
    root->makeReadOnly();
    dump(*root, text);
    CObject::release(root);
    return text;
}

}  // namespace brt::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace brt;
    fuzz::startOnce();
    CMemoryReader copied(data, static_cast<int>(size));
    CMemoryReaderStatic inPlace(data, static_cast<int>(size));
    fuzz::require(fuzz::build(copied) == fuzz::build(inPlace), "a copy gives the tree that the place gives");
    return 0;
}
