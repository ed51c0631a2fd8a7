#pragma once

#include "Kestro/Clipboard/ClipRows.h"
#include "Kestro/Widgets/Widget.h"

namespace kestro {

class ClipboardModel;
class ClipboardPicker;
class DesktopWindows;

/// The card of the latest entries; its item opens the picker. Main thread.
class ClipboardWidget final : public Widget {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("belongs to a feature")
    Q_PROPERTY(kestro::ClipRows* rows READ rows CONSTANT)
    Q_PROPERTY(bool pastes READ pastes NOTIFY shownChanged)
public:
    static constexpr qsizetype limit = 3;

    /// All must outlive it.
    ClipboardWidget(ClipboardModel& model, ClipboardPicker& picker, const MainLoop& loop, DesktopWindows& windows);

    ClipRows* rows() { return &m_rows; }
    bool pastes() const;
    Q_INVOKABLE void copyBack(const QString& id);
    Q_INVOKABLE void paste(const QString& id);
    Q_INVOKABLE void togglePin(const QString& id);
    Q_INVOKABLE void showAll();
    /// Removes the newest entry that is not pinned.
    Q_INVOKABLE void forgetLast();

    QString cardView() const override { return QStringLiteral("Clipboard/ClipboardCard"); }
    double bodyHeight(const Look& look) const override;
    bool open() override;
    void shown(bool isShown) override;

Q_SIGNALS:
    void shownChanged();

private:
    void update();

    ClipboardModel& m_model;
    ClipboardPicker& m_picker;
    DesktopWindows& m_windows;
    ClipRows m_rows;
};

/// The latest pin, then the newest of the others.
QList<ClipEntry> latestClips(const QList<ClipEntry>& entries, qsizetype limit);

} // namespace kestro
