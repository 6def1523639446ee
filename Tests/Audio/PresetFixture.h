// SPDX-License-Identifier: LicenseRef-Halyard
// An instance with three registries as the product has them: the master with its programs, one below it, and one whose
// preset has a name of its own. Presets are made by hand, so that what registries read is not what they wrote.
#pragma once

#include <stdlib.h>

#include <map>

#include "Audio/CAudioParamFilter.h"
#include "Audio/CAudioParamRegistry.h"
#include "InterfaceFixture.h"
#include "Tests/Platform/TemporaryFolder.h"

namespace brt {

// Its destination is twice its source, in each group and element.
class DoublingFilter final : public CAudioParamFilter {
protected:
    int minSources() const override { return 1; }
    int minDestinations() const override { return 1; }
    int compute(int group, int element, double* values) const override {
        values[0] = sources()[0]->control().value(group, element, 0.0) * 2.0;
        return 1;
    }
};

class PresetFixture : public InterfaceFixture {
protected:
    using Groups = std::vector<std::vector<double>>;
    // Of each parameter the values of each group, as text; trailing groups without elements are left out.
    using State = std::map<std::string, std::vector<std::string>>;

    static constexpr const char* kMain = "plugin.modMain.";

    void SetUp() override {
        ASSERT_EQ(setenv("XDG_CONFIG_HOME", m_home.bytes().c_str(), 1), 0);
        addBank();
        InterfaceFixture::SetUp();
        m_master = registry("registry", "qzkd", "plugin.modMain",
                            {{"is-master", "true"},
                             {"file", "FactoryROM.cbf"},
                             {"preset-name-param", "plugin.modMain.preset-name"},
                             {"preset-naming", "Master preset"}});
        m_io = registry("registry-io", "BTIO", "plugin.modMain.io-params", {{"preset-naming", "Routing preset"}});
        m_color = registry("registry-color", "BTUS", "plugin.modMain.uicolor-params",
                           {{"preset-name-param", "plugin.modMain.uicolor-params.mode-name"},
                            {"is-global-param-storable", "true"},
                            {"preset-naming", "UI color preset"}});
        addRegistries();
        for (const char* const name : {"gain", "single", "persistent", "plain", "preset-name", "instance-name",
                                       "ab-state", "source", "doubled", "modHal.hardness", "io-params.group-names",
                                       "io-params.grouping", "uicolor-params.mode-name", "uicolor-params.palette"})
            modParam(name);
        CStringList from;
        CStringList to;
        from.append("plugin.modMain.source"), to.append("plugin.modMain.doubled");
        m_filter = std::make_unique<DoublingFilter>();
        EXPECT_EQ(messageOf(m_filter->init(params(), from, to)), "");
        m_filter->activate();
        params().start();
    }
    void TearDown() override {
        m_filter.reset();
        InterfaceFixture::TearDown();
        unsetenv("XDG_CONFIG_HOME");
    }

    // More of them; the parameters come behind.
    virtual void addRegistries() {}
    // More of the definitions of "modMain".
    virtual void writeMore(CDocumentWriter&) {}
    // The programs that come with the product: seven, unless a test has others.
    virtual void addBank() { addPrograms(7); }
    const char* undoCountMax() const override { return "32"; }

    // "P0", "P1" ...: program i sets gain to i and hardness to i / 10.
    void addPrograms(int count) {
        CAudioPresetBank bank;
        for (int i = 0; i < count; ++i) addProgram(bank, "P" + std::to_string(i), i);
        addResource("FactoryROM.cbf", packed(bank));
    }
    static void addProgram(CAudioPresetBank& bank, const std::string& name, double value) {
        CAudioPreset& preset = *bank.presets().append(new CAudioPreset(CString("qzkd:").append(CStringView(name))));
        put(preset, "gain", {{value}});
        put(preset, "modHal.hardness", {{value / 10}});
        putText(preset, "preset-name", name);
    }
    template <class Stored>
    static Bytes packed(const Stored& stored) {
        CWriteSeqBuffer stream(CWriteSeqBuffer::kStateBlockBytes);
        EXPECT_EQ(messageOf(stored.savePacked(stream)), "");
        return toBytes(stream);
    }
    static Bytes packedBlock(CWriteSeqBuffer& content, std::uint32_t tag) {
        CByteBuffer bytes;
        content.moveTo(bytes);
        CWriteSeqBuffer stream(CWriteSeqBuffer::kStateBlockBytes);
        EXPECT_EQ(messageOf(stream.writeCompressedData(bytes, tag)), "");
        return toBytes(stream);
    }
    template <class Stored>
    static Bytes bytesOf(const Stored& stored) {
        CWriteSeqBuffer stream(CWriteSeqBuffer::kStateBlockBytes);
        EXPECT_EQ(messageOf(stored.save(stream)), "");
        return toBytes(stream);
    }

    // Entries of presets.
    static void put(CAudioPreset& preset, const char* key, const Groups& groups, CAudioParamFormat format = {}) {
        CAudioParamStorage storage;
        storage.setFormat(format);
        for (std::size_t group = 0; group < groups.size(); ++group) {
            CAudioParamUpdate update;
            update.group = static_cast<int>(group);
            update.elementCount = static_cast<int>(groups[group].size());
            update.format = format;
            update.values = groups[group].data();
            storage.apply(update);
        }
        putStorage(preset, key, storage);
    }
    static void putText(CAudioPreset& preset, const char* key, const std::string& value) {
        CAudioParamData items;
        const double id = items.addString(CStringView(value));
        CAudioParamUpdate update;
        update.elementCount = 1;
        update.format.dataType = EAudioDataType::kString;
        update.values = &id;
        update.data = &items;
        CAudioParamStorage storage;
        storage.setFormat(update.format);
        storage.apply(update);
        putStorage(preset, key, storage);
    }

    // Registries. Errors as text, "" for success.
    static std::string activate(CAudioParamRegistry& registry, const Bytes& bytes, int group = -1,
                                bool includePersistent = false) {
        CMemoryReader stream(bytes.data(), static_cast<int>(bytes.size()));
        return messageOf(registry.activatePreset(stream, includePersistent, group));
    }
    static std::string activate(CAudioParamRegistry& registry, const CAudioPreset& preset, int group = -1,
                                bool includePersistent = false) {
        return activate(registry, bytesOf(preset), group, includePersistent);
    }
    static std::string activateBank(CAudioParamRegistry& registry, const Bytes& bytes) {
        CMemoryReader stream(bytes.data(), static_cast<int>(bytes.size()));
        return messageOf(registry.activateBank(stream, false));
    }
    static std::string acquire(CAudioParamRegistry& registry, CAudioPreset& preset, int index = -1, int group = -1,
                               bool isFactory = false) {
        CWriteSeqBuffer stream(CWriteSeqBuffer::kStateBlockBytes);
        std::string error = messageOf(registry.acquirePreset(isFactory, index, group, stream));
        if (!error.empty()) return error;
        const Bytes bytes = toBytes(stream);
        CMemoryReader reader(bytes.data(), static_cast<int>(bytes.size()));
        EXPECT_EQ(messageOf(preset.load(reader)), "");
        return error;
    }
    static Bytes sessionBank(CAudioParamRegistry& registry) {
        CWriteSeqBuffer stream(CWriteSeqBuffer::kStateBlockBytes);
        EXPECT_EQ(messageOf(registry.acquireBank(false, stream)), "");
        return toBytes(stream);
    }

    // "label|label@position", without the start.
    std::string history() {
        CStringList labels;
        int position = 0;
        base().getHistory(labels, position);
        std::string result;
        for (int i = 1; i < labels.count(); ++i) result += (i > 1 ? "|" : "") + text(labels[i]);
        return result + "@" + std::to_string(position);
    }
    // One step of the history: one value.
    void edit(CAudioParam& param, double value, int group = 0, const char* label = "edit", bool isMergeable = false,
              int mergeId = -1) {
        const CRankedLock lock(base().undoSection());
        auto record = std::make_unique<CAudioParamUndoRecord>(label, isMergeable, mergeId);
        param.setFloatAt(group, 0, value, nullptr, {.undo = record.get()});
        base().submit(std::move(record));
    }

    // States.
    State state(bool ofAudio = false) {
        CSmallArray<CAudioParam*> all;
        params().listParams(all);
        State result;
        for (CAudioParam* const param : all)
            result[text(param->name())] = describe(ofAudio ? param->audio() : param->control());
        return result;
    }
    static std::vector<std::string> describe(const CAudioParamStorage& storage) {
        std::vector<std::string> groups;
        for (int group = 0; group < storage.groupCount(); ++group) {
            std::string line;
            for (const double value : storage.values(group))
                line += (storage.format().isFloat() ? std::to_string(value) : text(storage.data().text(value))) + ";";
            groups.push_back(line);
        }
        while (!groups.empty() && groups.back().empty()) groups.pop_back();
        return groups;
    }
    // What the audio thread has once it has taken all.
    State heard() {
        beginBlock(0.0);
        return state(true);
    }

    CAudioParam& mod(const std::string& name) { return params().getParam(CStringView(kMain + name)); }
    double value(const std::string& name, int group = 0, int element = 0) {
        return mod(name).getFloat(group, element, -1.0);
    }
    std::string shown(const std::string& name, int element = 0) { return text(mod(name).getString(0, element)); }

    CAudioParamRegistry& master() { return *m_master; }
    CAudioParamRegistry& io() { return *m_io; }
    CAudioParamRegistry& color() { return *m_color; }

    // With what all registries have.
    CAudioParamRegistry* registry(const char* name, const char* id, const char* hierarchy, Attributes more) {
        std::vector<std::pair<const char*, const char*>> attributes(more);
        CAttrMap map;
        attributes.insert(attributes.end(), {{"id", id},
                                             {"hierarchy", hierarchy},
                                             {"param-collector", "^param-collector"},
                                             {"param-undo", "^interface-base"},
                                             {"def-name-remap", "plugin=audio"},
                                             {"group-names-param", "plugin.modMain.io-params.group-names"}});
        for (const auto& [key, value] : attributes) map.findOrInsert(key).setText(value);
        CAudioParamRegistry* made = nullptr;
        EXPECT_EQ(messageOf(root().createChild(made, "audio:param-registry", name, kTemplateOptional, nullptr, &map)),
                  "");
        return made;
    }

    void writeDefinitions(CDocumentWriter& writer) override {
        InterfaceFixture::writeDefinitions(writer);
        const auto number = [&](const char* name, std::initializer_list<const char*> flags) {
            begin(writer, "audio:param", name,
                  {{"element-size", "1"},
                   {"converter", "shared::audio.real"},
                   {"min-values", "0"},
                   {"max-values", "1000000"},
                   {"def-values", "10"}});
            for (const char* const flag : flags) writer.attribute(flag, "true");
            writer.endElement();
        };
        const auto words = [&](const char* name, const char* flag, const char* value, const char* dataType = "string",
                               const char* isSingleElement = "true") {
            VizFixture::put(writer, "audio:param", name,
                            {{"element-size", "1"},
                             {"data-type", dataType},
                             {"converter", "shared::audio.text"},
                             {"is-single-group", "true"},
                             {"is-single-element", isSingleElement},
                             {flag, "true"},
                             {"def-values", value}});
        };
        begin(writer, "core:object", "modMain", {});
        writeMore(writer);
        for (const char* const name : {"gain", "source", "doubled", "late"}) number(name, {"is-storable"});
        number("single", {"is-storable", "is-single-group"});
        number("persistent", {"is-persistent"});
        number("plain", {});
        number("ab-state", {"is-global", "is-single-group"});
        words("preset-name", "is-storable", "Default");
        words("instance-name", "is-storable", "none");
        begin(writer, "core:object", "modHal", {});
        number("hardness", {"is-storable"});
        writer.endElement();
        begin(writer, "core:object", "io-params", {});
        number("grouping", {"is-storable"});
        words("group-names", "is-storable", "One,Two,Three", "string", "false");
        writer.endElement();
        begin(writer, "core:object", "uicolor-params", {});
        words("mode-name", "is-global", "Default");
        words("palette", "is-global", "0", "raw");
        writer.endElement();
        writer.endElement();
    }

    CAudioParam& modParam(const std::string& name) {
        return param((kMain + name).c_str(), ("modMain." + name).c_str());
    }

private:
    static Bytes toBytes(CWriteSeqBuffer& stream) {
        CByteBuffer bytes;
        stream.moveTo(bytes);
        return {bytes.data(), bytes.data() + bytes.size()};
    }
    static void putStorage(CAudioPreset& preset, const char* key, const CAudioParamStorage& storage) {
        CWriteSeqBuffer stream(CWriteSeqBuffer::kStringBlockBytes);
        EXPECT_EQ(messageOf(stream.writeString(CString("audio.modMain.").append(key))), "");
        EXPECT_EQ(messageOf(storage.saveDataSet(stream, -1)), "");
        stream.moveTo(preset.entries().findOrInsert(key));
    }

    TemporaryFolder m_home;
    std::unique_ptr<DoublingFilter> m_filter;  // goes before the parameters
    CAudioParamRegistry* m_master = nullptr;
    CAudioParamRegistry* m_io = nullptr;
    CAudioParamRegistry* m_color = nullptr;
};

}  // namespace brt
