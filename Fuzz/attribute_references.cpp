// SPDX-License-Identifier: LicenseRef-Halyard
// References in the texts of attributes, and bindings, among three objects that lie within each other. Each line of the
// input is one step:
//     0=xTEXT   sets attribute x, y or z of object 0, 1 or 2 to a text with references
//     0~xTEXT   sets it to a raw text
//     0-        releases the object with those below it, and makes them anew
#include "Core/CApplication.h"
#include "Core/CError.h"
#include "Core/Log.h"
#include "Fuzz/FuzzTarget.h"

#include <algorithm>
#include <array>

namespace brt::fuzz {

constexpr int kObjects = 3;
constexpr int kMaxSteps = 30;  // each may follow a thousand references

// Notes whether references were followed no further.
class CLimitWatch : public CLogSink {
public:
    CLimitWatch() : m_before(setLogSink(this)) {}
    ~CLimitWatch() override { setLogSink(m_before); }
    bool isReached() const { return m_isReached; }

private:
    void write(std::string_view text, bool) override {
        m_isReached |= text.find("were followed no further") != std::string_view::npos;
    }

    CLogSink* const m_before;
    bool m_isReached = false;
};

void startOnce() {
    static const bool isStarted = [] {
        static constexpr CCreatorRow kTags[] = {bagRow("core:object")};
        static constexpr std::span<const CCreatorRow> kTables[] = {kTags};
        CApplication::start({kTables, nullptr, ""});
        return true;
    }();
    require(isStarted, "the application starts");
}

bool hasReference(CStringView text) {
    const int open = text.findLast(u'{');
    return open >= 0 && text.slice(open).find(u'}') >= 0;
}

class CReferenceTree {
public:
    CReferenceTree() {
        require(!discardError(CApplication::initRootObject(m_root, "")), "a root is made");
        grow(0);
    }
    ~CReferenceTree() { CObject::release(m_root); }
    CReferenceTree(const CReferenceTree&) = delete;
    CReferenceTree& operator=(const CReferenceTree&) = delete;

    void step(CStringView line) {
        if (line.length() < 2) return;
        const int number = line[0] % kObjects;
        CObject& object = *m_objects[static_cast<std::size_t>(number)];
        if (line[1] == u'-') {
            CObject::release(&object);
            grow(number);
        } else if (line.length() > 2) {
            const CStringView name = CStringView("xyz").slice(line[2] % 3, 1);
            line[1] == u'~' ? setRaw(object, name, line.slice(3)) : set(object, name, line.slice(3));
        }
    }

private:
    void grow(int first) {
        for (int i = first; i < kObjects; ++i) {
            CObject& parent = i > 0 ? *m_objects[static_cast<std::size_t>(i - 1)] : *m_root;
            require(!discardError(parent.createChild(m_objects[static_cast<std::size_t>(i)], "core:object",
                                                     CStringView("abc").slice(i, 1), kTemplateOptional)),
                    "an object is made");
        }
    }

    static void set(CObject& object, CStringView name, CStringView text) {
        const CLimitWatch limit;
        require(!discardError(object.setAttr(name, text, kImmediate)), "any text is taken");
        const CStringView result = object.getAttrString(name);
        if (!hasReference(text)) require(result == text, "a text without references stays as it is");
        require(result.length() <= std::max(text.length(), CObject::kMaxExpandedUnits), "growth has its limit");
        if (!limit.isReached() && !object.findAttr(name)->isRaw())
            require(!hasReference(result), "no reference is left over");
    }

    static void setRaw(CObject& object, CStringView name, CStringView text) {
        require(!discardError(object.setAttrRaw(name, text, kImmediate)), "any raw text is taken");
        require(object.getAttrString(name) == text, "a raw text stays as it is");
        const CString reference = CString("<{@").append(name).append("}>");
        require(!discardError(object.setAttr("probe", reference, kImmediate)), "any text is taken");
        require(object.getAttrString("probe") == CString("<").append(text).append(">"),
                "a reference takes a raw text as it is");
    }

    CObject* m_root = nullptr;
    std::array<CObject*, kObjects> m_objects{};
};

}  // namespace brt::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace brt;
    fuzz::startOnce();
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    CStringList lines;
    CString::fromUtf8(text).split(lines, u'\n', false, false);
    fuzz::CReferenceTree tree;
    int steps = 0;
    for (const CString* const line : lines)
        if (++steps <= fuzz::kMaxSteps) tree.step(*line);
    return 0;
}
