#include "Kestro/Notes/NotesWidget.h"

#include "Kestro/Notes/NotesPreferences.h"
#include "Kestro/Platform/Appearance.h"
#include "Kestro/Widgets/Feature.h"

namespace kestro {

NotesWidget::NotesWidget(FeatureHost& host, NotesModel& notes)
    : Widget(WidgetKind::notes)
    , m_host(host)
    , m_notes(notes)
{
}

void NotesWidget::openWindow() { m_host.openWindow(kind()); }

double NotesWidget::bodyHeight(const Look& look) const { return look.grown(88); }

std::optional<WidgetWindow> NotesWidget::window() const
{
    return WidgetWindow{ title(), QStringLiteral("Notes/NotesWindowView"),
        { .first = { 480, 420 },
            .smallest = { 260, 180 },
            .width = &prefs::notes::width,
            .height = &prefs::notes::height } };
}

std::shared_ptr<void> NotesWidget::windowOpened()
{
    m_notes.load();
    return nullptr;
}

void NotesWidget::shown(bool isShown)
{
    if (isShown)
        m_notes.load();
}

} // namespace kestro
