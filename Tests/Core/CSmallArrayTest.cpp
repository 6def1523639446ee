// SPDX-License-Identifier: LicenseRef-Halyard
#include "Core/CSmallArray.h"

#include <gtest/gtest.h>

#include <random>
#include <type_traits>
#include <vector>

#include "Core/COwnedArray.h"

namespace brt {
namespace {

template <class T>
bool isInline(const CSmallArray<T>& array) {
    const auto offset = reinterpret_cast<const std::byte*>(array.begin()) - reinterpret_cast<const std::byte*>(&array);
    return offset >= 0 && offset < static_cast<std::ptrdiff_t>(sizeof array);
}

TEST(CSmallArray, growsByItsRule) {
    CSmallArray<void*> array;
    EXPECT_EQ(array.begin(), nullptr);
    std::vector<int> capacities;
    for (int i = 0; i < 55; ++i) {
        array.append(&array);
        if (capacities.empty() || capacities.back() != array.capacity()) capacities.push_back(array.capacity());
    }
    EXPECT_EQ(capacities, (std::vector{1, 2, 4, 7, 12, 20, 33, 54, 88}));
}

TEST(CSmallArray, leavesTheInlineRoomWithTheEighthAppendOrTheNinthReserved) {
    CSmallArray<void*> appended;
    for (int i = 0; i < 7; ++i) appended.append(nullptr);
    EXPECT_TRUE(isInline(appended));
    appended.append(&appended);
    EXPECT_FALSE(isInline(appended));
    EXPECT_EQ(appended.capacity(), 12);

    CSmallArray<void*> reserved;
    reserved.reserve(8);
    for (std::intptr_t i = 0; i < 8; ++i) reserved.append(reinterpret_cast<void*>(i));
    EXPECT_TRUE(isInline(reserved));
    reserved.append(nullptr);
    EXPECT_EQ(reserved.capacity(), 14);
    for (std::intptr_t i = 0; i < 8; ++i) EXPECT_EQ(reserved[static_cast<int>(i)], reinterpret_cast<void*>(i));

    struct Pair {
        void* a;
        void* b;
    };
    EXPECT_EQ(CSmallArray<Pair>::kInlineCapacity, 4);
    struct Large {
        char bytes[100];
    };
    CSmallArray<Large> large;
    large.append({"text"});
    EXPECT_FALSE(isInline(large));
    EXPECT_STREQ(large[0].bytes, "text");
}

TEST(CSmallArray, reservingLessChangesNothing) {
    CSmallArray<int> array;
    for (int i = 0; i < 70; ++i) array.append(i);
    const int capacity = array.capacity();
    array.reserve(2);
    EXPECT_EQ(array.capacity(), capacity);
    array.append(70);
    for (int i = 0; i <= 70; ++i) EXPECT_EQ(array[i], i);
}

TEST(CSmallArray, isNeverCopiedByAccident) {
    EXPECT_FALSE(std::is_copy_constructible_v<CSmallArray<int>>);
    EXPECT_FALSE(std::is_move_constructible_v<CSmallArray<int>>);
    EXPECT_FALSE(std::is_copy_assignable_v<CSmallArray<int>>);
}

TEST(CSmallArray, behavesAsAVector) {
    std::mt19937 random(3);
    CSmallArray<int> array, copy;
    std::vector<int> model;
    for (int step = 0; step < 4000; ++step) {
        const int value = static_cast<int>(random() % 100);
        const int place = static_cast<int>(random() % (model.size() + 1));
        switch (random() % 8) {
        case 0:
            array.clear();
            model.clear();
            break;
        case 1:
            if (place == static_cast<int>(model.size())) break;
            array.removeAt(place);
            model.erase(model.begin() + place);
            break;
        case 2:
            if (model.empty()) break;
            EXPECT_EQ(array.pop(), model.back());
            model.pop_back();
            break;
        case 3:
            array.setCount(place + 3);
            model.resize(static_cast<std::size_t>(place) + 3);
            break;
        case 4:
        case 5:
            array.insertAt(place, value);
            model.insert(model.begin() + place, value);
            break;
        default:
            // An element of the array itself, which growing moves.
            if (!model.empty()) {
                array.append(array[place % array.count()]);
                model.push_back(model[static_cast<std::size_t>(place) % model.size()]);
            }
        }
        copy.assign(array);
        ASSERT_EQ(std::vector<int>(array.begin(), array.end()), model);
        ASSERT_EQ(std::vector<int>(copy.begin(), copy.end()), model);
        const auto found = std::find(model.begin(), model.end(), value);
        ASSERT_EQ(array.find(value), found == model.end() ? -1 : static_cast<int>(found - model.begin()));
    }
}

struct CMarked {
    explicit CMarked(std::vector<int>& deleted, int mark) : m_deleted(deleted), m_mark(mark) {}
    ~CMarked() { m_deleted.push_back(m_mark); }
    std::vector<int>& m_deleted;
    int m_mark;
};

TEST(COwnedArray, deletesFromTheLastToTheFirst) {
    std::vector<int> deleted;
    {
        COwnedArray<CMarked> array;
        for (int i = 0; i < 10; ++i) array.append(new CMarked(deleted, i));
        array.removeAt(4);
        EXPECT_EQ(array.take(0)->m_mark, 0);
        EXPECT_EQ(array.find(&array[1]), 1);
        deleted.clear();
    }
    EXPECT_EQ(deleted, (std::vector{9, 8, 7, 6, 5, 3, 2, 1}));
}

}  // namespace
}  // namespace brt
