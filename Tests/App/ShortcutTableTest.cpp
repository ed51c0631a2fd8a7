#include "Kestro/Preferences/PreferenceKeys.h"
#include "Kestro/Shortcuts/ShortcutRecorder.h"
#include "Tests/App/ModelFixture.h"

#include <gmock/gmock.h>

namespace kestro {

namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

const KeyCombo optionS{ 1, KeyCombo::option };
const KeyCombo optionD{ 2, KeyCombo::option };
const KeyCombo openDefault = KeyCombo::openNotchDefault;
const ShortcutOwner open = ShortcutOwner::openNotch();

class ShortcutTableTest : public test::ModelFixture {
protected:
    ShortcutOwner addApp(const char* path)
    {
        const QUuid id = QUuid::createUuid();
        platform.workspace.names[QString::fromLatin1(path)] = QStringLiteral("Editor");
        EXPECT_EQ(model->launcher().add({ id, LaunchItem::App{ QString::fromLatin1(path) } }), std::nullopt);
        return ShortcutOwner::launchItem(id);
    }
    QVariant stored() const { return platform.preferences.values.value(prefs::openNotchShortcut.key); }
};

TEST_F(ShortcutTableTest, whatIsStoredDecidesAtTheStart)
{
    const std::pair<QVariant, QStringList> table[] = {
        { {}, { QStringLiteral("⌃⌥Space") } },
        { QByteArray("null"), {} },
        { QByteArray("nonsense"), { QStringLiteral("⌃⌥Space") } },
        { QByteArray(R"({"keyCode":1,"modifiers":2048})"), { QStringLiteral("⌥S") } },
        { QStringLiteral("a string"), { QStringLiteral("⌃⌥Space") } },
    };
    for (const auto& [value, held] : table) {
        platform.preferences.setValue(prefs::openNotchShortcut.key, value);
        start();
        EXPECT_EQ(platform.hotKeys.held(), held);
        EXPECT_EQ(stored(), value) << "nothing is rewritten";
        model.reset();
        EXPECT_THAT(platform.hotKeys.held(), IsEmpty());
    }
}

TEST_F(ShortcutTableTest, settingOneStoresItAndMakesItLive)
{
    start();
    int toggled = 0;
    model->toggleNotch = [&] { ++toggled; };
    EXPECT_EQ(model->shortcuts().set(optionS, open), std::nullopt);
    EXPECT_TRUE(platform.hotKeys.press(optionS));
    EXPECT_EQ(toggled, 1);
    EXPECT_THAT(platform.hotKeys.held(), ElementsAre(QStringLiteral("⌥S")));
    EXPECT_EQ(stored(), QByteArray(R"({"keyCode":1,"modifiers":2048})"));

    EXPECT_EQ(model->shortcuts().set(std::nullopt, open), std::nullopt);
    EXPECT_THAT(platform.hotKeys.held(), IsEmpty());
    EXPECT_EQ(stored(), QByteArray("null"));
}

TEST_F(ShortcutTableTest, aCombinationThatIsTakenIsRefused)
{
    start();
    const ShortcutOwner app = addApp("/a.desktop");
    EXPECT_EQ(model->shortcuts().set(openDefault, app), QStringLiteral("Already used by Open / close notch"));
    EXPECT_EQ(model->shortcuts().set(optionS, app), std::nullopt);
    EXPECT_EQ(model->shortcuts().set(optionS, open), QStringLiteral("Already used by Editor"));
    EXPECT_EQ(model->shortcuts().set(optionS, app), std::nullopt) << "one's own is no conflict";

    platform.hotKeys.taken.append(optionD);
    EXPECT_EQ(model->shortcuts().set(optionD, app), QStringLiteral("Used by another app"));
    EXPECT_EQ(model->shortcuts().combo(app), optionS);
    EXPECT_THAT(platform.hotKeys.held(), Contains(QStringLiteral("⌥S"))) << "the previous one is live again";

    platform.hotKeys.failure = HotKeys::noSuchKey;
    EXPECT_EQ(model->shortcuts().set(KeyCombo{ 3, KeyCombo::option }, app),
        QStringLiteral("Couldn't register this shortcut (-50); couldn't restore the previous shortcut either"));
    EXPECT_EQ(model->shortcuts().combo(app), optionS);
}

TEST_F(ShortcutTableTest, itemsTakeTheirShortcutsWithThem)
{
    start();
    const ShortcutOwner app = addApp("/a.desktop");
    model->shortcuts().set(optionS, app);
    EXPECT_TRUE(platform.hotKeys.press(optionS));
    EXPECT_THAT(platform.workspace.opened, ElementsAre(QStringLiteral("/a.desktop")));
    model->launcher().remove(app.id());
    EXPECT_FALSE(platform.hotKeys.press(optionS));

    // A widget whose feature is off is not in sight: its shortcut rests, and still blocks others.
    EXPECT_EQ(model->items().addWidget(WidgetKind::ai), std::nullopt);
    const LaunchItem ai = model->visibleItems().last();
    ASSERT_EQ(ai.widget(), WidgetKind::ai);
    EXPECT_EQ(model->shortcuts().set(optionD, ShortcutOwner::launchItem(ai.id)), std::nullopt);
    std::optional<WidgetKind> shown;
    model->host().openWindow = [&](WidgetKind kind) { shown = kind; };
    EXPECT_TRUE(platform.hotKeys.press(optionD));
    EXPECT_EQ(shown, WidgetKind::ai);
}

TEST_F(ShortcutTableTest, whatIsOutOfSightRestsAndStillBlocks)
{
    start();
    // A widget of a later day: it waits in the layout, unseen.
    const QUuid id = QUuid::createUuid();
    ASSERT_EQ(model->launcher().add({ id, LaunchItem::Widget{ WidgetKind::mirror } }), std::nullopt);
    const auto notes = ShortcutOwner::launchItem(id);
    EXPECT_EQ(model->shortcuts().set(optionS, notes), std::nullopt);
    EXPECT_FALSE(platform.hotKeys.press(optionS));
    EXPECT_THAT(model->shortcuts().set(optionS, open).value_or(QString()).toStdString(), HasSubstr("Already used by"));
}

TEST_F(ShortcutTableTest, aChangeInTheFileIsFollowed)
{
    start();
    const ShortcutOwner app = addApp("/a.desktop");
    const auto recorder = model->shortcuts().makeRecorder(open);
    platform.preferences.setValue(prefs::openNotchShortcut.key, QByteArray(R"({"keyCode":1,"modifiers":2048})"));
    platform.loop.turn();
    EXPECT_THAT(platform.hotKeys.held(), ElementsAre(QStringLiteral("⌥S")));
    EXPECT_EQ(recorder->label(), QStringLiteral("⌥S"));

    // Two owners with one combination, by hand: one is live, nothing is rewritten, nothing breaks.
    LauncherStore edited = model->launcher().store();
    edited.setShortcut(optionS, app.id());
    const QByteArray bytes = edited.encoded();
    platform.preferences.setValue(prefs::launcherItems.key, bytes);
    platform.loop.turn();
    EXPECT_THAT(platform.hotKeys.held(), ElementsAre(QStringLiteral("⌥S")));
    EXPECT_EQ(platform.preferences.values.value(prefs::launcherItems.key), bytes);
    EXPECT_EQ(stored(), QByteArray(R"({"keyCode":1,"modifiers":2048})"));
}

TEST_F(ShortcutTableTest, aRefusedKeyIsTriedAgainWhenTheKeyboardChanges)
{
    platform.hotKeys.taken.append(openDefault);
    start();
    EXPECT_THAT(platform.hotKeys.held(), IsEmpty());
    const auto tries = platform.log.lines.size();
    addApp("/a.desktop"); // any change of the layout
    EXPECT_EQ(platform.log.lines.size(), tries) << "a refusal is not tried again and again";

    platform.hotKeys.taken.clear();
    Q_EMIT platform.hotKeys.keyboardChanged();
    EXPECT_THAT(platform.hotKeys.held(), ElementsAre(QStringLiteral("⌃⌥Space")));
}

} // namespace

} // namespace kestro
