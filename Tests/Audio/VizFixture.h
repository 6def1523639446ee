// SPDX-License-Identifier: LicenseRef-Halyard
// An instance's tree with an environment and both collectors, above a shared tree with the definition of "-enable"
// parameters, and a reader of what displays get.
#pragma once

#include <initializer_list>
#include <memory>
#include <utility>
#include <vector>

#include "Audio/AudioTags.h"
#include "Audio/CAudioParamCollector.h"
#include "Audio/CAudioVizCollector.h"
#include "Audio/CollectedRecords.h"
#include "Core/TreeFixture.h"

namespace brt {

class VizFixture : public TreeFixture {
protected:
    using Attributes = std::initializer_list<std::pair<const char*, const char*>>;

    using Collected = CollectedRecords;

    void SetUp() override {
        TreeFixture::SetUp();
        addResource("Shared.xml", document([this](CDocumentWriter& writer) {
                        writer.beginElement("core:object", "audio");
                        put(writer, "audio:cvt-enum", "enum-enable", {{"is-discrete", "true"}});
                        put(writer, "audio:param", "param-enable-viz",
                            {{"element-size", "1"},
                             {"is-global", "true"},
                             {"is-single-group", "true"},
                             {"is-single-element", "true"},
                             {"converter", "^enum-enable"},
                             {"min-values", "0"},
                             {"max-values", "1"},
                             {"def-values", "0"}});
                        writeDefinitions(writer);
                        writer.endElement();
                    }));
        start("Shared.xml", tags());
        add(root(), "audio-env", "audio:audio-env");
        m_params = make<CAudioParamCollector>("audio:param-collector", "param-collector", {{"env", "^audio-env"}});
        m_viz = make<CAudioVizCollector>("audio:viz-collector", "viz-collector",
                                         {{"env", "^audio-env"}, {"param-collector", "^param-collector"}});
    }
    void TearDown() override {
        m_queue.clear();
        TreeFixture::TearDown();
    }

    // More of the shared tree's "audio", and the classes that it takes.
    virtual void writeDefinitions(CDocumentWriter&) {}
    virtual std::span<const CCreatorRow> tags() { return audioTags(); }

    static void begin(CDocumentWriter& writer, const char* tag, const char* name, Attributes attributes) {
        writer.beginElement(tag, name);
        for (const auto& [key, value] : attributes) writer.attribute(key, value);
    }
    static void put(CDocumentWriter& writer, const char* tag, const char* name, Attributes attributes) {
        begin(writer, tag, name, attributes);
        writer.endElement();
    }

    CAudioParamCollector& params() { return *m_params; }
    CAudioEnv& env() { return m_params->env(); }
    CAudioVizCollector& viz() { return *m_viz; }

    // What the audio thread does where a block begins.
    void beginBlock(double endSeconds) {
        env().beginBlock(endSeconds);
        VizSlot* const changed = viz().takePending();
        params().takeUpdates(m_queue);
        viz().applyPending(changed);
        params().applyUpdates(m_queue);
    }

    Collected collect(double framesPerSecond = 40.0) { return collectFrom(viz(), framesPerSecond); }

    template <class T>
    T* make(const char* tag, const char* name, Attributes attributes) {
        CAttrMap map;
        for (const auto& [key, value] : attributes) map.findOrInsert(key).setText(value);
        T* made = nullptr;
        EXPECT_EQ(messageOf(root().createChild(made, tag, name, kTemplateOptional, nullptr, &map)), "");
        return made;
    }

private:
    CAudioParamCollector* m_params = nullptr;
    CAudioVizCollector* m_viz = nullptr;
    CAudioParamQueue m_queue;
};

}  // namespace brt
