#include "Kestro/Surfaces/WindowCommand.h"

#include <QKeyEvent>

namespace kestro {

std::optional<WindowCommand> windowCommand(const QKeyEvent& event)
{
    const Qt::KeyboardModifiers modifiers = event.modifiers() & ~Qt::KeypadModifier;
    if (event.key() == Qt::Key_Escape && modifiers == Qt::NoModifier)
        return WindowCommand::close;
    if (modifiers != Qt::ControlModifier)
        return std::nullopt;
    switch (event.key()) {
    case Qt::Key_W:
        return WindowCommand::close;
    case Qt::Key_Comma:
        return WindowCommand::openSettings;
    case Qt::Key_Q:
        return WindowCommand::quit;
    default:
        return std::nullopt;
    }
}

} // namespace kestro
