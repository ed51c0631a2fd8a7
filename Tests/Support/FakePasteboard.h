#pragma once

#include "Kestro/Platform/KeyPoster.h"
#include "Kestro/Platform/MainLoop.h"
#include "Kestro/Platform/Pasteboard.h"

#include <list>

namespace kestro::test {

/// A pasteboard whose other programs are the test.
class FakePasteboard final : public Pasteboard {
public:
    void watch(bool on) override { watched = on; }
    void read(
        qint64, const QString& type, qint64 limit, std::function<void(const std::optional<QByteArray>&)> done) override
    {
        asked.append(type);
        if (holdsBack)
            return m_waiting.push_back(std::move(done));
        const auto found = data.constFind(type);
        const bool isThere = found != data.cend() && found->size() <= limit;
        done(isThere ? std::optional(*found) : std::nullopt);
    }
    void write(const QList<PasteboardItem>& items) override { written = items; }
    void handOver() override { written.clear(); }

    /// A program of that class copies; more may have been active shortly before.
    void copy(const QMap<QString, QByteArray>& what, const QStringList& frontmost = {}, const QString& owner = {})
    {
        data = what;
        PasteboardOffer offer;
        offer.changeCount = ++changes;
        offer.types = QSet<QString>(what.keyBegin(), what.keyEnd());
        for (const QString& each : frontmost)
            offer.frontmost.append({ 0, each });
        if (!owner.isEmpty())
            offer.owner = PasteboardProgram{ 0, owner };
        if (watched)
            Q_EMIT changed(offer);
    }
    void copyText(const QByteArray& utf8, const QStringList& frontmost = {})
    {
        copy({ { QStringLiteral("public.utf8-plain-text"), utf8 } }, frontmost);
    }
    /// Answers the oldest question that was held back.
    void answer(const std::optional<QByteArray>& with)
    {
        const auto done = std::move(m_waiting.front());
        m_waiting.pop_front();
        done(with);
    }

    bool watched = false;
    bool holdsBack = false;
    qint64 changes = 0;
    QMap<QString, QByteArray> data;
    QStringList asked;
    QList<PasteboardItem> written;

private:
    std::list<std::function<void(const std::optional<QByteArray>&)>> m_waiting;
};

class FakeKeyPoster final : public KeyPoster {
public:
    bool isTrusted() const override { return trusted; }
    void postPaste(quint32 target) override { posted.append(target); }

    bool trusted = true;
    QList<quint32> posted;
};

} // namespace kestro::test
