#pragma once

#include <QImage>
#include <QList>
#include <QObject>
#include <QPointF>
#include <QString>
#include <functional>

namespace kestro {

/// A row of a menu; one without a title is a separator.
struct MenuEntry {
    QString title{};
    bool enabled = true;
    std::function<void()> action{};
    QString shortcut{}; ///< shown beside the title, as it is

    bool isSeparator() const { return title.isEmpty(); }
};

/// The program's icon in the desktop's panel, with a menu. A desktop without such a panel shows nothing, until one
/// comes. Main thread.
class StatusItem : public QObject {
    Q_OBJECT
public:
    /// Shows the item. `icon` draws it for a square of that many device pixels.
    virtual void show(std::function<QImage(int pixels)> icon, QList<MenuEntry> menu) = 0;
    /// Takes the item away. The functions given to `show` are not called any more.
    virtual void hide() = 0;

Q_SIGNALS:
    /// The user pressed the icon where the panel shows no menu of its own: show ours there, in screen coordinates.
    void menuRequested(QPointF at);
    /// The user pressed it where menus are not the custom: open what is most wanted.
    void activated();
};

} // namespace kestro
