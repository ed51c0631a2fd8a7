#pragma once

#include "Kestro/Platform/Sounds.h"

#include <QStringList>

namespace kestro::test {

class FakeSounds final : public Sounds {
public:
    void play(const QString& name) override { played.append(name); }
    QStringList played;
};

} // namespace kestro::test
