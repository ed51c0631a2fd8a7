#pragma once

#include "Kestro/Platform/Pasteboard.h"

#include <QByteArrayList>

/// The names that data have on X11, and those of the system. Pure functions.
namespace kestro::x11::selectionTypes {

/// The system's names for what a list of targets offers. What other programs mark as secret by one of several names
/// gets the one name that the system has for it.
QSet<QString> typesOf(const QByteArrayList& targets);

/// The target to ask for when `type` is wanted, the one that loses least; empty where none of `targets` gives it.
QByteArray targetFor(const QString& type, const QByteArrayList& targets);

/// The data of `target` as the port promises them: text in UTF-8, files as text/uri-list.
QByteArray fromWire(const QByteArray& target, QByteArray data);

/// Every target under which `items` are offered, with its data.
QMap<QByteArray, QByteArray> toWire(const QList<PasteboardItem>& items);

} // namespace kestro::x11::selectionTypes
