// SPDX-License-Identifier: LicenseRef-Halyard
// The window of an effect, as hosts open and close it. Owner: the effect. Threads: the host's user interface.
#pragma once

#include "Audio/VST/VstInterface.h"

namespace brt {

class AudioEffect;

class AEffEditor {
public:
    explicit AEffEditor(AudioEffect& effect) noexcept : m_effect(effect) {}
    virtual ~AEffEditor() = default;
    AEffEditor(const AEffEditor&) = delete;
    AEffEditor& operator=(const AEffEditor&) = delete;

    AudioEffect& getEffect() const noexcept { return m_effect; }
    // Also while it is closed. The rectangle lives as long as the editor.
    virtual bool getRect(ERect*& rect) = 0;
    // `window`: the host's, which becomes the parent.
    virtual bool open(void* window) { return m_systemWindow = window, false; }
    virtual void close() { m_systemWindow = nullptr; }
    virtual bool isOpen() const { return m_systemWindow != nullptr; }
    virtual void idle() {}
    // Down for a negative distance. False if nobody takes it.
    virtual bool onWheel(float distance) { return static_cast<void>(distance), false; }

protected:
    void* m_systemWindow = nullptr;  // the host's

private:
    AudioEffect& m_effect;
};

}  // namespace brt
