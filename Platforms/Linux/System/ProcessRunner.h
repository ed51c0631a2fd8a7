#pragma once

#include "Kestro/Platform/CommandRunner.h"

#include <QObject>

namespace kestro {

/// Child processes, each a session of its own, so that at its limit it goes with all that it has started. They go with
/// the runner.
class ProcessRunner final : public QObject, public CommandRunner {
    Q_OBJECT
public:
    ~ProcessRunner() override;

    void run(const QStringList& words, const QByteArray& input, double limit,
        std::function<void(const CommandResult&)> done) override;
    bool exists(const QString& program) const override;
};

} // namespace kestro
