#include "Kestro/Agents/AgentFiles.h"

#include "Kestro/Platform/MainLoop.h"
#include "KestroCore/Agents/HookInstaller.h"
#include "KestroCore/Agents/StatusLineInstaller.h"
#include "KestroCore/Support/StorageError.h"

#include <QPointer>
#include <utility>

namespace kestro {

namespace {

constexpr std::chrono::milliseconds finishLimit(500);

} // namespace

AgentFiles::AgentFiles(MainLoop& loop, QString home)
    : m_loop(loop)
    , m_home(std::move(home))
{
}

void AgentFiles::applyHooks(const std::array<bool, allAgents.size()>& wanted, Done done)
{
    std::vector<Write> writes;
    for (const Agent agent : allAgents) {
        writes.emplace_back([isWanted = wanted.at(std::size_t(agent)), agent, home = m_home] {
            HookInstaller::apply(isWanted, agent, HookInstaller::configURL(agent, home));
        });
    }
    run(std::move(writes), m_latestHooks, std::move(done));
}

void AgentFiles::applyStatusLine(bool wanted, Done done)
{
    run({ [wanted, home = m_home] {
        StatusLineInstaller::apply(
            wanted, HookInstaller::configURL(Agent::claude, home), StatusLineInstaller::supportDir(home));
    } },
        m_latestStatusLine, std::move(done));
}

void AgentFiles::run(std::vector<Write> writes, quint64& latest, Done done)
{
    m_queue.async([&loop = m_loop, files = QPointer(this), writes = std::move(writes), call = ++latest, &latest,
                      done = std::move(done)] {
        QStringList errors;
        for (const Write& write : writes) {
            try {
                write();
            } catch (const StorageError& error) {
                errors.append(error.description());
            }
        }
        loop.post([files, errors, call, &latest, done] {
            if (files && call == latest)
                done(errors);
        });
    });
}

void AgentFiles::afterwards(std::function<void()> done)
{
    m_queue.async([&loop = m_loop, files = QPointer(this), done = std::move(done)] {
        loop.post([files, done] {
            if (files)
                done();
        });
    });
}

void AgentFiles::finish() { m_queue.drainFor(finishLimit); }

} // namespace kestro
