#pragma once

#include "KestroCore/Support/FileDescriptor.h"

#include <QObject>
#include <memory>

class QSocketNotifier;

namespace kestro {

class Log;

/// One process a user: the first holds a lock in `folder`, and a second start only tells it so.
/// The lock goes with the process, however that ends; a socket that a killed one left is no obstacle.
///
/// Where nothing can be locked (a home folder that is read-only or has gone), the first is known by an abstract socket.
/// It always has one, but the lock comes first: anyone on the computer can take such a name.
class SingleInstance : public QObject {
    Q_OBJECT
public:
    /// Creates `folder`, for the user alone. `log` outlives this.
    SingleInstance(const QString& folder, Log& log, QObject* parent = nullptr);
    ~SingleInstance() override;

    /// Whether this process is to run. If not, the running one has been told and this process ends.
    /// With neither a lock nor the abstract name, it runs and says so: better twice than never. May wait, two seconds
    /// at most, for a process that is just starting or ending.
    bool claim();

Q_SIGNALS:
    void secondStart(); ///< the program was started again

private:
    enum class Lock { taken, held, impossible };
    Lock tryLock();
    bool tellFirst() const;
    bool tellByName() const;
    bool holdName();
    void listen();
    void drain();
    void acceptSecond();

    QByteArray m_folder;
    Log& m_log;
    FileDescriptor m_lock;
    FileDescriptor m_socket;
    std::unique_ptr<QSocketNotifier> m_notifier;
    FileDescriptor m_name;
    std::unique_ptr<QSocketNotifier> m_nameNotifier;
};

} // namespace kestro
