#include <QGuiApplication>
#include <QStandardPaths>
#include <gmock/gmock.h>

int main(int argc, char** argv)
{
    QStandardPaths::setTestModeEnabled(true);
    QGuiApplication application(argc, argv);
    testing::InitGoogleMock(&argc, argv);
    return RUN_ALL_TESTS();
}
