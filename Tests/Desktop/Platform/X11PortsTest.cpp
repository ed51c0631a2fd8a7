#include <QGuiApplication>
#include <gtest/gtest.h>

// The tests of this program stand on a real desktop: X server, window manager, with or without a compositor.
int main(int argc, char** argv)
{
    const QGuiApplication application(argc, argv);
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
