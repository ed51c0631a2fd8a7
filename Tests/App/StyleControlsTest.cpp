#include "Tests/App/StyleFixture.h"

#include <QSignalSpy>

namespace kestro {
namespace {

/// The controls of the Settings window. Each shows what it is bound to, and only tells what the user wants.
class StyleControls : public test::StyleViews {
protected:
    void type(const QString& keys)
    {
        for (const QChar letter : keys)
            QTest::keyClick(&window, letter.toLatin1());
    }
    void type(std::initializer_list<Qt::Key> keys)
    {
        for (const Qt::Key key : keys)
            QTest::keyClick(&window, key);
    }
    void click(const QQuickItem& at)
    {
        QTest::mouseClick(
            &window, Qt::LeftButton, {}, at.mapToScene(QPointF(at.width() / 2, at.height() / 2)).toPoint());
    }
    QQuickItem* shown(const char* name) const { return named(*window.contentItem(), QString::fromLatin1(name)); }
};

TEST_F(StyleControls, AToggleTellsEachWishOnceAndDoesNotTurnByItself)
{
    QQuickItem& toggle = show("Toggle { label: 'Magnification' }");
    QSignalSpy toggled(&toggle, SIGNAL(toggled(bool)));
    toggle.forceActiveFocus();
    click(toggle);
    type({ Qt::Key_Space });
    act(&toggle, "pressAction");
    act(&toggle, "toggleAction");
    ASSERT_EQ(toggled.count(), 4);
    for (const QList<QVariant>& arguments : toggled)
        EXPECT_TRUE(arguments.first().toBool());
    EXPECT_FALSE(toggle.property("checked").toBool());
    toggle.setEnabled(false);
    act(&toggle, "toggleAction");
    EXPECT_EQ(toggled.count(), 4) << "disabled";
}

constexpr char picker[] = R"(Item { width: 400; height: 120; Picker { y: 80; label: 'Tint'; current: 'red'
    options: [{ value: 'plain', title: 'Plain' }, { value: 'red', title: 'Red' }, { value: 'pink', title: 'Pink' },
              { value: 'purple', title: 'Deep purple' }] } })";

TEST_F(StyleControls, APickersListIsDrivenByKeys)
{
    QQuickItem& tint = *named(show(picker), QStringLiteral("Tint"));
    QSignalSpy chosen(&tint, SIGNAL(chosen(QString)));
    const struct {
        const char* how;
        std::function<void()> keys;
        QString chosen;
    } cases[] = {
        { "the one that holds is no choice", [&] { type({ Qt::Key_Return }); }, {} },
        { "arrows",
            [&] {
                type({ Qt::Key_Down, Qt::Key_Return });
            },
            QStringLiteral("pink") },
        { "ends",
            [&] {
                type({ Qt::Key_Home, Qt::Key_Return });
            },
            QStringLiteral("plain") },
        { "letters", [&] { type(QStringLiteral("pi")), type({ Qt::Key_Enter }); }, QStringLiteral("pink") },
        { "letters and a space", [&] { type(QStringLiteral("deep p")), type({ Qt::Key_Enter }); },
            QStringLiteral("purple") },
        { "escape",
            [&] {
                type({ Qt::Key_Down, Qt::Key_Escape });
            },
            {} },
        { "elsewhere", [&] { QTest::mouseClick(&window, Qt::LeftButton, {}, QPoint(390, 290)); }, {} },
        { "a row", [&] { click(*shown("Plain")); }, QStringLiteral("plain") },
        { "the bus", [&] { act(shown("Deep purple"), "pressAction"); }, QStringLiteral("purple") },
    };
    for (const auto& each : cases) {
        SCOPED_TRACE(each.how);
        chosen.clear();
        tint.forceActiveFocus();
        type({ Qt::Key_Space });
        ASSERT_TRUE(QTest::qWaitFor([&] { return shown("Pink") != nullptr; })) << "open";
        each.keys();
        EXPECT_EQ(chosen.value(0).value(0).toString(), each.chosen);
        EXPECT_FALSE(tint.property("open").toBool());
        EXPECT_TRUE(tint.hasActiveFocus()) << "the keyboard comes back";
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
}

TEST_F(StyleControls, ASliderMovesInSteps)
{
    QQuickItem& slider = show(R"(Slider { label: 'Scale'; from: 1.2; to: 2; step: 0.1; value: 1.6; width: 200
        onMoved: wanted => value = wanted })");
    QQuickItem& track = *named(slider, QStringLiteral("Scale"));
    track.forceActiveFocus();
    const std::pair<std::function<void()>, double> cases[] = {
        { [&] { type({ Qt::Key_Right }); }, 1.7 },
        { [&] {
             type({ Qt::Key_Up, Qt::Key_Left, Qt::Key_Down });
         },
            1.6 },
        { [&] {
             type({ Qt::Key_End, Qt::Key_Right });
         },
            2 },
        { [&] {
             type({ Qt::Key_Home, Qt::Key_Left });
         },
            1.2 },
        { [&] { click(slider); }, 1.6 },
        { [&] { track.setProperty("value", 1.83); }, 1.8 }, // as the bus does
        { [&] { track.setProperty("value", 9); }, 2 },
    };
    for (const auto& [act, expected] : cases) {
        act();
        EXPECT_EQ(slider.property("value").toDouble(), expected);
        EXPECT_EQ(track.property("value").toDouble(), expected) << "what the bus reads";
    }
    slider.setEnabled(false);
    track.setProperty("value", 1.2);
    EXPECT_EQ(track.property("value").toDouble(), 2) << "disabled";
}

TEST_F(StyleControls, ASearchIsEmptiedByEscapeWhichThenGoesOn)
{
    QQuickItem& field = show("SearchField {}");
    QSignalSpy edited(&field, SIGNAL(edited(QString)));
    QMetaObject::invokeMethod(&field, "focusAll");
    type(QStringLiteral("ab"));
    EXPECT_EQ(edited.last().first().toString(), QStringLiteral("ab"));
    QKeyEvent escape(QEvent::KeyPress, Qt::Key_Escape, {});
    for (const bool taken : { true, false }) {
        escape.ignore();
        QCoreApplication::sendEvent(&window, &escape);
        EXPECT_EQ(escape.isAccepted(), taken);
        EXPECT_EQ(field.property("text").toString(), QString());
    }
    type(QStringLiteral("c"));
    click(*shown("Clear"));
    EXPECT_EQ(edited.last().first().toString(), QString());
}

TEST_F(StyleControls, APaneScrollsToWhatHasTheKeyboard)
{
    QQuickItem& pane = show(R"(ScrollPane { width: 300; height: 200
        PushButton { label: 'First' } Item { width: 10; height: 600 } PushButton { label: 'Last' } })");
    const auto seen = [&](const char* name) {
        const QQuickItem* button = shown(name);
        return pane.boundingRect().contains(button->mapRectToItem(&pane, button->boundingRect()));
    };
    for (const char* name : { "First", "Last", "First" }) {
        shown(name)->forceActiveFocus();
        EXPECT_TRUE(seen(name)) << name;
    }
    type({ Qt::Key_PageDown, Qt::Key_PageDown, Qt::Key_PageDown, Qt::Key_PageDown, Qt::Key_PageDown });
    EXPECT_TRUE(seen("Last"));
}

TEST_F(StyleControls, TheKeyboardGoesRoundWithinASheet)
{
    show(R"(Item { id: under; width: 400; height: 300; PushButton { label: 'Under it' }
        Sheet { owner: under; acceptable: title.text !== ''; first: address
            EntryField { id: address; label: 'Address' } EntryField { id: title; label: 'Title' } } })");
    const auto walk = [&](Qt::Key key) {
        QStringList stops;
        for (int i = 0; i < 4; ++i) {
            for (const char* each : { "Address", "Title", "Cancel", "Add", "Under it" }) {
                if (shown(each)->hasActiveFocus())
                    stops.append(QString::fromLatin1(each));
            }
            QTest::keyClick(&window, key, key == Qt::Key_Backtab ? Qt::ShiftModifier : Qt::NoModifier);
        }
        return stops.join(u' ');
    };
    EXPECT_EQ(walk(Qt::Key_Tab), QStringLiteral("Address Title Cancel Address"));
    EXPECT_EQ(walk(Qt::Key_Backtab), QStringLiteral("Title Address Cancel Title"));
    type({ Qt::Key_Tab, Qt::Key_X });
    EXPECT_EQ(walk(Qt::Key_Backtab), QStringLiteral("Title Address Add Cancel")) << "there is something to add";
}

} // namespace
} // namespace kestro
