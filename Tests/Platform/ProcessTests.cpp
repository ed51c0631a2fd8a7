#include "Helpers.h"
#include "KestroCore/Support/SerialQueue.h"
#include "Platforms/Linux/System/EndWatchdog.h"
#include "Platforms/Linux/System/SingleInstance.h"
#include "Platforms/Linux/System/StderrLog.h"
#include "Platforms/Linux/System/Termination.h"

#include <QElapsedTimer>
#include <QSignalSpy>
#include <climits>
#include <csignal>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/wait.h>

namespace kestro {
namespace {

using namespace test;

// A copy of this process that does one thing, its standard error a pipe to us; ended with the object.
class Child {
public:
    explicit Child(const std::function<void()>& main, bool withReader = true)
    {
        int ends[2] = { -1, -1 };
        EXPECT_EQ(::pipe2(ends, O_CLOEXEC), 0);
        m_reader = FileDescriptor(ends[0]);
        const FileDescriptor writer(ends[1]);
        if (!withReader)
            m_reader = FileDescriptor();
        m_pid = ::fork();
        if (m_pid == 0) {
            ::dup2(writer.get(), STDERR_FILENO);
            main();
            ::_exit(0);
        }
    }
    ~Child()
    {
        if (m_pid > 0)
            ::kill(m_pid, SIGKILL);
        exitCode();
    }

    QByteArray read(size_t most = 65536)
    {
        QByteArray bytes(qsizetype(most), '\0');
        return bytes.left(::read(m_reader.get(), bytes.data(), most));
    }
    int exitCode()
    {
        int status = -1;
        if (m_pid > 0)
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
    FileDescriptor m_reader;
    pid_t m_pid = -1;
};

TEST(Termination, IsToldOnceAndNotOfAnIgnoredHangUp)
{
    const auto former = std::signal(SIGHUP, SIG_IGN);
    {
        Termination termination;
        QSignalSpy requested(&termination, &Termination::requested);
        ::raise(SIGHUP);
        settle();
        EXPECT_EQ(requested.size(), 0);
        ::raise(SIGTERM);
        settle();
        ::raise(SIGINT);
        settle();
        EXPECT_EQ(requested.size(), 1);
    }
    EXPECT_EQ(std::signal(SIGHUP, former), SIG_IGN);
    EXPECT_EQ(std::signal(SIGTERM, SIG_DFL), SIG_DFL) << "given back";
}

// A place where nothing ever happens again.
void hang()
{
    while (true)
        ::pause();
}

struct Hanging {
    ~Hanging() { hang(); }
};

TEST(EndWatchdog, EndsTheProcessWhateverHangs)
{
    struct Case {
        const char* what;
        std::function<void()> end;
        std::function<bool()> save;
        int exitCode;
        bool saves; // by the last resort
    };
    const Case cases[] = {
        { "the main thread", [] { ::raise(SIGTERM), hang(); }, [] { return true; }, 0, true },
        { "the main thread, with a full disk", [] { ::raise(SIGTERM), hang(); }, [] { return false; }, 1, true },
        { "saving too", [] { ::raise(SIGHUP), hang(); }, [] { return hang(), true; }, 1, true },
        { "a queue that is joined",
            [] {
                EndWatchdog::arm();
                SerialQueue("test").async(hang);
            },
            [] { return true; }, 0, true },
        { "a queue that is joined after everything was saved",
            [] {
                EndWatchdog::arm();
                EndWatchdog::allSaved();
                SerialQueue("test").async(hang);
            },
            [] { return false; }, 0, false },
        { "a static object",
            [] {
                EndWatchdog::arm();
                static const Hanging late;
                std::exit(3);
            },
            [] { return true; }, 0, true },
    };
    std::vector<std::unique_ptr<Child>> children;
    QElapsedTimer clock;
    clock.start();
    for (const Case& c : cases) {
        children.push_back(std::make_unique<Child>([&] {
            const EndWatchdog watchdog([&c] {
                StderrLog().write(u"saving"_s);
                return c.save();
            });
            const Termination termination;
            c.end();
        }));
    }
    for (size_t i = 0; i < children.size(); ++i) {
        EXPECT_EQ(children[i]->exitCode(), cases[i].exitCode) << cases[i].what;
        EXPECT_EQ(children[i]->read().startsWith("saving\n"), cases[i].saves) << cases[i].what;
    }
    EXPECT_LT(clock.elapsed(), 10'000); // each hangs for ever but for the watchdog
}

class SingleInstanceTest : public testing::Test {
protected:
    const QTemporaryDir m_home;
    RecordingLog m_log;
    QString m_folder = m_home.filePath(u"Library/Caches/com.lumbra.ombrel"_s);

    // A first one in another process, which holds its claim until it is ended.
    std::unique_ptr<Child> otherFirst()
    {
        auto child = std::make_unique<Child>([&] {
            SingleInstance first(m_folder, m_log);
            StderrLog().write(first.claim() ? u"first"_s : u"second"_s);
            while (true)
                ::pause();
        });
        EXPECT_EQ(child->read(), "first\n");
        return child;
    }
};

TEST_F(SingleInstanceTest, TellsTheFirstOfTheSecond)
{
    // Longer than a socket's address may be.
    for (const QString& folder : { m_folder, m_folder + u'/' + QString(150, u'x') }) {
        SingleInstance first(folder, m_log);
        QSignalSpy second(&first, &SingleInstance::secondStart);
        ASSERT_TRUE(first.claim());
        EXPECT_EQ(Child([&] { ::_exit(SingleInstance(folder, m_log).claim() ? 1 : 2); }).exitCode(), 2);
        EXPECT_TRUE(waitFor([&] { return !second.isEmpty(); }));
        settle();
        EXPECT_EQ(second.size(), 1);
        for (const QString& name : { u"/instance.lock"_s, u"/instance.sock"_s }) {
            struct stat info { };
            EXPECT_EQ(::stat(QFile::encodeName(folder + name).constData(), &info), 0);
            EXPECT_EQ(info.st_mode & 07777U, 0600U) << name.toStdString();
        }
    }
    EXPECT_TRUE(SingleInstance(m_folder, m_log).claim()) << "the first has gone";
    EXPECT_TRUE(m_log.lines.isEmpty());
}

TEST_F(SingleInstanceTest, IsNotHeldUpByAStoppedOneAndTakesOverFromAKilledOne)
{
    auto other = otherFirst();
    other->stop();
    QElapsedTimer clock;
    clock.start();
    for (int i = 0; i < 30; ++i) // more than its queue holds
        EXPECT_FALSE(SingleInstance(m_folder, m_log).claim());
    EXPECT_LT(clock.elapsed(), 10'000); // each hangs for ever but for the watchdog
    other.reset();
    ASSERT_TRUE(QFile::exists(m_folder + u"/instance.sock"_s));
    EXPECT_TRUE(SingleInstance(m_folder, m_log).claim());
}

TEST_F(SingleInstanceTest, FindsTheFirstWhereNothingCanBeLocked)
{
    for (const bool lockedBefore : { true, false }) {
        SCOPED_TRACE(lockedBefore);
        m_log.lines.clear();
        auto first = std::make_unique<SingleInstance>(m_folder, m_log);
        QSignalSpy second(first.get(), &SingleInstance::secondStart);
        ASSERT_TRUE(first->claim());
        EXPECT_EQ(m_log.lines.size(), lockedBefore ? 0 : 1);
        // The home folder goes while the first runs.
        QFile::rename(m_home.filePath(u"Library"_s), m_home.filePath(u"Away"_s));
        writeFile(m_home.filePath(u"Library"_s), "a file in the way");
        EXPECT_EQ(Child([&] { ::_exit(SingleInstance(m_folder, m_log).claim() ? 1 : 2); }).exitCode(), 2);
        EXPECT_TRUE(waitFor([&] { return !second.isEmpty(); }));
    }
    EXPECT_TRUE(SingleInstance(m_folder, m_log).claim()) << "the first has gone";
    EXPECT_TRUE(m_log.lines.last().startsWith(u"Kestro: couldn't lock "));
}

TEST(StderrLog, WritesOneCleanLineAPiece)
{
    const std::pair<QString, QByteArray> cases[] = {
        { u"Kestro: a\nb\r\x1B[31m\x7F"_s, "Kestro: a b  [31m \n" },
        { QString(PIPE_BUF - 2, u'x') + u"éé"_s, QByteArray(PIPE_BUF - 2, 'x') + '\n' },
    };
    for (const auto& [line, written] : cases)
        EXPECT_EQ(Child([&] { StderrLog().write(line); }).read(), written);
}

TEST(StderrLog, OutlivesAReaderThatHasGoneOrDoesNotRead)
{
    for (const bool withReader : { false, true }) {
        Child child(
            [] {
                std::signal(SIGPIPE, SIG_DFL);
                StderrLog log;
                for (int i = 0; i < 1000; ++i)
                    log.write(QString(500, u'x'));
                ::_exit(7);
            },
            withReader);
        EXPECT_EQ(child.exitCode(), 7) << withReader;
    }
}

} // namespace
} // namespace kestro
