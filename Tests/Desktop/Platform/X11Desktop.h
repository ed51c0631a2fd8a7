#pragma once

#include "Platforms/Linux/X11/X11Screens.h"
#include "X11Peer.h"

#include <QGuiApplication>
#include <QScreen>
#include <gtest/gtest.h>

namespace kestro::test {

/// The desktop of this test: A 1920x1080, primary, and B 1280x1024 right of it.
class X11Desktop : public testing::Test {
protected:
    X11Desktop()
    {
        QObject::connect(&screens, &Screens::changed, &screens, [this] { ++changes; });
    }

    void SetUp() override { ASSERT_EQ(screens.all().size(), 2) << "run it by ctest"; }

    const double scale = QGuiApplication::primaryScreen()->devicePixelRatio();
    X11Peer peer;
    X11Connection connection;
    X11Screens screens{ connection };
    int changes = 0;
};

} // namespace kestro::test
