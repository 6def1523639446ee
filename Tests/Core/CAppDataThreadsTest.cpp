// SPDX-License-Identifier: LicenseRef-Halyard
// Stores that many threads, and several processes, use at once.
#include <sys/wait.h>

#include <atomic>
#include <mutex>
#include <thread>

#include "AppDataFixture.h"
#include "Platform/Clock.h"

namespace brt {
namespace {

class AppDataThreads : public AppDataFixture {
protected:
    // Values of letters whose length follows from the letter.
    static std::string valueOf(int letter) {
        return std::string(static_cast<std::size_t>(500 * (1 + letter % 26)), static_cast<char>('a' + letter % 26));
    }
    static bool isComplete(const std::string& value) { return !value.empty() && value == valueOf(value[0] - 'a'); }

    static std::string stringIn(const std::string& payload) { return payload.size() > 4 ? payload.substr(4) : ""; }
};

TEST_F(AppDataThreads, twoProcessesAndEightThreadsNeverSeePartOfAValue) {
    CAppDataLocal(moduleFolder()).setString("k", valueOf(0));
    const auto hammer = [&] {
        CAppDataLocal store(moduleFolder());
        std::atomic<int> wrong{0};
        std::vector<std::thread> threads;
        for (int thread = 0; thread < 4; ++thread) {
            threads.emplace_back([&, thread] {
                for (int round = 0; round < 40; ++round) {
                    store.setString("k", valueOf(thread * 40 + round));
                    if (!isComplete(read(store, "k", ""))) ++wrong;
                    if (!isComplete(stringIn(bytes(store, "k", appDataTag::kString, kForcedRead)))) ++wrong;
                    CAppDataLocal fresh(moduleFolder());
                    if (!isComplete(read(fresh, "k", ""))) ++wrong;
                }
            });
        }
        for (std::thread& thread : threads) thread.join();
        return wrong.load();
    };
    const pid_t child = fork();
    if (child == 0) _exit(hammer() == 0 ? 0 : 1);
    EXPECT_EQ(hammer(), 0);
    int status = -1;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    EXPECT_EQ(status, 0);
    const auto files = std::filesystem::directory_iterator(m_folder.bytes(kUserFolder));
    EXPECT_EQ(std::distance(begin(files), end(files)), 1) << "temporary files are left";
}

// However the writes overtake each other, the file and the listeners end with the value that was set last.
TEST_F(AppDataThreads, theLastChangeIsTheOneThatStays) {
    CAppDataLocal store(moduleFolder());
    struct Mirror {
        explicit Mirror(CAppData& source) : store(source) {}
        void hear(const CUpdateData*) {
            const std::lock_guard lock(mutex);
            value = read(store, "k");
        }
        CAppData& store;
        std::mutex mutex;
        std::string value;
        CAppDataListener<Mirror> listener{*this, &Mirror::hear};
    };
    Mirror mirror(store);
    mirror.listener.listen(store, "k");
    for (int round = 0; round < 20; ++round) {
        std::vector<std::thread> threads;
        for (int thread = 0; thread < 4; ++thread)
            threads.emplace_back([&, thread] {
                for (int i = 0; i < 3; ++i) store.setString("k", valueOf(thread * 5 + i));
            });
        // Reads the file while newer values wait to be written to it.
        threads.emplace_back([&] {
            for (int i = 0; i < 20; ++i) bytes(store, "k", appDataTag::kString, kForcedRead);
        });
        for (std::thread& thread : threads) thread.join();
        CAppDataLocal fresh(moduleFolder());
        EXPECT_EQ(read(fresh, "k"), read(store, "k"));
        EXPECT_EQ(mirror.value, read(store, "k"));
    }
}

// Two instances, each with a lock that its listener takes and under which it reads, as parameters do.
TEST_F(AppDataThreads, twoInstancesOfOneStoreDoNotWaitForEachOther) {
    CAppDataLocal store(moduleFolder());
    struct Instance {
        explicit Instance(CAppData& shared) : store(shared) {}
        void hear(const CUpdateData*) { load(); }
        void load() {
            const std::lock_guard lock(parameter);
            value = read(store, "k");
        }
        void run(double seconds) {
            const std::int64_t end = clockCounter() + static_cast<std::int64_t>(seconds * clockFrequency());
            for (int i = 0; clockCounter() < end; ++i) {
                store.setString("k", valueOf(i), this);
                load();
                std::unique_lock lock(parameter);
                CAppDataListener<Instance> guest{*this, &Instance::hear};
                guest.listen(store, i % 2 == 0 ? "k" : "other");
                value = stringIn(bytes(store, "k", appDataTag::kString, kForcedRead));
                lock.unlock();  // the guest detaches under no lock that `hear` takes
            }
        }
        CAppData& store;
        std::mutex parameter;
        std::string value;
        CAppDataListener<Instance> listener{*this, &Instance::hear};
    };
    Instance a(store);
    Instance b(store);
    a.listener.listen(store, "k");
    b.listener.listen(store, "k");
    std::thread other([&] { b.run(2.0); });
    a.run(2.0);
    other.join();
    EXPECT_EQ(a.value, b.value);
    EXPECT_TRUE(isComplete(a.value));
}

// A window is closed while another instance changes what it follows.
TEST_F(AppDataThreads, anAttributeMayGoWhileItsSettingChanges) {
    CAppData::global().setString("speed", valueOf(0));
    std::atomic<bool> isRunning{true};
    std::thread other([&] {
        for (int i = 0; isRunning; ++i) CAppData::global().setString("speed", valueOf(i));
    });
    for (int i = 0; i < 300; ++i) {
        ASSERT_EQ(make(ui(), "speed", "core:shared-attribute", {{"storage-type", "global"}, {"attribute", "speed"}}),
                  "");
        pump();
        EXPECT_TRUE(isComplete(text(ui().findChild("speed")->getAttrString("speed"))));
        CObject::release(ui().findChild("speed"));
    }
    isRunning = false;
    other.join();
}

}  // namespace
}  // namespace brt
