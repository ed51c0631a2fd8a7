#pragma once

#include "Kestro/Clipboard/ClipImages.h"
#include "Kestro/Clipboard/ClipboardModel.h"
#include "Tests/Support/Fakes.h"

#include <QBuffer>
#include <QDir>
#include <QTemporaryDir>
#include <gmock/gmock.h>

namespace kestro::test {

/// The clipboard on fake ports, with a folder of its own.
class ClipboardFixture : public testing::Test {
protected:
    ClipboardFixture()
    {
        desktop.names = { { QStringLiteral("/apps/org.x.Editor.desktop"), QStringLiteral("The Editor") } };
    }

    void turnOn()
    {
        model->setEnabled(true);
        settle();
    }
    /// Runs what the queue has to do, and what comes of it.
    void settle()
    {
        for (int i = 0; i < 3; ++i) {
            model->flush();
            ports.loop.turn();
        }
    }
    /// The same without asking for what waits for its time.
    void turnUntil(const std::function<bool()>& holds)
    {
        while (!holds() && ports.loop.turnWhenPosted()) { }
        EXPECT_TRUE(holds());
    }

    static QByteArray picture(int width, int height, const char* format = "PNG")
    {
        QImage image(width, height, QImage::Format_RGB32);
        image.fill(Qt::red);
        QByteArray bytes;
        QBuffer buffer(&bytes);
        image.save(&buffer, format);
        return bytes;
    }
    QStringList previews() const
    {
        QStringList all;
        for (const ClipEntry& each : model->history().entries())
            all.append(each.preview());
        return all;
    }
    ClipEntry first() const { return model->history().entries().value(0); }
    ClipHistory onDisk() const { return ClipStorage{ dir }.load(); }
    QStringList imageFiles() const { return QDir(dir + u"/images"_qs).entryList(QDir::Files); }

    const QString plain = QStringLiteral("public.utf8-plain-text");
    const QString png = QStringLiteral("public.png");
    QTemporaryDir home;
    QString dir = home.filePath(QStringLiteral("clipboard"));
    FakePlatform ports;
    FakeWorkspace& desktop = ports.workspace;
    FakePasteboard& pasteboard = ports.pasteboard;
    FakeKeyPoster& keys = ports.keyPoster;
    std::optional<ClipboardModel> model{ std::in_place,
        ClipboardModel::Ports{
            ports.loop, ports.preferences, pasteboard, ports.log, ports.workspace, ports.windows, keys, ports.sounds },
        dir };
};

} // namespace kestro::test
