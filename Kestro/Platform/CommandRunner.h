#pragma once

#include <QByteArray>
#include <QStringList>
#include <functional>
#include <optional>

namespace kestro {

struct CommandResult {
    bool started = false; ///< false: there is no such program
    std::optional<int> status; ///< what it exited with; nothing where it did not end by itself in time
    QByteArray output;
    QByteArray errors;
};

/// Runs other programs and waits for none of them. Main thread.
class CommandRunner {
public:
    virtual ~CommandRunner() = default;

    /// Runs the program `words[0]`, found as a shell finds it, with the other words as arguments and `input` on its
    /// standard input, for at most `limit` seconds. `done` is called once, later, unless the runner goes before.
    virtual void run(const QStringList& words, const QByteArray& input, double limit,
        std::function<void(const CommandResult&)> done) = 0;
    /// Whether a program of this name would be found.
    virtual bool exists(const QString& program) const = 0;
};

} // namespace kestro
