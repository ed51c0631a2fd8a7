#pragma once

#include "KestroCore/Support/FileDescriptor.h"

#include <QByteArray>
#include <QHash>
#include <QList>
#include <QObject>
#include <QString>
#include <memory>

class QSocketNotifier;

namespace kestro {

/// Tells when files come, go, are replaced or were written to. It watches their folders, since a replaced file is
/// a new file; what else happens in those folders is kept from the caller.
class FileWatch : public QObject {
    Q_OBJECT
public:
    explicit FileWatch(QObject* parent = nullptr);
    ~FileWatch() override;

    /// Watches these files in place of the former ones. Cheap where nothing is new; where a folder had gone, it tries
    /// again. Returns why a folder cannot be watched, empty when all are.
    QString watch(const QList<QByteArray>& paths);

Q_SIGNALS:
    void touched();

private:
    void drain();
    bool concerns(int watched, quint32 mask, const QByteArray& name);

    FileDescriptor m_inotify;
    std::unique_ptr<QSocketNotifier> m_notifier;
    QList<QByteArray> m_paths; // empty where the watch is not whole
    QHash<int, QList<QByteArray>> m_names; // by watched folder
};

} // namespace kestro
