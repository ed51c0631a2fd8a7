#include "Tests/Support/Fakes.h"

#include <algorithm>

namespace kestro::test {

void FakePreferences::setValue(const QString& key, const QVariant& value)
{
    if (values.value(key) == value)
        return;
    if (value.isValid())
        values[key] = value;
    else
        values.remove(key);
    if (m_changed.isEmpty()) {
        m_loop.post([this] {
            const QStringList keys = std::exchange(m_changed, {});
            Q_EMIT changed(keys);
        });
    }
    if (!m_changed.contains(key))
        m_changed.append(key);
}

void FakeScreens::setOne(QSizeF size)
{
    const QRectF frame(QPointF(), size);
    screens = { Screen{ { 1, frame, false }, QStringLiteral("One"), frame, 1 } };
    Q_EMIT changed();
}

class FakePointer::Watch final : public PointerWatch {
public:
    Watch(FakePointer& owner, std::list<std::function<void()>>::iterator place)
        : m_owner(owner)
        , m_place(place)
    {
    }
    ~Watch() override { m_owner.m_watchers.erase(m_place); }

private:
    FakePointer& m_owner;
    std::list<std::function<void()>>::iterator m_place;
};

std::unique_ptr<PointerWatch> FakePointer::watch(std::function<void()> moved)
{
    return std::make_unique<Watch>(*this, m_watchers.insert(m_watchers.end(), std::move(moved)));
}

void FakePointer::moveTo(QPointF point)
{
    at = point;
    const auto watchers = m_watchers; // a watcher may end its own watch
    for (const auto& moved : watchers)
        moved();
}

std::optional<QString> FakeWorkspace::displayName(const QString& path) const
{
    const QString name = names.value(path);
    return name.isEmpty() ? std::nullopt : std::optional(name);
}

QImage FakeWorkspace::icon(const QString& path, int pixels) const
{
    iconsAsked.append(path);
    QImage image(pixels, pixels, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::green);
    return image;
}

void FakeWorkspace::openApplication(const QString& path, std::function<void(const QString&)> failed)
{
    opened.append(path);
    if (!openFailure.isEmpty())
        failed(openFailure);
}

bool FakeWorkspace::openUrl(const QUrl& url)
{
    opened.append(url.toString());
    return openFailure.isEmpty();
}

bool FakeWorkspace::moveToTrash(const QString& path)
{
    trashed.append(path);
    return true;
}

std::optional<QString> FakeWorkspace::bundleIdentifier(const QString& path) const
{
    return bundles.contains(path) ? std::optional(bundles.value(path)) : std::nullopt;
}

class FakeFetcher::Handle final : public Fetch {
public:
    explicit Handle(std::list<std::function<void(const FetchResult&)>>::iterator place)
        : m_place(place)
    {
    }
    ~Handle() override { *m_place = nullptr; }

private:
    std::list<std::function<void(const FetchResult&)>>::iterator m_place;
};

std::unique_ptr<Fetch> FakeFetcher::get(
    const QUrl& url, double timeoutSeconds, qint64 maxBytes, std::function<void(const FetchResult&)> done)
{
    asked.append(url);
    lastTimeout = timeoutSeconds;
    lastMaxBytes = maxBytes;
    return std::make_unique<Handle>(m_waiting.insert(m_waiting.end(), std::move(done)));
}

void FakeFetcher::answer(const FetchResult& result)
{
    for (auto& each : m_waiting) {
        if (auto done = std::exchange(each, nullptr)) {
            done(result);
            return;
        }
    }
}

QList<Application> FakeWorkspace::applications() const
{
    QList<Application> all;
    for (auto each = names.begin(); each != names.end(); ++each)
        all.append({ each.key(), each.value() });
    return all;
}

HotKeys::Status FakeHotKeys::registerHotKey(const KeyCombo& combo, quint32 id)
{
    if (failure != success)
        return failure;
    if (taken.contains(combo) || registered.values().contains(combo))
        return exists;
    registered[id] = combo;
    return success;
}

bool FakeHotKeys::press(const KeyCombo& combo)
{
    const quint32 id = registered.key(combo);
    if (id != 0)
        Q_EMIT pressed(id);
    return id != 0;
}

QStringList FakeHotKeys::held() const
{
    QStringList shown;
    for (const KeyCombo& combo : registered)
        shown.append(combo.displayString());
    shown.sort();
    return shown;
}

class FakeKeyboard::Hold final : public KeyboardHold {
public:
    explicit Hold(FakeKeyboard& keyboard)
        : m_keyboard(keyboard)
    {
    }
    ~Hold() override { m_keyboard.m_pressed = nullptr; }

private:
    FakeKeyboard& m_keyboard;
};

std::unique_ptr<KeyboardHold> FakeKeyboard::hold(
    std::function<void(const KeyPress&)> pressed, std::function<void()> left)
{
    if (taken || m_pressed)
        return nullptr;
    m_pressed = std::move(pressed);
    m_left = std::move(left);
    return std::make_unique<Hold>(*this);
}

void FakeKeyboard::leave()
{
    if (const auto left = m_pressed ? m_left : nullptr)
        left();
}

void FakeKeyboard::press(quint16 keyCode, quint64 flags)
{
    if (const auto pressed = m_pressed)
        pressed({ keyCode, flags });
}

std::optional<QString> FakeLoginItem::setEnabled(bool on)
{
    if (failure)
        return failure;
    if (std::exchange(enabled, on) != on)
        Q_EMIT changed();
    return std::nullopt;
}

class FakePeers::Watch final : public ProcessWatch {
public:
    Watch(FakePeers& owner, std::list<Watched>::iterator place)
        : m_owner(owner)
        , m_place(place)
    {
    }
    ~Watch() override { m_owner.m_watched.erase(m_place); }

private:
    FakePeers& m_owner;
    std::list<Watched>::iterator m_place;
};

std::unique_ptr<ProcessWatch> FakePeers::watch(const ProcessId& process, std::function<void()> ended)
{
    if (std::ranges::find(m_ended, process) != m_ended.end())
        return nullptr;
    return std::make_unique<Watch>(*this, m_watched.insert(m_watched.end(), { process, std::move(ended) }));
}

void FakePeers::end(const ProcessId& process)
{
    m_ended.push_back(process);
    const auto watched = m_watched; // who is told may end its watch
    for (const Watched& each : watched) {
        if (each.process == process)
            each.ended();
    }
}

bool FakeWindows::raise(quint32 id)
{
    if (std::ranges::find(windows, id, &DesktopWindow::id) == windows.end())
        return false;
    raised.append(id);
    activeId = id;
    return true;
}

void FakeCommands::run(
    const QStringList& words, const QByteArray& input, double limit, std::function<void(const CommandResult&)> done)
{
    running.push_back({ words, input, limit, std::move(done) });
}

void FakeCommands::answer(const CommandResult& result)
{
    const Running first = running.front();
    running.pop_front();
    first.done(result);
}

} // namespace kestro::test
