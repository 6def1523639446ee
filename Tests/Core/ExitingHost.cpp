// SPDX-License-Identifier: LicenseRef-Halyard
// A host that ends in one of the ways in which hosts end: see `kWays`. Exit status 0 if nothing hung or crashed.
#include <stdlib.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <string_view>

#include "Core/CParallelSection.h"
#include "Core/CProcess.h"
#include "Platform/CNativeThread.h"

namespace brt {
namespace {

CProcessLifetime g_lifetime;

class CountingTask : public CWorkerThread {
public:
    CError* run() override {
        for (int i = 0; i < 1000; ++i) m_text.append(u'x');
        return nullptr;
    }

private:
    CString m_text;
};

void runSection() {
    CParallelSection section;
    for (int i = 0; i < 3; ++i) section.addTask(new CountingTask);
    section.start();
    if (discardError(section.finish())) exit(2);  // there is none to be told
}

// The last instance is gone, the pool's threads too; one more section has made new ones.
void endWithIdlePool() {
    {
        const CProcessInstance instance;
        runSection();
    }
    runSection();
}

// Another thread is inside an instance, allocates and runs sections, and never comes back.
void endWithLiveInstance() {
    static const auto* const instance = new CProcessInstance;
    static CNativeThread audio;
    const auto process = [](void*) {
        for (;;) runSection();
    };
    if (instance == nullptr || audio.start(process, nullptr) != 0) exit(2);
    sleepSeconds(0.05);
}

// The child has the pool's threads in its books, but not in its process.
void endForkedChild() {
    static const CProcessInstance instance;
    runSection();
    const pid_t child = fork();
    if (child == 0) exit(0);
    int status = -1;
    if (waitpid(child, &status, 0) != child || status != 0) exit(3);
}

constexpr struct {
    std::string_view name;
    void (*run)();
} kWays[] = {
    {"idle-pool", &endWithIdlePool},
    {"live-instance", &endWithLiveInstance},
    {"forked-child", &endForkedChild},
};

}  // namespace
}  // namespace brt

int main(int count, char** arguments) {
    for (const auto& way : brt::kWays) {
        if (count != 2 || way.name != arguments[1]) continue;
        way.run();
        exit(0);
    }
    std::fprintf(stderr, "usage: exiting_host idle-pool|live-instance|forked-child\n");
    return 1;
}
