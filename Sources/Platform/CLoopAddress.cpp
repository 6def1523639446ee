// SPDX-License-Identifier: LicenseRef-Halyard
#include "Platform/CLoopAddress.h"

#include <utility>

#include "Platform/CLoopMailbox_p.h"

namespace brt {

CLoopAddress::CLoopAddress(std::shared_ptr<CLoopMailbox> mailbox, LoopTargetId target)
    : m_mailbox(std::move(mailbox)), m_target(target) {}

int CLoopAddress::post(std::uint32_t message, std::int64_t number) const {
    return m_mailbox != nullptr ? m_mailbox->post(m_target, message, number) : 0;
}

void CLoopAddress::wake() const {
    if (m_mailbox != nullptr) m_mailbox->wake();
}

void CLoopAddress::quit() const {
    if (m_mailbox != nullptr) m_mailbox->quit();
}

}  // namespace brt
