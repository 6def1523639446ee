// SPDX-License-Identifier: LicenseRef-Halyard
#include "Core/CString.h"

#include <algorithm>
#include <charconv>
#include <cstring>
#include <limits>

#include "Core/CStringList.h"

namespace brt {

namespace {

// What growing adds, so that a text built in small steps doesn't move at each.
constexpr int kSlackUnits = 12;

std::int64_t bytesOf(std::int64_t length, bool isWide) { return isWide ? 2 * length + 2 : length + 1; }
int slackOf(bool isWide) { return isWide ? 2 * kSlackUnits : kSlackUnits; }

}  // namespace

CString::CString(CStringView text) {
    resetToInline();
    setWide(text.isWide());
    const std::int64_t need = bytesOf(text.length(), text.isWide());
    // A text that is born outside brings its slack along.
    if (need > kInlineBytes) makeRoom(need + slackOf(text.isWide()), 0, 0);
    setLengthAs(text.isWide(), text.length(), 0);
    writeUnits(0, text);
}

CString& CString::operator=(CString&& other) noexcept {
    if (this != &other) {
        freeHeap();
        takeFrom(other);
    }
    return *this;
}

CString& CString::assign(CStringView text) {
    if (contains(text)) {
        // A part of this text moves to the front.
        const std::size_t unitBytes = isWide() ? 2 : 1;
        const void* const place = isWide() ? static_cast<const void*>(text.wide().data()) : text.narrow().data();
        std::memmove(m_data, place, static_cast<std::size_t>(text.length()) * unitBytes);
        setLength(text.length(), true);
        return *this;
    }
    setLengthAs(text.isWide(), text.length(), 0);
    writeUnits(0, text);
    return *this;
}

void CString::resetToInline() noexcept {
    m_data = m_inlineBuffer;
    m_length = 0;
    std::memset(m_inlineBuffer, 0, sizeof m_inlineBuffer);
}

// REQUIRES: this string owns no heap.
void CString::takeFrom(CString& other) noexcept {
    std::memcpy(m_inlineBuffer, other.m_inlineBuffer, sizeof m_inlineBuffer);
    m_data = other.isInline() ? m_inlineBuffer : other.m_data;
    m_capacity = other.m_capacity;
    m_length = other.m_length;
    other.resetToInline();
}

void CString::freeHeap() noexcept {
    if (!isInline()) CBrtMemAllocator::free(m_data);
}

// True if the view lies in this string's own memory, which an operation on the string may move or overwrite.
bool CString::contains(CStringView text) const noexcept {
    const void* const place = text.isWide() ? static_cast<const void*>(text.wide().data()) : text.narrow().data();
    const auto offset = reinterpret_cast<std::uintptr_t>(place) - reinterpret_cast<std::uintptr_t>(m_data);
    return offset < static_cast<std::uintptr_t>(bytesOf(m_length, isWide()));
}

// Grows the buffer if `needBytes` don't fit; `slackBytes` more if it was outside already. The first `keepBytes` stay.
void CString::makeRoom(std::int64_t needBytes, int slackBytes, std::size_t keepBytes) {
    if (needBytes <= roomBytes()) return;
    const std::int64_t size = isInline() ? needBytes : needBytes + slackBytes;
    if (size > std::numeric_limits<std::int32_t>::max()) endOutOfMemory(static_cast<std::size_t>(size));

    void* const block = alloc(static_cast<std::size_t>(size));
    std::memcpy(block, m_data, keepBytes);
    freeHeap();
    m_data = block;
    m_capacity = static_cast<std::int32_t>(size);
}

void CString::setLengthAs(bool isWide, std::int64_t length, std::size_t keepBytes) {
    makeRoom(bytesOf(length, isWide), slackOf(isWide), keepBytes);
    setWide(isWide);
    m_length = static_cast<std::int32_t>(length);
    if (isWide)
        data16()[length] = 0;
    else
        data8()[length] = 0;
}

void CString::setLength(int length, bool keepContent) {
    const auto kept = keepContent ? static_cast<std::size_t>(bytesOf(m_length, isWide())) : 0;
    setLengthAs(isWide(), std::max(length, 0), kept);
}

void CString::widen(int count) {
    if (isWide()) return;
    setLengthAs(true, m_length, static_cast<std::size_t>(count));
    // From the end, so that no byte is overwritten before it was read.
    const auto* const bytes = static_cast<const unsigned char*>(m_data);
    for (int i = count - 1; i >= 0; --i) data16()[i] = bytes[i];
}

// REQUIRES: there is room, and the text's form is this string's, or narrower.
void CString::writeUnits(int position, CStringView text) noexcept {
    if (!isWide()) {
        if (!text.isEmpty()) std::memcpy(data8() + position, text.narrow().data(), text.narrow().size());
        return;
    }
    for (int i = 0; i < text.length(); ++i) data16()[position + i] = text[i];
}

CString& CString::appendMoving(CStringView text) {
    if (contains(text)) return append(CString(text).view());
    if (text.isWide() && !isWide()) widen();
    const int position = m_length;
    setLengthAs(isWide(), std::int64_t{m_length} + text.length(),
                static_cast<std::size_t>(bytesOf(m_length, isWide())));
    writeUnits(position, text);
    return *this;
}

CString& CString::append(char16_t unit) {
    const char narrowUnit = static_cast<char>(unit);
    return unit > 255 || isWide() ? append(std::u16string_view(&unit, 1)) : append(std::string_view(&narrowUnit, 1));
}

void CString::split(CStringList& list, char16_t separator, bool skipEmpty, bool clearFirst) const {
    const CString copy = *this;  // the text may be an element of the list
    const CStringView text = copy;
    if (clearFirst) list.clear();
    int position = 0;
    while (position < text.length()) {
        const int next = text.find(separator, position);
        if (next < 0) break;
        if (next > position || !skipEmpty) list.append(text.slice(position, next - position));
        position = next + 1;
    }
    if (position < text.length())
        list.append(text.slice(position));
    else if (position > 0 && !skipEmpty)
        list.append(CStringView());
}

void CString::toUpper(CString& result) const {
    result = *this;
    const auto raise = [](auto* units, int count) {
        for (int i = 0; i < count; ++i) {
            if (units[i] >= 'a' && units[i] <= 'z') units[i] ^= 'a' ^ 'A';
        }
    };
    if (result.isWide())
        raise(result.data16(), result.m_length);
    else
        raise(result.data8(), result.m_length);
}

void CString::toNarrow(CString& result) const {
    if (!isWide()) {
        result = *this;
        return;
    }
    CString narrowed;
    narrowed.setLength(m_length, false);
    for (int i = 0; i < m_length; ++i) narrowed.data8()[i] = static_cast<char>(data16()[i]);
    result = std::move(narrowed);
}

void CString::toWide(CString& result) const {
    result = *this;
    result.widen();
}

void CString::fromInt(CString& result, std::int64_t value, int minDigits, int base) {
    constexpr int kMaxLength = 129;
    if (base < 2 || base > 36) return result.clear();

    // From the end; 64 binary digits and a sign are the longest unpadded form.
    char digits[kMaxLength];
    char* const end = digits + kMaxLength;
    char* first = end;
    // The magnitude of the smallest value exists as an unsigned number only.
    std::uint64_t rest = value < 0 ? 0 - static_cast<std::uint64_t>(value) : static_cast<std::uint64_t>(value);
    do {
        *--first = "0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZ"[rest % static_cast<unsigned>(base)];
        rest /= static_cast<unsigned>(base);
    } while (rest != 0);
    const int padded = std::min(minDigits, kMaxLength) - int{value < 0};
    while (end - first < padded) *--first = '0';
    if (value < 0) *--first = '-';
    result.assign(std::string_view(first, static_cast<std::size_t>(end - first)));
}

std::u16string CString::toPath() const {
    std::u16string path;
    path.reserve(static_cast<std::size_t>(m_length));
    for (const char16_t unit : *this) path.push_back(unit);
    return path;
}

CString CString::fromPath(std::u16string_view path) {
    const bool isLatin = std::all_of(path.begin(), path.end(), [](char16_t unit) { return unit < 256; });
    CString result(path);
    if (isLatin) result.toNarrow(result);
    return result;
}

}  // namespace brt
