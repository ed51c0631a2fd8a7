#pragma once

#include "Kestro/Platform/HotKeys.h"

#include <QList>
#include <QMap>
#include <QStringList>

namespace kestro::test {

class FakeHotKeys final : public HotKeys {
public:
    Status registerHotKey(const KeyCombo& combo, quint32 id) override
    {
        if (failure != success)
            return failure;
        if (taken.contains(combo) || registered.values().contains(combo))
            return exists;
        registered[id] = combo;
        return success;
    }
    void unregisterHotKey(quint32 id) override { registered.remove(id); }
    /// The user presses a combination: whether it was registered.
    bool press(const KeyCombo& combo)
    {
        const quint32 id = registered.key(combo);
        if (id != 0)
            Q_EMIT pressed(id);
        return id != 0;
    }
    /// What is registered, as shown to the user, sorted.
    QStringList held() const
    {
        QStringList shown;
        for (const KeyCombo& combo : registered)
            shown.append(combo.displayString());
        shown.sort();
        return shown;
    }

    QMap<quint32, KeyCombo> registered; ///< by id
    QList<KeyCombo> taken; ///< by other applications
    Status failure = success; ///< what every registration answers, where not success
};

} // namespace kestro::test
