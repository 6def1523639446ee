// SPDX-License-Identifier: LicenseRef-Halyard
// A host that does what it is told: it drives an effect through its record alone, answers as it is set, and writes down
// what it is asked. Settings of a user lie in a folder of the test's own.
#pragma once

#include <gmock/gmock.h>
#include <stdlib.h>

#include <cmath>
#include <cstring>
#include <functional>
#include <mutex>
#include <string>
#include <vector>

#include "Audio/VST/CAudioWrapperVST.h"
#include "Core/CAppData.h"
#include "Tests/Platform/TemporaryFolder.h"

namespace brt {

template <class Sample>
using VstSound = std::vector<std::vector<Sample>>;

class VstHost {
public:
    VstHost() : m_outer(std::exchange(s_current, this)) {}
    ~VstHost() {
        close();
        s_current = m_outer;
    }
    VstHost(const VstHost&) = delete;
    VstHost& operator=(const VstHost&) = delete;

    // Answers; set before `open`.
    std::int32_t version = 2400;
    std::string product = "Host";
    std::string vendor = "Maker";
    std::atomic<std::int32_t> processLevel{1};
    VstTimeInfo* time = nullptr;
    // Runs within each call, after it was written down.
    std::function<void(std::int32_t opcode, std::int32_t index)> onCall;

    using Entry = AEffect* (*)(audioMasterCallback);
    bool open(Entry entry = &makeEffect) {
        m_effect = entry(&VstHost::answer);
        if (m_effect != nullptr) m_effect->user = this;
        return m_effect != nullptr;
    }
    void close() {
        if (m_effect != nullptr) {
            EXPECT_EQ(call(effClose), 1);
        }
        m_effect = nullptr;
    }

    AEffect& effect() const { return *m_effect; }
    CAudioWrapper& instance() const {
        return *dynamic_cast<CAudioWrapper*>(static_cast<AudioEffect*>(m_effect->object));
    }

    std::intptr_t call(std::int32_t opcode, std::int32_t index = 0, std::intptr_t value = 0, void* ptr = nullptr,
                       float opt = 0.0f) const {
        return m_effect->dispatcher(m_effect, opcode, index, value, ptr, opt);
    }
    // A text that the effect writes into exactly that much room.
    std::string textOf(std::int32_t opcode, int room, std::int32_t index = 0, std::intptr_t value = 0) const {
        const std::unique_ptr<char[]> text(new char[static_cast<std::size_t>(room)]);
        std::memset(text.get(), '#', static_cast<std::size_t>(room));
        call(opcode, index, value, text.get());
        const void* const end = std::memchr(text.get(), 0, static_cast<std::size_t>(room));
        return end != nullptr ? text.get() : "no end";
    }
    void setProgramName(std::string name) const { call(effSetProgramName, 0, 0, name.data()); }
    std::string programName() const { return textOf(effGetProgramName, kVstMaxProgNameLen); }

    void set(std::int32_t index, float value) const { m_effect->setParameter(m_effect, index, value); }
    float get(std::int32_t index) const { return m_effect->getParameter(m_effect, index); }

    void resume(float sampleRateHz = 48000.0f) const {
        call(effSetSampleRate, 0, 0, nullptr, sampleRateHz);
        call(effSetBlockSize, 0, 512);
        call(effMainsChanged, 0, 1);
    }
    void suspend() const { call(effMainsChanged, 0, 0); }

    template <class Sample>
    VstSound<Sample> play(VstSound<Sample> input) const {
        VstSound<Sample> output(input.size(), std::vector<Sample>(input[0].size(), Sample{9}));
        std::vector<Sample*> in;
        std::vector<Sample*> out;
        for (auto& channel : input) in.push_back(channel.data());
        for (auto& channel : output) out.push_back(channel.data());
        const auto frames = static_cast<std::int32_t>(input[0].size());
        if constexpr (std::is_same_v<Sample, double>)
            m_effect->processDoubleReplacing(m_effect, in.data(), out.data(), frames);
        else
            m_effect->processReplacing(m_effect, in.data(), out.data(), frames);
        return output;
    }
    // Of two channels.
    template <class Sample>
    static VstSound<Sample> tone(int frames, double amplitude = 0.5) {
        VstSound<Sample> sound(2, std::vector<Sample>(static_cast<std::size_t>(frames)));
        for (std::size_t i = 0; i < sound[0].size(); ++i) {
            sound[0][i] = static_cast<Sample>(amplitude * std::sin(0.05 * static_cast<double>(i)));
            sound[1][i] = -sound[0][i];
        }
        return sound;
    }

    using Chunk = std::vector<std::uint8_t>;
    Chunk chunk(bool isPreset = false) const {
        void* data = nullptr;
        const std::intptr_t size = call(effGetChunk, isPreset, 0, &data);
        const auto* const bytes = static_cast<const std::uint8_t*>(data);
        return {bytes, bytes + size};
    }
    // From memory that ends with the chunk.
    std::intptr_t setChunk(const Chunk& chunk, bool isPreset = false) const {
        Chunk copy(chunk);
        copy.shrink_to_fit();
        return call(effSetChunk, isPreset, std::ssize(copy), copy.data());
    }

    std::vector<std::string> takeJournal() {
        const std::lock_guard lock(m_lock);
        return std::exchange(m_journal, {});
    }

private:
    static std::intptr_t answer(AEffect* effect, std::int32_t opcode, std::int32_t index, std::intptr_t value,
                                void* ptr, float opt) {
        VstHost* const host =
            effect != nullptr && effect->user != nullptr ? static_cast<VstHost*>(effect->user) : s_current;
        return host->answerHere(opcode, index, value, ptr, opt);
    }

    std::intptr_t answerHere(std::int32_t opcode, std::int32_t index, std::intptr_t value, void* ptr, float opt) {
        switch (opcode) {
        case audioMasterVersion: return version;
        case audioMasterGetVendorString: return std::strcpy(static_cast<char*>(ptr), vendor.c_str()), 1;
        case audioMasterGetProductString: return std::strcpy(static_cast<char*>(ptr), product.c_str()), 1;
        case audioMasterGetCurrentProcessLevel: return processLevel;
        case audioMasterGetTime: return reinterpret_cast<std::intptr_t>(time);
        case audioMasterAutomate: note("automate", index, opt); break;
        case audioMasterIOChanged: note("io"); break;
        case audioMasterUpdateDisplay: note("display"); break;
        case audioMasterBeginEdit: note("begin", index); break;
        case audioMasterEndEdit: note("end", index); break;
        default: ADD_FAILURE() << "opcode " << opcode << ", value " << value; return 0;
        }
        if (onCall) onCall(opcode, index);
        return 1;
    }
    template <class... Numbers>
    void note(std::string line, Numbers... numbers) {
        ((line += " " + testing::PrintToString(numbers)), ...);
        const std::lock_guard lock(m_lock);
        m_journal.push_back(line);
    }

    static inline VstHost* s_current = nullptr;  // until an effect knows its host

    VstHost* const m_outer;
    AEffect* m_effect = nullptr;
    std::mutex m_lock;
    std::vector<std::string> m_journal;
};

// The product's parameters, by their numbers for the host.
enum HostParam : std::int32_t { kBypass, kGain, kHardness, kOutGain, kResidue, kHostParamCount };

class VstFixture : public testing::Test {
protected:
    void SetUp() override { setenv("XDG_CONFIG_HOME", m_folder.bytes().c_str(), 1); }
    void TearDown() override {
        stopProcess();
        unsetenv("XDG_CONFIG_HOME");
    }

    TemporaryFolder m_folder;
};

}  // namespace brt
