#pragma once

#include <QByteArray>
#include <QHash>
#include <QtGlobal>

namespace kestro::x11 {

/// The server's names for the places on a keyboard, "AC01" for the leftmost letter of the home row, by the key codes
/// of `KeyCombo`. Both directions are unique, and neither depends on what a layout puts there.
const QHash<quint32, QByteArray>& keyNames();

} // namespace kestro::x11
