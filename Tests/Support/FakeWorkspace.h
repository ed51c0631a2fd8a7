#pragma once

#include "Kestro/Platform/Workspace.h"

#include <QMap>
#include <QStringList>

namespace kestro::test {

class FakeWorkspace final : public Workspace {
public:
    bool fileExists(const QString& path) const override { return names.contains(path); }
    bool isApplication(const QString& path) const override { return names.contains(path); }
    QList<Application> applications() const override
    {
        QList<Application> all;
        for (auto each = names.begin(); each != names.end(); ++each)
            all.append({ each.key(), each.value() });
        return all;
    }
    std::optional<QString> displayName(const QString& path) const override
    {
        namesAsked.append(path);
        const QString name = names.value(path);
        return name.isEmpty() ? std::nullopt : std::optional(name);
    }
    QImage icon(const QString& path, int pixels) const override
    {
        iconsAsked.append(path);
        QImage image(pixels, pixels, QImage::Format_ARGB32_Premultiplied);
        image.fill(Qt::green);
        return image;
    }
    void openApplication(const QString& path, std::function<void(const QString&)> failed) override
    {
        opened.append(path);
        if (!openFailure.isEmpty())
            failed(openFailure);
    }
    bool openUrl(const QUrl& url) override
    {
        opened.append(url.toString());
        return openFailure.isEmpty();
    }
    bool moveToTrash(const QString& path) override
    {
        trashed.append(path);
        return true;
    }
    void refreshRegistry(const QString&) override { }
    std::optional<QString> bundleIdentifier(const QString& path) const override
    {
        return bundles.contains(path) ? std::optional(bundles.value(path)) : std::nullopt;
    }

    QMap<QString, QString> names; ///< path of an application that exists -> its name; empty: it has none
    QMap<QString, QString> bundles; ///< path -> bundle identifier
    QString openFailure; ///< what opening says, where not empty
    QStringList opened, trashed;
    mutable QStringList namesAsked, iconsAsked;
};

} // namespace kestro::test
