#pragma once

#include "Kestro/Layout/FaviconCache.h"
#include "Kestro/Platform/MainLoop.h"
#include "KestroCore/Layout/LauncherStore.h"

#include <QHash>
#include <QObject>
#include <QSet>

namespace kestro {

class PreferenceStore;
class Workspace;

/// The layout with what the platform adds to it: it is kept in the preferences, its things open, they have icons.
/// Main thread. Every change that is made through it is saved at once.
class LauncherModel : public QObject {
    Q_OBJECT
    Q_PROPERTY(QString notice READ notice NOTIFY noticeChanged)
public:
    /// Loads the layout. Bytes that are none are set aside under a key of their own. `faviconFolder` need not exist.
    LauncherModel(MainLoop& loop, PreferenceStore& preferences, Workspace& workspace, Fetcher& fetcher, Log& log,
        const QString& faviconFolder);

    const LauncherStore& store() const { return m_store; }
    const QHash<QString, QImage>& favicons() const { return m_favicons; } ///< by host
    QString notice() const { return m_notice; } ///< shown for two seconds, then empty

    /// At `index`, or at the end. A message for the user when it cannot be.
    std::optional<QString> add(const LaunchItem& item, std::optional<qsizetype> index = std::nullopt);
    /// Right behind the item `after`, or at the end if that is gone. A message for the user when it cannot be.
    std::optional<QString> addDivider(const QUuid& after);
    /// A drop, all or nothing. False when the layout refused it.
    bool insert(const QList<LaunchItem>& items, qsizetype position, const QList<QUuid>& among);
    void move(const QUuid& id, qsizetype to, const QList<QUuid>& among);
    void moveBy(const QUuid& id, qsizetype by, const QList<QUuid>& among);
    void remove(const QUuid& id);
    /// Before the item that stands at `to`, in the layout's own order.
    void moveTo(const QUuid& id, qsizetype to);
    void setShortcut(const std::optional<KeyCombo>& combo, const QUuid& id);

    /// Once in the life of the preferences: gives a layout without widgets those of the `enabled` features.
    void migrate(const std::set<WidgetKind>& enabled);

    /// Opens an application or link; widgets and dividers do nothing here.
    void open(const LaunchItem& item);
    /// The name that the user knows: an application's in their language, where the desktop knows it.
    QString displayName(const LaunchItem& item) const;
    /// Null while there is none: show the kind's symbol. A link's comes later, with `faviconsChanged`, if at all.
    /// `pixels` is the side that an application's will be drawn at: what comes is about that large, or larger.
    QImage icon(const LaunchItem& item, int pixels = 128);

    void showNotice(const QString& text);
    void save();

Q_SIGNALS:
    void storeChanged();
    /// An item's icon or name is another: a link's icon has come, or the desktop's own have changed.
    void faviconsChanged();
    void noticeChanged();

private:
    void load();
    /// Takes over a layout that another program wrote.
    void followFile(const QStringList& keys);
    /// Runs `change` on the store; if that made a difference, saves and tells.
    template <class Change> void edit(Change change);
    void replaceStore(LauncherStore store);
    void forgetApps();
    QString message(LauncherError error, const LaunchItem& item) const;
    void requestFavicon(const QString& host);

    struct AppIcon {
        QImage image;
        int pixels = 0; ///< what was asked for
    };

    MainLoop& m_loop;
    PreferenceStore& m_preferences;
    Workspace& m_workspace;
    Log& m_log;
    FaviconCache m_faviconCache;
    LauncherStore m_store;
    QHash<QString, QImage> m_favicons;
    QSet<QString> m_faviconsRequested;
    mutable QHash<QString, QString> m_appNames; ///< by path; empty where the desktop knows none
    QHash<QString, AppIcon> m_appIcons; ///< by path
    QString m_notice;
    WorkItem m_noticeEnd;
};

} // namespace kestro
