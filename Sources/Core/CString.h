// SPDX-License-Identifier: LicenseRef-Halyard
// Text that is owned, in 8-bit or 16-bit form, with room for short texts inside the object.
//
// A text is 8-bit (Latin-1) until something forces it wide: a wide source, or a code point above 255. In the 16-bit
// form one unit is one code point up to U+FFFF; nothing forms surrogate pairs, but for paths on their way to the file
// system. Operands of all operations may be the string itself, or parts of it.
//
// Invariants: the text ends with a NUL unit, and stands in the inline buffer as long as it fits in 31 bytes with it: 30
// units of 8 bits, or 14 of 16. A text that has left that buffer stays outside; but a move hands its place over and
// leaves an empty text inside.
//
// Owner: as any value; copies are deep. Threads: one at a time.
#pragma once

#include <concepts>
#include <cstdint>
#include <string>
#include <string_view>

#include "Core/CBrtMemAllocator.h"
#include "Core/CStringView.h"

namespace brt {

class CStringList;
template <class Key>
struct CKeyOrder;

class CString : public CBrtMemAllocator {
public:
    CString() noexcept { resetToInline(); }
    CString(CStringView text);
    template <class T>
    requires(std::convertible_to<const T&, CStringView> && !std::same_as<T, CString>) CString(const T& text)
        : CString(CStringView(text)) {}
    CString(const CString& other) : CString(other.view()) {}
    CString(CString&& other) noexcept { takeFrom(other); }
    ~CString() { freeHeap(); }

    // The form becomes that of the source.
    CString& operator=(const CString& other) { return this != &other ? assign(other) : *this; }
    CString& operator=(CString&& other) noexcept;
    CString& operator=(CStringView text) { return assign(text); }
    CString& operator=(const char* text) { return assign(text); }
    CString& assign(CStringView text);

    operator CStringView() const noexcept { return view(); }
    CStringView view() const noexcept { return isWide() ? CStringView(wide()) : CStringView(narrow()); }

    bool isWide() const noexcept { return m_inlineBuffer[31] != 0; }
    int length() const noexcept { return m_length; }
    bool isEmpty() const noexcept { return m_length == 0; }
    // Bytes on the heap; 0 while the inline buffer is in use.
    int capacity() const noexcept { return isInline() ? 0 : m_capacity; }

    // REQUIRES: 0 <= index < length.
    char16_t operator[](int index) const noexcept { return view()[index]; }

    // The text in its form, with a NUL behind it. REQUIRES: that form.
    const char* data8() const noexcept { return BRT_ASSERT(!isWide()), static_cast<const char*>(m_data); }
    const char16_t* data16() const noexcept { return BRT_ASSERT(isWide()), static_cast<const char16_t*>(m_data); }
    char* data8() noexcept { return BRT_ASSERT(!isWide()), static_cast<char*>(m_data); }
    char16_t* data16() noexcept { return BRT_ASSERT(isWide()), static_cast<char16_t*>(m_data); }
    std::string_view narrow() const noexcept { return {data8(), static_cast<std::size_t>(m_length)}; }
    std::u16string_view wide() const noexcept { return {data16(), static_cast<std::size_t>(m_length)}; }

    // Sets the length in the form it has and writes the terminator. Without `keepContent`, and behind the old text, the
    // units are undefined. A negative length means 0.
    void setLength(int length, bool keepContent);

    // Turns the first `count` units into the 16-bit form; those behind them are undefined. REQUIRES: count <= length.
    void widen(int count);
    void widen() { widen(m_length); }

    // The empty text in 8-bit form; keeps the room.
    void clear() { assign(CStringView()); }

    // A wide operand makes an 8-bit text wide; an 8-bit operand is widened on the way to a wide text.
    CString& append(CStringView text) {
        // The common case: bytes behind bytes, and there is room. Nothing moves, so the text may be a part of this one.
        const std::int64_t length = std::int64_t{m_length} + text.length();
        if (isWide() || text.isWide() || length >= roomBytes()) return appendMoving(text);
        text.narrow().copy(data8() + m_length, text.narrow().size());
        m_length = static_cast<std::int32_t>(length);
        data8()[length] = 0;
        return *this;
    }
    CString& append(char16_t unit);
    CString& operator+=(CStringView text) { return append(text); }

    int compare(CStringView other) const noexcept { return view().compare(other); }
    int find(char16_t unit, int start = 0) const noexcept { return view().find(unit, start); }
    int findLast(char16_t unit) const noexcept { return view().findLast(unit); }
    int find(CStringView part, int start = 0) const noexcept { return view().find(part, start); }
    bool startsWith(CStringView prefix) const noexcept { return view().startsWith(prefix); }
    bool endsWith(CStringView suffix) const noexcept { return view().endsWith(suffix); }
    CStringView slice(int start, int count = -1) const noexcept { return view().slice(start, count); }

    // A count of -1, or one that reaches past the end, means up to the end; 0 or less after that gives the empty text.
    void substring(CString& result, int start, int count) const {
        result.assign(view().slice(start, count < -1 ? 0 : count));
    }

    // The pieces between separators: "a,b" gives two, "a," two, "," two, "" none. With `skipEmpty` the empty ones are
    // left out; with `clearFirst` the list is emptied first, else they are added to it.
    void split(CStringList& list, char16_t separator, bool skipEmpty, bool clearFirst) const;

    // Letters of ASCII only, whatever the locale.
    void toUpper(CString& result) const;

    // An 8-bit copy in which each unit gives its low byte; a 16-bit copy.
    void toNarrow(CString& result) const;
    void toWide(CString& result) const;

    // `base` 2 to 36 (any other gives the empty text), digits above 9 as upper-case letters, padded with "0" to
    // `minDigits`, which counts a "-" too; at most 129 characters.
    static void fromInt(CString& result, std::int64_t value, int minDigits = 0, int base = 10);

    // UTF-8 of stored data. Writing: surrogates give nothing, a NUL ends the text. Reading: bytes that can't lead are
    // skipped, a NUL or a sequence cut short ends the text, of a code point above U+FFFF the low 16 bits stay, or
    // U+FFFD where they would be a NUL or a surrogate.
    std::string toUtf8() const;
    static CString fromUtf8(std::string_view bytes);

    // Paths as the platform's file operations take and give them. Every unit is kept, also surrogates, so a name of the
    // file system that is no proper text comes back to it unchanged.
    std::u16string toPath() const;
    static CString fromPath(std::u16string_view path);

    // For range-for over the units.
    class Iterator {
    public:
        Iterator(CStringView text, int index) noexcept : m_text(text), m_index(index) {}
        char16_t operator*() const noexcept { return m_text[m_index]; }
        Iterator& operator++() noexcept { return ++m_index, *this; }
        bool operator==(const Iterator& other) const noexcept { return m_index == other.m_index; }

    private:
        CStringView m_text;
        int m_index;
    };
    Iterator begin() const noexcept { return {view(), 0}; }
    Iterator end() const noexcept { return {view(), m_length}; }

private:
    static constexpr int kInlineBytes = 31;

    bool isInline() const noexcept { return m_data == m_inlineBuffer; }
    std::int32_t roomBytes() const noexcept { return isInline() ? kInlineBytes : m_capacity; }
    void setWide(bool isWide) noexcept { m_inlineBuffer[31] = isWide; }
    bool contains(CStringView text) const noexcept;
    void resetToInline() noexcept;
    void takeFrom(CString& other) noexcept;
    void freeHeap() noexcept;
    void makeRoom(std::int64_t needBytes, int slackBytes, std::size_t keepBytes);
    void setLengthAs(bool isWide, std::int64_t length, std::size_t keepBytes);
    CString& appendMoving(CStringView text);
    void writeUnits(int position, CStringView text) noexcept;

    void* m_data;
    std::int32_t m_capacity = 0;
    std::int32_t m_length = 0;
    alignas(8) unsigned char m_inlineBuffer[32];  // the last byte isn't text: it tells the form
};

template <>
struct CKeyOrder<CString> {
    using Lookup = CStringView;
    static int compare(CStringView a, const CString& b) noexcept { return a.compare(b); }
};

}  // namespace brt
