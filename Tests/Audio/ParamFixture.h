// SPDX-License-Identifier: LicenseRef-Halyard
// An instance's tree with an environment and a collector, and parameters of any format without a document.
#pragma once

#include <deque>
#include <initializer_list>
#include <vector>

#include "Audio/AudioTags.h"
#include "Audio/CAudioParamCollector.h"
#include "Core/CMemoryReader.h"
#include "Core/CUpdateListener.h"
#include "Core/CWriteSeqBuffer.h"
#include "Core/TreeFixture.h"

namespace brt {

class ParamFixture : public TreeFixture {
protected:
    void SetUp() override {
        TreeFixture::SetUp();
        const std::span<const CCreatorRow> tables[] = {coreTags(), audioTags()};
        CApplication::start({tables, nullptr, ""});
        add(root(), "audio-env", "audio:audio-env");
        CAttrMap attributes;
        attributes.findOrInsert("env").setText("^audio-env");
        EXPECT_EQ(messageOf(root().createChild(m_collector, "audio:param-collector", "param-collector",
                                               kTemplateOptional, nullptr, &attributes)),
                  "");
    }

    void TearDown() override {
        m_queue.clear();
        releaseTree();
        m_infos.clear();
        TreeFixture::TearDown();
    }

    CAudioParamCollector& collector() { return *m_collector; }
    void setActive(bool isActive) { collector().env().setActive(isActive); }

    // A definition that lives as long as the test; numbers from 0 to 100, the defaults as given.
    CAudioParamInfo& info(const char* name, std::initializer_list<double> defaults, CAudioParamFormat format = {}) {
        CAudioParamInfo& made = m_infos.emplace_back();
        made.name = name;
        made.format = format;
        made.isStorable = true;
        for (int i = 0; i < format.elementSize; ++i) {
            made.minValues.append(0.0);
            made.maxValues.append(100.0);
        }
        made.defaults.setFormat(format);
        CAudioParamUpdate update;
        update.format = format;
        update.elementCount = static_cast<int>(defaults.size()) / format.elementSize;
        update.values = defaults.begin();
        made.defaults.apply(update);
        update.group = kWholeParam;
        CAudioParamStorage whole;
        whole.apply(update);
        update.group = 0;
        whole.apply(update);
        made.defaults.assign(whole);
        return made;
    }

    // A parameter of numbers, or of texts that count from 0.
    CAudioParam& param(const char* name, std::initializer_list<double> defaults, CAudioParamFormat format = {}) {
        CAudioParam& made = collector().getParam(name);
        made.setInfo(info(name, defaults, format), {});
        return made;
    }
    CAudioParam& textParam(const char* name, const char* text) {
        CAudioParamInfo& made = m_infos.emplace_back();
        made.name = name;
        made.format.dataType = EAudioDataType::kString;
        made.isStorable = true;
        EXPECT_EQ(messageOf(made.defaults.parseDefValues(made, text, "")), "");
        CAudioParam& result = collector().getParam(name);
        result.setInfo(made, {});
        return result;
    }

    // A run of elements of one group.
    static void change(CAudioParam& param, int group, int first, std::initializer_list<double> values,
                       const CAudioParamChangeContext& context = {}, bool isSetCount = false) {
        CAudioParamUpdate update;
        update.group = group;
        update.firstElement = first;
        update.elementCount = static_cast<int>(values.size());
        update.isSetCount = isSetCount;
        update.format = param.control().format();
        update.values = values.begin();
        param.update(update, context);
    }

    // What the audio thread does at the start of a chunk.
    void playChunk() {
        collector().takeUpdates(m_queue);
        collector().applyUpdates(m_queue);
    }

    static std::vector<double> values(const CAudioParamStorage& storage, int group) {
        const std::span<const double> span = storage.values(group);
        return {span.begin(), span.end()};
    }

    static Bytes saved(CAudioParam& param, int group = -1) {
        CWriteSeqBuffer stream(1024);
        EXPECT_EQ(messageOf(param.saveToStream(stream, group)), "");
        CByteBuffer bytes;
        stream.moveTo(bytes);
        return {bytes.data(), bytes.data() + bytes.size()};
    }

    static std::string load(CAudioParam& param, const Bytes& bytes, int group = CAudioParam::kAllGroups,
                            int element = CAudioParam::kAllElements, bool toDefaults = false) {
        CMemoryReader stream(bytes.data(), static_cast<int>(bytes.size()));
        return messageOf(param.loadFromStream(stream, toDefaults, {}, group, element, false));
    }

private:
    CAudioParamCollector* m_collector = nullptr;
    CAudioParamQueue m_queue;
    std::deque<CAudioParamInfo> m_infos;
};

// Writes down the changes of one parameter.
class ChangeLog final : public CUpdateListener {
public:
    ChangeLog(CAudioParamCollector& collector, CAudioParam& param) { attach(&collector, CUpdateFilter(&param)); }
    ~ChangeLog() override { detach(); }

    struct Change {
        int group, first, count;
        bool isSetCount;
        bool operator==(const Change&) const = default;
    };
    std::vector<Change> take() { return std::exchange(m_changes, {}); }

    void update(const CUpdateData* data) override {
        const CAudioParamUpdate& update = static_cast<const CAudioParamUpdateData*>(data)->update;
        m_changes.push_back({update.group, update.firstElement, update.elementCount, update.isSetCount});
    }

private:
    std::vector<Change> m_changes;
};

}  // namespace brt
