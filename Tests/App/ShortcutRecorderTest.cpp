#include "Kestro/Shortcuts/ShortcutRecorder.h"
#include "Kestro/Shortcuts/HotKeyCenter.h"
#include "Tests/Support/Fakes.h"

#include <gmock/gmock.h>

namespace kestro {

namespace {

using test::FakePlatform;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr quint64 shift = 1 << 17, control = 1 << 18, option = 1 << 19, command = 1 << 20;
const KeyCombo controlOptionS{ 1, KeyCombo::control | KeyCombo::option };

class ShortcutRecorderTest : public testing::Test {
protected:
    std::unique_ptr<ShortcutRecorder> make(std::optional<KeyCombo> combo = {})
    {
        return std::make_unique<ShortcutRecorder>(center, platform.keyboard, platform.loop, platform.session, combo,
            [this](const std::optional<KeyCombo>& set) {
                stored.append(set ? set->displayString() : QStringLiteral("none"));
                return answer;
            });
    }
    void SetUp() override
    {
        center.registerShortcut(controlOptionS, ShortcutOwner::openNotch(), [] {});
    }

    FakePlatform platform;
    HotKeyCenter center{ platform.hotKeys, platform.log };
    QStringList stored;
    std::optional<QString> answer;
};

TEST_F(ShortcutRecorderTest, whatEachPressDoes)
{
    struct Case {
        quint16 key;
        quint64 flags;
        QStringList stored;
        const char* error;
        bool goesOn;
    };
    const char* tooCommon = "Too common — add ⌃ or ⌥";
    const char* noModifier = "Use ⌘, ⌥ or ⌃ with a key";
    const QStringList none;
    const Case cases[] = {
        { 1, control | option, { QStringLiteral("⌃⌥S") }, "", false },
        { 96, 0, { QStringLiteral("F5") }, "", false },
        { 1, command, none, tooCommon, true },
        { 1, control, none, tooCommon, true },
        { 1, control | shift, none, tooCommon, true },
        { 21, command | shift, { QStringLiteral("⇧⌘4") }, "", false },
        { 0, shift, none, noModifier, true },
        { 0, 1 << 16, none, noModifier, true }, // Caps Lock is no modifier
        { 51, 0, { QStringLiteral("none") }, "", false },
        { 117, 0, { QStringLiteral("none") }, "", false },
        { 51, control, { QStringLiteral("⌃⌫") }, "", false },
        { 53, 0, none, "", false },
        { 53, control, { QStringLiteral("⌃⎋") }, "", false },
    };
    for (const Case& each : cases) {
        const auto recorder = make(KeyCombo{ 9, KeyCombo::option });
        stored.clear();
        recorder->toggle();
        ASSERT_TRUE(recorder->isRecording() && platform.keyboard.isHeld());
        EXPECT_EQ(recorder->label(), QStringLiteral("Type shortcut…"));
        EXPECT_THAT(platform.hotKeys.held(), IsEmpty()) << "all shortcuts rest while one is recorded";
        platform.keyboard.press(each.key, each.flags);
        EXPECT_EQ(stored, each.stored) << each.key << " " << each.flags;
        EXPECT_EQ(recorder->error().toStdString(), each.error);
        EXPECT_EQ(recorder->isRecording(), each.goesOn);
        EXPECT_EQ(platform.keyboard.isHeld(), each.goesOn);
        recorder->stop();
        EXPECT_THAT(platform.hotKeys.held(), ElementsAre(QStringLiteral("⌃⌥S")));
    }
}

TEST_F(ShortcutRecorderTest, theKeyboardIsGivenBackHoweverARecordingEnds)
{
    SessionEvents& session = platform.session;
    const std::pair<const char*, std::function<void(std::unique_ptr<ShortcutRecorder>&)>> ends[] = {
        { "clicked again", [](auto& recorder) { recorder->toggle(); } },
        { "gone with its view", [](auto& recorder) { recorder.reset(); } },
        { "another window is used", [&](auto&) { platform.keyboard.leave(); } },
        { "locked", [&](auto&) { Q_EMIT session.didLock(); } },
        { "sleep", [&](auto&) { Q_EMIT session.willSleep(); } },
        { "screens asleep", [&](auto&) { Q_EMIT session.screensDidSleep(); } },
        { "ended", [&](auto&) { Q_EMIT session.willEnd(); } },
        { "ten seconds without a key", [&](auto&) { platform.loop.advance(10.1); } },
    };
    for (const auto& [what, end] : ends) {
        auto recorder = make();
        recorder->toggle();
        platform.loop.advance(9.9);
        platform.keyboard.press(0, 0); // a key counts from anew
        platform.loop.advance(9.9);
        ASSERT_TRUE(platform.keyboard.isHeld()) << what;
        end(recorder);
        EXPECT_FALSE(platform.keyboard.isHeld()) << what;
        EXPECT_FALSE(center.isPaused()) << what;
        EXPECT_THAT(platform.hotKeys.held(), ElementsAre(QStringLiteral("⌃⌥S"))) << what;
    }
    EXPECT_EQ(platform.loop.waiting(), 0);
}

TEST_F(ShortcutRecorderTest, theSecondRecorderStopsTheFirstWithoutAResumeBetween)
{
    const auto first = make();
    const auto second = make();
    first->toggle();
    QStringList between;
    QObject::connect(first.get(), &ShortcutRecorder::changed, first.get(), [&] { between += platform.hotKeys.held(); });
    second->toggle();
    EXPECT_FALSE(first->isRecording());
    EXPECT_TRUE(second->isRecording() && center.isPaused());
    EXPECT_THAT(between, IsEmpty());
    first->stop(); // it has nothing to end any more
    EXPECT_TRUE(second->isRecording() && center.isPaused());
}

TEST_F(ShortcutRecorderTest, whatCannotBeIsSaid)
{
    const auto recorder = make();
    platform.keyboard.taken = true;
    recorder->toggle();
    platform.keyboard.refuse();
    EXPECT_FALSE(recorder->isRecording());
    EXPECT_FALSE(center.isPaused());
    EXPECT_FALSE(recorder->error().isEmpty());

    platform.keyboard.taken = false;
    recorder->toggle();
    EXPECT_EQ(recorder->error(), QString());
    answer = QStringLiteral("Used by another app");
    platform.keyboard.press(1, option);
    EXPECT_EQ(recorder->error(), answer);
    EXPECT_EQ(recorder->label(), QStringLiteral("Record Shortcut"));

    // What another application took meanwhile is lost, and said.
    recorder->toggle();
    platform.hotKeys.taken.append(controlOptionS);
    platform.keyboard.press(53);
    EXPECT_EQ(recorder->error(), QStringLiteral("Couldn't restore shortcut: ⌃⌥S (-9878)"));
    platform.hotKeys.taken.clear();
    Q_EMIT platform.hotKeys.keyboardChanged();
    EXPECT_THAT(platform.hotKeys.held(), ElementsAre(QStringLiteral("⌃⌥S")));
}

TEST_F(ShortcutRecorderTest, registeringWhilePausedIsRealAfterTheResume)
{
    int fired = 0;
    const auto recorder = make();
    recorder->toggle();
    platform.hotKeys.failure = HotKeys::noSuchKey;
    EXPECT_EQ(
        center.registerShortcut({ 2, KeyCombo::option }, ShortcutOwner::capture(CaptureMode::area), [&] { ++fired; }),
        HotKeys::success);
    platform.hotKeys.failure = HotKeys::success;
    recorder->stop();
    EXPECT_TRUE(platform.hotKeys.press({ 2, KeyCombo::option }));
    EXPECT_EQ(fired, 1);
    Q_EMIT platform.hotKeys.pressed(999); // nobody's
    EXPECT_EQ(fired, 1);
}

} // namespace

} // namespace kestro
