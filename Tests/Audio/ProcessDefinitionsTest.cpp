// SPDX-License-Identifier: LicenseRef-Halyard
// Processes, their links and their states, as the document declares them.
#include "DefinitionFixture.h"

namespace brt {
namespace {

class ProcessDefinitions : public DefinitionFixture {
protected:
    bool isActive(Attributes attributes, double a, double b = 0.0) {
        return make<CAudioProcessBypassStateDef>("audio:process-bypass-state", attributes).isActive(a, b);
    }
    CAudioProcessDef& process(CStringView path) { return dynamic_cast<CAudioProcessDef&>(*root().findObject(path)); }

    template <class List>
    static std::vector<std::string> names(const List& objects) {
        std::vector<std::string> result;
        for (const CObject* const object : objects) result.push_back(text(object->getShortName()));
        return result;
    }
    template <class List>
    static std::vector<std::string> places(const List& list) {
        std::vector<std::string> result;
        for (const auto* const placed : list)
            result.push_back(text(placed->definition.getShortName()) + " at " + placed->relativePath.toUtf8());
        return result;
    }
};

using Names = std::vector<std::string>;

TEST_F(ProcessDefinitions, anEmptyOneIsAnEmptyProcess) {
    const auto& process = make<CAudioProcessDef>("audio:process-def", {});
    EXPECT_TRUE(process.childProcesses().isEmpty() && process.linkStates().isEmpty());
    EXPECT_TRUE(process.bypassStates().isEmpty() && process.paramRemaps().isEmpty());
    EXPECT_EQ(process.links(-1), nullptr);
    EXPECT_EQ(process.bypassStateId(), 0);
    EXPECT_EQ(process.inputComboMode(), EAudioComboMode::kSum);
    EXPECT_TRUE(process.stackParam().isEmpty());
    EXPECT_FALSE(process.isAutoLinks() || process.isStacked() || process.isPrototype() || process.isOutOfOrder());
}

TEST_F(ProcessDefinitions, eachAttributeHasItsOwnPlaceAndRow) {
    const CClassInfo& info = CApplication::creators().find("audio:process-def")->info;
    EXPECT_TRUE(info.isNameRequired());
    EXPECT_TRUE(info.findAttribute("bypass-state-id")->isRequired);  // missing it would mean state 0
    const struct {
        const char* attribute;
        bool (CAudioProcessDef::*isSet)() const noexcept;
    } kFlags[] = {
        {"is-auto-links", &CAudioProcessDef::isAutoLinks},
        {"is-channel-stack", &CAudioProcessDef::isChannelStack},
        {"is-comp-input", &CAudioProcessDef::isCompInput},
        {"is-multiband", &CAudioProcessDef::isMultiband},
        {"is-outoforder", &CAudioProcessDef::isOutOfOrder},
        {"is-prototype", &CAudioProcessDef::isPrototype},
        {"is-smooth-update", &CAudioProcessDef::isSmoothUpdate},
        {"is-stacked", &CAudioProcessDef::isStacked},
        {"is-terminal-whole", &CAudioProcessDef::isTerminalWhole},
    };
    for (const auto& written : kFlags) {
        EXPECT_NE(info.findAttribute(written.attribute), nullptr) << written.attribute;
        const auto& process = make<CAudioProcessDef>("audio:process-def", {{written.attribute, "true"}});
        for (const auto& read : kFlags)
            EXPECT_EQ((process.*read.isSet)(), read.attribute == written.attribute)
                << written.attribute << ", " << read.attribute;
    }
    const auto& process = make<CAudioProcessDef>("audio:process-def", {{"bypass-state-id", "-1"},
                                                                       {"input-combo-mode", "avg"},
                                                                       {"multiband-count-param", "count"},
                                                                       {"multiband-freq-param", "freq"},
                                                                       {"stack-index-shift", "2"},
                                                                       {"stack-param", "units"}});
    EXPECT_EQ(process.bypassStateId(), -1);
    EXPECT_EQ(process.inputComboMode(), EAudioComboMode::kAverage);
    EXPECT_EQ(process.multibandCountParam(), "count");
    EXPECT_EQ(process.multibandFreqParam(), "freq");
    EXPECT_EQ(process.stackIndexShift(), 2);
    EXPECT_EQ(process.stackParam(), "units");
    const auto modeOf = [&](const char* word) {
        return make<CAudioProcessDef>("audio:process-def", {{"input-combo-mode", word}}).inputComboMode();
    };
    EXPECT_EQ(modeOf("max"), EAudioComboMode::kMaximum);
    EXPECT_EQ(modeOf("Max"), EAudioComboMode::kSum);
}

TEST_F(ProcessDefinitions, failuresNameTheObject) {
    CObject* object = nullptr;
    CAttrMap attributes;
    attributes.findOrInsert("stack-index-shift").setText("-3");
    CError* const error = root().createChild(object, "audio:process-def", "p", kTemplateOptional, nullptr, &attributes);
    ASSERT_NE(error, nullptr);
    EXPECT_EQ(error->message(), "Invalid stack index shift value '-3' specified.");
    for (int line = 1; line <= 2; ++line)  // the base class, the class
        EXPECT_TRUE(error->lines()[line].endsWith(" // p")) << error->lines()[line].toUtf8();
    discardError(error);  // seen
}

TEST_F(ProcessDefinitions, linksNameProcessesAndPorts) {
    const auto& link = make<CAudioProcessLinkDef>(
        "audio:process-link",
        {{"src", "*"}, {"dst", "modMeterIODiff/1"}, {"state-id", "2"}, {"bypass-state-id", "1 x  -4 2 3000000000 1"}});
    EXPECT_EQ(link.src(), CAudioProcessLinkDef::kContainer);
    EXPECT_EQ(link.srcPort(), 0);
    EXPECT_EQ(link.dst(), "modMeterIODiff");
    EXPECT_EQ(link.dstPort(), 1);
    EXPECT_EQ(link.stateId(), 2);
    EXPECT_EQ((std::vector<int>{link.bypassStateIds().begin(), link.bypassStateIds().end()}),
              (std::vector<int>{1, 2, 1}));

    const auto& plain = make<CAudioProcessLinkDef>("audio:process-link", {{"src", "a/12"}, {"dst", "*"}});
    EXPECT_EQ(plain.srcPort(), 12);
    EXPECT_EQ(plain.stateId(), CAudioProcessLinkDef::kEveryState);
    EXPECT_TRUE(plain.bypassStateIds().isEmpty());
}

TEST_F(ProcessDefinitions, badLinksFail) {
    const auto failure = [&](const char* src, const char* dst, const char* state = "") {
        return failureOf("audio:process-link", {{"src", src}, {"dst", dst}, {"state-id", state}});
    };
    EXPECT_EQ(failure("", ""), "No 'src' attribute defined.");
    EXPECT_EQ(failure("a", ""), "No 'dst' attribute defined.");
    for (const std::string value : {"m/", "m/x", "m/-1", "m/1/2", "m/ 1", "m/2147483648", "/"}) {
        EXPECT_EQ(failure(value.c_str(), "b"), "Invalid port in the 'src' attribute value '" + value + "' specified.");
        EXPECT_EQ(failure("a", value.c_str()), "Invalid port in the 'dst' attribute value '" + value + "' specified.");
    }
    EXPECT_EQ(failure("/1", "b"), "Invalid process in the 'src' attribute value '/1' specified.");
    EXPECT_EQ(failure("a", "/1"), "Invalid process in the 'dst' attribute value '/1' specified.");
    for (const std::string value : {"-2", "x", "1.5", "99999999999"})
        EXPECT_EQ(failure("a", "b", value.c_str()), "Invalid state identifier '" + value + "' specified.");
    EXPECT_EQ(failure("a", "b", "-1"), "");
}

TEST_F(ProcessDefinitions, aBypassStateTestsValues) {
    EXPECT_TRUE(isActive({{"param", "p"}, {"value", "1.0"}}, 0.95));
    EXPECT_FALSE(isActive({{"param", "p"}, {"value", "1.0"}}, 0.85));
    EXPECT_TRUE(isActive({{"param", "p"}}, 0.1));
    EXPECT_FALSE(isActive({{"param", "p"}, {"value", "1.0"}, {"is-inverted", "true"}}, 1.0));
    EXPECT_TRUE(isActive({{"param", "p"}, {"value", "1.0"}, {"is-inverted", "true"}}, 0.0));
    // A range counts, and not the value beside it.
    EXPECT_FALSE(isActive({{"param", "p"}, {"range", "(0;1]"}, {"value", "0"}}, 0.0));
    EXPECT_TRUE(isActive({{"param", "p"}, {"range", "(0;1]"}}, 0.01));
}

TEST_F(ProcessDefinitions, aBypassStateTestsASecondParameter) {
    // Without "and-param" the rest of the second condition means nothing.
    EXPECT_TRUE(isActive({{"param", "p"}, {"value", "1"}, {"and-value", "5"}}, 1.0, 0.0));
    const Attributes both = {{"param", "p"}, {"value", "1"}, {"and-param", "q"}, {"and-range", "[2;*]"}};
    EXPECT_TRUE(isActive(both, 1.0, 3.0));
    EXPECT_FALSE(isActive(both, 1.0, 1.0));
    EXPECT_FALSE(isActive(both, 0.0, 3.0));
    const Attributes inverted = {
        {"param", "p"}, {"value", "1"}, {"and-param", "q"}, {"and-value", "2"}, {"is-inverted", "true"}};
    EXPECT_FALSE(isActive(inverted, 1.0, 2.0));
    EXPECT_TRUE(isActive(inverted, 1.0, 0.0));
    EXPECT_TRUE(isActive(inverted, 0.0, 0.0));

    constexpr const char* kTag = "audio:process-bypass-state";
    EXPECT_EQ(failureOf(kTag, {{"id", "1"}}), "Invalid parameter name specified.");
    EXPECT_EQ(failureOf(kTag, {{"param", "p"}, {"range", "(1;0)"}}),
              "Invalid 'range' attribute value '(1;0)' specified.");
    EXPECT_EQ(failureOf(kTag, {{"param", "p"}, {"and-range", "0..1"}}),
              "Invalid 'and-range' attribute value '0..1' specified.");
    EXPECT_EQ(failureOf("test:process-link-state", {}), "Invalid parameter name specified.");
}

TEST_F(ProcessDefinitions, childrenAreSortedInTheOrderOfTheDocument) {
    ASSERT_EQ(load([](CDocumentWriter& writer) {
                  const auto putLink = [&](const char* name, const char* state) {
                      put(writer, "audio:process-link", name, {{"src", "a"}, {"dst", "b"}, {"state-id", state}});
                  };
                  begin(writer, "audio:process-def", "main", {{"bypass-state-id", "-1"}});
                  putLink("z", "-1");
                  put(writer, "audio:process-def", "second", {{"is-prototype", "true"}});
                  putLink("one", "3");
                  put(writer, "audio:process-bypass-state", "viz", {{"id", "1"}, {"param", "p"}});
                  put(writer, "test:process-link-state", "select", {{"param", "state"}});
                  putLink("a", "-1");
                  put(writer, "audio:process-bypass-state", "viz", {{"id", "0"}, {"param", "p"}});
                  put(writer, "audio:process-def", "first", {});
                  put(writer, "core:timer", "neither", {});
                  writer.endElement();
              }),
              "");
    const CAudioProcessDef& main = process("main");
    EXPECT_EQ(names(main.childProcesses()), (Names{"second", "first"}));
    EXPECT_TRUE(main.childProcesses()[0]->isPrototype());
    EXPECT_EQ(names(*main.links(-1)), (Names{"z", "a"}));
    EXPECT_EQ(names(*main.links(3)), (Names{"one"}));
    EXPECT_EQ(main.links(0), nullptr);
    EXPECT_EQ(names(main.linkStates()), (Names{"select"}));
    EXPECT_EQ(main.linkStates()[0]->param(), "state");
    EXPECT_EQ(names(main.bypassStates()), (Names{"viz", "viz#1"}));
    EXPECT_EQ(main.bypassStates()[0]->id(), 1);
}

TEST_F(ProcessDefinitions, parametersAreFoundBelowTheProcessAndInItsGroups) {
    ASSERT_EQ(load([](CDocumentWriter& writer) {
                  const auto putStorage = [&](const char* name, const char* param) {
                      put(writer, "audio:param-shared-storage", name,
                          {{"param", param}, {"data-name", "k"}, {"storage-type", "local"}});
                  };
                  const auto putFilter = [&](const char* name) {
                      put(writer, "audio:param-filter-bypass-group-solo", name, {{"src", "a"}, {"dst", "b"}});
                  };
                  const auto putParam = [&](const char* name) {
                      put(writer, "audio:param", name,
                          {{"element-size", "1"},
                           {"converter", "real"},
                           {"min-values", "0"},
                           {"max-values", "1"},
                           {"def-values", "0"}});
                  };
                  put(writer, "audio:cvt-real", "real", {});
                  begin(writer, "audio:process-def", "p", {});
                  putParam("meter-time");
                  put(writer, "audio:param-alloc", "x", {{"param-name", "old"}, {"index", "4"}});
                  begin(writer, "core:object", "io-params", {});
                  putFilter("inner-filter");
                  putParam("solo");
                  putStorage("inner-store", "solo");
                  begin(writer, "core:object", "deeper", {});
                  putStorage("lost", "solo");
                  putParam("lost");
                  writer.endElement();
                  put(writer, "audio:param-alloc", "lost", {{"param-name", "lost"}, {"index", "9"}});
                  put(writer, "audio:process-def", "lost", {});
                  writer.endElement();
                  begin(writer, "ui:param-data", "plain-but-no-group", {});
                  putStorage("lost", "solo");
                  writer.endElement();
                  putFilter("outer-filter");
                  putStorage("outer-store", "meter-time");
                  put(writer, "audio:param-remap", "r2", {{"orig", "a"}, {"new", "b"}});
                  put(writer, "audio:param-remap", "r1", {{"orig", "a"}, {"new", "b"}});
                  put(writer, "audio:param-alloc", "y", {{"param-name", "new"}, {"index", "4"}});
                  put(writer, "audio:param-alloc", "z", {{"param-name", "gain"}});
                  putParam("gain");
                  writer.endElement();
              }),
              "");
    const CAudioProcessDef& p = process("p");
    Names slots;
    for (const auto& [index, alloc] : p.paramAllocs())
        slots.push_back(std::to_string(index) + " " + alloc->paramName().toUtf8());
    EXPECT_EQ(slots, (Names{"0 gain", "4 new"}));
    EXPECT_EQ(names(p.paramRemaps()), (Names{"r2", "r1"}));
    EXPECT_EQ(places(p.sharedStorages()), (Names{"inner-store at .io-params.solo", "outer-store at .meter-time"}));
    EXPECT_EQ(places(p.params()), (Names{"meter-time at .meter-time", "solo at .io-params.solo", "gain at .gain"}));
    EXPECT_EQ(places(p.paramFilters()), (Names{"inner-filter at .io-params", "outer-filter at "}));
    EXPECT_TRUE(p.childProcesses().isEmpty());
}

}  // namespace
}  // namespace brt
