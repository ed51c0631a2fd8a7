#include "Helpers.h"
#include "Platforms/Linux/System/SingleInstance.h"
#include "Platforms/Linux/System/StderrLog.h"
#include "Platforms/Linux/System/Termination.h"

#include <QElapsedTimer>
#include <QSignalSpy>
#include <array>
#include <climits>
#include <csignal>
#include <fcntl.h>
#include <gmock/gmock.h>
#include <poll.h>
#include <sys/stat.h>
#include <sys/wait.h>

namespace kestro {
namespace {

using namespace test;

struct Pipe {
    Pipe()
    {
        std::array<int, 2> ends{};
        if (::pipe2(ends.data(), O_CLOEXEC) == 0) {
            reader = FileDescriptor(ends[0]);
            writer = FileDescriptor(ends[1]);
        }
    }
    // What has been written, once every writer has gone.
    QByteArray rest()
    {
        writer = FileDescriptor();
        QByteArray all;
        std::array<char, 4096> buffer{};
        ssize_t size = 0;
        while ((size = ::read(reader.get(), buffer.data(), buffer.size())) > 0)
            all.append(buffer.data(), size);
        return all;
    }

    FileDescriptor reader;
    FileDescriptor writer;
};

// A copy of this process that does one thing; ended with the object.
class Child {
public:
    explicit Child(const std::function<int()>& main)
        : m_pid(::fork())
    {
        if (m_pid == 0)
            ::_exit(main());
    }
    ~Child()
    {
        if (m_pid > 0) {
            ::kill(m_pid, SIGKILL);
            exitCode();
        }
    }
    Child(const Child&) = delete;
    Child& operator=(const Child&) = delete;

    int exitCode()
    {
        int status = -1;
        ::waitpid(m_pid, &status, 0);
        m_pid = -1;
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }
    void stop() const
    {
        ::kill(m_pid, SIGSTOP);
        ::waitpid(m_pid, nullptr, WUNTRACED);
    }

private:
    pid_t m_pid;
};

TEST(Termination, TellsEachEndingSignalOnceAndGivesItBack)
{
    struct sigaction before { };
    ::sigaction(SIGTERM, nullptr, &before);
    for (const int signal : { SIGTERM, SIGINT, SIGHUP }) {
        Termination termination;
        QSignalSpy requested(&termination, &Termination::requested);
        ::raise(signal);
        ::raise(SIGTERM);
        EXPECT_EQ(requested.size(), 0);
        EXPECT_TRUE(waitFor([&] { return !requested.isEmpty(); })) << signal;
        settle();
        EXPECT_EQ(requested.size(), 1);
    }
    struct sigaction after { };
    ::sigaction(SIGTERM, nullptr, &after);
    EXPECT_EQ(after.sa_handler, before.sa_handler);
}

TEST(Termination, LeavesAnIgnoredHangUpIgnored)
{
    const auto former = std::signal(SIGHUP, SIG_IGN);
    {
        Termination termination;
        QSignalSpy requested(&termination, &Termination::requested);
        ::raise(SIGHUP);
        settle();
        EXPECT_EQ(requested.size(), 0);
    }
    EXPECT_EQ(std::signal(SIGHUP, former), SIG_IGN);
}

TEST(LastFlush, RunsOnceHoweverTheProcessEnds)
{
    enum class End { Exit, RunThenExit, ExitFromTheWork, Destroyed };
    const struct {
        End end;
        const char* written;
    } cases[] = { { End::Exit, "x" }, { End::RunThenExit, "x" }, { End::ExitFromTheWork, "x" },
        { End::Destroyed, "" } };
    for (const auto& c : cases) {
        Pipe pipe;
        Child child([&] {
            // The handlers from before the fork would wait for threads that only the parent has.
            std::atexit([] { ::_exit(0); });
            {
                LastFlush flush([&] {
                    [[maybe_unused]] const auto written = ::write(pipe.writer.get(), "x", 1);
                    if (c.end == End::ExitFromTheWork)
                        std::exit(0);
                });
                if (c.end == End::RunThenExit || c.end == End::ExitFromTheWork)
                    flush.run();
                if (c.end != End::Destroyed)
                    std::exit(0);
            }
            std::exit(0);
            return 0;
        });
        EXPECT_EQ(pipe.rest(), c.written);
        EXPECT_EQ(child.exitCode(), 0);
    }
}

class SingleInstanceTest : public testing::Test {
protected:
    const QTemporaryDir m_home;
    RecordingLog m_log;
    QString m_folder = m_home.filePath(QStringLiteral("Library/Caches/com.lumbra.ombrel"));

    // A first one in another process, which holds its claim until it is ended.
    std::unique_ptr<Child> otherFirst()
    {
        Pipe pipe;
        auto child = std::make_unique<Child>([&] {
            SingleInstance first(m_folder, m_log);
            [[maybe_unused]] const auto written = ::write(pipe.writer.get(), first.claim() ? "1" : "0", 1);
            while (true)
                ::pause();
            return 0;
        });
        char answer = 0;
        EXPECT_EQ(::read(pipe.reader.get(), &answer, 1), 1);
        EXPECT_EQ(answer, '1');
        return child;
    }
    int claimInAnotherProcess()
    {
        return Child([this] { return SingleInstance(m_folder, m_log).claim() ? 1 : 0; }).exitCode();
    }
};

TEST_F(SingleInstanceTest, TellsTheFirstOfTheSecond)
{
    // Longer than a socket's address may be.
    for (const QString& folder : { m_folder, m_folder + QLatin1Char('/') + QString(150, QLatin1Char('x')) }) {
        m_folder = folder;
        SingleInstance first(m_folder, m_log);
        QSignalSpy second(&first, &SingleInstance::secondStart);
        ASSERT_TRUE(first.claim());
        EXPECT_EQ(claimInAnotherProcess(), 0);
        EXPECT_TRUE(waitFor([&] { return !second.isEmpty(); }));
        settle();
        EXPECT_EQ(second.size(), 1);
        for (const char* const name : { "/instance.lock", "/instance.sock" }) {
            struct stat info { };
            EXPECT_EQ(::stat(QFile::encodeName(m_folder + QLatin1String(name)).constData(), &info), 0);
            EXPECT_EQ(info.st_mode & 07777U, 0600U) << name;
        }
    }
    EXPECT_EQ(claimInAnotherProcess(), 1); // both have gone
    EXPECT_TRUE(m_log.lines.isEmpty());
}

TEST_F(SingleInstanceTest, TakesOverFromAKilledOne)
{
    otherFirst().reset();
    ASSERT_TRUE(QFile::exists(m_folder + QStringLiteral("/instance.sock")));
    EXPECT_TRUE(SingleInstance(m_folder, m_log).claim());
}

TEST_F(SingleInstanceTest, IsNotHeldUpByAStoppedOne)
{
    const auto other = otherFirst();
    other->stop();
    QElapsedTimer clock;
    clock.start();
    for (int i = 0; i < 30; ++i) // more than its queue holds
        EXPECT_FALSE(SingleInstance(m_folder, m_log).claim());
    EXPECT_LT(clock.elapsed(), 2000);
}

TEST_F(SingleInstanceTest, RunsWhereNothingCanBeLocked)
{
    writeFile(m_home.filePath(QStringLiteral("Library")), "a file in the way");
    EXPECT_TRUE(SingleInstance(m_folder, m_log).claim());
    ASSERT_EQ(m_log.lines.size(), 1);
    EXPECT_TRUE(m_log.lines.first().startsWith(QStringLiteral("Kestro: couldn't lock ")));
}

TEST(StderrLog, WritesOneCleanLineAPiece)
{
    const QString longLine = QString(PIPE_BUF - 2, QLatin1Char('x')) + QStringLiteral("\u00e9\u00e9");
    const struct {
        QString line;
        QByteArray written;
    } cases[] = {
        { QStringLiteral("Kestro: caf\u00e9"), "Kestro: caf\xC3\xA9\n" },
        { QStringLiteral("Kestro: a\nb\r\x1B[31m\x7F"), "Kestro: a b  [31m \n" },
        { longLine, QByteArray(PIPE_BUF - 2, 'x') + '\n' },
    };
    for (const auto& c : cases) {
        Pipe pipe;
        Child child([&] {
            ::dup2(pipe.writer.get(), STDERR_FILENO);
            StderrLog().write(c.line);
            return 0;
        });
        EXPECT_EQ(pipe.rest(), c.written);
    }
}

TEST(StderrLog, OutlivesAReaderThatHasGoneOrDoesNotRead)
{
    for (const bool gone : { true, false }) {
        Pipe pipe;
        if (gone)
            pipe.reader = FileDescriptor();
        Child child([&] {
            std::signal(SIGPIPE, SIG_DFL);
            ::dup2(pipe.writer.get(), STDERR_FILENO);
            StderrLog log;
            for (int i = 0; i < 1000; ++i)
                log.write(QString(500, QLatin1Char('x')));
            return 7;
        });
        EXPECT_EQ(child.exitCode(), 7) << gone;
    }
}

} // namespace
} // namespace kestro
