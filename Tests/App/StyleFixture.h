#pragma once

#include "Tests/Support/Fakes.h"

#include <Kestro/Style/Theme.h>

#include <QQmlComponent>
#include <QQmlContext>
#include <QQmlEngine>
#include <QQmlProperty>
#include <QQuickItem>
#include <QQuickWindow>
#include <QTest>
#include <gtest/gtest.h>

namespace kestro::test {

inline constexpr char imports[] =
    "import QtQuick\nimport Kestro.Style\nimport Kestro.Agents\nimport Kestro.Statistics\n";

/// A window of views made from a line of QML; what the engine complains about fails the test.
class StyleViews : public testing::Test {
protected:
    static void SetUpTestSuite() { QQuickWindow::setSceneGraphBackend(QStringLiteral("software")); }

    QQuickItem& show(const char* qml)
    {
        QObject::connect(&engine, &QQmlEngine::warnings,
            [](const QList<QQmlError>& errors) { ADD_FAILURE() << errors.first().toString().toStdString(); });
        theme.install(engine);
        QQmlComponent component(&engine);
        component.setData(QByteArray(imports) + qml, QUrl());
        item.reset(qobject_cast<QQuickItem*>(component.create()));
        EXPECT_TRUE(item) << component.errorString().toStdString();
        window.setWidth(400);
        window.setHeight(300);
        item->setParentItem(window.contentItem());
        window.show();
        EXPECT_TRUE(QTest::qWaitForWindowExposed(&window));
        window.requestActivate();
        return *item;
    }

    static QString accessible(QObject* object, const char* property)
    {
        return QQmlProperty::read(
            object, QStringLiteral("Accessible.") + QLatin1StringView(property), qmlContext(object))
            .toString();
    }

    /// What the accessibility bus does to a control.
    static void act(QObject* object, const char* action)
    {
        QObject* attached = nullptr;
        for (QObject* child : object->children())
            attached = child->inherits("QQuickAccessibleAttached") ? child : attached;
        ASSERT_TRUE(attached);
        QMetaObject::invokeMethod(attached, action);
    }

    /// The first item below that is called `name` on the bus.
    static QQuickItem* named(const QQuickItem& root, const QString& name)
    {
        for (QQuickItem* child : root.childItems()) {
            if (accessible(child, "name") == name)
                return child;
            if (QQuickItem* found = named(*child, name))
                return found;
        }
        return nullptr;
    }

    /// The names that a screen reader finds in what is shown, in order.
    static QStringList names(const QQuickItem& root)
    {
        QStringList found;
        for (QQuickItem* child : root.childItems()) {
            if (!child->isVisible())
                continue;
            const QString name = accessible(child, "name");
            found += name.isEmpty() ? names(*child) : QStringList(name);
        }
        return found;
    }

    FakeAppearance appearance;
    Theme theme{ appearance };
    QQmlEngine engine;
    QQuickWindow window;
    std::unique_ptr<QQuickItem> item;
};

} // namespace kestro::test
