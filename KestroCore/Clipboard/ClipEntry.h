#pragma once

#include "KestroCore/Clipboard/ClipText.h"
#include "KestroCore/Support/Date.h"
#include "KestroCore/Support/RawString.h"

#include <QString>
#include <QStringList>
#include <QUuid>
#include <optional>
#include <variant>

namespace kestro {

/// One copy that the history keeps.
struct ClipEntry {
    struct Text {
        QString text;
    };
    /// A web address, as it was written.
    struct Link {
        QString url;
    };
    /// A file in the storage's folder of images; the size is in pixels.
    struct Image {
        QString fileName;
        int width = 0;
        int height = 0;
    };
    struct Files {
        QStringList paths;
    };
    using Kind = std::variant<Text, Link, Image, Files>;

    QUuid id; ///< stays when the same thing is copied again
    Date date; ///< of the latest copy
    Kind kind;
    std::optional<QString> sourceBundleID{}; ///< identifier of the application that it came from
    std::optional<QString> sourceName{}; ///< what the user calls that application
    bool pinned = false;

    bool operator==(const ClipEntry&) const = default;

    std::optional<QString> imageFileName() const;
    /// One line for a row.
    QString preview() const;
    /// Nothing unless it is a text.
    std::optional<ClipText::Stats> textStats() const;
    /// What a search looks through.
    QString searchText() const;
};

/// Text by what is read, files in their order.
bool operator==(const ClipEntry::Text& a, const ClipEntry::Text& b);
bool operator==(const ClipEntry::Link& a, const ClipEntry::Link& b);
bool operator==(const ClipEntry::Image& a, const ClipEntry::Image& b);
bool operator==(const ClipEntry::Files& a, const ClipEntry::Files& b);

enum class ClipFilter { all, text, links, images, files };

template <> struct RawStrings<ClipFilter> {
    static constexpr std::array<QLatin1StringView, 5> values{
        QLatin1StringView("All"),
        QLatin1StringView("Text"),
        QLatin1StringView("Links"),
        QLatin1StringView("Images"),
        QLatin1StringView("Files"),
    };
};

bool matches(ClipFilter filter, const ClipEntry::Kind& kind);

} // namespace kestro
