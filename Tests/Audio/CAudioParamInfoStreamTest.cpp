// SPDX-License-Identifier: LicenseRef-Halyard
// The stored form of a definition.
#include "AudioBytes.h"
#include "ConverterFixture.h"

#include <limits>

namespace brt {
namespace {

class CAudioParamInfoStreamTest : public ConverterFixture {
protected:
    static Bytes saved(const CAudioParamInfo& info) {
        return savedBytes([&](COutputStream& stream) { return info.save(stream); });
    }
    std::string load(CAudioParamInfo& info, const Bytes& bytes) {
        return loadBytes(bytes, [&](CInputStream& stream) { return info.load(stream, root()); });
    }

    const CAudioParamInfo& full() {
        const CAudioParamInfo* const info = define({{"converter", "shared::cvt.percent"},
                                                    {"is-storable", "true"},
                                                    {"is-single-element", "true"},
                                                    {"visual-name", "Drive"},
                                                    {"param-registry", "plugin.r"},
                                                    {"min-values", "100"},
                                                    {"max-values", "0"},
                                                    {"state-names", "Off|0;On"},
                                                    {"switch-values", "0.5,2"},
                                                    {"switch-names", "Half"},
                                                    {"def-values", "25;50"}});
        EXPECT_EQ(m_failure, "");
        return *info;
    }
};

TEST_F(CAudioParamInfoStreamTest, bytesOfTheStoredForm) {
    const CAudioParamInfo& info = full();
    const Bytes expected = CBytes()
                               .u32({1, 1, 1, 0})
                               .string("Drive")
                               .string("made")
                               .string("plugin.r")
                               .u32({1, 0, 0, 1})
                               .string("shared::cvt.percent")
                               .f64({1.0, 0.0})
                               .u32({2})
                               .string("Off")
                               .string("0")
                               .string("On")
                               .string("On")
                               .u32({2})
                               .f64({0.5})
                               .string("Half")
                               .f64({2.0})
                               .string("")
                               .u32({1, 1, 0, 2, 1})
                               .f64({0.25})
                               .u32({1})
                               .f64({0.5});
    EXPECT_EQ(saved(info), expected);

    CAudioParamInfo loaded;
    ASSERT_EQ(load(loaded, expected), "");
    EXPECT_EQ(saved(loaded), expected);
    EXPECT_EQ(loaded.converter(), info.converter()) << "shared by both";
    EXPECT_EQ(loaded.defaults.value(7, 0, -1), 0.25);
    EXPECT_TRUE(loaded.isSameAs(info));
    for (auto change : {+[](CAudioParamInfo& other) { other.name += "r"; },
                        +[](CAudioParamInfo& other) { other.format.elementSize = 2; },
                        +[](CAudioParamInfo& other) { other.format.dataType = EAudioDataType::kRaw; },
                        +[](CAudioParamInfo& other) { other.format.isSingleGroup = true; },
                        +[](CAudioParamInfo& other) { other.format.isSingleElement = false; }}) {
        CAudioParamInfo other;
        ASSERT_EQ(load(other, expected), "");
        other.minValues[0] = 5;
        EXPECT_TRUE(other.isSameAs(info)) << "a range doesn't count";
        change(other);
        EXPECT_FALSE(other.isSameAs(info));
    }
    // Loading again replaces all of it.
    ASSERT_EQ(load(loaded, saved(*define({{"converter", "shared::cvt.text"}, {"data-type", "string"}}))), "");
    EXPECT_TRUE(loaded.switchNames.isEmpty() && loaded.longStateNames.isEmpty());
    EXPECT_EQ(loaded.converterNames.count(), 1);
    EXPECT_EQ(loaded.defaults.data().text(loaded.defaults.value(0, 0, -1)), "");
}

TEST_F(CAudioParamInfoStreamTest, damageIsRefused) {
    const Bytes good = saved(full());
    for (std::size_t size = 0; size < good.size(); ++size) {
        CAudioParamInfo info;
        EXPECT_NE(load(info, Bytes(good.begin(), good.begin() + static_cast<std::ptrdiff_t>(size))), "") << size;
    }
    const auto damaged = [&](std::size_t place, const Bytes& bytes) {
        Bytes copy = good;
        std::copy(bytes.begin(), bytes.end(), copy.begin() + static_cast<std::ptrdiff_t>(place));
        CAudioParamInfo info;
        return load(info, copy);
    };
    constexpr std::size_t kFormat = 16 + 9 + 8 + 12;
    constexpr std::size_t kRange = kFormat + 16 + 23;
    constexpr std::size_t kStates = kRange + 16;
    constexpr std::size_t kSwitches = kStates + 4 + 7 + 5 + 6 + 6;
    const Bytes nan = CBytes().f64({std::numeric_limits<double>::quiet_NaN()});
    const std::string damage = "A parameter's definition can't be used: ";
    EXPECT_EQ(damaged(0, CBytes().u32({2})), "Unsupported data set version 2.");
    EXPECT_EQ(damaged(kFormat, CBytes().u32({0})), damage + "its element size is 0.");
    EXPECT_EQ(damaged(kFormat, CBytes().u32({65})), damage + "its element size is 65.");
    EXPECT_EQ(damaged(kFormat, CBytes().u32({2, 1})), damage + "its element size is 2.");
    EXPECT_EQ(damaged(kFormat + 4, CBytes().u32({3})), damage + "its data type is 3.");
    EXPECT_EQ(damaged(kFormat + 16 + 4, Bytes{'u'}), "Audio parameter converter 'uhared::cvt.percent' not found.");
    EXPECT_EQ(damaged(kRange, nan), damage + "there is no range for sub-value 0.");
    EXPECT_EQ(damaged(kRange, CBytes().f64({0.0})), damage + "there is no range for sub-value 0.");
    EXPECT_NE(damaged(kStates, CBytes().u32({0xFFFFFFFF})).find("it claims 4294967295 entries"), std::string::npos);
    EXPECT_NE(damaged(kSwitches, CBytes().u32({0x10000000})).find("it claims 268435456"), std::string::npos);
    EXPECT_EQ(damaged(kSwitches + 4, nan), damage + "there is no number for switch 0.");
}

}  // namespace
}  // namespace brt
