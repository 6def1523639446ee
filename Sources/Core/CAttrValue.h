// SPDX-License-Identifier: LicenseRef-Halyard
// The value of one attribute, or of one argument of an event. It has a native form, and gives the others on demand:
//
//     native      as bool             as double     as integer                       as string
//     bool        itself              fails         1 or 0                           "true" or "false"
//     double      fails               itself        rounded half away from zero      fixed, four decimals
//     integer     not zero            exact         itself                           decimal
//     string      "1", "true", "0",   parsed        parsed                           itself
//                 "false"; else fails
//     pointer     fails               fails         fails                            fails
//     empty       false               0             0                                ""
//
// A conversion that fails gives the zero of its type. One that succeeds is kept, so that the next read costs a test of
// a bit; a failed one is never kept. Therefore a value whose conversions have all been made (`convertAll`) is only read
// from then on, and any number of threads may read it.
//
// Rounding to an integer saturates, and NaN fails. Numbers that are not finite have no text. The text of a number never
// depends on the locale, and one that rounds to zero has no sign.
//
// Owner: the map that holds it. Threads: one at a time, but see above.
#pragma once

#include <cstdint>

#include "Core/COrderedMap.h"
#include "Core/CString.h"

namespace brt {

class CAttrValue;
class CError;
class CObject;

// The attributes of an object, or the arguments of an event, by name.
using CAttrMap = COrderedMap<CString, CAttrValue>;

// Runs the handler of an attribute on `object`. A plain function, so that a class table is a constant.
using CAttrHandler = CError* (*)(CObject& object, const CAttrValue& value);

class CAttrValue {
public:
    enum class EType : std::uint8_t { kBool, kDouble, kInteger, kString, kPointer, kEmpty };

    CAttrValue() noexcept {}
    // Copies the value; not what ties the other one to its object.
    CAttrValue(const CAttrValue& other);
    CAttrValue& operator=(const CAttrValue& other);

    EType type() const noexcept { return m_type; }
    // The text was not written by an author of documents: braces in it are plain characters.
    bool isRaw() const noexcept { return has(kRaw); }

    // Assignment. Text decides its own native form: an integer where the integer prints as exactly this text; empty;
    // bool for "true" and "false"; else a string.
    void setText(CStringView text);
    // The same for text of a user, a host or a file.
    void setRawText(CStringView text);
    void setBool(bool value) noexcept;
    void setInteger(int value) noexcept;
    void setDouble(double value) noexcept;
    void setPointer(void* value) noexcept;

    // Reading.
    bool asBool() const noexcept { return has(kBoolValid) ? m_bool : convertToBool(); }
    double asDouble() const noexcept { return has(kDoubleValid) ? m_number : convertToDouble(); }
    int asInteger() const noexcept { return has(kIntegerValid) ? m_integer : convertToInteger(); }
    CStringView asString() const { return has(kStringValid) ? m_string.view() : convertToString(); }
    void* asPointer() const noexcept { return m_type == EType::kPointer ? m_pointer : nullptr; }

    // Whether the text or number stands for one; asBool() and the others tell which.
    bool isBool() const noexcept;
    bool isDouble() const noexcept;
    bool isInteger() const noexcept;

    // Makes every conversion that succeeds.
    void convertAll() const;

private:
    friend class CObject;  // runs the handlers

    enum EFlag : std::uint8_t {
        kBoolValid = 1,
        kDoubleValid = 2,
        kIntegerValid = 4,
        kStringValid = 8,
        kRaw = 16,
        kQueued = 32,           // waits on the object's list of handlers to run
        kHandlerResolved = 64,  // m_handler is what the class says
    };
    static constexpr std::uint8_t kFormFlags = kBoolValid | kDoubleValid | kIntegerValid | kStringValid | kRaw;

    bool has(EFlag flag) const noexcept { return (m_flags & flag) != 0; }
    void begin(EType type, EFlag nativeForm) noexcept;

    bool convertToBool() const noexcept;
    double convertToDouble() const noexcept;
    int convertToInteger() const noexcept;
    CStringView convertToString() const;

    CAttrValue* m_nextQueued = nullptr;
    CAttrHandler m_handler = nullptr;  // null: the class has none
    union {
        mutable double m_number = 0.0;
        void* m_pointer;  // has no other form, so it can share the place
    };
    mutable CString m_string;  // empty unless valid
    mutable std::int32_t m_integer = 0;
    mutable bool m_bool = false;
    EType m_type = EType::kEmpty;
    mutable std::uint8_t m_flags = 0;
};

}  // namespace brt
