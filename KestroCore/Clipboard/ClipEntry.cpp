#include "KestroCore/Clipboard/ClipEntry.h"

#include "KestroCore/Layout/PathParts.h"

#include <algorithm>

namespace kestro {

namespace {

constexpr qsizetype previewCharacters = 200;

QStringList names(const QStringList& paths)
{
    QStringList result;
    for (const QString& path : paths)
        result.append(pathParts::lastComponent(path));
    return result;
}

QString previewOf(QStringView text)
{
    const auto start = std::find_if_not(text.begin(), text.end(), [](QChar c) { return c.isSpace(); });
    const QStringView head = ClipText::firstCharacters(text.sliced(start - text.begin()), previewCharacters);
    QString line;
    for (qsizetype from = 0, at = 0; at <= head.size(); ++at) {
        if (at < head.size() && !ClipText::isLineBreak(head[at]))
            continue;
        if (at > from)
            line.append(line.isEmpty() ? QString() : QStringLiteral(" ")).append(head.sliced(from, at - from));
        from = at + 1;
    }
    const auto isBlank = [](QChar c) { return c == u'\t' || c.category() == QChar::Separator_Space; };
    while (!line.isEmpty() && isBlank(line.back()))
        line.chop(1);
    return line.sliced(std::find_if_not(line.begin(), line.end(), isBlank) - line.begin());
}

} // namespace

bool operator==(const ClipEntry::Text& a, const ClipEntry::Text& b) { return ClipText::areEquivalent(a.text, b.text); }
bool operator==(const ClipEntry::Link& a, const ClipEntry::Link& b) { return a.url == b.url; }
bool operator==(const ClipEntry::Image& a, const ClipEntry::Image& b)
{
    return a.fileName == b.fileName && a.width == b.width && a.height == b.height;
}
bool operator==(const ClipEntry::Files& a, const ClipEntry::Files& b) { return a.paths == b.paths; }

std::optional<QString> ClipEntry::imageFileName() const
{
    const auto* image = std::get_if<Image>(&kind);
    return image ? std::optional(image->fileName) : std::nullopt;
}

QString ClipEntry::preview() const
{
    if (const auto* text = std::get_if<Text>(&kind))
        return previewOf(text->text);
    if (const auto* link = std::get_if<Link>(&kind))
        return link->url;
    if (const auto* image = std::get_if<Image>(&kind))
        return QStringLiteral("Image %1 × %2").arg(image->width).arg(image->height);
    return names(std::get<Files>(kind).paths).join(QStringLiteral(", "));
}

std::optional<ClipText::Stats> ClipEntry::textStats() const
{
    const auto* text = std::get_if<Text>(&kind);
    return text ? std::optional(ClipText::stats(text->text)) : std::nullopt;
}

QString ClipEntry::searchText() const
{
    QString result;
    if (const auto* text = std::get_if<Text>(&kind))
        result = text->text;
    else if (const auto* link = std::get_if<Link>(&kind))
        result = link->url;
    else if (const auto* files = std::get_if<Files>(&kind))
        result = names(files->paths).join(u'\n');
    if (sourceName)
        result.append(u'\n').append(*sourceName);
    return result;
}

bool matches(ClipFilter filter, const ClipEntry::Kind& kind)
{
    switch (filter) {
    case ClipFilter::all:
        return true;
    case ClipFilter::text:
        return std::holds_alternative<ClipEntry::Text>(kind);
    case ClipFilter::links:
        return std::holds_alternative<ClipEntry::Link>(kind);
    case ClipFilter::images:
        return std::holds_alternative<ClipEntry::Image>(kind);
    case ClipFilter::files:
        return std::holds_alternative<ClipEntry::Files>(kind);
    }
    return false;
}

} // namespace kestro
