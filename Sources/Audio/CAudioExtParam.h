// SPDX-License-Identifier: LicenseRef-Halyard
// One value of a parameter as a host sees it: a short name, a number from 0 to 1, a text.
//
// A host writes with `setNormal`, on any thread, also on its audio thread. A change by anybody else is told to the host
// through the bridge, once the thread that made it holds no lock.
// Owner: the list of the instance's tree. Threads: any, once it is initialised.
#pragma once

#include <atomic>

#include "Audio/CAudioParamCollector.h"
#include "Core/CObject.h"
#include "Core/CUpdateListener.h"

namespace brt {

class CAudioExtParamHostBridge;

class CAudioExtParam : public CObject, public CUpdateListener {
public:
    static constexpr int kLongestName = 7;  // as hosts show them

    static void describeClass(CClassInfo& info);
    ~CAudioExtParam() override;
    [[nodiscard]] CError* init() override;

    const CString& getName() const noexcept { return m_extName; }
    CAudioParam& param() const noexcept { return *m_param; }
    int group() const noexcept { return m_group; }
    int element() const noexcept { return m_element; }
    // The parameter's unit; empty without a definition.
    CStringView getLabel() const;

    // [init] From now on the host hears of changes under that number. Null: no longer.
    void setHostBridge(CAudioExtParamHostBridge* bridge, int index);

    // 0 to 1.
    double getNormal() const noexcept { return m_normal.load(std::memory_order_acquire); }
    // A host's write, limited to 0 to 1. Numbers that are none change nothing, nor does the value that hosts read here:
    // they hold it in single precision and send it back.
    void setNormal(double value);

    // Text for the host, and from it. A text that makes no sense means the default.
    CString normalToText(double value) const;
    CString getText() const { return normalToText(getNormal()); }
    double textToNormal(CStringView text) const;

    void update(const CUpdateData* data) override;

private:
    bool concerns(const CAudioParamUpdateData& data) const noexcept;
    void refresh();

    CAudioParamCollector* m_collector = nullptr;
    CString m_extName;
    int m_element = 0;
    int m_group = 0;
    CAudioParam* m_param = nullptr;
    std::atomic<CAudioExtParamHostBridge*> m_bridge{nullptr};
    std::atomic<int> m_hostIndex{0};
    std::atomic<double> m_normal{0.0};
};

}  // namespace brt
