#pragma once

#include "Kestro/Platform/LoginItem.h"

#include <utility>

namespace kestro::test {

class FakeLoginItem final : public LoginItem {
public:
    bool isEnabled() const override { return enabled; }
    std::optional<QString> setEnabled(bool on) override
    {
        if (failure)
            return failure;
        if (std::exchange(enabled, on) != on)
            Q_EMIT changed();
        return std::nullopt;
    }

    bool enabled = false;
    std::optional<QString> failure; ///< what a change answers
};

} // namespace kestro::test
