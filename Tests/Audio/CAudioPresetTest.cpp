// SPDX-License-Identifier: LicenseRef-Halyard
// Presets and banks: their stored forms byte by byte, and data that is damaged.
#include <gtest/gtest.h>

#include "Audio/CAudioPresetBank.h"
#include "Audio/PresetStream.h"
#include "Core/CMemoryReader.h"
#include "Core/StreamTestTools.h"

namespace brt {
namespace {

Bytes bytesOfText(std::string_view text) { return {text.begin(), text.end()}; }

template <class Stored>
Bytes saved(const Stored& stored) {
    CWriteSeqBuffer chain(1024);
    EXPECT_EQ(stored.save(chain), nullptr);
    return contentOf(chain);
}

template <class Stored>
Bytes packed(const Stored& stored) {
    CWriteSeqBuffer chain(1024);
    EXPECT_EQ(stored.savePacked(chain), nullptr);
    return contentOf(chain);
}

template <class Stored>
bool loads(Stored& stored, const Bytes& bytes, std::size_t count) {
    CMemoryReader reader(bytes.data(), static_cast<int>(count));
    return !discardError(stored.load(reader));
}

template <class Stored>
bool unpacks(Stored& stored, const Bytes& bytes) {
    CMemoryReader reader(bytes.data(), static_cast<int>(bytes.size()));
    return !discardError(stored.loadPacked(reader));
}

void fill(CAudioPreset& preset, const char* name) {
    preset.setName(name);
    preset.entries().findOrInsert("b").assign("xyz", 3);
    preset.entries().findOrInsert("a.c");
    // Longer than what lies in the map itself.
    preset.entries().findOrInsert("long").assign(Bytes(100, 7).data(), 100);
}

class StoredPresets : public testing::Test {
protected:
    StoredPresets() {
        m_bank.setName("Bank");
        fill(*m_bank.presets().append(new CAudioPreset), "qzkd:One");
        m_bank.presets().append(new CAudioPreset("Two"));
    }

    CAudioPresetBank m_bank;
};

TEST_F(StoredPresets, formsByteByByte) {
    using namespace std::literals;
    const Bytes preset = bytesOfText(
        "\x08\0\0\0qzkd:One\3\0\0\0\3\0\0\0a.c\0\0\0\0\1\0\0\0b\3\0\0\0xyz\4\0\0\0long"
        "\x64\0\0\0"s +
        std::string(100, '\7'));
    EXPECT_EQ(saved(m_bank[0]), preset);
    Bytes bank = bytesOfText("\4\0\0\0Bank\2\0\0\0"s);
    bank.insert(bank.end(), preset.begin(), preset.end());
    const Bytes second = bytesOfText("\3\0\0\0Two\0\0\0\0"s);
    bank.insert(bank.end(), second.begin(), second.end());
    EXPECT_EQ(saved(m_bank), bank);

    CAudioPresetBank loaded;
    ASSERT_TRUE(loads(loaded, bank, bank.size()));
    EXPECT_EQ(saved(loaded), bank);
    EXPECT_EQ(packed(m_bank)[0], 'a');
    EXPECT_EQ(packed(m_bank)[2], 'n');
    ASSERT_TRUE(unpacks(loaded, packed(m_bank)));
    EXPECT_EQ(saved(loaded), bank);

    loaded[0].clear();
    loaded[0].setName("other");
    EXPECT_EQ(saved(m_bank), bank) << "a copy has its own names and blocks";
}

TEST_F(StoredPresets, aReaderTakesKeysInAnyOrderAndTheLastOfTwo) {
    using namespace std::literals;
    const Bytes bytes = bytesOfText(
        "\1\0\0\0p\3\0\0\0\1\0\0\0b\1\0\0\0"
        "1\1\0\0\0a\0\0\0\0\1\0\0\0b\1\0\0\0"
        "2"s);
    CAudioPreset preset;
    ASSERT_TRUE(loads(preset, bytes, bytes.size()));
    EXPECT_EQ(saved(preset), bytesOfText("\1\0\0\0p\2\0\0\0\1\0\0\0a\0\0\0\0\1\0\0\0b\1\0\0\0"
                                         "2"s));
}

TEST_F(StoredPresets, cutAtEachByteNothingChanges) {
    const Bytes bank = saved(m_bank);
    CAudioPresetBank other;
    other.setName("Before");
    other.presets().append(new CAudioPreset("Before"));
    const Bytes before = saved(other);
    for (std::size_t count = 0; count < bank.size(); ++count) {
        EXPECT_FALSE(loads(other, bank, count)) << count;
        EXPECT_EQ(saved(other), before) << count;
    }
    const Bytes preset = saved(m_bank[0]);
    CAudioPreset single("Before");
    for (std::size_t count = 0; count < preset.size(); ++count) {
        EXPECT_FALSE(loads(single, preset, count)) << count;
        EXPECT_EQ(saved(single), saved(other[0])) << count;
    }
    const Bytes file = packed(m_bank);
    for (std::size_t count = 0; count < file.size(); ++count) {
        EXPECT_FALSE(unpacks(other, Bytes(file.begin(), file.begin() + static_cast<std::ptrdiff_t>(count)))) << count;
        EXPECT_EQ(saved(other), before) << count;
    }
}

TEST_F(StoredPresets, eachChangedByteOfAFileIsRefusedOrLeavesAWholeBank) {
    const Bytes file = packed(m_bank);
    for (std::size_t place = 0; place < file.size(); ++place) {
        Bytes damaged = file;
        damaged[place] ^= 0x55;
        CAudioPresetBank other;
        if (!unpacks(other, damaged)) continue;
        EXPECT_EQ(saved(other), saved(m_bank)) << place;
    }
}

TEST_F(StoredPresets, whatClaimsTooMuchIsRefusedBeforeMemoryIsTaken) {
    using namespace std::literals;
    CAudioPreset preset;
    CAudioPresetBank bank;
    const Bytes presets[] = {
        bytesOfText("\1\0\0\0p\xFF\xFF\xFF\x7F"s),
        bytesOfText("\1\0\0\0p\1\0\0\0\1\0\0\0k\xFF\xFF\xFF\xFF"s),
        bytesOfText("\1\0\0\0p\1\0\0\0\1\0\0\0k\0\0\0\1"s),
    };
    for (const Bytes& bytes : presets) EXPECT_FALSE(loads(preset, bytes, bytes.size()));
    const Bytes many = bytesOfText("\1\0\0\0b\1\0\1\0"s);
    EXPECT_FALSE(loads(bank, many, many.size()));
}

TEST_F(StoredPresets, aFileHoldsItsKindAndNothingElse) {
    CAudioPreset preset("Before");
    EXPECT_FALSE(unpacks(preset, packed(m_bank))) << "another tag";
    CWriteSeqBuffer chain(1024);
    CByteBuffer plain;
    const Bytes bytes = saved(m_bank[0]);
    plain.assign(bytes.data(), static_cast<int>(bytes.size()));
    CByteBuffer longer;
    longer.setSize(plain.size() + 1);
    std::copy(bytes.begin(), bytes.end(), longer.data());
    longer.data()[plain.size()] = 0;
    ASSERT_EQ(chain.writeCompressedData(longer, appDataTag::kPreset), nullptr);
    EXPECT_FALSE(unpacks(preset, contentOf(chain))) << "a byte behind the preset";
    EXPECT_EQ(preset.name(), CStringView("Before"));
}

TEST_F(StoredPresets, listsOfBanks) {
    COwnedArray<CAudioPresetBank> banks;
    banks.append(new CAudioPresetBank)->assign(m_bank);
    banks.append(new CAudioPresetBank);
    CWriteSeqBuffer chain(1024);
    ASSERT_EQ(CAudioPresetBank::saveList(chain, banks), nullptr);
    const Bytes list = contentOf(chain);
    EXPECT_EQ(list.size(), 4 + saved(m_bank).size() + 8);
    for (std::size_t count = 0; count < list.size(); ++count) {
        CMemoryReader reader(list.data(), static_cast<int>(count));
        EXPECT_TRUE(discardError(CAudioPresetBank::loadList(reader, banks))) << count;
        EXPECT_TRUE(banks.isEmpty());
    }
    CMemoryReader reader(list.data(), static_cast<int>(list.size()));
    ASSERT_EQ(CAudioPresetBank::loadList(reader, banks), nullptr);
    ASSERT_EQ(banks.count(), 2);
    EXPECT_EQ(saved(banks[0]), saved(m_bank));
}

TEST(PresetNames, splitAtTheFirstColon) {
    const auto split = [](const char* fullName) {
        CString id, name;
        CAudioPreset::splitName(fullName, id, name);
        return id.toUtf8() + "|" + name.toUtf8();
    };
    EXPECT_EQ(split("qzkd:A: B"), "qzkd|A: B");
    EXPECT_EQ(split("Default"), "|Default");
    EXPECT_EQ(split(":"), "|");
}

}  // namespace
}  // namespace brt
