// SPDX-License-Identifier: LicenseRef-Halyard
#include "Core/CObjectContext.h"

#include "Core/CEventRegistry.h"

namespace brt {
namespace {

constinit std::atomic<int> s_lastInstanceNumber{0};
constinit std::atomic<int> s_liveContexts{0};

}  // namespace

CObjectContext::CObjectContext()
    : m_instanceNumber(s_lastInstanceNumber.fetch_add(1, std::memory_order_relaxed) + 1), m_events(new CEventRegistry) {
    s_liveContexts.fetch_add(1, std::memory_order_relaxed);
}

CObjectContext::~CObjectContext() { s_liveContexts.fetch_sub(1, std::memory_order_relaxed); }

int CObjectContext::liveCount() noexcept { return s_liveContexts.load(std::memory_order_relaxed); }

}  // namespace brt
