#pragma once

#include "Kestro/Platform/Appearance.h"

namespace kestro::test {

class FakeAppearance final : public Appearance {
public:
    Look look() const override { return current; }
    Look current;
};

} // namespace kestro::test
