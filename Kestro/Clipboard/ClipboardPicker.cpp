#include "Kestro/Clipboard/ClipboardPicker.h"

#include "Kestro/Clipboard/ClipboardModel.h"
#include "Kestro/Platform/DesktopWindows.h"
#include "Kestro/Platform/Panels.h"
#include "Kestro/Platform/Pointer.h"
#include "Kestro/Platform/Screens.h"
#include "Kestro/Style/SurfaceShape.h"
#include "KestroCore/Support/Geometry.h"

#include <QCoreApplication>
#include <QKeyEvent>

namespace kestro {

namespace {

constexpr double focusLimit = 0.5, noteShown = 4; // seconds

/// By what the key writes: a place on another keyboard would be another digit.
KeyCombo comboOf(const QKeyEvent& event)
{
    static const QHash<int, quint32> codes{ { Qt::Key_Up, 126 }, { Qt::Key_Down, 125 }, { Qt::Key_Escape, 53 },
        { Qt::Key_Return, 36 }, { Qt::Key_Enter, 76 }, { Qt::Key_Backspace, 51 }, { Qt::Key_P, 35 }, { Qt::Key_1, 18 },
        { Qt::Key_2, 19 }, { Qt::Key_3, 20 }, { Qt::Key_4, 21 }, { Qt::Key_5, 23 }, { Qt::Key_6, 22 },
        { Qt::Key_7, 26 }, { Qt::Key_8, 28 }, { Qt::Key_9, 25 } };
    constexpr quint32 noKey = 0xFFFF;
    KeyCombo combo{ codes.value(event.key(), noKey), 0 };
    const std::pair<Qt::KeyboardModifier, quint32> modifiers[] = { { Qt::ControlModifier, KeyCombo::command },
        { Qt::AltModifier, KeyCombo::option }, { Qt::MetaModifier, KeyCombo::control },
        { Qt::ShiftModifier, KeyCombo::shift } };
    for (const auto& [held, bit] : modifiers)
        combo.modifiers |= event.modifiers().testFlag(held) ? bit : 0;
    return combo;
}

QUuid idOf(const QString& text) { return QUuid::fromString(text); }

class PickerPanel final : public QQuickWindow {
public:
    explicit PickerPanel(ClipboardPicker& picker)
        : m_picker(picker)
    {
        QSurfaceFormat translucent = requestedFormat();
        translucent.setAlphaBufferSize(8);
        setFormat(translucent);
        setColor(Qt::transparent);
        setTitle(QStringLiteral("Clipboard"));
    }

protected:
    void keyPressEvent(QKeyEvent* event) override
    {
        if (m_picker.handle(*event))
            event->accept();
        else
            QQuickWindow::keyPressEvent(event);
    }
    void focusOutEvent(QFocusEvent* event) override
    {
        QQuickWindow::focusOutEvent(event);
        // Not within the event: the window goes with it.
        QMetaObject::invokeMethod(
            &m_picker, [picker = &m_picker] { picker->close(); }, Qt::QueuedConnection);
    }

private:
    ClipboardPicker& m_picker;
};

} // namespace

ClipboardPicker::ClipboardPicker(ClipboardModel& model, const Ports& ports, Fill fill)
    : m_model(model)
    , m_ports(ports)
    , m_fill(std::move(fill))
    , m_rows(model, ports.loop)
    , m_preview(model, ports.loop)
{
    connect(&m_model, &ClipboardModel::turnedOff, this, &ClipboardPicker::close);
    connect(&m_model, &ClipboardModel::historyChanged, this, [this] {
        if (isOpen())
            search(false);
    });
    connect(&m_model, &ClipboardModel::thumbnailsChanged, &m_rows, &ClipRows::refresh);
    connect(&m_model, &ClipboardModel::undoChanged, this, &ClipboardPicker::noteChanged);
}

ClipboardPicker::~ClipboardPicker() = default;

quint32 ClipboardPicker::frontmost() const
{
    const quint32 active = m_ports.windows.active();
    for (const DesktopWindow& window : m_ports.windows.all()) {
        if (window.id == active && window.pid == QCoreApplication::applicationPid())
            return 0;
    }
    return active;
}

void ClipboardPicker::show()
{
    if (isOpen()) {
        m_panel->raise();
        m_ports.panels.takeFocus(*m_panel);
        return;
    }
    m_target = frontmost();
    m_query.clear();
    m_filter = ClipFilter::all;
    m_note.clear();
    search(true);
    makePanel();
    m_panel->show();
    m_panel->raise();
    m_ports.panels.takeFocus(*m_panel);
    m_focusCheck = m_ports.loop.after(focusLimit, [this] { closeIfUnfocused(); });
}

void ClipboardPicker::makePanel()
{
    const double room = m_ports.panels.isComposited() ? shadowRoom : 0;
    m_panel = std::make_unique<PickerPanel>(*this);
    m_ports.panels.adopt(*m_panel);
    const QList<Screen> screens = m_ports.screens.all();
    if (!screens.isEmpty()) {
        const QPointF pointer = m_ports.pointer.location();
        const auto under = std::find_if(screens.begin(), screens.end(),
            [&](const Screen& each) { return geometry::contains(each.info.frame, pointer); });
        const QRectF free = (under == screens.end() ? screens.first() : *under).visibleFrame;
        const QSizeF wanted = size.boundedTo(free.size());
        const QPointF corner = free.center() - QPointF(wanted.width(), wanted.height()) / 2;
        m_panel->setGeometry(
            m_ports.screens.toWindowSystem(geometry::grown(QRectF(corner, wanted), room)).toAlignedRect());
    }
    m_content = m_fill(
        *m_panel, { { QStringLiteral("picker"), QVariant::fromValue(this) }, { QStringLiteral("shadowRoom"), room } });
    const QRectF painted = geometry::grown(QRectF(QPointF(), QSizeF(m_panel->size())), -room);
    m_ports.panels.setShape(*m_panel, SurfaceShape().region(painted));
}

void ClipboardPicker::closeIfUnfocused()
{
    if (m_panel && !m_panel->isActive())
        close();
}

void ClipboardPicker::close()
{
    if (!m_panel)
        return;
    m_focusCheck.cancel();
    m_ports.panels.returnFocus(*m_panel); // does nothing where the user has gone elsewhere
    m_panel->hide();
    m_target = 0;
    // A view must not go while one of its own handlers runs.
    m_ports.loop.post([panel = std::shared_ptr<QQuickWindow>(std::move(m_panel)),
                          content = std::exchange(m_content, nullptr)]() mutable {
        content.reset();
        panel.reset();
    });
    m_preview.show(nullptr);
    m_rows.show({});
}

bool ClipboardPicker::handle(const QKeyEvent& event)
{
    if (!m_panel)
        return false;
    if (event.key() == Qt::Key_Z && event.modifiers() == Qt::ControlModifier && !undoText().isEmpty()) {
        undo();
        return true;
    }
    const auto action = PickerKeys::action(comboOf(event), m_rows.ids(), m_selection, m_query.isEmpty());
    if (!action)
        return false;
    // A key that is held cannot wipe the list.
    const bool isHeldDelete = std::holds_alternative<picker::Delete>(*action) && event.isAutoRepeat();
    if (!isHeldDelete)
        perform(*action, event.modifiers().testFlag(Qt::ShiftModifier));
    return true;
}

void ClipboardPicker::perform(const PickerAction& action, bool plain)
{
    if (const auto* select = std::get_if<picker::Select>(&action)) {
        setSelection(select->id);
    } else if (const auto* pick = std::get_if<picker::Pick>(&action)) {
        pickEntry(pick->id, true, plain);
    } else if (const auto* copy = std::get_if<picker::CopyOnly>(&action)) {
        pickEntry(copy->id, false, plain);
    } else if (const auto* pin = std::get_if<picker::TogglePin>(&action)) {
        const ClipEntry* entry = m_model.history().entry(pin->id);
        if (entry && !m_model.togglePin(ClipEntry(*entry)))
            tell(QStringLiteral("%1 entries are pinned already").arg(ClipHistory::maxPinned));
    } else if (const auto* gone = std::get_if<picker::Delete>(&action)) {
        m_selection = gone->next;
        m_model.remove(gone->id);
    } else {
        close();
    }
}

void ClipboardPicker::pickEntry(const QUuid& id, bool paste, bool plain)
{
    const ClipEntry* entry = m_model.history().entry(id);
    if (!entry)
        return;
    if (!m_model.copyBack(*entry, plain)) {
        m_model.beep();
        return tell(QStringLiteral("There is nothing left of it to copy"));
    }
    const quint32 target = m_target;
    close();
    if (paste)
        m_model.paste(target);
}

void ClipboardPicker::search(bool selectsFirst) { show(m_model.history().search(m_query, m_filter), selectsFirst); }

void ClipboardPicker::show(const QList<ClipEntry>& result, bool selectsFirst)
{
    m_rows.show(result);
    const auto& found = m_rows.entries();
    const bool isThere = m_selection
        && std::any_of(found.begin(), found.end(), [&](const ClipEntry& each) { return each.id == *m_selection; });
    if (selectsFirst || !isThere)
        setSelection(found.isEmpty() ? std::nullopt : std::optional(found.first().id));
    else
        setSelection(m_selection);
    Q_EMIT searched();
}

void ClipboardPicker::setQuery(const QString& query)
{
    if (query == m_query)
        return;
    // A longer query finds nothing that the shorter one did not.
    const bool isLonger = isOpen() && query.startsWith(m_query);
    m_query = query;
    if (isLonger)
        show(ClipHistory::search(QList(m_rows.entries()), m_query, m_filter), true);
    else
        search(true);
}

void ClipboardPicker::setFilter(const QString& filter)
{
    m_filter = fromRaw<ClipFilter>(filter).value_or(ClipFilter::all);
    search(true);
}

QStringList ClipboardPicker::filters() const
{
    QStringList names;
    for (const ClipFilter each : allCases<ClipFilter>())
        names.append(rawValue(each));
    return names;
}

void ClipboardPicker::setSelection(const std::optional<QUuid>& id)
{
    m_selection = id;
    m_preview.show(id ? m_model.history().entry(*id) : nullptr);
    Q_EMIT selectionChanged();
}

int ClipboardPicker::selectedRow() const { return m_selection ? int(m_rows.ids().indexOf(*m_selection)) : -1; }

QString ClipboardPicker::emptyText() const
{
    if (m_rows.count() > 0)
        return {};
    return m_model.history().entries().isEmpty() ? QStringLiteral("Nothing copied yet") : QStringLiteral("No matches");
}

QString ClipboardPicker::nothingSelected() const
{
    return m_model.history().entries().isEmpty() ? QStringLiteral("Nothing copied yet")
                                                 : QStringLiteral("Nothing selected");
}

QString ClipboardPicker::hints() const
{
    const QString first = m_model.pastesAfterPicking() ? QStringLiteral("↩ paste") : QStringLiteral("↩ copy");
    const QString missing = m_model.pastesAfterPicking() && !m_model.canPaste()
        ? QStringLiteral("   Paste needs a window manager and XTEST")
        : QString();
    return first + QStringLiteral(" · Alt+↩ copy only · Ctrl+1–9 pick · Ctrl+P pin · ⌫ delete · Esc close") + missing;
}

void ClipboardPicker::tell(const QString& note)
{
    m_note = note;
    m_noteWork.cancel();
    if (!note.isEmpty())
        m_noteWork = m_ports.loop.after(noteShown, [this] { tell({}); });
    Q_EMIT noteChanged();
}

QString ClipboardPicker::undoText() const { return m_model.undoText(); }

void ClipboardPicker::undo() { m_model.undo(); }

void ClipboardPicker::select(const QString& id) { perform(picker::Select{ idOf(id) }); }
void ClipboardPicker::pick(const QString& id) { perform(picker::Pick{ idOf(id) }); }
void ClipboardPicker::copyOnly(const QString& id) { perform(picker::CopyOnly{ idOf(id) }); }
void ClipboardPicker::togglePin(const QString& id) { perform(picker::TogglePin{ idOf(id) }); }
void ClipboardPicker::remove(const QString& id)
{
    perform(picker::Delete{ idOf(id), PickerKeys::next(idOf(id), m_rows.ids()) });
}

} // namespace kestro
