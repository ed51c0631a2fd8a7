#pragma once

#include "KestroCore/Support/FileDescriptor.h"

#include <QObject>
#include <memory>

class QSocketNotifier;

namespace kestro {

class Log;

/// One process a user: the first holds a lock in `folder`, and a second start only tells it so.
/// The lock goes with the process, however that ends; a socket that a killed one left is no obstacle.
class SingleInstance : public QObject {
    Q_OBJECT
public:
    /// Creates `folder`, for the user alone. `log` outlives this.
    SingleInstance(const QString& folder, Log& log, QObject* parent = nullptr);
    ~SingleInstance() override;

    /// Whether this process is the one to run. If not, the other has been told and this one ends.
    /// Without a folder to lock in, it runs: better twice than never. May wait, two seconds at most, for one that is
    /// just starting or ending.
    bool claim();

Q_SIGNALS:
    void secondStart(); ///< somebody started the program again

private:
    enum class Lock { Taken, Held, Impossible };
    Lock tryLock();
    bool tellFirst() const;
    void listen();
    void drain();

    QByteArray m_folder;
    Log& m_log;
    FileDescriptor m_lock;
    FileDescriptor m_socket;
    std::unique_ptr<QSocketNotifier> m_notifier;
};

} // namespace kestro
