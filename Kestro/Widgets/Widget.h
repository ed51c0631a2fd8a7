#pragma once

#include "Kestro/Preferences/Preference.h"
#include "KestroCore/Layout/WidgetKind.h"

#include <QObject>
#include <QSize>
#include <QtQml/qqmlregistration.h>
#include <memory>
#include <optional>

namespace kestro {

struct Look;

/// The content of a widget's tile beside its symbol.
struct WidgetTile {
    QString badge{}; ///< the state that the badge wears: "working", "needsInput", "done"; empty for no badge
    QString badgeText{}; ///< the badge in words, for screen readers
    double share = -1; ///< how much of the ring is full, 0 to 1; below 0 there is no ring. Live tiles only
    QString figure{}; ///< a short text in place of the symbol; empty for the symbol. Live tiles only

    bool operator==(const WidgetTile&) const = default;
};

/// How large a window opens, in points, where writing has its usual size.
struct WindowSize {
    QSize first;
    QSize smallest;
    const Preference<std::optional<int>>* width = nullptr; ///< under which it is remembered, if it is
    const Preference<std::optional<int>>* height = nullptr;
};

/// The window that shows a widget large.
struct WidgetWindow {
    QString title;
    QString view; ///< folder and name of a view, which is given `widget` and `toolTips`
    WindowSize size;
};

/// One kind of widget as the surfaces and the Settings show it: its card, its tile, its window. Each feature that has a
/// widget derives from it, in its own folder. Main thread.
class Widget : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("belongs to a feature")
    Q_PROPERTY(QString kind READ kindName CONSTANT)
    Q_PROPERTY(QString title READ title CONSTANT)
    Q_PROPERTY(QString symbol READ symbol CONSTANT)
    Q_PROPERTY(QString cardView READ cardView CONSTANT)
    Q_PROPERTY(bool hasWindow READ hasWindow CONSTANT)
public:
    explicit Widget(WidgetKind kind);

    WidgetKind kind() const { return m_kind; }
    QString kindName() const { return rawValue(m_kind); }
    QString title() const;
    QString symbol() const;

    /// Folder and name of the card's view, such as "Timer/TimerCard"; it is given `widget` and `toolTips`.
    virtual QString cardView() const = 0;
    /// The height of the card below its header, in points.
    virtual double bodyHeight(const Look& look) const = 0;
    virtual WidgetTile tile() const { return {}; }

    virtual std::optional<WidgetWindow> window() const { return std::nullopt; }
    bool hasWindow() const { return window().has_value(); }
    /// Opens what the widget has in place of a card and a window; false where it has no such thing.
    virtual bool open() { return false; }
    /// The window opens; what is returned lives as long as it is open.
    virtual std::shared_ptr<void> windowOpened() { return nullptr; }

    /// Its card comes on the screen, or leaves it.
    virtual void shown(bool) { }

Q_SIGNALS:
    /// `tile` tells something else.
    void tileChanged();
    /// `bodyHeight` tells something else.
    void heightChanged();

private:
    WidgetKind m_kind;
};

} // namespace kestro
