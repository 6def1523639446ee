// SPDX-License-Identifier: LicenseRef-Halyard
#include "Core/CAppData.h"

#include <memory>

#include "AppDataFixture.h"

namespace brt {
namespace {

class AppData : public AppDataFixture {
protected:
    // Counts what it is told, and keeps who changed it.
    struct Ear {
        void hear(const CUpdateData* data) { ++times, sender = data->sender; }
        int times = 0;
        const void* sender = nullptr;
        CAppDataListener<Ear> listener{*this, &Ear::hear};
    };
};

TEST_F(AppData, comesFromTheFileOrTheProgramOrTheCaller) {
    CAppDataLocal store(moduleFolder());
    EXPECT_EQ(bytes(store, "uicolor-name", appDataTag::kString), stored("Gray"));
    EXPECT_EQ(read(store, "speed"), "default");
    putText(kUserFolder + std::string("speed"), "40");
    EXPECT_EQ(read(store, "speed"), "40") << "what was not there is looked for again";

    store.setString("uicolor-name", "Military");
    CAppDataLocal later(moduleFolder());
    EXPECT_EQ(read(later, "uicolor-name"), "Military");
    EXPECT_TRUE(exists(kUserFolder + std::string("uicolor-name")));

    CAppDataGlobal(moduleFolder()).setString("k", CString::fromUtf8("g\u0416"));
    CAppDataGroup(moduleFolder()).setString("k", "");
    EXPECT_TRUE(exists("home/Brontel/k"));
    EXPECT_TRUE(exists("home/Brontel/Audio Plug-Ins/k"));
    CAppDataGlobal global(moduleFolder());
    CAppDataGroup group(moduleFolder());
    EXPECT_EQ(read(global, "k"), "g\u0416");
    EXPECT_EQ(read(group, "k"), "") << "an empty text is a value";
}

TEST_F(AppData, ofAnotherTagOrDamagedCountsAsAbsent) {
    std::filesystem::create_directories(m_folder.bytes("app/Brontel Settings"));
    putFile(kPortableFolder + std::string("a"), block("adat", "record"));
    putText(kUserFolder + std::string("a"), "text");
    CAppDataLocal store(moduleFolder());
    EXPECT_EQ(read(store, "a"), "text") << "the search goes on";
    EXPECT_EQ(bytes(store, "a", appDataTag::kRecord), "") << "cached under another tag";
    EXPECT_EQ(bytes(store, "a", appDataTag::kRecord, kForcedRead), "record");
    EXPECT_EQ(read(store, "a"), "default");

    Bytes damaged = block("dstr", stored(std::string(100, 'x')));
    damaged.back() ^= 1;
    putFile(kPortableFolder + std::string("b"), damaged);
    damaged.resize(9);
    putFile(kPortableFolder + std::string("c"), damaged);
    putFile(kPortableFolder + std::string("d"), {});
    putFile(kPortableFolder + std::string("e"), block("dstr", "no text"));
    std::filesystem::create_directories(m_folder.bytes(kPortableFolder + std::string("f")));
    for (const char* const key : {"b", "c", "d", "f"}) EXPECT_EQ(read(store, key), "default") << key;
    EXPECT_EQ(read(store, "e"), "");
    store.setString("b", "mended");
    CAppDataLocal later(moduleFolder());
    EXPECT_EQ(read(later, "b"), "mended");
}

TEST_F(AppData, aPortableFolderGoesFirstAndTheUsersNext) {
    std::filesystem::create_directories(m_folder.bytes("app/Brontel Settings"));
    putText(kUserFolder + std::string("in-home"), "home");
    putText("app/Halyard/in-home", "side");
    putText("app/Halyard/at-side", "side");
    CAppDataLocal store(moduleFolder());
    EXPECT_EQ(read(store, "in-home"), "home");
    EXPECT_EQ(read(store, "at-side"), "side");
    store.setString("in-home", "portable");
    EXPECT_TRUE(exists(kPortableFolder + std::string("in-home")));
    CAppDataLocal later(moduleFolder());
    EXPECT_EQ(read(later, "in-home"), "portable");
    CAppDataLocal elsewhere(CString::fromPath(m_folder.path("other/")));
    EXPECT_EQ(read(elsewhere, "in-home"), "home");
}

// Acts as somebody without rights: they don't count for root.
class AsNobody {
public:
    AsNobody() { EXPECT_EQ(seteuid(m_user == 0 ? 65534 : m_user), 0); }
    ~AsNobody() { EXPECT_EQ(seteuid(m_user), 0); }
    AsNobody(const AsNobody&) = delete;
    AsNobody& operator=(const AsNobody&) = delete;

private:
    const uid_t m_user = geteuid();
};

TEST_F(AppData, aPortableFolderThatCannotBeWrittenIsReadNext) {
    namespace fs = std::filesystem;
    putText(kPortableFolder + std::string("k"), "portable");
    fs::create_directory(m_folder.bytes("home"));
    const fs::path readOnly = m_folder.bytes("app/Brontel Settings");
    for (const auto& entry : fs::recursive_directory_iterator(readOnly)) fs::permissions(entry, fs::perms(0555));
    for (fs::path path = readOnly; path != "/tmp"; path = path.parent_path()) fs::permissions(path, fs::perms(0755));
    fs::permissions(readOnly, fs::perms(0555));
    fs::permissions(m_folder.bytes("home"), fs::perms(0777));
    {
        const AsNobody nobody;
        CAppDataLocal store(moduleFolder());
        EXPECT_EQ(read(store, "k"), "portable");
        store.setString("k", "home");
        CAppDataLocal later(moduleFolder());
        EXPECT_EQ(read(later, "k"), "home");
    }
    EXPECT_TRUE(exists(kUserFolder + std::string("k")));
    fs::permissions(readOnly, fs::perms(0755));
    for (const auto& entry : fs::recursive_directory_iterator(readOnly)) fs::permissions(entry, fs::perms(0755));
}

TEST_F(AppData, withoutAFolderNothingIsStored) {
    Ear ear;
    putText("home/Brontel", "a file where the folder should be");
    for (const std::string& home : {std::string("/dev/null/nowhere"), m_folder.bytes("home")}) {
        useHome(home);
        log().clear();
        CAppDataLocal store(moduleFolder());
        ear.listener.listen(store, "uicolor-name");
        for (int i = 0; i < 2; ++i) store.setString("uicolor-name", "lost");
        EXPECT_EQ(read(store, "uicolor-name"), "Gray") << home;
        EXPECT_EQ(timesLogged("not stored"), 1) << home;
    }
    EXPECT_EQ(ear.times, 0);
}

TEST_F(AppData, aFileThatCannotBeWrittenLeavesTheValueInMemory) {
    CAppDataLocal store(moduleFolder());
    Ear ear;
    ear.listener.listen(store, "pipe");
    store.setString("other", "x");
    const std::string pipe = m_folder.bytes(kUserFolder + std::string("pipe"));
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    EXPECT_EQ(read(store, "pipe"), "default") << "nobody waits for a writer";
    for (int i = 0; i < 2; ++i) store.setString("pipe", "kept");
    EXPECT_EQ(read(store, "pipe"), "kept");
    EXPECT_EQ(bytes(store, "pipe", appDataTag::kString, kForcedRead), stored("kept"));
    EXPECT_EQ(ear.times, 0);
    EXPECT_EQ(timesLogged("Unable to"), 1);
    EXPECT_TRUE(std::filesystem::is_fifo(pipe));
}

TEST_F(AppData, keysAreNamesOfFilesInTheFolder) {
    CAppDataLocal store(moduleFolder());
    const std::string longest(128, 'k');
    for (const std::string& key : {longest, std::string("A.z_0-9"), std::string("a..b")}) {
        store.setString(key, "value");
        EXPECT_TRUE(exists(kUserFolder + key));
        EXPECT_GT(store.mapKey(CStringView(key)), 0);
    }
    putText(kUserFolder + std::string(".x"), "seen");
    putText("home/Brontel/x", "seen");
    const std::vector<CString> bad = {"",     ".x",  "..",      "../../x",
                                      "a/b",  "a b", "a\\b",    CString(longest + "k"),
                                      "\xE9", "a\n", u"\u0416", CString(std::string_view("a\0b", 3))};
    for (const CString& key : bad) {
        store.setString(key, "value");
        EXPECT_EQ(read(store, key), "default") << text(key);
        EXPECT_EQ(store.mapKey(key.view()), -1);
    }
    EXPECT_EQ(timesLogged("No setting can have the key"), 3 * static_cast<int>(bad.size()));
    const auto files = std::filesystem::recursive_directory_iterator(m_folder.bytes("home"));
    EXPECT_EQ(std::distance(begin(files), end(files)), 3 + 5);
}

TEST_F(AppData, tellsWhoListensToTheKey) {
    CAppDataLocal store(moduleFolder());
    Ear a;
    Ear b;
    a.listener.listen(store, "a");
    b.listener.listen(store, "b");
    store.setString("a", "1", &b);
    EXPECT_EQ(a.times, 1);
    EXPECT_EQ(a.sender, &b);
    EXPECT_EQ(b.times, 0);
    const CString tooLong(std::string(61441, 'x'));
    store.setString("a", tooLong);
    EXPECT_EQ(read(store, "a"), "1");
    EXPECT_EQ(a.times, 1);
    EXPECT_TRUE(isLogged("String length 61441 too long"));
    const CString longest(tooLong.slice(1));
    store.setString("a", longest);
    CAppDataLocal later(moduleFolder());
    EXPECT_EQ(read(later, "a"), text(longest));
}

TEST_F(AppData, anotherProcessIsSeenByAForcedRead) {
    CAppDataLocal store(moduleFolder());
    CAppDataLocal other(moduleFolder());
    store.setString("k", "mine");
    other.setString("k", "others");
    EXPECT_EQ(read(store, "k"), "mine");
    EXPECT_EQ(bytes(store, "k", appDataTag::kString, kForcedRead), stored("others"));
    EXPECT_EQ(read(store, "k"), "others");
    // The folder goes: the value stays, and the next write makes the folder again.
    std::filesystem::remove_all(m_folder.bytes("home"));
    EXPECT_EQ(bytes(store, "k", appDataTag::kString, kForcedRead), stored("others"));
    store.setString("k", "again");
    EXPECT_EQ(modeOf(kUserFolder + std::string("k")), 0600u);
    EXPECT_EQ(modeOf("home"), 0700u);
    EXPECT_EQ(modeOf("home/Brontel"), 0700u);
}

TEST_F(AppData, clearsAwayWhatACrashHasLeft) {
    const std::string left = kUserFolder + std::string(".k.abcdefghijkl");
    putText(left, "half");
    const timespec longAgo[2] = {{.tv_sec = 1, .tv_nsec = 0}, {.tv_sec = 1, .tv_nsec = 0}};
    ASSERT_EQ(utimensat(AT_FDCWD, m_folder.bytes(left).c_str(), longAgo, 0), 0);
    CAppDataLocal(moduleFolder()).setString("k", "whole");
    EXPECT_FALSE(exists(left));
}

TEST_F(AppData, theProcessHasThreeStoresThatEndWithIt) {
    CAppData::group().setString("k", "group");
    EXPECT_EQ(&CAppData::group(), CAppData::find("group"));
    EXPECT_EQ(CAppData::find("everywhere"), nullptr);
    Ear ear;
    ear.listener.listen(CAppData::group(), "k");
    stopProcess();
    useHome(m_folder.bytes("other-home"));
    start();
    EXPECT_EQ(read(CAppData::group(), "k"), "default");
    CAppData::group().setString("k", "x");
    EXPECT_EQ(ear.times, 0);
}

}  // namespace
}  // namespace brt
