#pragma once

#include "Kestro/Platform/CommandRunner.h"

#include <list>

namespace kestro::test {

class FakeCommands final : public CommandRunner {
public:
    void run(const QStringList& words, const QByteArray& input, double limit,
        std::function<void(const CommandResult&)> done) override
    {
        running.push_back({ words, input, limit, std::move(done) });
    }
    bool exists(const QString& program) const override { return !missing.contains(program); }
    /// Ends the oldest command that still runs.
    void answer(const CommandResult& result)
    {
        const Running first = running.front();
        running.pop_front();
        first.done(result);
    }

    struct Running {
        QStringList words;
        QByteArray input;
        double limit;
        std::function<void(const CommandResult&)> done;
    };
    std::list<Running> running;
    QStringList missing;
};

} // namespace kestro::test
