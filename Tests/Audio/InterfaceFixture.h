// SPDX-License-Identifier: LicenseRef-Halyard
// An instance with an interface, a host that writes down what it is told, and clients of two kinds: one that speaks the
// protocol word by word, and a window's tree with the real one.
#pragma once

#include "Audio/CAudioInterfaceBase.h"
#include "Audio/CAudioInterfaceDataProvider.h"
#include "Audio/CAudioParamDef.h"
#include "Core/CObjectWatch.h"
#include "Other/CAudioInterfaceClient.h"
#include "Other/CParamInterfaceBaseConnectorUni.h"
#include "Other/CParamInterfaceClientConnectorUni.h"
#include "Other/OtherTags.h"
#include "Platform/CMessageLoop.h"
#include "RawClient.h"
#include "VizFixture.h"

namespace brt {

// Knows the first two elements of group 0 of every parameter.
class HostProbe final : public CAudioInterfaceDataProvider {
public:
    int internalChannelCount() const override { return 6; }
    int groupCount() const override { return 8; }
    int inputChannelCount() const override { return 4; }
    int outputChannelCount() const override { return 2; }
    int sidechainChannelCount() const override { return 1; }
    double sampleRate() const override { return 96000.0; }
    bool beginEdit(CAudioParam& param, int element, int group) override {
        return group == 0 && element < 2 && note("begin", param, element);
    }
    void endEdit(CAudioParam& param, int element, int) override { note("end", param, element); }
    void importChannelLabels() override { m_journal.push_back("import"); }

    std::vector<std::string> take() { return std::exchange(m_journal, {}); }

private:
    bool note(const char* what, const CAudioParam& param, int element) {
        m_journal.push_back(std::string(what) + " " + text(param.name()) + " " + std::to_string(element));
        return true;
    }
    std::vector<std::string> m_journal;
};

// A window on the thread that makes it.
class Window {
public:
    explicit Window(CObject*& instanceRoot) {
        check(CApplication::initRootObject(m_root, ""));
        check(m_root->setAttrPointer("BaseConnectorRootPtr", &instanceRoot, kImmediate));
        make(m_bridge, *m_root, "ui:ui-event-bridge", "ui", {});
        make(m_connector, *m_bridge, "other:param-interface-client-connector-uni", "connector",
             {{"base-connector", "connector"}});
        make(m_client, *m_bridge, "audio:interface-client", "client",
             {{"client-connector", "^connector"}, {"group-names-param", "names"}});
    }
    ~Window() { CObject::release(m_root); }

    CAudioInterfaceClient& client() { return *m_client; }
    CParamInterfaceClientConnectorUni& connector() { return *m_connector; }
    CObject& bridge() { return *m_bridge; }

    // Has all that waits handled, as a tick and the loop do.
    static void pump() {
        const auto loop = CMessageLoop::current();
        while (loop && loop->pump()) {
        }
    }
    void tick() {
        m_connector->poll();
        pump();
    }

private:
    using Attributes = std::initializer_list<std::pair<const char*, const char*>>;

    static void check(CError* error) { EXPECT_EQ(messageOf(error), ""); }
    template <class T>
    static void make(T*& object, CObject& parent, const char* tag, const char* name, Attributes attributes) {
        CAttrMap map;
        for (const auto& [key, value] : attributes) map.findOrInsert(key).setText(value);
        check(parent.createChild(object, tag, name, kTemplateOptional, nullptr, &map));
    }

    CObject* m_root = nullptr;
    CObject* m_bridge = nullptr;
    CParamInterfaceClientConnectorUni* m_connector = nullptr;
    CAudioInterfaceClient* m_client = nullptr;
};

class InterfaceFixture : public VizFixture {
protected:
    void SetUp() override {
        VizFixture::SetUp();
        m_instance = &root();
        m_connector =
            make<CParamInterfaceBaseConnectorUni>("other:param-interface-base-connector-uni", "connector", {});
        m_base = make<CAudioInterfaceBase>("audio:interface-base", "interface-base",
                                           {{"param-collector", "^param-collector"},
                                            {"viz-collector", "^viz-collector"},
                                            {"base-connector", "^connector"},
                                            {"undo-count-max", undoCountMax()}});
    }
    virtual const char* undoCountMax() const { return "4"; }

    void writeDefinitions(CDocumentWriter& writer) override {
        put(writer, "audio:cvt-real", "real", {});
        put(writer, "audio:cvt-text", "text", {});
        put(writer, "audio:param", "gain",
            {{"element-size", "1"},
             {"converter", "shared::audio.real"},
             {"is-storable", "true"},
             {"min-values", "0"},
             {"max-values", "1000000"},
             {"def-values", "10"}});
        put(writer, "audio:param", "single",
            {{"element-size", "1"},
             {"converter", "shared::audio.real"},
             {"is-single-group", "true"},
             {"is-single-element", "true"},
             {"min-values", "0"},
             {"max-values", "1"},
             {"def-values", "0"}});
        put(writer, "audio:param", "names",
            {{"element-size", "1"},
             {"data-type", "string"},
             {"converter", "shared::audio.text"},
             {"is-single-group", "true"},
             {"def-values", "a,b,c"}});
    }
    std::span<const CCreatorRow> tags() override {
        m_tags.assign(audioTags().begin(), audioTags().end());
        m_tags.insert(m_tags.end(), otherTags().begin(), otherTags().end());
        return m_tags;
    }

    // A parameter of a definition, of that name unless told.
    CAudioParam& param(const char* name, const char* definition = nullptr) {
        CAudioParamDef* found = nullptr;
        const std::string path = std::string("shared::audio.") + (definition ? definition : name);
        EXPECT_EQ(messageOf(root().findObjectChecked(found, path)), "");
        CAudioParam& made = params().getParam(name);
        made.setInfo(found->info(), {});
        return made;
    }
    static CAudioParamUpdate update(const CAudioParam& param, const std::vector<double>& values, int group = 0,
                                    int first = 0) {
        CAudioParamUpdate result;
        result.group = group;
        result.firstElement = first;
        result.elementCount = static_cast<int>(values.size()) / param.control().format().elementSize;
        result.format = param.control().format();
        result.values = values.data();
        return result;
    }
    static std::vector<double> values(const CAudioParamStorage& storage, int group = 0) {
        const std::span<const double> span = storage.values(group);
        return {span.begin(), span.end()};
    }

    CParamInterfaceBaseConnectorUni& connector() { return *m_connector; }
    CAudioInterfaceBase& base() { return *m_base; }
    CObject*& instance() { return m_instance; }

private:
    CObject* m_instance = nullptr;
    CParamInterfaceBaseConnectorUni* m_connector = nullptr;
    CAudioInterfaceBase* m_base = nullptr;
    std::vector<CCreatorRow> m_tags;
};

}  // namespace brt
