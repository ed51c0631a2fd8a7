#pragma once

#include <algorithm>
#include <cmath>
#include <numbers>

namespace kestro {

/// A value that springs to its target, for motion that C++ drives. Exact at any frame rate; it starts from where the
/// value is and with the velocity that it has, so that it can be turned round half-way.
class Spring {
public:
    /// `response` is the time of a swing without damping, in seconds; a `damping` of 1 does not overshoot, less does.
    Spring(double response, double damping)
        : m_frequency(2 * std::numbers::pi / response)
        , m_damping(std::clamp(damping, 0.05, 1.0))
    {
    }

    double value() const { return m_value; }
    double target() const { return m_target; }
    bool isAtRest() const { return m_value == m_target && m_velocity == 0; }

    void setTarget(double target) { m_target = target; }
    void jump(double value)
    {
        m_value = m_target = value;
        m_velocity = 0;
    }

    /// Moves on by `seconds`; comes to rest when nobody could see the difference.
    void advance(double seconds)
    {
        const double offset = m_value - m_target;
        const double decay = m_damping * m_frequency;
        const double swing = m_frequency * std::sqrt(std::max(0.0, 1 - m_damping * m_damping));
        const double fall = std::exp(-decay * seconds);
        // As the swing's frequency goes to 0, sin(swing t) / swing goes to t.
        const double cosine = std::cos(swing * seconds);
        const double sine = swing > 1e-9 ? std::sin(swing * seconds) / swing : seconds;
        const double push = m_velocity + decay * offset;
        m_value = m_target + fall * (offset * cosine + push * sine);
        m_velocity = fall * (m_velocity * cosine - (decay * push + swing * swing * offset) * sine);
        if (std::abs(m_value - m_target) < restDistance && std::abs(m_velocity) < restVelocity) {
            jump(m_target);
        }
    }

private:
    static constexpr double restDistance = 0.01;
    static constexpr double restVelocity = 0.5;

    double m_frequency;
    double m_damping;
    double m_value = 0;
    double m_target = 0;
    double m_velocity = 0;
};

} // namespace kestro
