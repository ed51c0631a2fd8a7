#include "Platforms/Linux/System/AutostartEntry.h"

#include "FileWatch.h"
#include "GioPointer.h"
#include "KestroCore/Support/AtomicFile.h"
#include "KestroCore/Support/PosixError.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QMetaMethod>
#include <cerrno>
#include <unistd.h>
#include <utility>

namespace kestro {
namespace {

constexpr const char* switchKey = "X-GNOME-Autostart-enabled";

// One word of a command line, in quotes; a percent sign would begin a placeholder.
QByteArray commandWord(const QString& path)
{
    QByteArray word = "\"";
    for (const char c : QFile::encodeName(path)) {
        if (c == '%')
            word += c;
        else if (c == '"' || c == '`' || c == '$' || c == '\\')
            word += '\\';
        word += c;
    }
    return word + '"';
}

QByteArray entryFor(const QString& program)
{
    const GioPointer<GKeyFile> entry(g_key_file_new());
    const auto set = [&](const char* key, const char* value) {
        g_key_file_set_string(entry.get(), G_KEY_FILE_DESKTOP_GROUP, key, value);
    };
    set("Type", "Application");
    set("Name", "Kestro");
    set("Comment", "A dock on the edge of your screen");
    set("Exec", commandWord(program).constData());
    set("Icon", "kestro");
    g_key_file_set_boolean(entry.get(), G_KEY_FILE_DESKTOP_GROUP, "Terminal", false);
    g_key_file_set_boolean(entry.get(), G_KEY_FILE_DESKTOP_GROUP, switchKey, true);
    return QByteArray(GioText(g_key_file_to_data(entry.get(), nullptr, nullptr)).get());
}

QString folderOf(const QString& path) { return QFileInfo(path).path(); }

} // namespace

AutostartEntry::AutostartEntry(const QString& home, const QString& configuration, QString program)
    : m_path(QDir::cleanPath((QDir::isAbsolutePath(configuration) ? configuration : home + QStringLiteral("/.config"))
        + QStringLiteral("/autostart/kestro.desktop")))
    , m_program(std::move(program))
{
}

AutostartEntry::~AutostartEntry() = default;

bool AutostartEntry::isEnabled() const
{
    const QFileInfo file(m_path);
    constexpr qint64 largestEntry = 1 << 20; // bytes; what is larger is no desktop entry
    if (!file.isFile() || file.size() > largestEntry)
        return false;
    const GioPointer<GKeyFile> entry(g_key_file_new());
    if (!g_key_file_load_from_file(entry.get(), QFile::encodeName(m_path).constData(), G_KEY_FILE_NONE, nullptr))
        return false;
    const auto truth = [&](const char* key, bool otherwise) {
        GioError error;
        const bool value = g_key_file_get_boolean(entry.get(), G_KEY_FILE_DESKTOP_GROUP, key, error.out());
        return error.message().isNull() ? value : otherwise;
    };
    return g_key_file_has_group(entry.get(), G_KEY_FILE_DESKTOP_GROUP) && !truth("Hidden", false)
        && truth(switchKey, true);
}

std::optional<QString> AutostartEntry::setEnabled(bool enabled)
{
    const QByteArray path = QFile::encodeName(m_path);
    try {
        if (enabled) {
            AtomicFile::createFolder(QFile::encodeName(folderOf(m_path)));
            AtomicFile::replace(path, entryFor(m_program), std::nullopt);
        } else if (::unlink(path.constData()) != 0 && errno != ENOENT && errno != ENOTDIR) {
            throw PosixError::saving(path, errno);
        }
    } catch (const StorageError& error) {
        return error.description();
    }
    look();
    return std::nullopt;
}

void AutostartEntry::connectNotify(const QMetaMethod& signal)
{
    if (m_watch || signal != QMetaMethod::fromSignal(&LoginItem::changed))
        return;
    m_watch = std::make_unique<FileWatch>();
    connect(m_watch.get(), &FileWatch::touched, this, [this] {
        watchFolders();
        look();
    });
    watchFolders();
    m_told = isEnabled();
}

void AutostartEntry::disconnectNotify(const QMetaMethod&)
{
    // Later: a listener that is being destroyed still counts, and the watch may be telling right now.
    QMetaObject::invokeMethod(
        this,
        [this] {
            if (!isSignalConnected(QMetaMethod::fromSignal(&LoginItem::changed)))
                m_watch.reset();
        },
        Qt::QueuedConnection);
}

// A missing folder is watched for in its parent. The upper ones first, or a folder that comes meanwhile is
// missed; and it may have been filled before it was watched, so look at the file afterwards.
void AutostartEntry::watchFolders()
{
    QString path = m_path;
    QList<QByteArray> paths{ QFile::encodeName(path) };
    while (!QFileInfo::exists(folderOf(path)) && path != folderOf(path)) {
        path = folderOf(path);
        paths.prepend(QFile::encodeName(path));
    }
    m_watch->watch(paths);
}

void AutostartEntry::look()
{
    const bool enabled = isEnabled();
    if (m_watch && std::exchange(m_told, enabled) != enabled)
        Q_EMIT changed();
}

} // namespace kestro
