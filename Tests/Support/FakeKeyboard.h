#pragma once

#include "Kestro/Platform/KeyboardGrabs.h"

#include <utility>

namespace kestro::test {

class FakeKeyboard final : public KeyboardGrabs {
public:
    std::unique_ptr<KeyboardHold> hold(std::function<void(const KeyPress&)> pressed, std::function<void()> left,
        std::function<void()> refused = {}) override
    {
        if (m_pressed || (taken && !refused))
            return nullptr;
        m_refused = taken ? std::move(refused) : nullptr;
        m_pressed = std::move(pressed);
        m_left = std::move(left);
        return std::make_unique<Hold>(*this);
    }
    /// The user goes to another window.
    void leave()
    {
        if (const auto left = m_pressed ? m_left : nullptr)
            left();
    }
    /// The other program keeps the keyboard for longer than a hold waits.
    void refuse()
    {
        if (const auto refused = std::exchange(m_refused, nullptr))
            refused();
    }
    void press(quint16 keyCode, quint64 flags = 0)
    {
        if (const auto pressed = m_pressed)
            pressed({ keyCode, flags });
    }
    bool isHeld() const { return m_pressed && !m_refused; }

    bool taken = false; ///< by another program

private:
    class Hold final : public KeyboardHold {
    public:
        explicit Hold(FakeKeyboard& keyboard)
            : m_keyboard(keyboard)
        {
        }
        ~Hold() override { m_keyboard.m_pressed = nullptr, m_keyboard.m_refused = nullptr; }

    private:
        FakeKeyboard& m_keyboard;
    };

    std::function<void(const KeyPress&)> m_pressed;
    std::function<void()> m_left;
    std::function<void()> m_refused; ///< while the hold waits for the keyboard
};

} // namespace kestro::test
