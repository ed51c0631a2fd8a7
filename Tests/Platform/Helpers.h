#pragma once

#include "Tests/Support/Fakes.h"

#include <QFile>
#include <QTemporaryDir>
#include <QTest>
#include <gmock/gmock.h>
#include <ostream>

namespace kestro::test {

using namespace Qt::StringLiterals;

/// Runs the loop until `condition` holds; false after five seconds.
template <typename Condition> bool waitFor(Condition condition) { return QTest::qWaitFor(condition, 5000); }

/// Runs what is queued, and what that queues: for showing that nothing more comes.
inline void settle()
{
    for (int i = 0; i < 5; ++i)
        QCoreApplication::processEvents();
}

inline QByteArray contentOf(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

/// Writes in place, as a shell's ">" does.
inline void writeFile(const QString& path, const QByteArray& content)
{
    QFile file(path);
    if (file.open(QIODevice::WriteOnly | QIODevice::Truncate))
        file.write(content);
}

} // namespace kestro::test

/// For readable failures.
inline void PrintTo(const QString& text, std::ostream* out) { *out << '"' << text.toStdString() << '"'; }
