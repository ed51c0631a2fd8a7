// Thousands of generated configurations against a model of the rules that shares nothing with the installer: it is
// written on Qt's JSON, and says what must come out in one step where the installer takes several.

#include "KestroCore/Agents/HookInstaller.h"
#include "KestroCore/Agents/HookInstallerError.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <gtest/gtest.h>
#include <random>

namespace kestro {
namespace {

class Generator {
public:
    explicit Generator(unsigned seed)
        : m_random(seed)
    {
    }

    QJsonObject file()
    {
        QJsonObject root = object(2);
        if (below(8))
            root[QStringLiteral("hooks")] = below(10) ? QJsonValue(hooks()) : value(1);
        if (!below(4))
            root[QStringLiteral("version")] = value(0);
        return root;
    }
    Agent agent() { return allAgents.at(below(allAgents.size())); }

private:
    unsigned below(std::size_t limit) { return static_cast<unsigned>(m_random() % limit); }

    QString key()
    {
        static const char* const keys[] = { "", "a", "command", "hooks", "version", "é/\"", "\u2028", "# kestro-hook" };
        return QString::fromUtf8(keys[below(std::size(keys))]);
    }
    QString text()
    {
        static const char* const texts[] = { "", "beep", "x; exit 0 # kestro-hook", "y # ombrel-hook", "# Kestro-hook",
            "kestro-hook", "a\\/b \U0001F600" };
        return QString::fromUtf8(texts[below(std::size(texts))]);
    }
    QJsonValue value(int depth)
    {
        switch (below(depth > 0 ? 6 : 4)) {
        case 0:
            return {};
        case 1:
            return below(2) == 0;
        case 2:
            return static_cast<int>(below(5)) - 2;
        case 3:
            return text();
        case 4:
            return object(depth - 1);
        default:
            return QJsonArray{ value(depth - 1), value(depth - 1) };
        }
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
            result[QStringLiteral("hooks")] = inner;
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

    std::mt19937 m_random;
};

bool carriesMarker(const QJsonValue& command)
{
    return command.isString()
        && (command.toString().contains(QLatin1String("# kestro-hook"))
            || command.toString().contains(QLatin1String("# ombrel-hook")));
}

bool isOurs(const QJsonValue& entry)
{
    if (carriesMarker(entry[QLatin1String("command")]))
        return true;
    bool found = false;
    for (const QJsonValue& inner : entry[QLatin1String("hooks")].toArray()) {
        if (!inner.isObject())
            return false;
        found = found || carriesMarker(inner[QLatin1String("command")]);
    }
    return found;
}

/// The file without ours and without events of `emptied` that hold nothing: those that had nothing to begin with are
/// lost when ours was their only entry for a while.
QJsonObject without(QJsonObject root, const QStringList& emptied)
{
    const QString name = QStringLiteral("hooks");
    if (!root.value(name).isObject())
        return root;
    QJsonObject kept;
    bool dropped = !emptied.isEmpty();
    const QJsonObject hooks = root.value(name).toObject();
    for (auto event = hooks.begin(); event != hooks.end(); ++event) {
        QJsonArray entries;
        for (const QJsonValue& entry : event->toArray()) {
            if (!isOurs(entry))
                entries.append(entry);
        }
        const bool here = entries.size() < event->toArray().size();
        dropped = dropped || here;
        if (!here && !(emptied.contains(event.key()) && event->isArray() && entries.isEmpty()))
            kept[event.key()] = *event;
        else if (!entries.isEmpty())
            kept[event.key()] = entries;
    }
    if (dropped && kept.isEmpty())
        root.remove(name);
    else
        root[name] = kept;
    return root;
}

bool takesHooks(const QJsonObject& root, Agent agent)
{
    const QJsonValue hooks = without(root, {}).value(QLatin1String("hooks"));
    if (!hooks.isUndefined() && !hooks.isObject())
        return false;
    const QStringList events = HookInstaller::events(agent);
    return std::all_of(events.begin(), events.end(), [&hooks](const QString& event) {
        const QJsonValue entries = hooks.toObject().value(event);
        return entries.isUndefined() || entries.isArray();
    });
}

TEST(HookInstallerProperties, WhatComesGoes)
{
    int installed = 0;
    int refused = 0;
    for (unsigned seed = 0; seed < 600; ++seed) {
        SCOPED_TRACE(seed);
        Generator generate(seed);
        const QJsonObject root = generate.file();
        const Agent agent = generate.agent();
        const QByteArray file = QJsonDocument(root).toJson(QJsonDocument::Compact);
        const auto removed = [](const QByteArray& data) {
            return QJsonDocument::fromJson(HookInstaller::uninstall(data, {})).object();
        };
        ASSERT_EQ(removed(file), without(root, {}));
        if (!takesHooks(root, agent)) {
            EXPECT_THROW(HookInstaller::install(file, agent, {}), HookInstallerError);
            ++refused;
            continue;
        }
        const QByteArray once = HookInstaller::install(file, agent, {});
        ASSERT_EQ(HookInstaller::install(once, agent, {}), once);
        QJsonObject expected = without(root, HookInstaller::events(agent));
        if (agent == Agent::cursor && !expected.contains(QLatin1String("version")))
            expected[QLatin1String("version")] = 1;
        ASSERT_EQ(removed(once), expected) << file.toStdString();
        ++installed;
    }
    EXPECT_GT(installed, 300);
    EXPECT_GT(refused, 30);
}

} // namespace
} // namespace kestro
