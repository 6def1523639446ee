// SPDX-License-Identifier: LicenseRef-Halyard
// While it lives, the system refuses every new thread: there is no room for its stack.
#pragma once

#include <gtest/gtest.h>
#include <pthread.h>

namespace brt {

class RefusedThreads {
public:
    RefusedThreads() {
        pthread_getattr_default_np(&m_before);
        pthread_attr_t huge;
        pthread_attr_init(&huge);
        EXPECT_EQ(pthread_attr_setstacksize(&huge, std::size_t{1} << 50), 0);
        EXPECT_EQ(pthread_setattr_default_np(&huge), 0);
        pthread_attr_destroy(&huge);
    }
    ~RefusedThreads() {
        pthread_setattr_default_np(&m_before);
        pthread_attr_destroy(&m_before);
    }
    RefusedThreads(const RefusedThreads&) = delete;
    RefusedThreads& operator=(const RefusedThreads&) = delete;

private:
    pthread_attr_t m_before;
};

}  // namespace brt
