// SPDX-License-Identifier: LicenseRef-Halyard
// What stands around parameters in a definition: slots, aliases, filters, stores; and the list for the host.
#include "Audio/CAudioParamFilter.h"
#include "Core/CAppData.h"
#include "DefinitionFixture.h"

namespace brt {
namespace {

using Pairs = std::vector<std::pair<std::string, std::string>>;

class ParamDefinitions : public DefinitionFixture {
protected:
    // The pairs of a remap with these texts inside; its message in their place if it fails.
    Pairs remap(std::initializer_list<const char*> contents, Attributes attributes = {}) {
        const std::string message = load([&](CDocumentWriter& writer) {
            begin(writer, "audio:param-remap", "remap", attributes);
            for (const char* const content : contents) put(writer, "content", "content", {{"value", content}});
            put(writer, "content", "contents", {{"value", "other = child"}});
            writer.endElement();
        });
        if (!message.empty()) return {{"failed", message}};
        CObject* const made = root().findObject("remap#");
        Pairs result;
        for (const auto* const pair : dynamic_cast<CAudioParamRemapDef&>(*made).pairs())
            result.emplace_back(pair->orig.toUtf8(), pair->target.toUtf8());
        return result;
    }
};

TEST_F(ParamDefinitions, aSlotNamesItsParameter) {
    const auto& plain = make<CAudioParamAllocDef>("audio:param-alloc", {{"param-name", "gain"}});
    EXPECT_EQ(plain.paramName(), "gain");
    EXPECT_EQ(plain.index(), 0);
    EXPECT_FALSE(plain.useAllGroups() || plain.useAllElements() || plain.isSmoothUpdate());

    const auto& groups = make<CAudioParamAllocDef>(
        "audio:param-alloc", {{"param-name", "group-solo"}, {"index", "7"}, {"use-all-groups", "true"}});
    EXPECT_EQ(groups.index(), 7);
    EXPECT_TRUE(groups.useAllGroups());
    EXPECT_FALSE(groups.useAllElements());
    const auto& smooth = make<CAudioParamAllocDef>(
        "audio:param-alloc", {{"param-name", "x"}, {"use-all-elements", "1"}, {"is-smooth-update", "true"}});
    EXPECT_TRUE(smooth.useAllElements() && smooth.isSmoothUpdate());

    EXPECT_EQ(failureOf("audio:param-alloc", {{"index", "-1"}}), "Invalid parameter name specified.");
    EXPECT_EQ(failureOf("audio:param-alloc", {{"param-name", "gain"}, {"index", "-1"}}),
              "Invalid parameter's 'gain' index '-1' specified.");
}

TEST_F(ParamDefinitions, aRemapIsPairsFromAttributesAndTexts) {
    EXPECT_EQ(remap({"modInGain.gain = ingain; modHalyard.hardness = hardness;"}),
              (Pairs{{"modInGain.gain", "ingain"}, {"modHalyard.hardness", "hardness"}}));
    EXPECT_EQ(remap({"a=b c=d"}), (Pairs{{"a", "b"}, {"c", "d"}}));
    EXPECT_EQ(remap({"\t a\r\n = \n/b.c ;;x==y"}), (Pairs{{"a", "/b.c"}, {"x", "y"}}));
    EXPECT_EQ(remap({"a=b", "", "c=d"}), (Pairs{{"a", "b"}, {"c", "d"}}));
    // As they stand, and first.
    EXPECT_EQ(remap({"c=d"}, {{"orig", " a"}, {"new", "^b;="}}), (Pairs{{" a", "^b;="}, {"c", "d"}}));
}

TEST_F(ParamDefinitions, aRemapWithoutPairsOrWithHalfOnesFails) {
    const auto invalid = [](const std::string& value) {
        return Pairs{{"failed", "Invalid remapping string '" + value + "' defined."}};
    };
    for (const char* const value : {"a=b=c", "ok=ok; a=b=c", "a=b; ", "a", "a=", "a = b", "a= ;", " =b;"})
        EXPECT_EQ(remap({value}), invalid(value)) << value;
    const Pairs none = {{"failed", "No remappings defined."}};
    EXPECT_EQ(remap({}), none);
    EXPECT_EQ(remap({"", ";;"}), none);
    EXPECT_EQ(remap({}, {{"orig", "a"}}), none);
    EXPECT_EQ(remap({}, {{"new", "a"}}), none);
}

TEST_F(ParamDefinitions, aFilterHasSourcesAndDestinations) {
    constexpr const char* kTag = "audio:param-filter-bypass-group-solo";
    const auto& filter = make<CAudioParamFilterDef>(kTag, {{"src", "io.solo,, b,"}, {"dst", "bypass"}});
    EXPECT_EQ(texts(filter.sources()), (std::vector<std::string>{"io.solo", " b"}));
    EXPECT_EQ(texts(filter.destinations()), (std::vector<std::string>{"bypass"}));
    EXPECT_NE(dynamic_cast<CAudioParamFilterBypassGroupSolo*>(filter.createFilter().get()), nullptr);

    EXPECT_EQ(failureOf(kTag, {{"dst", "b"}}), "No source parameters defined.");
    EXPECT_EQ(failureOf(kTag, {{"src", ","}, {"dst", "b"}}), "No source parameters defined.");
    EXPECT_EQ(failureOf(kTag, {{"src", "a"}}), "No destination parameters defined.");
}

TEST_F(ParamDefinitions, aSharedStorageKnowsItsStore) {
    constexpr const char* kTag = "audio:param-shared-storage";
    const auto storeOf = [&](const char* type) {
        return &make<CAudioParamSharedStorage>(kTag, {{"param", "p"}, {"data-name", "k"}, {"storage-type", type}})
                    .store();
    };
    EXPECT_EQ(storeOf("local"), &CAppData::local());
    EXPECT_EQ(storeOf("group"), &CAppData::group());
    EXPECT_EQ(storeOf("global"), &CAppData::global());

    EXPECT_EQ(failureOf(kTag, {}), "Invalid parameter name specified.");
    EXPECT_EQ(failureOf(kTag, {{"param", "p"}}), "Invalid shared data name specified.");
    EXPECT_EQ(failureOf(kTag, {{"param", "p"}, {"data-name", "k"}}), "Invalid storage type \"\" specified.");
    EXPECT_EQ(failureOf(kTag, {{"param", "p"}, {"data-name", "k"}, {"storage-type", "Local"}}),
              "Invalid storage type \"Local\" specified.");
}

TEST_F(ParamDefinitions, theHostSeesParametersInTheOrderOfTheDocument) {
    const auto putParam = [](CDocumentWriter& writer, const char* name) {
        put(writer, "audio:ext-param", "p",
            {{"param-collector", "collector"}, {"ext-name", name}, {"param-name", name}});
    };
    ASSERT_EQ(load([&](CDocumentWriter& writer) {
                  put(writer, "audio:audio-env", "env", {});
                  put(writer, "audio:param-collector", "collector", {{"env", "env"}});
                  begin(writer, "audio:ext-param-list", "list", {});
                  for (const char* const name : {"Bypass", "Gain"}) putParam(writer, name);
                  put(writer, "core:object", "note", {});
                  putParam(writer, "Residue");
                  writer.endElement();
              }),
              "");
    const auto& list = dynamic_cast<CAudioExtParamList&>(*root().findObject("list"));
    const auto names = [&] {
        std::vector<std::string> result;
        for (const CAudioExtParam* const param : list.params()) result.push_back(param->getName().toUtf8());
        return result;
    };
    EXPECT_EQ(names(), (std::vector<std::string>{"Bypass", "Gain", "Residue"}));
    CObject::release(root().findObject("list.note"));
    CObject::release(list.params()[1]);
    EXPECT_EQ(names(), (std::vector<std::string>{"Bypass", "Residue"}));
    EXPECT_EQ(list.children().count(), 2);
}

}  // namespace
}  // namespace brt
