// SPDX-License-Identifier: LicenseRef-Halyard
// The product's instances without a format: a host that writes down what it is told and hands in blocks.
#pragma once

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "Audio/CAudioExtParam.h"
#include "Audio/Wrapper/CAudioWrapper.h"
#include "Core/TreeFixture.h"
#include "Documents/ProductTags.h"
#include "Documents/Resources.h"

namespace brt {

class PlainInstance final : public CAudioWrapper {
public:
    void hostAutomate(int extIndex, double value) override {
        journal.push_back("automate " + std::to_string(extIndex) + " " + std::to_string(value));
    }
    void hostUpdateDisplay() override { journal.push_back("display"); }
    void hostBeginEdit(int extIndex) override { journal.push_back("begin " + std::to_string(extIndex)); }
    void hostEndEdit(int extIndex) override { journal.push_back("end " + std::to_string(extIndex)); }

    // As an adapter starts: `channelCount` host channels, floats or doubles, at that rate.
    void start(int channelCount = 2, double sampleRateHz = 48000.0, bool isDouble = true) {
        EXPECT_EQ(messageOf(init()), "");
        setChannels(channelCount);
        updateDefaultRouting(true);
        initConnections();
        resume(channelCount, sampleRateHz, isDouble);
    }
    void setChannels(int channelCount) {
        CStringList names;
        for (const char* const name : {"L", "R"}) names.append(name);
        setHostChannels(channelCount, names);
    }
    void resume(int channelCount, double sampleRateHz, bool isDouble) {
        setEnvSampleRate(sampleRateHz);
        setInputFormat({channelCount, isDouble, false});
        setOutputFormat({channelCount, isDouble, false});
        activate();
    }

    // Again with two channels of doubles, whatever was before.
    void reopen() {
        deactivate();
        setChannels(2);
        resume(2, 48000.0, true);
    }

    CAudioParam& param(const char* name) { return collector().getParam(std::string("plugin.modMain.") + name); }
    double value(const char* name, int group = 0, int element = 0) {
        return param(name).getFloat(group, element, -1e9);
    }

    std::vector<std::string> journal;
};

using Channel = std::vector<double>;
using Sound = std::vector<Channel>;

class WrapperFixture : public TreeFixture {
protected:
    void SetUp() override {
        TreeFixture::SetUp();
        CApplication::start({productTags(), kHalyardResources});
    }

    // A block of doubles.
    static Sound play(CAudioWrapper& instance, const Sound& input, int outputCount = 2) {
        const int frames = static_cast<int>(input[0].size());
        Sound output(static_cast<std::size_t>(outputCount), Channel(input[0].size(), 9.0));
        std::vector<const void*> in;
        std::vector<void*> out;
        for (const Channel& channel : input) in.push_back(channel.data());
        for (Channel& channel : output) out.push_back(channel.data());
        instance.process(in.data(), out.data(), frames);
        return output;
    }
    static Sound silence(int frames, int channels = 2) {
        return Sound(static_cast<std::size_t>(channels), Channel(static_cast<std::size_t>(frames)));
    }
};

}  // namespace brt
