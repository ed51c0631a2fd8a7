#include "Platforms/Linux/System/ProcessRunner.h"

#include <QProcess>
#include <QStandardPaths>
#include <QTimer>
#include <csignal>
#include <unistd.h>
#include <utility>

namespace kestro {

namespace {

constexpr qsizetype outputBytes = 65'536;

/// One running command. It deletes itself when it has told its end.
class Run final : public QObject {
public:
    Run(QObject* parent, std::function<void(const CommandResult&)> done)
        : QObject(parent)
        , m_done(std::move(done))
    {
        m_process.setChildProcessModifier([] { ::setsid(); });
        connect(&m_process, &QProcess::readyReadStandardOutput, this,
            [this] { keep(m_result.output, m_process.readAllStandardOutput()); });
        connect(&m_process, &QProcess::readyReadStandardError, this,
            [this] { keep(m_result.errors, m_process.readAllStandardError()); });
        connect(&m_process, &QProcess::finished, this, [this](int code, QProcess::ExitStatus status) {
            m_result.started = true;
            if (status == QProcess::NormalExit && !m_late)
                m_result.status = code;
            finish();
        });
        connect(&m_process, &QProcess::errorOccurred, this, [this](QProcess::ProcessError error) {
            if (error == QProcess::FailedToStart)
                finish();
        });
        m_limit.setSingleShot(true);
        connect(&m_limit, &QTimer::timeout, this, [this] {
            m_late = true;
            kill();
        });
    }
    ~Run() override
    {
        m_process.disconnect(this);
        kill();
    }

    void start(const QStringList& words, const QByteArray& input, double limit)
    {
        constexpr double milliseconds = 1000;
        m_limit.start(static_cast<int>(limit * milliseconds));
        m_process.start(words.first(), words.sliced(1));
        m_process.write(input);
        m_process.closeWriteChannel();
    }

private:
    static void keep(QByteArray& kept, const QByteArray& more)
    {
        kept += more.first(std::min(more.size(), outputBytes - kept.size()));
    }

    void kill()
    {
        if (const qint64 pid = m_process.processId(); pid > 0)
            ::kill(static_cast<pid_t>(-pid), SIGKILL);
    }

    void finish()
    {
        m_limit.stop();
        deleteLater();
        // Later, also where starting fails at once: nothing happens under the caller's hands.
        QMetaObject::invokeMethod(
            parent(), [done = std::exchange(m_done, nullptr), result = m_result] { done(result); },
            Qt::QueuedConnection);
    }

    std::function<void(const CommandResult&)> m_done;
    CommandResult m_result;
    bool m_late = false;
    QTimer m_limit;
    QProcess m_process;
};

} // namespace

ProcessRunner::~ProcessRunner() = default;

void ProcessRunner::run(
    const QStringList& words, const QByteArray& input, double limit, std::function<void(const CommandResult&)> done)
{
    (new Run(this, std::move(done)))->start(words, input, limit);
}

bool ProcessRunner::exists(const QString& program) const { return !QStandardPaths::findExecutable(program).isEmpty(); }

} // namespace kestro
