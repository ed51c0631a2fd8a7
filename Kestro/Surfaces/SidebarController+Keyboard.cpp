#include "Kestro/Application/AppModel.h"
#include "Kestro/Platform/Panels.h"
#include "Kestro/Surfaces/SidebarController.h"
#include "Kestro/Surfaces/WindowCommand.h"

#include <QCoreApplication>
#include <QKeyEvent>
#include <algorithm>

namespace kestro {

namespace {

/// Where a key leads, and which way to go on if that is a divider.
struct Step {
    int row;
    int by;
};

std::optional<Step> stepFor(const QKeyEvent& event, int row, int count)
{
    switch (event.key()) {
    case Qt::Key_Up:
    case Qt::Key_Left:
    case Qt::Key_Backtab:
        return Step{ row - 1, -1 };
    case Qt::Key_Down:
    case Qt::Key_Right:
    case Qt::Key_Tab:
        return Step{ row + 1, 1 };
    case Qt::Key_Home:
        return Step{ 0, 1 };
    case Qt::Key_End:
        return Step{ count - 1, -1 };
    default:
        return std::nullopt;
    }
}

} // namespace

/// The row of that widget, else the first; -1 where there is none.
int SidebarController::rowOf(std::optional<WidgetKind> kind) const
{
    if (!m_state.frame() || m_state.frame()->arrangement.items.isEmpty())
        return -1;
    const QList<LaunchItem>& items = m_state.frame()->arrangement.items;
    const auto found =
        std::find_if(items.begin(), items.end(), [&](const LaunchItem& item) { return kind && item.widget() == kind; });
    return found == items.end() ? 0 : int(found - items.begin());
}

void SidebarController::takeKeyboard(std::optional<WidgetKind> kind)
{
    m_hasKeyboard = true;
    m_state.setFocusedRow(rowOf(kind));
    // This answers the key; the card's window takes its time to be made.
    m_strip.drawNow();
    m_platform.panels.takeFocus(m_strip);
}

void SidebarController::releaseKeyboard()
{
    if (!std::exchange(m_hasKeyboard, false))
        return;
    m_state.setFocusedRow(-1);
    m_platform.panels.returnFocus(m_strip);
}

void SidebarController::focusRow(int row)
{
    if (row == m_state.focusedRow())
        return;
    m_state.setFocusedRow(row);
    hoverItem(row); // what the pointer shows, the keyboard shows
}

bool SidebarController::keyPressed(const QKeyEvent& event)
{
    const int count = int(m_state.frame()->arrangement.items.size());
    const int row = m_state.focusedRow();
    if (const auto command = windowCommand(event)) {
        run(*command);
        return true;
    }
    if (event.modifiers() & Qt::ControlModifier)
        return false;
    if (count == 0 || row < 0)
        return false;
    if (auto step = stepFor(event, row, count)) {
        while (step->row >= 0 && step->row < count && m_state.items()->item(step->row).isDivider())
            step->row += step->by;
        if (step->row >= 0 && step->row < count)
            focusRow(step->row);
        return true;
    }
    switch (event.key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
    case Qt::Key_Space:
        openRow(row);
        return true;
    case Qt::Key_Menu:
        openMenuAt(row, dockOnScreen(row).center());
        return true;
    case Qt::Key_F10:
        if (event.modifiers() & Qt::ShiftModifier)
            openMenuAt(row, dockOnScreen(row).center());
        return true;
    default:
        return false;
    }
}

void SidebarController::run(WindowCommand command)
{
    switch (command) {
    case WindowCommand::close:
        closeCard();
        break;
    case WindowCommand::openSettings:
        closeCard();
        m_model.host().openSettings();
        break;
    case WindowCommand::quit:
        QCoreApplication::quit();
        break;
    }
}

void SidebarController::openRow(int row)
{
    const bool staysOpen = m_state.items()->item(row).widget().has_value();
    clickItem(row);
    if (!staysOpen)
        closeCard();
}

} // namespace kestro
