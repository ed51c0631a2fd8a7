#pragma once

#include <QColor>
#include <QImage>
#include <QLatin1StringView>
#include <QList>
#include <QObject>
#include <QRectF>
#include <QString>
#include <QtQml/qqmlregistration.h>

class QPainter;

/// The system's symbol names, written nowhere else. Records and models hold the same strings.
namespace kestro::symbols {

inline constexpr QLatin1StringView app("app"); ///< an application without an icon
inline constexpr QLatin1StringView arrowsApart("arrow.up.left.and.arrow.down.right");
inline constexpr QLatin1StringView arrowUpRight("arrow.up.right");
inline constexpr QLatin1StringView battery75Percent("battery.75percent");
inline constexpr QLatin1StringView boltFill("bolt.fill");
inline constexpr QLatin1StringView calendar("calendar");
inline constexpr QLatin1StringView cameraViewfinder("camera.viewfinder");
inline constexpr QLatin1StringView checkmark("checkmark");
inline constexpr QLatin1StringView checkmarkCircleFill("checkmark.circle.fill");
inline constexpr QLatin1StringView chevronDown("chevron.down");
inline constexpr QLatin1StringView chevronRight("chevron.right");
inline constexpr QLatin1StringView chevronUp("chevron.up");
inline constexpr QLatin1StringView chevronUpDown("chevron.up.chevron.down");
inline constexpr QLatin1StringView chevronsWithSlash("chevron.left.forwardslash.chevron.right");
inline constexpr QLatin1StringView cloudSun("cloud.sun");
inline constexpr QLatin1StringView command("command");
inline constexpr QLatin1StringView cpuFill("cpu.fill");
inline constexpr QLatin1StringView cursorArrowRays("cursorarrow.rays");
inline constexpr QLatin1StringView docOnClipboard("doc.on.clipboard");
inline constexpr QLatin1StringView docOnDoc("doc.on.doc");
inline constexpr QLatin1StringView dockRectangle("dock.rectangle");
inline constexpr QLatin1StringView exclamationMarkCircleFill("exclamationmark.circle.fill");
inline constexpr QLatin1StringView eyedropper("eyedropper");
inline constexpr QLatin1StringView gaugeMedium("gauge.medium");
inline constexpr QLatin1StringView gearShape("gearshape");
inline constexpr QLatin1StringView globe("globe");
inline constexpr QLatin1StringView headphones("headphones");
inline constexpr QLatin1StringView internalDrive("internaldrive");
inline constexpr QLatin1StringView keyboard("keyboard");
inline constexpr QLatin1StringView link("link");
inline constexpr QLatin1StringView magnifyingGlass("magnifyingglass");
inline constexpr QLatin1StringView lineHorizontal3("line.3.horizontal");
inline constexpr QLatin1StringView memoryChip("memorychip");
inline constexpr QLatin1StringView musicNote("music.note");
inline constexpr QLatin1StringView noteText("note.text");
inline constexpr QLatin1StringView paintPalette("paintpalette");
inline constexpr QLatin1StringView photo("photo");
inline constexpr QLatin1StringView pin("pin");
inline constexpr QLatin1StringView pinFill("pin.fill");
inline constexpr QLatin1StringView rectangleSplit2x2("rectangle.split.2x2");
inline constexpr QLatin1StringView sparkle("sparkle");
inline constexpr QLatin1StringView sunMax("sun.max");
inline constexpr QLatin1StringView textAlignLeft("text.alignleft");
inline constexpr QLatin1StringView thermometerMedium("thermometer.medium");
inline constexpr QLatin1StringView timer("timer");
inline constexpr QLatin1StringView trash("trash");
inline constexpr QLatin1StringView trayFull("tray.full");
inline constexpr QLatin1StringView webCamera("web.camera");
inline constexpr QLatin1StringView xmark("xmark");
inline constexpr QLatin1StringView xmarkCircleFill("xmark.circle.fill");

/// Every name that has a glyph, in the table's order.
QList<QLatin1StringView> all();

/// Whether `name` has a glyph. Names that come from files are checked with it; names in code need not be.
bool contains(const QString& name);

/// Draws the glyph of `name` in black on `square`, and whatever of it reaches beyond.
/// A name without a glyph is a fault of the program: debug builds stop, release builds log it and draw nothing.
void draw(QPainter& painter, const QString& name, const QRectF& square);

/// The glyph in `color`, `pixels` high and wide. Recent pictures are kept. Main thread, or while it is held.
/// Names without a glyph as above.
QImage picture(const QString& name, int pixels, const QColor& color);

} // namespace kestro::symbols

namespace kestro {

/// The names that views write themselves, so that a mistyped one is an error of the compiler and not an empty box.
class Symbols : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_SINGLETON
    Q_PROPERTY(QString app MEMBER app CONSTANT FINAL)
    Q_PROPERTY(QString arrowsApart MEMBER arrowsApart CONSTANT FINAL)
    Q_PROPERTY(QString arrowUpRight MEMBER arrowUpRight CONSTANT FINAL)
    Q_PROPERTY(QString boltFill MEMBER boltFill CONSTANT FINAL)
    Q_PROPERTY(QString checkmark MEMBER checkmark CONSTANT FINAL)
    Q_PROPERTY(QString checkmarkCircleFill MEMBER checkmarkCircleFill CONSTANT FINAL)
    Q_PROPERTY(QString chevronDown MEMBER chevronDown CONSTANT FINAL)
    Q_PROPERTY(QString chevronUp MEMBER chevronUp CONSTANT FINAL)
    Q_PROPERTY(QString lineHorizontal3 MEMBER lineHorizontal3 CONSTANT FINAL)
    Q_PROPERTY(QString chevronRight MEMBER chevronRight CONSTANT FINAL)
    Q_PROPERTY(QString chevronUpDown MEMBER chevronUpDown CONSTANT FINAL)
    Q_PROPERTY(QString cpuFill MEMBER cpuFill CONSTANT FINAL)
    Q_PROPERTY(QString exclamationMarkCircleFill MEMBER exclamationMarkCircleFill CONSTANT FINAL)
    Q_PROPERTY(QString gaugeMedium MEMBER gaugeMedium CONSTANT FINAL)
    Q_PROPERTY(QString globe MEMBER globe CONSTANT FINAL)
    Q_PROPERTY(QString magnifyingGlass MEMBER magnifyingGlass CONSTANT FINAL)
    Q_PROPERTY(QString memoryChip MEMBER memoryChip CONSTANT FINAL)
    Q_PROPERTY(QString docOnClipboard MEMBER docOnClipboard CONSTANT FINAL)
    Q_PROPERTY(QString pin MEMBER pin CONSTANT FINAL)
    Q_PROPERTY(QString pinFill MEMBER pinFill CONSTANT FINAL)
    Q_PROPERTY(QString trash MEMBER trash CONSTANT FINAL)
    Q_PROPERTY(QString sparkle MEMBER sparkle CONSTANT FINAL)
    Q_PROPERTY(QString xmark MEMBER xmark CONSTANT FINAL)
    Q_PROPERTY(QString xmarkCircleFill MEMBER xmarkCircleFill CONSTANT FINAL)
public:
    using QObject::QObject;

private:
    const QString app = symbols::app;
    const QString arrowsApart = symbols::arrowsApart;
    const QString arrowUpRight = symbols::arrowUpRight;
    const QString boltFill = symbols::boltFill;
    const QString checkmark = symbols::checkmark;
    const QString checkmarkCircleFill = symbols::checkmarkCircleFill;
    const QString chevronDown = symbols::chevronDown;
    const QString chevronUp = symbols::chevronUp;
    const QString lineHorizontal3 = symbols::lineHorizontal3;
    const QString chevronRight = symbols::chevronRight;
    const QString chevronUpDown = symbols::chevronUpDown;
    const QString cpuFill = symbols::cpuFill;
    const QString exclamationMarkCircleFill = symbols::exclamationMarkCircleFill;
    const QString gaugeMedium = symbols::gaugeMedium;
    const QString globe = symbols::globe;
    const QString magnifyingGlass = symbols::magnifyingGlass;
    const QString memoryChip = symbols::memoryChip;
    const QString docOnClipboard = symbols::docOnClipboard;
    const QString pin = symbols::pin;
    const QString pinFill = symbols::pinFill;
    const QString trash = symbols::trash;
    const QString sparkle = symbols::sparkle;
    const QString xmark = symbols::xmark;
    const QString xmarkCircleFill = symbols::xmarkCircleFill;
};

} // namespace kestro
