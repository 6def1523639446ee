// SPDX-License-Identifier: LicenseRef-Halyard
// Values by group and element, changes to them, and both their stored forms.
#include "AudioBytes.h"
#include "ConverterFixture.h"

#include <limits>

#include "Audio/CAudioParamUpdate.h"

namespace brt {
namespace {

using Values = std::vector<double>;
using Strings = std::vector<std::string>;

constexpr CAudioParamFormat kNumbers = {};
constexpr CAudioParamFormat kPairs = {.elementSize = 2};
constexpr CAudioParamFormat kTexts = {.dataType = EAudioDataType::kString};

Values numbers(const CAudioParamStorage& storage, int group) {
    const std::span<const double> values = storage.values(group);
    return {values.begin(), values.end()};
}

Strings texts(const CAudioParamStorage& storage, std::span<const double> values) {
    Strings result;
    for (const double value : values) {
        EXPECT_TRUE(storage.data().find(value)) << "an item that is gone";
        result.push_back(text(storage.data().text(value)));
    }
    return result;
}
Strings texts(const CAudioParamStorage& storage, int group) { return texts(storage, storage.values(group)); }

struct CChange {
    int group = 0, first = 0;
    bool isSetCount = false;
};

void apply(CAudioParamStorage& storage, const CAudioParamFormat& format, CChange change, const Values& values) {
    CAudioParamUpdate update;
    update.group = change.group;
    update.firstElement = change.first;
    update.elementCount = static_cast<int>(values.size()) / format.elementSize;
    update.isSetCount = change.isSetCount;
    update.format = format;
    update.values = values.data();
    storage.apply(update);
}

void applyTexts(CAudioParamStorage& storage, CChange change, const Strings& strings, bool isMoved = false) {
    CAudioParamData items;
    Values values;
    items.addString("not used");
    for (const std::string& string : strings) values.push_back(items.addString(string));
    CAudioParamUpdate update;
    update.group = change.group;
    update.firstElement = change.first;
    update.elementCount = static_cast<int>(values.size());
    update.isSetCount = change.isSetCount;
    update.format = kTexts;
    update.values = values.data();
    update.data = &items;
    if (!isMoved) return storage.apply(update);
    CAudioParamUpdateCopy copy(update);
    storage.applyMoving(copy);
}

Bytes saved(const CAudioParamStorage& storage, int group = -1) {
    return savedBytes([&](COutputStream& stream) { return storage.saveDataSet(stream, group); });
}

std::string load(CAudioParamStorage& storage, const Bytes& bytes, const CAudioParamFormat& format = kNumbers) {
    return loadBytes(bytes, [&](CInputStream& stream) { return storage.loadDataSet(stream, format); });
}

TEST(CAudioParamStorage, whatNobodyHasSetReadsAsTheDefaults) {
    CAudioParamStorage storage;
    EXPECT_EQ(storage.value(0, 0, 42), 42) << "no values at all";
    apply(storage, kNumbers, {kWholeParam}, {5, 6, 7});
    EXPECT_EQ(storage.value(0, 0, 42), 5);
    EXPECT_EQ(storage.value(3, 2, 42), 7);
    EXPECT_EQ(storage.value(3, 3, 42), 5) << "the first one behind their end";
    EXPECT_EQ(storage.value(-1, -1, 42), 5);
    apply(storage, kNumbers, {2, 0}, {10, 11});
    EXPECT_EQ(storage.value(2, 1, 42), 11);
    EXPECT_EQ(storage.value(2, 2, 42), 7) << "element by element";
    EXPECT_EQ(storage.value(1, 0, 42), 5) << "a group between";
    EXPECT_EQ(storage.value(8, 0, 42), 5);

    CAudioParamStorage single;
    const CAudioParamFormat one = {.isSingleGroup = true, .isSingleElement = true};
    apply(single, one, {kWholeParam}, {1});
    apply(single, one, {}, {9});
    EXPECT_EQ(single.value(7, 31, 42), 9);

    CAudioParamStorage pairs;
    apply(pairs, kPairs, {kWholeParam}, {1, 2, 3, 4});
    EXPECT_EQ(pairs.value(0, 1, 42), 3) << "the first sub-value";
}

TEST(CAudioParamStorage, updatesGrowAndCutGroups) {
    CAudioParamStorage storage;
    apply(storage, kNumbers, {0, 0}, {1});
    EXPECT_FALSE(storage.isValid()) << "no format yet";
    apply(storage, kNumbers, {kWholeParam}, {5, 6});
    apply(storage, kPairs, {0, 0}, {1, 1});
    apply(storage, kTexts, {0, 0}, {1});
    EXPECT_EQ(storage.groupCount(), 0) << "another format";

    apply(storage, kNumbers, {2, 3}, {10});
    EXPECT_EQ(storage.groupCount(), 3);
    EXPECT_EQ(numbers(storage, 2), (Values{5, 6, 5, 10})) << "the gap holds defaults, then the first one";
    EXPECT_EQ(numbers(storage, 1), Values{});
    apply(storage, kNumbers, {2, 0}, {1, 2});
    EXPECT_EQ(numbers(storage, 2), (Values{1, 2, 5, 10})) << "the count only grows";
    apply(storage, kNumbers, {2, 1, true}, {7});
    EXPECT_EQ(numbers(storage, 2), (Values{1, 7}));
    apply(storage, kNumbers, {2, 0, true}, {});
    EXPECT_EQ(storage.elementCount(2), 0);
    EXPECT_EQ(storage.value(2, 1, 42), 6);

    apply(storage, kPairs, {kWholeParam}, {1, 2});
    EXPECT_EQ(storage.groupCount(), 0) << "empty, in its new format";
    apply(storage, kPairs, {0, 1}, {3, 4});
    EXPECT_EQ(numbers(storage, 0), (Values{1, 2, 3, 4}));
}

TEST(CAudioParamStorage, eachTextIsAnItemOfItsOwnAndGoesWithItsElement) {
    for (const bool isMoved : {false, true}) {
        CAudioParamStorage storage;
        applyTexts(storage, {kWholeParam}, {"L", "R"}, isMoved);
        EXPECT_EQ(texts(storage, storage.defaults()), (Strings{"L", "R"}));
        applyTexts(storage, {1, 3}, {"x", ""}, isMoved);
        EXPECT_EQ(texts(storage, 1), (Strings{"L", "R", "L", "x", ""}));
        EXPECT_EQ(storage.data().count(), 7);
        const double replaced = storage.value(1, 3, -1);
        applyTexts(storage, {1, 3}, {"y"}, isMoved);
        EXPECT_EQ(texts(storage, 1), (Strings{"L", "R", "L", "y", ""}));
        EXPECT_EQ(storage.data().count(), 7);
        EXPECT_FALSE(storage.data().find(replaced)) << "its number never comes again";
        applyTexts(storage, {1, 0, true}, {"z"}, isMoved);
        EXPECT_EQ(storage.data().count(), 3);
        applyTexts(storage, {kWholeParam}, {"M"}, isMoved);
        EXPECT_EQ(storage.data().count(), 1);
        EXPECT_EQ(texts(storage, storage.defaults()), Strings{"M"});
    }
}

TEST(CAudioParamStorage, bytesOfDataSets) {
    CAudioParamStorage routing;
    apply(routing, kNumbers, {kWholeParam}, {0});
    apply(routing, kNumbers, {}, {1, 2});
    const Bytes routingBytes = CBytes().u32({1, 1, 0, 1, 2}).f64({1.0, 2.0});
    EXPECT_EQ(saved(routing), routingBytes);

    CAudioParamStorage names;
    applyTexts(names, {kWholeParam}, {"gone"});
    applyTexts(names, {}, {"x", "R"});
    applyTexts(names, {}, {"L"});
    const Bytes nameBytes = CBytes().u32({1, 1, 1, 1, 2, 1, 1}).string("L").u32({2, 1}).string("R").u32({2, 1, 2});
    EXPECT_EQ(saved(names), nameBytes) << "numbered in the order of use";

    apply(routing, kNumbers, {2, 0}, {3});
    const Bytes all = CBytes().u32({1, 1, 0, 3, 2}).f64({1.0, 2.0}).u32({0, 1}).f64({3.0});
    const Bytes second = CBytes().u32({1, 1, 0, 1, 1}).f64({3.0});
    const Bytes beyond = CBytes().u32({1, 1, 0, 1, 0});
    EXPECT_EQ(saved(routing), all);
    EXPECT_EQ(saved(routing, 2), second);
    EXPECT_EQ(saved(routing, 5), beyond);

    CAudioParamStorage loaded;
    ASSERT_EQ(load(loaded, all), "");
    EXPECT_EQ(saved(loaded), all);
    EXPECT_EQ(loaded.value(1, 1, 42), 2.0) << "the first group gives the defaults";
    ASSERT_EQ(load(loaded, beyond), "");
    EXPECT_EQ(loaded.elementCount(0), 0);
    EXPECT_EQ(loaded.value(0, 1, 42), 2.0) << "an empty one leaves them";
}

TEST(CAudioParamStorage, anEmptyTextSurvives) {
    CAudioParamStorage names;
    applyTexts(names, {kWholeParam}, {""});
    applyTexts(names, {}, {"", "\xFC", " "});
    CAudioParamStorage loaded;
    ASSERT_EQ(load(loaded, saved(names), kTexts), "");
    EXPECT_EQ(texts(loaded, 0), (Strings{"", text(CStringView("\xFC")), ""})) << "a lone blank stands for no text";
    const Bytes expected = CBytes().u32({1, 1, 1, 1, 3, 1, 1, 0, 2, 1}).string("\xC3\xBC").u32({3, 1, 0, 3, 1, 2, 3});
    EXPECT_EQ(saved(loaded), expected);
}

TEST(CAudioParamStorage, whatCannotBeLoadedLeavesTheValuesAsTheyWere) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const std::string format = "Unsupported storage format (esize=2, dtype=0; should be: esize=1, dtype=";
    const struct {
        CAudioParamFormat format;
        Bytes bytes;
        std::string message;
    } kCases[] = {
        {kNumbers, CBytes().u32({2, 1, 0, 0}),
         "brtstr_CAudioParamStorage_load_VersionError Unsupported data set version 2."},
        {kNumbers, CBytes().u32({1, 2, 0, 1, 1}).f64({1, 1}), format + "0)."},
        {kTexts, CBytes().u32({1, 2, 0, 1, 1}).f64({1, 1}), format + "1)."},
        {kNumbers, CBytes().u32({1, 1, 0, 33}), "it claims 33 entries, where up to 32 can be"},
        {kNumbers, CBytes().u32({1, 1, 0, 1, 1025}), "it claims 1025 entries, where up to 1024 can be"},
        {kNumbers, CBytes().u32({1, 1, 0, 1, 4000000000}), "it claims 4000000000 entries"},
        {kNumbers, CBytes().u32({1, 1, 0, 1, 3}).f64({1, 2}), "it claims 3 entries"},
        {kNumbers, CBytes().u32({1, 1, 0, 2, 1}).f64({1}).u32({1}).f64({nan}), "there is no number at place 0"},
        {kTexts, CBytes().u32({1, 1, 1, 1, 1, 1, 1}).string("a").u32({2, 1, 2}), "there is no item 2"},
        {kTexts, CBytes().u32({1, 1, 1, 1, 1, 1, 3}).string("a").u32({1, 1}), "Unknown data type 3 encountered"},
        {kTexts, CBytes().u32({1, 1, 1, 1, 2, 5, 1}).string("a").u32({5, 1}).string("a").u32({0}),
         "item 5 follows item 5"},
    };
    for (const auto& [ownFormat, bytes, message] : kCases) {
        CAudioParamStorage storage;
        if (ownFormat.isFloat()) {
            apply(storage, kNumbers, {kWholeParam}, {5, 6});
            apply(storage, kNumbers, {1, 0}, {7});
        } else {
            applyTexts(storage, {kWholeParam}, {"five", "six"});
            applyTexts(storage, {1, 0}, {"seven"});
        }
        const Bytes before = saved(storage);
        EXPECT_NE(load(storage, bytes, ownFormat).find(message), std::string::npos) << message;
        EXPECT_EQ(saved(storage), before) << message;
        EXPECT_EQ(storage.defaultCount(), 2) << message;
        for (std::size_t size = 0; size < before.size(); ++size)
            EXPECT_NE(
                load(storage, Bytes(before.begin(), before.begin() + static_cast<std::ptrdiff_t>(size)), ownFormat),
                "");
        EXPECT_EQ(saved(storage), before) << message;
    }
}

// The defaults of definitions.
class ParseDefValuesTest : public ConverterFixture {
protected:
    const CAudioParamStorage& numbersOf(const char* values) {
        return define({{"converter", "shared::cvt.real"},
                       {"min-values", "0"},
                       {"max-values", "8192"},
                       {"def-values", values}})
            ->defaults;
    }
    const CAudioParamStorage& textsOf(const char* values) {
        return define({{"converter", "shared::cvt.text"}, {"data-type", "string"}, {"def-values", values}})->defaults;
    }
};

TEST_F(ParseDefValuesTest, commasPartElementsAndSemicolonsGroups) {
    EXPECT_EQ(numbers(numbersOf("0,0,1,1,2,2,3,3"), 0), (Values{0, 0, 1, 1, 2, 2, 3, 3}));
    EXPECT_EQ(numbers(numbersOf("480,192"), 0), (Values{480, 192}));
    const CAudioParamStorage& two = numbersOf("1,2;3,4");
    EXPECT_EQ(two.groupCount(), 2);
    EXPECT_EQ(numbers(two, 0), (Values{1, 2}));
    EXPECT_EQ(numbers(two, 1), (Values{3, 4}));
    EXPECT_EQ(two.value(2, 1, 42), 2.0) << "the first group is the default of the others";

    const CAudioParamStorage& names = textsOf("L,R,IN 3;,");
    EXPECT_EQ(texts(names, 0), (Strings{"L", "R", "IN 3"}));
    EXPECT_EQ(texts(names, 1), (Strings{"", ""}));
    EXPECT_EQ(texts(names, names.defaults()), (Strings{"L", "R", "IN 3"}));
    EXPECT_EQ(texts(textsOf(""), 0), Strings{""});

    const CAudioParamInfo* const raw =
        define({{"converter", "shared::cvt.real"}, {"data-type", "raw"}, {"def-values", "0"}});
    ASSERT_TRUE(raw) << m_failure;
    const CAudioParamDataItem* const item = raw->defaults.data().find(raw->defaults.value(0, 0, -1));
    ASSERT_TRUE(item);
    EXPECT_EQ(item->type(), CAudioParamDataItemRaw::kType);
}

TEST_F(ParseDefValuesTest, clampKeepsEachSubValueToItsRange) {
    const CAudioParamInfo* const info = define({{"element-size", "2"},
                                                {"converter", "shared::cvt.real"},
                                                {"converter2", "shared::cvt.real"},
                                                {"min-values", "0 10"},
                                                {"max-values", "1 0"},
                                                {"def-values", "-5 -5,9 99"}});
    ASSERT_TRUE(info) << m_failure;
    CAudioParamStorage storage;
    storage.assign(info->defaults);
    EXPECT_EQ(saved(storage), saved(info->defaults));
    storage.clampAll(*info);
    EXPECT_EQ(numbers(storage, 0), (Values{0, 0, 1, 10}));
    EXPECT_EQ(storage.value(1, 1, 42), 1.0) << "the defaults too";
}

// A change on its way between a window and its instance.
TEST(CAudioParamUpdate, bytesAndLimitsOfItsSentForm) {
    const auto read = [](CAudioParamUpdateCopy& copy, const Bytes& bytes) {
        return loadBytes(bytes, [&](CInputStream& stream) { return copy.load(stream); });
    };
    const auto written = [](const CAudioParamUpdateCopy& copy) {
        return savedBytes([&](COutputStream& stream) { return copy.save(stream); });
    };
    const Bytes numbersSent = CBytes().u32({3, 1, 2, 1, 2, 0, 0, 1}).f64({1, 2, 3, 4});
    const Bytes textsSent = CBytes().u32({0, 0, 2, 0, 1, 1, 1, 0, 1, 2, 2, 1, 1}).string("L").u32({2, 1}).string("");
    for (const Bytes& bytes : {numbersSent, textsSent}) {
        CAudioParamUpdateCopy copy;
        ASSERT_EQ(read(copy, bytes), "");
        EXPECT_EQ(written(copy), bytes);
        EXPECT_EQ(written(CAudioParamUpdateCopy(copy.update())), bytes);
        for (std::size_t size = 0; size < bytes.size(); ++size) {
            EXPECT_NE(read(copy, Bytes(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(size))), "") << size;
            EXPECT_EQ(copy.update().elementCount, 0);
        }
    }
    const std::pair<int, std::uint32_t> kBad[] = {{0, 32},         {0, 9999},       {0, 0x80000000}, {1, 1023},
                                                  {1, 0xFFFFFFFF}, {2, 1025},       {2, 4},          {4, 0},
                                                  {4, 65},         {4, 0xFFFFFFFF}, {5, 1},          {5, 3}};
    for (const auto& [field, number] : kBad) {
        Bytes bytes = numbersSent;
        const Bytes value = CBytes().u32({number});
        std::copy(value.begin(), value.end(), bytes.begin() + 4 * field);
        CAudioParamUpdateCopy copy;
        EXPECT_NE(read(copy, bytes), "") << field << " " << number;
    }
    CAudioParamUpdateCopy copy;
    const Bytes infinite = CBytes().u32({0, 0, 1, 0, 1, 0, 0, 0}).f64({std::numeric_limits<double>::infinity()});
    EXPECT_NE(read(copy, infinite), "");
}

}  // namespace
}  // namespace brt
