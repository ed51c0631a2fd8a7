#include "ApplicationList.h"

#include <QCollator>
#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QSet>
#include <algorithm>
#include <glib.h>
#include <tuple>
#include <vector>

namespace kestro::ApplicationList {
namespace {

QStringList folders()
{
    QStringList found{ QFile::decodeName(g_get_user_data_dir()) };
    for (const char* const* folder = g_get_system_data_dirs(); *folder; ++folder)
        found.append(QFile::decodeName(*folder));
    for (QString& folder : found)
        folder = QDir::cleanPath(folder + QStringLiteral("/applications"));
    found.removeDuplicates();
    return found;
}

// Marks are parts of their own in the decomposed form.
QString withoutAccents(const QString& name)
{
    QString plain = name.normalized(QString::NormalizationForm_KD);
    plain.removeIf([](QChar c) { return c.category() == QChar::Mark_NonSpacing; });
    return plain.toCaseFolded();
}

} // namespace

QStringList entries()
{
    QStringList paths;
    QSet<QString> identifiers;
    for (const QString& folder : folders()) {
        QDirIterator files(folder, { QStringLiteral("*.desktop") }, QDir::Files, QDirIterator::Subdirectories);
        while (files.hasNext()) {
            const QString path = files.next();
            const QString identifier = path.sliced(folder.size() + 1).replace(QLatin1Char('/'), QLatin1Char('-'));
            if (identifiers.contains(identifier))
                continue;
            identifiers.insert(identifier);
            paths.append(path);
        }
    }
    return paths;
}

void sort(QList<Application>& applications)
{
    struct Keyed {
        QCollatorSortKey key;
        Application application;
    };
    const QCollator collator;
    std::vector<Keyed> keyed;
    keyed.reserve(static_cast<std::size_t>(applications.size()));
    for (Application& application : applications)
        keyed.push_back({ collator.sortKey(withoutAccents(application.name)), std::move(application) });
    std::sort(keyed.begin(), keyed.end(), [](const Keyed& a, const Keyed& b) {
        const int order = a.key.compare(b.key);
        return order != 0
            ? order < 0
            : std::tie(a.application.name, a.application.path) < std::tie(b.application.name, b.application.path);
    });
    std::transform(keyed.begin(), keyed.end(), applications.begin(), [](Keyed& k) { return std::move(k.application); });
}

} // namespace kestro::ApplicationList
