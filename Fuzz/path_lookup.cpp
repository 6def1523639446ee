// SPDX-License-Identifier: LicenseRef-Halyard
// Paths and names: lines of the input are looked up from several places of a tree, and given to children.
#include "Core/CApplication.h"
#include "Core/CError.h"
#include "Fuzz/FuzzTarget.h"

namespace brt::fuzz {

CObject* add(CObject& parent, CStringView name) {
    CObject* child = nullptr;
    discardError(parent.addChild(child, "core:object", name, kClassesOnly));  // odd names are refused
    return child;
}

void startOnce() {
    static const bool isStarted = [] {
        static constexpr CCreatorRow kTags[] = {bagRow("core:object")};
        static constexpr std::span<const CCreatorRow> kTables[] = {kTags};
        CApplication::start({kTables, nullptr, ""});
        return true;
    }();
    require(isStarted, "the application starts");
}

void lookUp(CObject& root, CStringView path) {
    for (CObject* const from : {&root, root.findChild("a"), root.findObject("a.b"), root.findObject("a.b#")}) {
        const CString name = from->getObjectPathName(path);
        CObject* const found = from->findObject(path);
        from->findChild(path);
        if (!found || path.startsWith("shared::")) continue;
        require(found->root() == &root, "a path stays in its tree");
        require(name == found->getFullName(), "a path that leads somewhere is told by the full name");
        if (found != &root) require(root.findObject(name) == found, "a full name leads to its object");
    }
}

// Whatever name children were given, nothing of them stays behind.
void addAndRelease(CObject& root, CStringView name) {
    CObject* const parent = add(root, "parent");
    CObject* const children[] = {add(*parent, name), add(*parent, "x"), add(*parent, name)};
    for (CObject* const child : children) {
        const int count = parent->children().count();
        if (!child) continue;
        require(child->getFullName().startsWith(parent->getFullName()), "a child's name begins with its parent's");
        CObject::release(child);
        require(parent->children().count() == count - 1, "a released child leaves its parent");
    }
    require(!parent->findChild("x") && !parent->findChild(name), "a released child isn't found");
    CObject::release(parent);
}

}  // namespace brt::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace brt;
    fuzz::startOnce();
    CObject* root = nullptr;
    fuzz::require(!discardError(CApplication::initRootObject(root, "")), "a root is made");
    CObject* const a = fuzz::add(*root, "a");
    for (const char* name : {"b", "b", "b#7", "c", "b"}) fuzz::add(*fuzz::add(*a, name), "d");

    const std::string_view text(reinterpret_cast<const char*>(data), size);
    CStringList lines;
    CString::fromUtf8(text).split(lines, u'\n', true, true);
    for (const CString* const line : lines) {
        fuzz::lookUp(*root, *line);
        fuzz::addAndRelease(*root, *line);
    }
    CObject::release(root);
    return 0;
}
