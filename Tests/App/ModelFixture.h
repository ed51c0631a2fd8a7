#pragma once

#include "Kestro/Application/AppModel.h"
#include "Tests/Support/Fakes.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace kestro::test {

/// The model on fake ports, with a home folder of its own and a real socket.
class ModelFixture : public testing::Test {
protected:
    AppModel& start()
    {
        model = std::make_unique<AppModel>(platform.ports(), Folders::under(home.path()));
        model->start();
        platform.loop.turn();
        waitForAgentFiles();
        return *model;
    }
    /// Until what was asked for has been written, and its outcome told.
    void waitForAgentFiles()
    {
        bool written = false;
        model->agents().files().afterwards([&written] { written = true; });
        while (!written)
            ASSERT_TRUE(platform.loop.turnWhenPosted());
    }
    void set(const char* key, const QVariant& value) { platform.preferences.setValue(QString::fromLatin1(key), value); }
    QVariant stored(const char* key) const { return platform.preferences.values.value(QString::fromLatin1(key)); }
    QString socketPath() const
    {
        return home.path() + QStringLiteral("/Library/Application Support/Kestro/agents.sock");
    }
    void write(const char* path, const QByteArray& content) const
    {
        QFile file(home.filePath(QString::fromLatin1(path)));
        QDir().mkpath(QFileInfo(file).path());
        ASSERT_TRUE(file.open(QIODevice::WriteOnly) && file.write(content) == content.size());
    }

    /// Sends a message of the socket and turns the loop until the model has it.
    void sendMessage(const QByteArray& message)
    {
        const int client = ::socket(AF_UNIX, SOCK_STREAM, 0);
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        qstrncpy(address.sun_path, QFile::encodeName(socketPath()).constData(), sizeof address.sun_path);
        ASSERT_EQ(0, ::connect(client, reinterpret_cast<const sockaddr*>(&address), sizeof address));
        ASSERT_EQ(message.size(), ::write(client, message.constData(), std::size_t(message.size())));
        char byte = 0;
        ASSERT_EQ(0, ::read(client, &byte, 1)) << "the socket closes once it has handled the message";
        ::close(client);
        platform.loop.turn();
    }
    /// Sends one hook's message; `more` are further members of its object.
    void send(const char* event, const char* id = "s", const char* cwd = "/home/u/kestro", const char* agent = "claude",
        const char* more = "")
    {
        sendMessage(QByteArray("agent=") + agent + "\n{\"session_id\":\"" + id + "\",\"hook_event_name\":\"" + event
            + "\",\"cwd\":\"" + cwd + "\"" + more + "}");
    }
    void turn(const char* key, bool on)
    {
        model->host().switches.find(QString::fromLatin1(key))->turn(on);
        waitForAgentFiles();
    }
    AgentsModel& agents() const { return *model->agents().agents(); }
    LimitsModel& limits() const { return *model->agents().limits(); }
    std::optional<AgentState> stateOf(const char* id) const { return agents().store().state(QString::fromLatin1(id)); }

    QTemporaryDir home;
    FakePlatform platform;
    std::unique_ptr<AppModel> model;
};

} // namespace kestro::test
