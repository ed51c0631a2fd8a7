// Thousands of generated configurations against a model of the rules that shares nothing with the installer: it is
// written on Qt's JSON, and says what must come out in one step where the installer takes several.

#include "KestroCore/Agents/HookInstaller.h"
#include "KestroCore/Agents/HookInstallerError.h"
#include "KestroCore/Agents/StatusLineInstaller.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>
#include <gtest/gtest.h>
#include <random>
#include <sys/stat.h>

namespace kestro {
namespace {

const QString hooksKey = QStringLiteral("hooks");

struct Generator {
    std::mt19937 random;

    QJsonObject file()
    {
        QJsonObject root = object(2);
        if (below(8))
            root[hooksKey] = below(10) ? QJsonValue(hooks()) : value(1);
        if (!below(4))
            root[QStringLiteral("version")] = value(0);
        return root;
    }
    Agent agent() { return allAgents.at(below(allAgents.size())); }

    unsigned below(std::size_t limit) { return static_cast<unsigned>(random() % limit); }

    QString oneOf(const std::vector<const char*>& texts) { return QString::fromUtf8(texts[below(texts.size())]); }
    QString key() { return oneOf({ "", "a", "command", "hooks", "version", "é/\"", "\u2028", "# kestro-hook" }); }
    QString text()
    {
        return oneOf({ "", "beep", "x; exit 0 # kestro-hook", "y # ombrel-hook", "# Kestro-hook", "kestro-hook",
            "a\\/b \U0001F600" });
    }
    QJsonValue value(int depth)
    {
        const QJsonValue plain[] = { {}, below(2) == 0, int(below(5)) - 2, text() };
        const unsigned kind = below(depth > 0 ? 6 : 4);
        return kind < 4 ? plain[kind]
            : kind == 4 ? QJsonValue(object(depth - 1))
                        : QJsonValue(QJsonArray{ value(depth - 1), value(depth - 1) });
    }
    QJsonObject object(int depth)
    {
        QJsonObject result;
        for (unsigned count = below(4); count > 0; --count)
            result[key()] = value(depth);
        return result;
    }
    QJsonValue entry()
    {
        QJsonObject result = object(0);
        if (below(2))
            result[QStringLiteral("command")] = text();
        if (below(2)) {
            QJsonArray inner;
            for (unsigned count = below(3); count > 0; --count)
                inner.append(below(8) ? QJsonValue(QJsonObject{ { QStringLiteral("command"), text() } }) : value(1));
            result[hooksKey] = inner;
        }
        return below(20) ? QJsonValue(result) : value(0);
    }
    QJsonObject hooks()
    {
        QJsonObject result;
        for (unsigned count = below(5); count > 0; --count) {
            const QStringList events = HookInstaller::events(agent());
            const QString event = below(5) ? events[below(static_cast<std::size_t>(events.size()))] : key();
            QJsonArray entries;
            for (unsigned entryCount = below(4); entryCount > 0; --entryCount)
                entries.append(entry());
            result[event] = below(30) ? QJsonValue(entries) : value(1);
        }
        return result;
    }
};

bool carriesMarker(const QJsonValue& command)
{
    const QString text = command.toString();
    return text.contains(QLatin1String("# kestro-hook")) || text.contains(QLatin1String("# ombrel-hook"));
}

bool isOurs(const QJsonValue& entry)
{
    if (carriesMarker(entry[QLatin1String("command")]))
        return true;
    bool found = false;
    for (const auto& inner : entry[QLatin1String("hooks")].toArray()) {
        if (!inner.isObject())
            return false;
        found = found || carriesMarker(inner[QLatin1String("command")]);
    }
    return found;
}

QJsonArray foreign(const QJsonArray& entries)
{
    QJsonArray kept;
    std::ranges::remove_copy_if(entries, std::back_inserter(kept), isOurs);
    return kept;
}

/// The file without ours, and without the events of `emptied` that hold nothing.
QJsonObject without(QJsonObject root, const QStringList& emptied = {})
{
    const QJsonObject hooks = root.value(hooksKey).toObject();
    QJsonObject kept;
    bool dropped = !emptied.isEmpty();
    for (auto event = hooks.begin(); event != hooks.end(); ++event) {
        const QJsonArray entries = foreign(event->toArray());
        const bool here = entries.size() < event->toArray().size();
        dropped = dropped || here;
        if (!here && !(emptied.contains(event.key()) && event->isArray() && entries.isEmpty()))
            kept[event.key()] = *event;
        else if (!entries.isEmpty())
            kept[event.key()] = entries;
    }
    if (dropped && kept.isEmpty())
        root.remove(hooksKey);
    else if (root.value(hooksKey).isObject())
        root[hooksKey] = kept;
    return root;
}

/// The file with ours, one behind the others of each event, or nothing where it cannot take them.
std::optional<QJsonObject> with(QJsonObject root, Agent agent)
{
    root = without(root);
    if (root.contains(hooksKey) && !root.value(hooksKey).isObject())
        return std::nullopt;
    QJsonObject hook{ { QStringLiteral("command"), HookInstaller::command(agent) } };
    if (agent == Agent::cursor && !root.contains(QLatin1String("version")))
        root[QStringLiteral("version")] = 1;
    if (agent != Agent::cursor) {
        hook[QStringLiteral("type")] = QStringLiteral("command");
        hook = { { hooksKey, QJsonArray{ hook } } };
    }
    QJsonObject hooks = root.value(hooksKey).toObject();
    for (const QString& event : HookInstaller::events(agent)) {
        if (hooks.contains(event) && !hooks.value(event).isArray())
            return std::nullopt;
        QJsonArray entries = hooks.value(event).toArray();
        entries.append(hook);
        hooks[event] = entries;
    }
    root[hooksKey] = hooks;
    return root;
}

TEST(HookInstallerProperties, WhatComesGoes)
{
    const auto read = [](const QByteArray& data) { return QJsonDocument::fromJson(data).object(); };
    int installed = 0;
    int refused = 0;
    for (unsigned seed = 0; seed < 600; ++seed) {
        SCOPED_TRACE(seed);
        Generator generate{ std::mt19937(seed) };
        const QJsonObject root = generate.file();
        const Agent agent = generate.agent();
        const QByteArray file = QJsonDocument(root).toJson(QJsonDocument::Compact);
        ASSERT_EQ(read(HookInstaller::uninstall(file, {})), without(root));
        const auto expected = with(root, agent);
        if (!expected) {
            EXPECT_THROW(HookInstaller::install(file, agent, {}), HookInstallerError);
            ++refused;
            continue;
        }
        const QByteArray once = HookInstaller::install(file, agent, {});
        ASSERT_EQ(read(once), *expected) << file.toStdString();
        ASSERT_EQ(HookInstaller::install(once, agent, {}), once);
        // Events that had nothing to begin with are lost when ours was their only entry for a while.
        ASSERT_EQ(read(HookInstaller::uninstall(once, {})), without(*expected, HookInstaller::events(agent)));
        ++installed;
    }
    EXPECT_GT(installed, 300);
    EXPECT_GT(refused, 30);
}

/// A status line as a user may have it, and whether a command of ours is in it.
std::pair<QJsonValue, bool> statusLine(Generator& generate)
{
    const std::pair<QJsonValue, bool> lines[] = {
        { QJsonValue::Undefined, false },
        { QJsonObject{ { QStringLiteral("command"), QStringLiteral("date") }, { QStringLiteral("padding"), 2 } },
            false },
        { QJsonObject{ { QStringLiteral("type"), QStringLiteral("command") } }, false },
        { QJsonObject{ { QStringLiteral("command"), false } }, false },
        { QJsonObject{ { QStringLiteral("command"), QStringLiteral("old # ombrel-hook") } }, true },
    };
    return lines[generate.below(std::size(lines))];
}

TEST(HookInstallerProperties, SettingsFilesComeBackFromBothInstallers)
{
    // In memory: each write is synced, which takes a disk twenty seconds in all.
    const QTemporaryDir home(QStringLiteral("/dev/shm/kestro-XXXXXX"));
    const QString file = home.filePath(QStringLiteral("settings.json"));
    const QString support = StatusLineInstaller::supportDir(home.path());
    const auto read = [&file] {
        QFile settings(file);
        return settings.open(QIODevice::ReadOnly) ? QJsonDocument::fromJson(settings.readAll()).object()
                                                  : QJsonObject();
    };
    const auto apply = [&](bool enabled) {
        StatusLineInstaller::apply(enabled, file, support);
        HookInstaller::apply(enabled, Agent::claude, file);
    };
    int files = 0;
    for (unsigned seed = 0; files < 200; ++seed) {
        SCOPED_TRACE(seed);
        Generator generate{ std::mt19937(seed) };
        QJsonObject root = generate.file();
        const auto [line, isOurs] = statusLine(generate);
        root[QStringLiteral("statusLine")] = line;
        const auto hooked = with(root, Agent::claude);
        if (!hooked)
            continue; // refused, which the test above looks at
        QFile settings(file);
        ASSERT_TRUE(settings.open(QIODevice::WriteOnly) && settings.write(QJsonDocument(root).toJson()) > 0);
        settings.close();
        apply(true);
        struct stat first { };
        struct stat second { };
        ASSERT_EQ(::stat(QFile::encodeName(file).constData(), &first), 0);
        apply(true);
        ASSERT_EQ(::stat(QFile::encodeName(file).constData(), &second), 0);
        ASSERT_EQ(first.st_ino, second.st_ino) << "written again";
        apply(false);
        QJsonObject expected = without(*hooked, HookInstaller::events(Agent::claude));
        if (isOurs)
            expected.remove(QLatin1String("statusLine")); // what was there before our older one, nobody knows
        ASSERT_EQ(read(), expected) << QJsonDocument(root).toJson().toStdString();
        ++files;
    }
}

} // namespace
} // namespace kestro
