// SPDX-License-Identifier: LicenseRef-Halyard
// The object tree at the size of the product's own: a document of 1,500 elements with ten attributes each, through the
// classes and handlers of views. How long it takes to build and to release, what it holds, and what access costs.
#include <algorithm>
#include <ctime>
#include <string>
#include <vector>

#include "BenchTree.h"
#include "Core/CBrtMemAllocator.h"
#include "Core/CDocumentWriter.h"
#include "Core/CError.h"
#include "Core/LittleEndian.h"
#include "Documents/ProductTags.h"
#include "Documents/Resources.h"
#include "Targets.h"

namespace {

using namespace brt;

constexpr int kGroups = 30;
constexpr int kElementsInGroup = 49;
constexpr int kElements = kGroups * (kElementsInGroup + 1);

const bool kTargets =
    bench::addTarget({"load of 1,500 elements with 10 attributes each, ns", "tree/load/manual_time", "",
                      bench::Target::kAtMost, 15e6, 8e6}) &&
    bench::addTarget({"release of the same, ns", "tree/release/manual_time", "", bench::Target::kAtMost, 5e6, 2e6}) &&
    bench::addTarget(
        {"path of five steps looked up, ns", "tree/find_path_of_5", "", bench::Target::kAtMost, 500, 300}) &&
    bench::addTarget({"attribute read as a number, converted before, ns", "tree/read_cached_double", "",
                      bench::Target::kAtMost, 30, 15});

// As wide as a view's class: some forty attributes, most with a handler.
class CBenchView : public CObject {
public:
    static void describeClass(CClassInfo& info) {
        CObject::describeClass(info);
        static constexpr CAttrInfo kAttributes[] = {
            attr::text("color").runs<&CBenchView::attrAny>(),
            attr::flag("debug-area").runs<&CBenchView::attrAny>(),
            attr::number("draw-opacity").runs<&CBenchView::attrAny>(),
            attr::number("height").runs<&CBenchView::attrAny>(),
            attr::text("hint"),
            attr::object("image-set").runs<&CBenchView::attrAny>(),
            attr::text("image-set-range").runs<&CBenchView::attrAny>(),
            attr::text("inner-border").runs<&CBenchView::attrAny>(),
            attr::flag("is-click-through").runs<&CBenchView::attrAny>(),
            attr::flag("is-decorative").runs<&CBenchView::attrAny>(),
            attr::flag("is-disabled").runs<&CBenchView::attrAny>(),
            attr::flag("is-dynamic").runs<&CBenchView::attrAny>(),
            attr::flag("is-scrollable").runs<&CBenchView::attrAny>(),
            attr::number("max-height").runs<&CBenchView::attrAny>(),
            attr::number("max-width").runs<&CBenchView::attrAny>(),
            attr::number("min-height").runs<&CBenchView::attrAny>(),
            attr::number("min-width").runs<&CBenchView::attrAny>(),
            attr::text("outer-border").runs<&CBenchView::attrAny>(),
            attr::object("palette").runs<&CBenchView::attrAny>(),
            attr::text("placement").runs<&CBenchView::attrAny>(),
            attr::text("title"),
            attr::flag("visible").runs<&CBenchView::attrAny>(),
            attr::number("width").runs<&CBenchView::attrAny>(),
            attr::number("x").runs<&CBenchView::attrAny>(),
            attr::number("y").runs<&CBenchView::attrAny>(),
            attr::text("z-index").runs<&CBenchView::attrAny>(),
        };
        info.addAttributes(kAttributes);
    }

private:
    CError* attrAny(const CAttrValue& value) {
        m_sum += value.asDouble();
        return nullptr;
    }

    double m_sum = 0.0;
};

void writeElement(CDocumentWriter& writer, int index) {
    const std::string number = std::to_string(index);
    writer.beginElement("bench:view", "view-" + number);
    writer.attribute("placement", index % 3 == 0 ? "full" : "inline");
    writer.attribute("width", std::to_string(index % 200));
    writer.attribute("height", std::to_string(index % 50) + ".25");
    writer.attribute("hint", "A hint of the length that hints have, as read in the status line, number " +
                                 std::to_string(index % 700) + ".");
    writer.attribute("image-set", "shared::is.button");
    writer.attribute("color", "RealisticPanelGradient");
    writer.attribute("is-decorative", "true");
    writer.attribute("outer-border", "L-2 R-2");
    writer.attribute("title", "[B]Title " + number + "[/B]");
    writer.attribute("user-data", number);
}

// The data of a resource: its size, then its bytes.
const std::vector<std::uint8_t>& documentResource() {
    static const std::vector<std::uint8_t> resource = [] {
        CDocumentWriter writer;
        for (int group = 0; group < kGroups; ++group) {
            writeElement(writer, group * (kElementsInGroup + 1));
            for (int i = 1; i <= kElementsInGroup; ++i) {
                writeElement(writer, group * (kElementsInGroup + 1) + i);
                if (i % 7 != 0) writer.endElement();  // every seventh holds those behind it
            }
            for (int open = kElementsInGroup / 7; open > 0; --open) writer.endElement();
            writer.endElement();
        }
        std::vector<std::uint8_t> document;
        discardError(writer.finish(document));
        std::vector<std::uint8_t> bytes(4 + document.size());
        storeLittleEndian32(bytes.data(), static_cast<std::uint32_t>(document.size()));
        std::copy(document.begin(), document.end(), bytes.begin() + 4);
        return bytes;
    }();
    return resource;
}

CObject* loadTree(benchmark::State& state) {
    bench::startApplication();
    CObject* root = nullptr;
    if (discardError(CApplication::initRootObject(root, "Bench.xml"))) state.SkipWithError("the document doesn't load");
    return root;
}

// Of the processor: the work waits for nothing, so what else runs on the machine doesn't count.
double secondsOf(const auto& operation) {
    const std::clock_t begin = std::clock();
    operation();
    return static_cast<double>(std::clock() - begin) / CLOCKS_PER_SEC;
}

void load(benchmark::State& state) {
    CObject::release(loadTree(state));
    for (auto _ : state) {
        CObject* root = nullptr;
        state.SetIterationTime(secondsOf([&] { root = loadTree(state); }));
        CObject::release(root);
    }
}
BENCHMARK(load)->Name("tree/load")->UseManualTime()->Unit(benchmark::kMicrosecond);

void release(benchmark::State& state) {
    for (auto _ : state) {
        CObject* const root = loadTree(state);
        state.SetIterationTime(secondsOf([&] { CObject::release(root); }));
    }
}
BENCHMARK(release)->Name("tree/release")->UseManualTime()->Unit(benchmark::kMicrosecond);

// Bytes of the allocator's blocks that are held, with what each block costs beyond its size.
double bytesHeld() {
    double bytes = 0.0;
    for (int number = 0; number < CBrtMemAllocator::kClassCount; ++number)
        bytes += static_cast<double>(CBrtMemAllocator::liveBlocks(number)) * ((number + 1) * 16 + 16);
    return bytes;
}

// What an element should hold: the object itself, its place in the parent's table of names, eleven attributes of 176
// bytes with their names, and the one text that is too long to lie within its string.
constexpr double kRightBytesPerElement = 320 + 176 + 11 * 176 + 160;

void memory(benchmark::State& state) {
    bench::startApplication();
    const double before = bytesHeld();
    CObject* const root = loadTree(state);
    const double held = bytesHeld() - before;
    for (auto _ : state) benchmark::DoNotOptimize(root);
    state.counters["bytes_per_element"] = held / kElements;
    state.counters["right_bytes"] = kRightBytesPerElement;
    CObject::release(root);
}
BENCHMARK(memory)->Name("tree/memory");

void findObject(benchmark::State& state) {
    CObject* const root = loadTree(state);
    if (!root->findObject("view-1450.view-1457.view-1464.view-1471.view-1472")) state.SkipWithError("not found");
    for (auto _ : state)
        benchmark::DoNotOptimize(root->findObject("view-1450.view-1457.view-1464.view-1471.view-1472"));
    CObject::release(root);
}
BENCHMARK(findObject)->Name("tree/find_path_of_5");

void readAttribute(benchmark::State& state) {
    CObject* const root = loadTree(state);
    const CObject* const view = root->children()[3];
    for (auto _ : state) benchmark::DoNotOptimize(view->getAttrDouble("height"));
    CObject::release(root);
}
BENCHMARK(readAttribute)->Name("tree/read_cached_double");

void setAttribute(benchmark::State& state) {
    CObject* const root = loadTree(state);
    CObject* const view = root->children()[3];
    for (auto _ : state) discardError(view->setAttr("height", "40.5", kImmediate));
    CObject::release(root);
}
BENCHMARK(setAttribute)->Name("tree/set_and_handle");

}  // namespace

// The product's own, so that the running graph has it too, with the classes and the document of the benchmarks added.
void bench::startApplication() {
    static const bool isStarted = [] {
        static constexpr CCreatorRow kTags[] = {creatorRow<CBenchView>("bench:view")};
        std::vector<std::span<const CCreatorRow>> tables(productTags().begin(), productTags().end());
        tables.insert(tables.end(), {kTags, eventTags()});
        std::vector<CResourceRow> resources = {{documentResource().data(), "Bench.xml"}};
        for (const CResourceRow* row = kHalyardResources; row->data != nullptr; ++row) resources.push_back(*row);
        resources.push_back({});
        CApplication::start({tables, resources.data()});
        return true;
    }();
    benchmark::DoNotOptimize(isStarted);
}
