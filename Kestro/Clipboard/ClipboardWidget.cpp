#include "Kestro/Clipboard/ClipboardWidget.h"

#include "Kestro/Clipboard/ClipboardModel.h"
#include "Kestro/Clipboard/ClipboardPicker.h"
#include "Kestro/Platform/Appearance.h"
#include "Kestro/Platform/DesktopWindows.h"

#include <algorithm>

namespace kestro {

QList<ClipEntry> latestClips(const QList<ClipEntry>& entries, qsizetype limit)
{
    QList<ClipEntry> latest;
    for (const ClipEntry& each : entries) {
        if (latest.size() < limit && (!each.pinned || latest.isEmpty()))
            latest.append(each);
    }
    return latest;
}

ClipboardWidget::ClipboardWidget(
    ClipboardModel& model, ClipboardPicker& picker, const MainLoop& loop, DesktopWindows& windows)
    : Widget(WidgetKind::clipboard)
    , m_model(model)
    , m_picker(picker)
    , m_windows(windows)
    , m_rows(model, loop)
{
    connect(&m_model, &ClipboardModel::historyChanged, this, &ClipboardWidget::update);
    connect(&m_model, &ClipboardModel::thumbnailsChanged, &m_rows, &ClipRows::refresh);
    connect(&m_model, &ClipboardModel::copiedIdChanged, &m_rows, &ClipRows::refresh);
}

void ClipboardWidget::update()
{
    const int before = m_rows.count();
    m_rows.show(latestClips(m_model.history().entries(), limit));
    if (m_rows.count() != before)
        Q_EMIT heightChanged();
}

void ClipboardWidget::shown(bool isShown)
{
    if (!isShown)
        return;
    m_rows.refresh(); // their ages
    Q_EMIT shownChanged();
}

double ClipboardWidget::bodyHeight(const Look& look) const
{
    return look.grown(32) * std::max(1, m_rows.count()) + look.grown(38);
}

bool ClipboardWidget::open()
{
    m_picker.show();
    return true;
}

void ClipboardWidget::showAll() { m_picker.show(); }

bool ClipboardWidget::pastes() const { return m_model.pastesAfterPicking(); }

void ClipboardWidget::copyBack(const QString& id)
{
    if (const ClipEntry* entry = m_model.history().entry(QUuid::fromString(id)))
        m_model.copyBack(*entry);
}

void ClipboardWidget::paste(const QString& id)
{
    const ClipEntry* entry = m_model.history().entry(QUuid::fromString(id));
    if (entry && m_model.copyBack(*entry))
        m_model.paste(m_windows.active());
}

void ClipboardWidget::forgetLast() { m_model.forgetLast(); }

void ClipboardWidget::togglePin(const QString& id)
{
    if (const ClipEntry* entry = m_model.history().entry(QUuid::fromString(id)))
        m_model.togglePin(ClipEntry(*entry));
}

} // namespace kestro
