#include "Platforms/Linux/X11/X11SelectionTypes.h"

#include <QUrl>
#include <array>

namespace kestro::x11::selectionTypes {

namespace {

struct Name {
    const char* type;
    const char* target;
};

// For each type the best target first.
constexpr std::array names{
    Name{ "public.utf8-plain-text", "UTF8_STRING" },
    Name{ "public.utf8-plain-text", "text/plain;charset=utf-8" },
    Name{ "public.utf8-plain-text", "text/plain;charset=UTF-8" },
    Name{ "public.utf8-plain-text", "text/plain" },
    Name{ "public.utf8-plain-text", "STRING" },
    Name{ "public.file-url", "text/uri-list" },
    Name{ "public.file-url", "x-special/gnome-copied-files" },
    Name{ "public.png", "image/png" },
    Name{ "public.tiff", "image/tiff" },
    Name{ "public.jpeg", "image/jpeg" },
    Name{ "public.heic", "image/heic" },
    Name{ "public.html", "text/html" },
    Name{ "public.rtf", "text/rtf" },
    Name{ "public.url", "text/x-moz-url" },
    Name{ "org.nspasteboard.ConcealedType", "x-kde-passwordManagerHint" },
    Name{ "org.nspasteboard.ConcealedType", "application/x-nspasteboard-concealed-type" },
    Name{ "org.nspasteboard.ConcealedType", "Clipboard Viewer Ignore" },
    Name{ "org.nspasteboard.ConcealedType", "ExcludeClipboardContentFromMonitorProcessing" },
    Name{ "org.nspasteboard.TransientType", "application/x-nspasteboard-transient-type" },
};

bool isLatin(const QByteArray& target) { return target == "STRING"; }

QByteArray uriList(const QList<PasteboardItem>& items, const char* separator)
{
    QByteArrayList uris;
    for (const PasteboardItem& item : items) {
        if (const auto uri = item.value(QStringLiteral("public.file-url")); !uri.isEmpty())
            uris.append(uri);
    }
    return uris.join(separator);
}

void addText(QMap<QByteArray, QByteArray>& wire, const QByteArray& utf8)
{
    for (const char* target : { "UTF8_STRING", "text/plain;charset=utf-8", "text/plain" })
        wire.insert(target, utf8);
    // Old programs ask for it alone; what they cannot show becomes a question mark.
    wire.insert("STRING", QString::fromUtf8(utf8).toLatin1());
}

void addFiles(QMap<QByteArray, QByteArray>& wire, const QList<PasteboardItem>& items)
{
    const QByteArray lines = uriList(items, "\n");
    wire.insert("text/uri-list", uriList(items, "\r\n") + "\r\n");
    wire.insert("x-special/gnome-copied-files", "copy\n" + lines);
    QByteArrayList paths;
    for (const QByteArray& uri : lines.split('\n'))
        paths.append(QUrl::fromEncoded(uri).toLocalFile().toUtf8());
    addText(wire, paths.join('\n'));
}

} // namespace

QSet<QString> typesOf(const QByteArrayList& targets)
{
    QSet<QString> types;
    for (const QByteArray& target : targets) {
        bool isKnown = false;
        for (const Name& name : names) {
            if (target == name.target) {
                types.insert(QString::fromLatin1(name.type));
                isKnown = true;
            }
        }
        if (!isKnown)
            types.insert(QString::fromUtf8(target));
    }
    return types;
}

QByteArray targetFor(const QString& type, const QByteArrayList& targets)
{
    for (const Name& name : names) {
        if (type == QLatin1String(name.type) && targets.contains(name.target))
            return name.target;
    }
    const QByteArray own = type.toUtf8();
    return targets.contains(own) ? own : QByteArray();
}

QByteArray fromWire(const QByteArray& target, QByteArray data)
{
    if (isLatin(target))
        return QString::fromLatin1(data).toUtf8();
    if (target == "x-special/gnome-copied-files")
        return data.mid(data.indexOf('\n') + 1); // the first line says whether they are to be moved
    if (target.startsWith("text/") || target == "UTF8_STRING") {
        while (data.endsWith('\0')) // some programs count the end of a C string in
            data.chop(1);
    }
    return data;
}

QMap<QByteArray, QByteArray> toWire(const QList<PasteboardItem>& items)
{
    QMap<QByteArray, QByteArray> wire;
    if (!uriList(items, "").isEmpty())
        addFiles(wire, items);
    for (const PasteboardItem& item : items) {
        for (auto each = item.begin(); each != item.end(); ++each) {
            if (each.key() == u"public.file-url")
                continue;
            if (each.key() == u"public.utf8-plain-text") {
                addText(wire, each.value());
            } else if (each.key() == u"public.url") {
                const QString address = QString::fromUtf8(each.value());
                const QString page = address + u'\n' + address; // the address, then its title
                wire.insert("text/x-moz-url",
                    QByteArray(reinterpret_cast<const char*>(page.utf16()), page.size() * qsizetype(sizeof(char16_t))));
            } else {
                const QByteArray target = [&] {
                    for (const Name& name : names) {
                        if (each.key() == QLatin1String(name.type))
                            return QByteArray(name.target);
                    }
                    return each.key().toUtf8();
                }();
                wire.insert(target, each.value());
            }
        }
    }
    return wire;
}

} // namespace kestro::x11::selectionTypes
