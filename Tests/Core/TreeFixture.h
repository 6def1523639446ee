// SPDX-License-Identifier: LicenseRef-Halyard
// A started application with a few classes of its own, for tests of the object tree. Each test ends with the
// process-wide stop, which must find no block of the allocator still held.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <deque>
#include <functional>
#include <string>
#include <vector>

#include "Core/CApplication.h"
#include "Core/CBrtMemAllocator.h"
#include "Core/CDocumentWriter.h"
#include "Core/CError.h"
#include "Core/CProcess.h"
#include "Core/CoreTags.h"
#include "Core/Log.h"
#include "PrintText.h"

namespace brt {

// The message of an error, which it deletes; "" for success.
inline std::string messageOf(CError* error) {
    if (!error) return {};
    const std::string message = error->message().toUtf8();
    discardError(error);
    return message;
}

inline std::string text(CStringView view) { return CString(view).toUtf8(); }

// Writes down what happens to it.
class CProbe : public CObject {
public:
    static void describeClass(CClassInfo& info) {
        CObject::describeClass(info);
        static constexpr CAttrInfo kAttributes[] = {
            attr::integer("a").runs<&CProbe::attrA>(),
            attr::number("b").runs<&CProbe::attrB>(),
            attr::text("chained").runs<&CProbe::attrChained>().help("assigns \"a\""),
            attr::text("endless").runs<&CProbe::attrEndless>().help("queues itself anew"),
            attr::text("fails").runs<&CProbe::attrFails>(),
            attr::word("fails-in", "init initChilds initDone onChildAdded"),
            attr::object("target").ofClass<CProbe>(),
        };
        static constexpr CEventInfo kEvents[] = {event<&CProbe::onPing>("ping"), event<&CProbe::onTell>("tell")};
        info.addAttributes(kAttributes);
        info.addEvents(kEvents);
    }

    CProbe() { ++s_alive; }
    ~CProbe() override {
        --s_alive;
        s_journal.push_back("delete " + text(getShortName()));
    }

    CError* init() override {
        BRT_TRY("", enter("init", "init"));
        return CObject::init();
    }
    CError* initChilds() override {
        BRT_TRY("", enter("initChilds", "initChilds"));
        return CObject::initChilds();
    }
    CError* initDone() override {
        BRT_TRY("", enter("initDone", "initDone"));
        return CObject::initDone();
    }
    CError* onChildAdded(CObject* child) override {
        BRT_TRY("", enter("onChildAdded", "add " + text(child->getShortName()) + " to"));
        return CObject::onChildAdded(child);
    }
    void detach() override {
        if (m_whenDetached) m_whenDetached();
        CObject::detach();
    }

    void whenDetached(std::function<void()> action) { m_whenDetached = std::move(action); }

    static inline std::vector<std::string> s_journal;
    static inline int s_alive = 0;

private:
    CError* enter(CStringView stage, const std::string& what) {
        s_journal.push_back(what + " " + text(getShortName()));
        if (getAttrString("fails-in") != stage) return nullptr;
        return makeError(nullptr, __FILE__, __LINE__, getFullName(), "@brtstr_CProbe_enter Stage %1 fails.", stage);
    }

    void write(const char* name, const CAttrValue& value) {
        s_journal.push_back(text(getShortName()) + "." + name + "=" + text(value.asString()));
    }

    CError* attrA(const CAttrValue& value) { return write("a", value), nullptr; }
    CError* attrB(const CAttrValue& value) { return write("b", value), nullptr; }
    CError* attrChained(const CAttrValue& value) {
        write("chained", value);
        return setAttr("a", value.asString(), kDeferred);
    }
    CError* attrEndless(const CAttrValue& value) { return setAttr("endless", value.asString(), kDeferred); }
    CError* attrFails(const CAttrValue&) {
        return makeError(nullptr, __FILE__, __LINE__, getFullName(), "@brtstr_CProbe_attrFails The handler fails.");
    }
    CError* onPing() { return s_journal.push_back("ping " + text(getShortName())), nullptr; }
    CError* onTell(const CAttrMap& args) {
        const CAttrValue* const what = args.find("what");
        return s_journal.push_back("told " + (what ? text(what->asString()) : "nothing")), nullptr;
    }

    std::function<void()> m_whenDetached;
};

class TreeFixture : public ::testing::Test, private CLogSink {
protected:
    using Bytes = std::vector<std::uint8_t>;

    void SetUp() override {
        CProbe::s_journal.clear();
        CProbe::s_alive = 0;
        setLogSink(this);
    }

    void TearDown() override {
        releaseTree();
        stopProcess();
        setLogSink(nullptr);
        EXPECT_EQ(CProbe::s_alive, 0);
        for (const std::string& line : m_log) EXPECT_EQ(line.find("never freed"), std::string::npos) << line;
    }

    // A document for `start` to bring in as a resource.
    void addResource(const char* name, const Bytes& bytes) {
        Bytes data;
        for (int shift = 0; shift < 32; shift += 8) data.push_back(static_cast<std::uint8_t>(bytes.size() >> shift));
        data.insert(data.end(), bytes.begin(), bytes.end());
        m_resources.push_back(std::move(data));
        m_names.emplace_back(name);
    }

    bool hasResources() const { return !m_names.empty(); }

    template <class Write>
    static Bytes document(Write write) {
        CDocumentWriter writer;
        write(writer);
        Bytes bytes;
        EXPECT_EQ(messageOf(writer.finish(bytes)), "");
        return bytes;
    }

    void start(const char* sharedDocument = "", std::span<const CCreatorRow> moreTags = {}) {
        static constexpr CCreatorRow kTags[] = {creatorRow<CProbe>("test:probe")};
        const std::span<const CCreatorRow> tables[] = {coreTags(), kTags, moreTags};
        CApplication::start({tables, resourceTable(), sharedDocument});
    }

    // What has been added, as `start` takes it.
    const CResourceRow* resourceTable() {
        m_table.clear();
        for (std::size_t i = 0; i < m_names.size(); ++i) m_table.push_back({m_resources[i].data(), m_names[i].c_str()});
        m_table.push_back({nullptr, nullptr});
        return m_table.data();
    }

    // The root of a tree with a context; released after the test.
    CObject& root() {
        if (!m_root) {
            EXPECT_EQ(messageOf(CApplication::initRootObject(m_root, "")), "");
        }
        return *m_root;
    }

    void releaseTree() { CObject::release(std::exchange(m_root, nullptr)); }

    // A complete child.
    static CObject* add(CObject& parent, CStringView name, CStringView tag = "core:object") {
        CObject* child = nullptr;
        EXPECT_EQ(messageOf(parent.createChild(child, tag, name, kTemplateOptional)), "");
        return child;
    }

    static std::vector<std::string> takeJournal() { return std::exchange(CProbe::s_journal, {}); }
    std::vector<std::string>& log() { return m_log; }

private:
    void write(std::string_view text, bool) override { m_log.emplace_back(text); }

    CObject* m_root = nullptr;
    std::deque<Bytes> m_resources;
    std::deque<std::string> m_names;
    std::vector<CResourceRow> m_table;
    std::vector<std::string> m_log;
};

}  // namespace brt
