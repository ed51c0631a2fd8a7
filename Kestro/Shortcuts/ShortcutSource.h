#pragma once

#include "KestroCore/Shortcuts/ShortcutOwner.h"

#include <QList>
#include <functional>

namespace kestro {

class PreferenceStore;

/// The shortcuts of one family: their owners, their storage, their effect. Main thread.
class ShortcutSource {
public:
    virtual ~ShortcutSource() = default;

    virtual QString family() const = 0;
    /// Under which Settings lists them.
    virtual QString section() const = 0;
    /// Everything that can have a shortcut now, in the order in which Settings lists it.
    virtual QList<ShortcutOwner> owners() const = 0;
    /// The stored combination; nothing where there is none.
    virtual std::optional<KeyCombo> combo(const ShortcutOwner& owner) const = 0;
    virtual void store(const std::optional<KeyCombo>& combo, const ShortcutOwner& owner) = 0;
    /// As a message calls it, also where `owner` is gone.
    virtual QString name(const ShortcutOwner& owner) const = 0;
    /// As Settings calls it.
    virtual QString title(const ShortcutOwner& owner) const { return name(owner); }
    /// Whether it is to be live: a feature that is off keeps its shortcuts, and they rest.
    virtual bool isActive(const ShortcutOwner& owner) const = 0;
    virtual void perform(const ShortcutOwner& owner) = 0;
};

/// A family of one, stored under a preference key. Main thread.
class PreferenceShortcut final : public ShortcutSource {
public:
    struct Description {
        ShortcutOwner owner;
        QLatin1StringView key; ///< of the preference
        std::optional<KeyCombo> fallback; ///< while nothing is stored
        QString section;
        QString name;
        QString title; ///< in Settings; empty for `name`
        std::function<bool()> isActive;
        std::function<void()> perform;
    };

    /// `preferences` must outlive it.
    PreferenceShortcut(PreferenceStore& preferences, Description description);

    QString family() const override { return m_description.owner.family(); }
    QString section() const override { return m_description.section; }
    QList<ShortcutOwner> owners() const override { return { m_description.owner }; }
    std::optional<KeyCombo> combo(const ShortcutOwner& owner) const override;
    void store(const std::optional<KeyCombo>& combo, const ShortcutOwner& owner) override;
    QString name(const ShortcutOwner&) const override { return m_description.name; }
    QString title(const ShortcutOwner& owner) const override;
    bool isActive(const ShortcutOwner&) const override { return m_description.isActive(); }
    void perform(const ShortcutOwner&) override { m_description.perform(); }

private:
    PreferenceStore& m_preferences;
    Description m_description;
};

} // namespace kestro
