#pragma once

#include "Kestro/Platform/Appearance.h"
#include "Kestro/Platform/CommandRunner.h"
#include "Kestro/Platform/DesktopWindows.h"
#include "Kestro/Platform/Fetcher.h"
#include "Kestro/Platform/HotKeys.h"
#include "Kestro/Platform/KeyboardGrabs.h"
#include "Kestro/Platform/Log.h"
#include "Kestro/Platform/LoginItem.h"
#include "Kestro/Platform/Panels.h"
#include "Kestro/Platform/PeerInspector.h"
#include "Kestro/Platform/Platform.h"
#include "Kestro/Platform/Pointer.h"
#include "Kestro/Platform/PreferenceStore.h"
#include "Kestro/Platform/Screens.h"
#include "Kestro/Platform/SessionEvents.h"
#include "Kestro/Platform/StatusItem.h"
#include "Kestro/Platform/SystemCounters.h"
#include "Kestro/Platform/Workspace.h"
#include "Tests/Support/FakeLoop.h"

#include <QHash>
#include <QMap>
#include <QWindow>
#include <list>

/// The ports' fakes: each holds what a test sets and records what the code under test did.
namespace kestro::test {

class FakePreferences final : public PreferenceStore {
public:
    explicit FakePreferences(MainLoop& loop)
        : m_loop(loop)
    {
    }
    QVariant value(const QString& key) const override { return values.value(key); }
    void setValue(const QString& key, const QVariant& value) override;
    void flush() override { ++flushes; }

    QVariantMap values;
    int flushes = 0;

private:
    MainLoop& m_loop;
    QStringList m_changed;
};

class FakeScreens final : public Screens {
public:
    QList<Screen> all() const override { return screens; }
    /// One screen of `size` at the origin, with nothing reserved.
    void setOne(QSizeF size);

    QList<Screen> screens;

protected:
    QPointF origin() const override { return { 0, screens.isEmpty() ? 0 : screens.first().info.frame.height() }; }
};

class FakePointer final : public Pointer {
public:
    QPointF location() const override { return at; }
    std::unique_ptr<PointerWatch> watch(std::function<void()> moved) override;
    void moveTo(QPointF point);
    int watches() const { return int(m_watchers.size()); }

    QPointF at{ 400, 400 };

private:
    class Watch;
    std::list<std::function<void()>> m_watchers;
};

class FakePanels final : public Panels {
public:
    void adopt(QWindow& window) override { adopted.append(&window); }
    void setShape(QWindow& window, const QRegion& shape) override { shapes[&window] = shape; }
    void takeFocus(QWindow& window) override { focused = &window; }
    void returnFocus(QWindow& window) override
    {
        if (focused == &window)
            focused = nullptr;
    }
    bool isComposited() const override { return composited; }

    QWindow* focused = nullptr;
    QList<QWindow*> adopted;
    QHash<QWindow*, QRegion> shapes;
    bool composited = true;
};

class FakeAppearance final : public Appearance {
public:
    Look look() const override { return current; }
    Look current;
};

class FakeWorkspace final : public Workspace {
public:
    bool fileExists(const QString& path) const override { return names.contains(path); }
    bool isApplication(const QString& path) const override { return names.contains(path); }
    QList<Application> applications() const override;
    std::optional<QString> displayName(const QString& path) const override;
    QImage icon(const QString& path, int pixels) const override;
    void openApplication(const QString& path, std::function<void(const QString&)> failed) override;
    bool openUrl(const QUrl& url) override;
    bool moveToTrash(const QString& path) override;
    void refreshRegistry(const QString&) override { }
    std::optional<QString> bundleIdentifier(const QString& path) const override;

    QMap<QString, QString> names; ///< path of an application that exists -> its name; empty: it has none
    QMap<QString, QString> bundles; ///< path -> bundle identifier
    QString openFailure; ///< what opening says, where not empty
    QStringList opened, trashed;
    mutable QStringList iconsAsked;
};

class FakeFetcher final : public Fetcher {
public:
    std::unique_ptr<Fetch> get(
        const QUrl& url, double timeoutSeconds, qint64 maxBytes, std::function<void(const FetchResult&)> done) override;
    /// Answers the oldest fetch that is still wanted.
    void answer(const FetchResult& result);

    QList<QUrl> asked;
    double lastTimeout = 0;
    qint64 lastMaxBytes = 0;

private:
    class Handle;
    std::list<std::function<void(const FetchResult&)>> m_waiting;
};

class FakeCounters final : public SystemCounters {
public:
    std::optional<CPUTicks> cpuTicks() const override { return ++readings, ticks; }
    std::optional<quint64> ramUsed() const override { return used; }
    quint64 ramTotal() const override { return 16ull << 30; }

    std::optional<CPUTicks> ticks;
    std::optional<quint64> used = 4ull << 30;
    mutable int readings = 0;
};

class FakeHotKeys final : public HotKeys {
public:
    Status registerHotKey(const KeyCombo& combo, quint32 id) override;
    void unregisterHotKey(quint32 id) override { registered.remove(id); }
    /// The user presses a combination: whether anyone was told.
    bool press(const KeyCombo& combo);
    QStringList held() const; ///< what is registered, as shown to the user, sorted

    QMap<quint32, KeyCombo> registered; ///< by id
    QList<KeyCombo> taken; ///< by other applications
    Status failure = success; ///< what every registration answers, where not success
};

class FakeKeyboard final : public KeyboardGrabs {
public:
    std::unique_ptr<KeyboardHold> hold(
        std::function<void(const KeyPress&)> pressed, std::function<void()> left) override;
    void leave(); ///< the user goes to another window
    void press(quint16 keyCode, quint64 flags = 0);
    bool isHeld() const { return bool(m_pressed); }

    bool taken = false; ///< by another program

private:
    class Hold;
    std::function<void(const KeyPress&)> m_pressed;
    std::function<void()> m_left;
};

class FakeStatusItem final : public StatusItem {
public:
    void show(std::function<QImage(int)>, QList<MenuEntry> entries) override { menu = std::move(entries); }
    void hide() override { menu.clear(); }
    QList<MenuEntry> menu;
};

class FakeLoginItem final : public LoginItem {
public:
    bool isEnabled() const override { return enabled; }
    std::optional<QString> setEnabled(bool on) override;
    bool enabled = false;
    std::optional<QString> failure; ///< what a change answers
};

class FakePeers final : public PeerInspector {
public:
    HookOrigin peer(int) const override { return origin; }
    HookOrigin process(qint64 pid) const override { return processes.value(pid); }
    std::unique_ptr<ProcessWatch> watch(const ProcessId& process, std::function<void()> ended) override;
    void end(const ProcessId& process); ///< tells everyone who watches it, and nobody afterwards
    int watches() const { return int(m_watched.size()); }

    HookOrigin origin; ///< of every connection; set while no message is on its way
    QHash<qint64, HookOrigin> processes;

private:
    class Watch;
    struct Watched {
        ProcessId process;
        std::function<void()> ended;
    };
    std::list<Watched> m_watched;
    std::vector<ProcessId> m_ended;
};

class FakeWindows final : public DesktopWindows {
public:
    std::vector<DesktopWindow> all() const override { return windows; }
    quint32 active() const override { return activeId; }
    bool raise(quint32 id) override;

    std::vector<DesktopWindow> windows;
    quint32 activeId = 0;
    QList<quint32> raised;
};

class FakeCommands final : public CommandRunner {
public:
    void run(const QStringList& words, const QByteArray& input, double limit,
        std::function<void(const CommandResult&)> done) override;
    bool exists(const QString& program) const override { return !missing.contains(program); }
    void answer(const CommandResult& result); ///< the oldest that still runs

    struct Running {
        QStringList words;
        QByteArray input;
        double limit;
        std::function<void(const CommandResult&)> done;
    };
    std::list<Running> running;
    QStringList missing;
};

class RecordingLog final : public Log {
public:
    void write(const QString& line) override { lines.append(line); }
    QStringList lines;
};

/// All of them, as the one value that the application is given.
struct FakePlatform {
    FakeLoop loop;
    FakePreferences preferences{ loop };
    FakeScreens screens;
    FakePointer pointer;
    FakePanels panels;
    FakeAppearance appearance;
    SessionEvents session;
    FakeWorkspace workspace;
    FakeFetcher fetcher;
    FakeCounters counters;
    FakeHotKeys hotKeys;
    FakeKeyboard keyboard;
    FakeStatusItem statusItem;
    FakeLoginItem loginItem;
    FakePeers peers;
    FakeWindows windows;
    FakeCommands commands;
    RecordingLog log;

    Platform ports()
    {
        return { loop, preferences, screens, pointer, panels, appearance, session, workspace, fetcher, counters,
            hotKeys, keyboard, statusItem, loginItem, peers, windows, commands, log };
    }
};

} // namespace kestro::test
