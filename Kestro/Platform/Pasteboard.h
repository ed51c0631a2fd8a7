#pragma once

#include <QByteArray>
#include <QList>
#include <QMap>
#include <QObject>
#include <QSet>
#include <QString>
#include <functional>
#include <optional>

namespace kestro {

/// A program as its window names it.
struct PasteboardProgram {
    qint64 pid = 0; ///< 0 where it is not known
    QString windowClass; ///< by which its desktop entry is found

    bool operator==(const PasteboardProgram&) const = default;
};

/// What a copy offers, as far as that is known without reading any of it. Types have the system's names
/// ("public.png"); what has none keeps the platform's own.
struct PasteboardOffer {
    qint64 changeCount = 0;
    QSet<QString> types;
    std::optional<PasteboardProgram> owner; ///< who made it; nothing where the platform cannot tell
    QList<PasteboardProgram> frontmost; ///< had the user's focus within the last half second, the present one last
};

/// One of the things that stand on the pasteboard together: its data by type.
using PasteboardItem = QMap<QString, QByteArray>;

/// What programs copy and paste through. Main thread, which it never holds up: whatever is asked of another program is
/// answered later, or not at all.
class Pasteboard : public QObject {
    Q_OBJECT
public:
    /// Whether `changed` is told. What stands there when it begins is not told. While nothing is copied, nothing
    /// wakes.
    virtual void watch(bool on) = 0;

    /// The data of one type of the offer `changeCount`, in UTF-8 where it is text and as text/uri-list where it is a
    /// list of files. `done` gets nothing when the pasteboard has changed before its owner answered, the owner did not
    /// answer within seconds, or there are more than `limit` bytes.
    virtual void read(qint64 changeCount, const QString& type, qint64 limit,
        std::function<void(const std::optional<QByteArray>&)> done) = 0;

    /// Takes the pasteboard. `items` stay available, also to programs that ask late, until another program copies.
    virtual void write(const QList<PasteboardItem>& items) = 0;

    /// The process is about to end: hands the items to a clipboard manager where there is one, for a limited time.
    /// Nothing else may be called afterwards.
    virtual void handOver() = 0;

Q_SIGNALS:
    /// A program has copied something. Not told of what `write` puts there.
    void changed(const kestro::PasteboardOffer& offer);
};

} // namespace kestro
