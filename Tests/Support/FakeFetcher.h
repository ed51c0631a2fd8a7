#pragma once

#include "Kestro/Platform/Fetcher.h"

#include <QList>
#include <list>
#include <utility>

namespace kestro::test {

class FakeFetcher final : public Fetcher {
public:
    std::unique_ptr<Fetch> get(
        const QUrl& url, double timeoutSeconds, qint64 maxBytes, std::function<void(const FetchResult&)> done) override
    {
        asked.append(url);
        lastTimeout = timeoutSeconds;
        lastMaxBytes = maxBytes;
        return std::make_unique<Handle>(m_waiting.insert(m_waiting.end(), std::move(done)));
    }
    /// Answers the oldest fetch that is still wanted.
    void answer(const FetchResult& result)
    {
        for (auto& each : m_waiting) {
            if (auto done = std::exchange(each, nullptr)) {
                done(result);
                return;
            }
        }
    }

    QList<QUrl> asked;
    double lastTimeout = 0;
    qint64 lastMaxBytes = 0;

private:
    using Callbacks = std::list<std::function<void(const FetchResult&)>>;

    class Handle final : public Fetch {
    public:
        explicit Handle(Callbacks::iterator place)
            : m_place(place)
        {
        }
        ~Handle() override { *m_place = nullptr; }

    private:
        Callbacks::iterator m_place;
    };

    Callbacks m_waiting;
};

} // namespace kestro::test
