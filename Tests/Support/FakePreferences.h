#pragma once

#include "Kestro/Platform/MainLoop.h"
#include "Kestro/Platform/PreferenceStore.h"

#include <QStringList>
#include <QVariant>
#include <utility>

namespace kestro::test {

/// Kept in memory; a change is told on the next turn of the loop.
class FakePreferences final : public PreferenceStore {
public:
    explicit FakePreferences(MainLoop& loop)
        : m_loop(loop)
    {
    }
    QVariant value(const QString& key) const override { return values.value(key); }
    void setValue(const QString& key, const QVariant& value) override
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
    void flush() override { ++flushes; }

    QVariantMap values;
    int flushes = 0;

private:
    MainLoop& m_loop;
    QStringList m_changed;
};

} // namespace kestro::test
