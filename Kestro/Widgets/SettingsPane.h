#pragma once

#include <QObject>
#include <QString>
#include <QStringList>

namespace kestro {

/// A pane of the Settings window as its sidebar lists it and the window loads it.
struct SettingsPane {
    QString id; ///< "general"
    QString title;
    QString symbol;
    QString view; ///< folder and name of a view whose root is a `Pane`
    QStringList words; ///< of its rows, to be found by
    QObject* subject = nullptr; ///< what the view shows and changes, its `subject`; it lives with its feature
};

} // namespace kestro
