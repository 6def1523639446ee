// SPDX-License-Identifier: LicenseRef-Halyard
// The base of everything that a compiled document describes: an element with a tag, a name, attributes and children.
//
// Objects find each other by path, so that nearly all wiring of the program is data:
//     "plugin.env"         from this tree's root, which is "/"
//     ".env" "^env" "^^"   a child, a sibling, the grandparent
//     "shared::font.base"  in the shared tree
//     "item" "item#" of smallest, of greatest index; "item#2" of index 2; "item#+1" "item#-1" counted from these ends
//
// An object comes to life in stages. The loader assigns the attributes of its element, then runs `init`, `initChilds`,
// builds each child completely, runs `initDone`. Handlers of attributes assigned with `kDeferred` wait until the base's
// `initChilds`, and then run in the reverse order of assignment, each once, with the last value.
//
// Owner: the parent; `release` is the one way to end an object. A root owns its context. Threads: the one that builds
// the tree, then the one that runs its events; nothing is locked. After `makeReadOnly` any number of threads may read.
// Invariants: "full-name" is the path from the root, as long as the object lives; parent, root, context and id never
// change once the object hangs in a tree.
#pragma once

#include <cstdint>
#include <memory>

#include "Core/CAttrValue.h"
#include "Core/CCheckedObject.h"
#include "Core/CCounted.h"
#include "Core/CError.h"
#include "Core/CSmallArray.h"

namespace brt {

class CClassInfo;
class CDocument;
class CDocumentCursor;
class CObjectAddress;
class CObjectContext;
class CObjectEventBridge;
class CObjectLinks;
class CObjectWatch;
class CPosInputStream;
class CTemplateRecord;
struct CFollowedAttr;

// When the handler of an assigned attribute runs.
enum ETiming : bool { kDeferred, kImmediate };
// Whether a tag may name a template.
enum ETagLookup : bool { kClassesOnly, kTemplatesFirst };
enum ETemplateNeed : bool { kTemplateOptional, kTemplateRequired };
// Whether the object that a document is loaded into runs its own stages too.
enum ERootStages : bool { kLeaveRoot, kInitRoot };

class CObject : public CCheckedObject, public CBrtMemAllocator {
public:
    enum EState : std::uint8_t { kConstructed, kAttributesSet, kHandlersRun, kChildrenMade, kComplete };
    static constexpr int kMaxDepth = 128;  // of a tree: templates that make each other come to an end

    CObject();

    // Life.
    ~CObject() override;
    [[nodiscard]] virtual CError* init();
    [[nodiscard]] virtual CError* initChilds();
    [[nodiscard]] virtual CError* initDone();
    // Children come and go. Overrides call the base's.
    [[nodiscard]] virtual CError* onChildAdded(CObject* child);
    virtual void onChildRemoved(CObject* child);
    // The end: cut all that other objects know of this one; leave the parent.
    virtual void releaseLinks();
    virtual void detach();
    // Events that every object has: an attribute that this one follows has changed; a child asks for its end.
    [[nodiscard]] virtual CError* onSetAttrEvent(CStringView sender, CStringView name, const CAttrValue& value);
    [[nodiscard]] virtual CError* onReleaseChildEvent(const CAttrMap& args);

    // The class tables of a plain object, and of one that holds any attributes.
    static void describeClass(CClassInfo& info);
    static void describeBag(CClassInfo& info);

    // Releases the children, last first, and the object. Null is ignored.
    static void release(CObject* object);
    // Makes a new object the root of a tree of its own. Takes the context over; null for the shared tree.
    void becomeRoot(const CClassInfo& plainObject, CObjectContext* context);
    // Freezes this object and all below it: whoever reads never writes again. There is no way back.
    void makeReadOnly();

    // The tree.
    CObject* parent() const noexcept { return m_parent; }
    CObject* root() const noexcept { return m_root; }
    CObjectContext* context() const noexcept { return m_context; }
    const CSmallArray<CObject*>& children() const noexcept { return m_children; }
    const CString& tag() const noexcept { return m_tag; }
    int id() const noexcept { return m_id; }  // -1 without a context
    EState state() const noexcept { return m_state; }
    bool isReadOnly() const noexcept { return m_isReadOnly; }
    const CClassInfo& classInfo() const noexcept { return *m_classInfo; }

    // Attributes of this object alone. A missing one gives "", false, 0 or 0.0. Views are valid until the attribute
    // changes.
    const CAttrMap& attributes() const noexcept { return m_attributes; }
    const CAttrValue* findAttr(CStringView name) const noexcept { return m_attributes.find(name); }
    CStringView getAttrString(CStringView name) const;
    bool getAttrBool(CStringView name) const noexcept;
    int getAttrInt(CStringView name) const noexcept;
    double getAttrDouble(CStringView name) const noexcept;
    void* getAttrPointer(CStringView name) const noexcept;
    // "" for a root. The short name is what stands behind its last ".".
    CStringView getFullName() const { return getAttrString(kFullName); }
    CStringView getShortName() const;

    // Assignment. Text is looked through for references first, a raw text is not. On a read-only object, and for the
    // empty name, nothing happens. "full-name" belongs to the tree: assigning it fails.
    [[nodiscard]] CError* setAttr(CStringView name, CStringView text, ETiming timing);
    [[nodiscard]] CError* setAttrRaw(CStringView name, CStringView text, ETiming timing);
    [[nodiscard]] CError* setAttrValue(CStringView name, const CAttrValue& source, ETiming timing);
    [[nodiscard]] CError* setAttrPointer(CStringView name, void* pointer, ETiming timing);
    [[nodiscard]] CError* setAttrDouble(CStringView name, double number, ETiming timing);

    // Paths. Null where a step leads nowhere.
    CObject* findObject(CStringView path) const;
    CObject* findChild(CStringView step) const;
    // The path with its resolvable part replaced by the full name of what it leads to; for messages.
    CString getObjectPathName(CStringView path) const;
    // The object at a path, or at the path in an attribute of this object, of class T. On failure `object` is null.
    template <class T>
    [[nodiscard]] CError* findObjectChecked(T*& object, CStringView path) const;
    template <class T>
    [[nodiscard]] CError* findObjectByAttr(CStringView attrName, T*& object) const;

    // Hangs a new child below this object, without running its stages. `child` is set once it hangs here, also if
    // `onChildAdded` fails then. "name#7" asks for index 7; a taken index gives way to the next free one.
    [[nodiscard]] CError* addChild(CObject*& child, CStringView tag, CStringView name, ETagLookup lookup);
    // A complete child of class T from a template or a class. `overrides` win over the template's attributes, `attrs`
    // are set before. If a stage fails the child stays, in `child`, and goes with its parent.
    template <class T>
    [[nodiscard]] CError* createChild(T*& child, CStringView tag, CStringView name, ETemplateNeed need,
                                      const CAttrMap* overrides = nullptr, const CAttrMap* attrs = nullptr);
    // Whether this object, one above it or the shared tree's root has a template of that name.
    bool hasTemplate(CStringView tag) const noexcept;

    // Builds the elements of a compiled document, a resource or else a file, into this object.
    [[nodiscard]] CError* loadXMLData(CStringView name, ERootStages stages);
    // The same from an open stream; `name` is for messages.
    [[nodiscard]] CError* loadDocument(CPosInputStream& stream, CStringView name, ERootStages stages);

    // Events. A subscription is by the sender's full name, whether it exists yet or not; the handler runs on the thread
    // of the nearest bridge at or above this object, and without one never. `fireEvent` calls listeners on this thread
    // before it returns. These belong to the tree's thread; any other uses the object's address.
    void listenObject(CStringView senderFullName, CStringView eventName, CStringView handlerName);
    void unlistenObject(CStringView senderFullName, CStringView eventName);
    [[nodiscard]] CError* fireEvent(CStringView eventName);
    [[nodiscard]] CError* fireEvent(CStringView eventName, const CAttrMap& args);
    // Runs a handler of this object later, over the bridge; now.
    void postEvent(CStringView sender, CStringView handlerName, const CAttrMap& args);
    [[nodiscard]] CError* runEvent(CStringView handlerName);
    [[nodiscard]] CError* runEvent(CStringView handlerName, const CAttrMap& args);
    // Asks the parent to release this object later, so that an object may end itself inside a handler of its own.
    void releaseBridged();
    // What other threads post and fire with. REQUIRES: the object hangs in a tree.
    CRef<CObjectAddress> address();

    // References in the text of an attribute, as "{/^ width?20}". At most `kMaxExpansions` are followed, up to
    // `kMaxExpandedUnits` units; a text that asks for more is kept as far as it came, and logged. `isRaw`: braces of
    // raw text have come into the result.
    static constexpr int kMaxExpansions = 1000;
    static constexpr int kMaxExpandedUnits = 61440;
    void expandReferences(CString& result, bool& isRaw, CStringView name, CStringView text);
    // The attribute that one reference means: "NAME", "/PATH NAME" or "/PATH", of that object or, unless `ownOnly`, the
    // nearest above it that has it. `attrName` is the attribute that refers. Null if there is none.
    const CAttrValue* resolveReference(CStringView expression, CStringView attrName, bool ownOnly) const;
    // Has the attribute `attrName` follow the one that "/PATH NAME" or "CHILD NAME" means, until either object goes.
    // Returns its present value; null if there is none to take.
    const CAttrValue* bindAttribute(CStringView expression, CStringView attrName);

protected:
    // Runs the handlers that wait.
    [[nodiscard]] CError* flushPendingAttrs();
    // Tells those that follow an attribute of this object.
    [[nodiscard]] CError* notifyBindings(CStringView name, const CAttrValue& value);
    // Makes this object the end of a bridge: what is for it and for those below it goes over it. For constructors.
    void setBridge(CRef<CObjectEventBridge> bridge);

private:
    static constexpr CStringView kFullName = "full-name";
    using NamesakeMap = COrderedMap<std::int32_t, CObject*>;
    using TypeTest = bool (*)(const CObject* object);
    template <class T>
    static bool isOfClass(const CObject* object) {
        return dynamic_cast<const T*>(object) != nullptr;
    }

    template <class Assign>
    CError* assignAttr(CStringView name, ETiming timing, Assign assign);
    CError* notifyAttrHandler(CStringView name, CAttrValue& value, ETiming timing);
    CError* runPendingHandlers(CAttrValue* value);

    CError* chooseIndex(CStringView name, int& index) const;
    CObject* makeObject(CStringView classTag, CStringView name) const;
    void hang(CObject* child, CStringView name, int index);
    CTemplateRecord* findTemplate(CStringView name) const noexcept;
    CError* createChildOfClass(CObject*& child, CStringView tag, CStringView name, ETemplateNeed need, TypeTest test,
                               const CAttrMap* overrides, const CAttrMap* attrs);
    CError* runStages();

    int walkPath(CStringView path, CObject*& reached) const;
    CError* findObjectOfClass(CObject*& object, CStringView path, TypeTest test) const;
    CError* findObjectOfClassByAttr(CStringView attrName, CObject*& object, TypeTest test) const;

    CError* loadNode(CDocument& document, CDocumentCursor& cursor);
    CError* loadElement(CDocument& document, CDocumentCursor& cursor);
    CError* loadTemplate(CDocument& document, CDocumentCursor& cursor);
    CError* loadAttributes(const CDocument& document, CDocumentCursor& cursor);
    CError* loadChildren(CDocument& document, CDocumentCursor& cursor);

    CObjectLinks& links();
    void cutLinks();
    CObject* findSource(CStringView expression) const;
    CError* notifyFollowers(CFollowedAttr& attr, const CAttrValue& value, const CObjectWatch& watch);

    friend class CObjectWatch;

    const CClassInfo* m_classInfo = nullptr;  // of the tag; not owned
    CAttrMap m_attributes;
    CAttrValue* m_pendingAttrs = nullptr;                // those whose handlers wait, the latest first
    CSmallArray<CObject*> m_children;                    // owned, in order of creation
    COrderedMap<CString, NamesakeMap> m_names;           // children by base name, then by index
    COrderedMap<CString, CTemplateRecord*> m_templates;  // of children that are templates, by short name; not owned
    CObject* m_parent = nullptr;
    CObject* m_root = nullptr;
    CObjectContext* m_context = nullptr;    // owned by the root
    CRef<CTemplateRecord> m_template;       // this object is a template
    CRef<CTemplateRecord> m_madeFrom;       // this object is made from a template; until its children stand
    const CAttrMap* m_overrides = nullptr;  // not owned; until `init` has applied them
    std::unique_ptr<CObjectLinks> m_links;  // events and bindings; null as long as there are none
    CObjectWatch* m_watches = nullptr;      // who wants to know whether this object still lives; the latest first
    CString m_tag;
    std::int32_t m_id = -1;
    std::int32_t m_index = 0;   // among the children of the same base name
    std::uint16_t m_depth = 0;  // below the root
    EState m_state = kConstructed;
    bool m_isReadOnly = false;
};

template <class T>
CError* CObject::findObjectChecked(T*& object, CStringView path) const {
    CObject* found = nullptr;
    CError* const error = findObjectOfClass(found, path, &isOfClass<T>);
    object = dynamic_cast<T*>(found);
    return error;
}

template <class T>
CError* CObject::findObjectByAttr(CStringView attrName, T*& object) const {
    CObject* found = nullptr;
    CError* const error = findObjectOfClassByAttr(attrName, found, &isOfClass<T>);
    object = dynamic_cast<T*>(found);
    return error;
}

template <class T>
CError* CObject::createChild(T*& child, CStringView tag, CStringView name, ETemplateNeed need,
                             const CAttrMap* overrides, const CAttrMap* attrs) {
    CObject* made = nullptr;
    CError* const error = createChildOfClass(made, tag, name, need, &isOfClass<T>, overrides, attrs);
    child = dynamic_cast<T*>(made);
    return error;
}

}  // namespace brt
