// SPDX-License-Identifier: LicenseRef-Halyard
// What a class tells about its attributes and events: one row each. The same rows run the handlers at run time and are
// the schema that documents are compiled against, so every attribute that a class reads has a row, with a handler or
// not. Rows are constants in the program's image; nothing is allocated for them.
//
//     void CTimer::describeClass(CClassInfo& info) {
//         CObject::describeClass(info);
//         static constexpr CAttrInfo kAttributes[] = {
//             attr::number("interval").required().between(0.001, 1e6).runs<&CTimer::attrInterval>()
//                 .help("seconds between two ticks"),
//             attr::object("collector").ofClass<CCollector>().help("told of each tick"),
//             attr::flag("is-precise").byDefault("true").help("wait on the system's finest timer"),
//         };
//         static constexpr CEventInfo kEvents[] = {
//             event<&CTimer::onReset>("reset", "begins the interval anew"),
//         };
//         info.addAttributes(kAttributes);
//         info.addEvents(kEvents);
//     }
//
// Threads: any; constants.
#pragma once

#include <cstdint>
#include <limits>

#include "Core/CAttrValue.h"

namespace brt {

class CError;
class CObject;

// Runs the handler of an event on `object`, with the event's arguments.
using CEventHandler = CError* (*)(CObject& object, const CAttrMap& args);

// What the text of an attribute must be.
enum class EAttrKind : std::uint8_t {
    kFlag,       // "true" or "1", "false" or "0"
    kInteger,    // a decimal integer
    kNumber,     // a decimal number
    kText,       // any text
    kWord,       // one of a list of words
    kObject,     // the path of an object
    kObjects,    // paths of objects, parted by blanks
    kResource,   // the name of a resource
    kTemplate,   // the name of a template
    kAttrNames,  // words parted by blanks; each is the name of one more attribute that the element may have
};

struct CAttrInfo {
    CStringView name;
    EAttrKind kind = EAttrKind::kText;
    bool isRequired = false;
    bool isNumbered = false;                              // also the name with a decimal number behind it
    CStringView defaultText = {};                         // what the class takes where the attribute is missing
    CStringView words = {};                               // kWord: the words, parted by blanks
    double lowest = -std::numeric_limits<double>::max();  // kInteger, kNumber
    double highest = std::numeric_limits<double>::max();
    bool (*isOfClass)(const CObject* object) = nullptr;  // kObject, kObjects; null: any object
    CAttrHandler handler = nullptr;
    CStringView helpText = {};  // one line

    // A copy with one field changed. It stands ahead of its uses: clang wants it defined there for constants.
    template <class Field, class Value>
    constexpr CAttrInfo with(Field CAttrInfo::*field, Value value) const {
        CAttrInfo copy = *this;
        copy.*field = value;
        return copy;
    }

    constexpr CAttrInfo required() const { return with(&CAttrInfo::isRequired, true); }
    constexpr CAttrInfo numbered() const { return with(&CAttrInfo::isNumbered, true); }
    constexpr CAttrInfo byDefault(CStringView text) const { return with(&CAttrInfo::defaultText, text); }
    constexpr CAttrInfo help(CStringView text) const { return with(&CAttrInfo::helpText, text); }
    constexpr CAttrInfo between(double low, double high) const {
        return with(&CAttrInfo::lowest, low).with(&CAttrInfo::highest, high);
    }
    constexpr CAttrInfo atLeast(double low) const { return with(&CAttrInfo::lowest, low); }

    template <class T>
    constexpr CAttrInfo ofClass() const {
        return with(&CAttrInfo::isOfClass,
                    [](const CObject* object) { return dynamic_cast<const T*>(object) != nullptr; });
    }

    // The handler: a member `CError* attrXxx(const CAttrValue& value)`.
    template <auto kMember>
    constexpr CAttrInfo runs() const {
        return with(&CAttrInfo::handler, [](CObject& object, const CAttrValue& value) -> CError* {
            return (static_cast<OwnerOf<decltype(kMember)>&>(object).*kMember)(value);
        });
    }

    template <class Member>
    struct Owner;
    template <class T, class Function>
    struct Owner<Function T::*> {
        using Type = T;
    };
    template <class Member>
    using OwnerOf = typename Owner<Member>::Type;
};

// Begins a row.
namespace attr {
constexpr CAttrInfo flag(CStringView name) { return {.name = name, .kind = EAttrKind::kFlag}; }
constexpr CAttrInfo integer(CStringView name) { return {.name = name, .kind = EAttrKind::kInteger}; }
constexpr CAttrInfo number(CStringView name) { return {.name = name, .kind = EAttrKind::kNumber}; }
constexpr CAttrInfo text(CStringView name) { return {.name = name, .kind = EAttrKind::kText}; }
constexpr CAttrInfo word(CStringView name, CStringView words) {
    return {.name = name, .kind = EAttrKind::kWord, .words = words};
}
constexpr CAttrInfo object(CStringView name) { return {.name = name, .kind = EAttrKind::kObject}; }
constexpr CAttrInfo objects(CStringView name) { return {.name = name, .kind = EAttrKind::kObjects}; }
constexpr CAttrInfo resource(CStringView name) { return {.name = name, .kind = EAttrKind::kResource}; }
constexpr CAttrInfo templateName(CStringView name) { return {.name = name, .kind = EAttrKind::kTemplate}; }
constexpr CAttrInfo attrNames(CStringView name) { return {.name = name, .kind = EAttrKind::kAttrNames}; }
}  // namespace attr

struct CEventInfo {
    CStringView name;
    CEventHandler handler = nullptr;
    CStringView helpText = {};
};

// A row of an event. The handler is a member `CError* onXxx(const CAttrMap& args)` or `CError* onXxx()`.
template <auto kMember>
constexpr CEventInfo event(CStringView name, CStringView help = {}) {
    using T = CAttrInfo::OwnerOf<decltype(kMember)>;
    return {name,
            [](CObject& object, const CAttrMap& args) -> CError* {
                if constexpr (requires(T & t) { (t.*kMember)(args); }) {
                    return (static_cast<T&>(object).*kMember)(args);
                } else {
                    static_cast<void>(args);
                    return (static_cast<T&>(object).*kMember)();
                }
            },
            help};
}

}  // namespace brt
