#pragma once

#include "Kestro/Platform/MainLoop.h"
#include "KestroCore/Cleanup/DiskCleanup.h"
#include "KestroCore/Support/SerialQueue.h"

#include <QAbstractListModel>
#include <QQmlEngine>
#include <QSet>

namespace kestro {

class PreferenceStore;
class ProcessTable;

/// What may be deleted, what of it the user has checked, and the deletion. A category's row is followed by those of its
/// items. It lives as long as its sheet, and remembers nothing. Main thread.
class CleanupModel final : public QAbstractListModel {
    Q_OBJECT
    QML_ANONYMOUS
    Q_PROPERTY(bool measuring READ isMeasuring NOTIFY changed)
    Q_PROPERTY(bool busy READ isBusy NOTIFY changed)
    Q_PROPERTY(bool canClean READ canClean NOTIFY changed)
    Q_PROPERTY(QString result READ result NOTIFY changed)
    Q_PROPERTY(QString selectedText READ selectedText NOTIFY changed)
    Q_PROPERTY(QString confirmation READ confirmation NOTIFY changed)
    Q_PROPERTY(bool usesTrash READ usesTrash WRITE setUsesTrash NOTIFY changed)
public:
    enum Role { Name = Qt::UserRole, Size, IsCategory, Checked, Enabled };

    struct Ports {
        MainLoop& loop;
        PreferenceStore& preferences;
        ProcessTable& processes;
    };
    /// All must outlive it. `dataHome` is the desktop's folder of the user's data.
    CleanupModel(const Ports& ports, CleanupRoots roots, QByteArray dataHome);
    ~CleanupModel() override;

    Q_INVOKABLE void scan();
    Q_INVOKABLE void clean();
    Q_INVOKABLE void cancel();
    /// Checks the row or takes that back; a category's row stands for all of its items that are not in use.
    Q_INVOKABLE void check(int row, bool checked);

    const std::optional<std::vector<CleanupScan>>& scans() const { return m_scans; }
    bool isMeasuring() const { return !m_scans && m_rows.empty(); }
    bool isBusy() const { return m_busy; }
    bool canClean() const { return !m_busy && !m_selected.isEmpty(); }
    QString result() const { return m_result; }
    qint64 selectedBytes() const;
    QString selectedText() const;
    QString confirmation() const;
    bool usesTrash() const;
    void setUsesTrash(bool on);

    int rowCount(const QModelIndex& parent = {}) const override { return parent.isValid() ? 0 : int(m_rows.size()); }
    QVariant data(const QModelIndex& index, int role) const override;
    QHash<int, QByteArray> roleNames() const override;

Q_SIGNALS:
    void changed();

private:
    struct Row {
        std::size_t scan = 0;
        std::optional<std::size_t> item{}; ///< nothing for the category's own
        bool operator==(const Row&) const = default;
    };
    std::vector<CleanupItem> chosen() const;
    bool isChecked(const Row& row) const;
    void show(std::vector<CleanupScan> scans);
    void finish(const DiskCleanup::Outcome& outcome);

    Ports m_ports;
    CleanupRoots m_roots;
    QByteArray m_dataHome;
    std::optional<std::vector<CleanupScan>> m_scans;
    std::vector<Row> m_rows;
    QSet<QByteArray> m_selected; ///< paths
    bool m_busy = false;
    QString m_result;
    DiskCleanup::Cancel m_cancel = std::make_shared<std::atomic_bool>(false);
    SerialQueue m_queue{ "kestro.cleanup" };
};

} // namespace kestro
