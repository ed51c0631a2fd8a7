#include "Kestro/Application/AppModel.h"
#include "Kestro/Platform/Panels.h"
#include "Kestro/Surfaces/SidebarController.h"
#include "Kestro/Surfaces/WindowCommand.h"

#include <QCoreApplication>
#include <QKeyEvent>
#include <algorithm>

namespace kestro {

namespace {

/// The row that a key leads to, and the direction in which to go on from a divider.
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

/// The row of the card's widget, else the first; -1 in an empty dock.
int SidebarController::rowOfShownWidget() const
{
    if (!m_state.frame() || m_state.frame()->arrangement.items.isEmpty())
        return -1;
    const auto kind = m_model.shownWidget();
    return kind ? std::max(0, int(m_state.frame()->arrangement.rowOf(*kind))) : 0;
}

void SidebarController::takeKeyboard()
{
    m_state.setFocusedRow(rowOfShownWidget());
    m_strip.drawNow();
    m_platform.panels.takeFocus(m_strip);
}

void SidebarController::releaseKeyboard()
{
    m_state.setFocusedRow(-1);
    m_platform.panels.returnFocus(m_strip);
}

void SidebarController::focusRow(int row)
{
    if (row == m_state.focusedRow())
        return;
    m_state.setFocusedRow(row);
    hoverItem(row); // a focused item shows its card or its name, as a hovered one does
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
        become(m_behavior.closed());
        break;
    case WindowCommand::openSettings:
        become(m_behavior.closed());
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
        become(m_behavior.closed());
}

} // namespace kestro
