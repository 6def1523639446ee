// SPDX-License-Identifier: LicenseRef-Halyard
#include "Core/COrderedMap.h"

#include <gtest/gtest.h>

#include <map>
#include <random>
#include <vector>

#include "Core/CString.h"
#include "Core/PrintText.h"

namespace brt {
namespace {

// Black nodes on each way down from `node`; -1 where a rule of the tree is broken.
int blackHeight(const CTreeNode* node, const CTreeNode* parent) {
    if (node == nullptr) return 0;
    if (node->parent != parent) return -1;
    const bool isRed = node->colour == CTreeNode::kRed;
    if (isRed && (parent == nullptr || parent->colour == CTreeNode::kRed)) return -1;
    const int left = blackHeight(node->left, node), right = blackHeight(node->right, node);
    if (left < 0 || left != right) return -1;
    return left + !isRed;
}

TEST(CTreeLinks, staysBalancedAndInOrder) {
    struct Numbered : CTreeNode {
        int number;
    };
    std::mt19937 random(11);
    std::vector<Numbered> nodes(200);
    std::map<int, Numbered*> model;
    CTreeLinks tree;
    for (int step = 0; step < 4000; ++step) {
        const int number = static_cast<int>(random() % nodes.size());
        Numbered& node = nodes[static_cast<std::size_t>(number)];
        if (model.erase(number) == 1) {
            tree.remove(&node);
        } else {
            node.number = number;
            CTreeNode* parent = nullptr;
            CTreeNode** place = &tree.root;
            while (*place != nullptr) {
                parent = *place;
                place = number < static_cast<Numbered*>(parent)->number ? &parent->left : &parent->right;
            }
            tree.insert(&node, parent, place);
            model[number] = &node;
        }
        ASSERT_GE(blackHeight(tree.root, nullptr), 0) << step;
        const CTreeNode* visited = tree.first();
        for (const auto& [key, expected] : model) {
            ASSERT_EQ(visited, expected);
            visited = CTreeLinks::next(visited);
        }
        ASSERT_EQ(visited, nullptr);
        ASSERT_EQ(tree.last(), model.empty() ? nullptr : model.rbegin()->second);
    }
}

TEST(COrderedMap, behavesAsTheStandardOne) {
    std::mt19937 random(5);
    COrderedMap<std::uint32_t, std::uint32_t> map;
    std::map<std::uint32_t, std::uint32_t> model;
    const auto keyOf = [](auto place) { return place ? static_cast<std::int64_t>(place->key) : -1; };
    for (int step = 0; step < 5000; ++step) {
        const auto key = static_cast<std::uint32_t>(random() % 128), value = static_cast<std::uint32_t>(random());
        if (random() % 5 < 2) {
            ASSERT_EQ(map.erase(key), model.erase(key) == 1);
        } else {
            bool isNew;
            map.findOrInsert(key, isNew) = value;
            ASSERT_EQ(isNew, model.insert_or_assign(key, value).second);
        }
        ASSERT_EQ(map.count(), static_cast<int>(model.size()));
        const auto probe = static_cast<std::uint32_t>(random() % 130);
        const auto lower = model.lower_bound(probe), upper = model.upper_bound(probe);
        ASSERT_EQ(keyOf(map.lowerBound(probe)), lower == model.end() ? -1 : std::int64_t{lower->first});
        ASSERT_EQ(keyOf(map.upperBound(probe)), upper == model.end() ? -1 : std::int64_t{upper->first});
        ASSERT_EQ(map.contains(probe), model.contains(probe));
    }
    auto expected = model.begin();
    for (const auto& [key, value] : map) {
        ASSERT_EQ(key, expected->first);
        ASSERT_EQ(value, expected->second);
        ++expected;
    }
    for (auto place = map.last(); place; --place) ASSERT_EQ(place->key, (--expected)->first);
}

TEST(COrderedMap, emptiesAfterAscendingInsertions) {
    const std::int64_t before = CBrtMemAllocator::liveBlocks();
    COrderedMap<int, int> map;
    for (int i = 0; i < 1000; ++i) map.findOrInsert(i) = -i;
    int next = 0;
    for (const auto& [key, value] : map) {
        EXPECT_EQ(key, next);
        EXPECT_EQ(value, -next++);
    }
    for (auto place = map.begin(); place;) place = map.erase(place);
    EXPECT_EQ(map.count(), 0);
    EXPECT_EQ(map.begin(), map.end());
    EXPECT_EQ(CBrtMemAllocator::liveBlocks(), before);
}

TEST(COrderedMap, valuesStayWhereTheyAre) {
    COrderedMap<CString, int> map;
    bool isNew;
    int& value = map.findOrInsert("k", isNew);
    EXPECT_TRUE(isNew);
    EXPECT_EQ(value, 0);
    for (int i = 0; i < 100; ++i) map.findOrInsert(std::to_string(i));
    EXPECT_EQ(&map.findOrInsert(u"k", isNew), &value);
    EXPECT_FALSE(isNew);
    EXPECT_EQ(map.count(), 101);
    const auto& constant = map;
    EXPECT_EQ(constant.find("k"), &value);
    EXPECT_EQ(constant.locate("none"), constant.end());
}

TEST(COrderedMap, numbersAndPointersAreOrderedAsUnsigned) {
    COrderedSet<int> numbers;
    for (const int number : {-1, 5, 0, INT32_MIN, 5}) numbers.insert(number);
    std::vector<int> visited;
    for (const int number : numbers) visited.push_back(number);
    EXPECT_EQ(visited, (std::vector{0, 5, INT32_MIN, -1}));

    int room[3];
    COrderedSet<int*> pointers;
    for (const int i : {2, 0, 1}) EXPECT_TRUE(pointers.insert(&room[i]));
    EXPECT_FALSE(pointers.insert(&room[1]));
    int* next = room;
    for (int* pointer : pointers) EXPECT_EQ(pointer, next++);
}

TEST(COrderedSet, holdsTexts) {
    COrderedSet<CString> set;
    for (const char* name : {"knob", "Knob", "", "knobs"}) EXPECT_TRUE(set.insert(name));
    EXPECT_FALSE(set.insert(u"knob"));
    CString order;
    for (const CString& name : set) order.append(name).append("|");
    EXPECT_EQ(order, "|Knob|knob|knobs|");
    EXPECT_TRUE(set.erase("Knob"));
    EXPECT_FALSE(set.contains("Knob"));
}

}  // namespace
}  // namespace brt
