#pragma once

#include "Kestro/Style/SurfaceShape.h"
#include "Kestro/Surfaces/DockItemsModel.h"

namespace kestro {

/// The state of the strip's view: the placement and the preferences, in the strip window's coordinates. Main thread.
class SidebarState final : public QObject {
    Q_OBJECT
    QML_ANONYMOUS
    Q_PROPERTY(kestro::DockItemsModel* items READ items CONSTANT)
    Q_PROPERTY(QRectF dockRect READ dockRect NOTIFY frameChanged)
    Q_PROPERTY(bool collapsed READ collapsed NOTIFY frameChanged)
    Q_PROPERTY(double iconSize READ iconSize NOTIFY frameChanged)
    Q_PROPERTY(double largestIconSize READ largestIconSize NOTIFY frameChanged)
    Q_PROPERTY(QString edge READ edge NOTIFY prefsChanged)
    Q_PROPERTY(QString placement READ placement NOTIFY prefsChanged)
    Q_PROPERTY(QString material READ material NOTIFY prefsChanged)
    Q_PROPERTY(QString tint READ tint NOTIFY prefsChanged)
    Q_PROPERTY(bool monochrome READ monochrome NOTIFY prefsChanged)
    Q_PROPERTY(bool revealed READ revealed NOTIFY revealedChanged)
    /// Whether a change of `revealed` fades; a new placement appears at once.
    Q_PROPERTY(bool fades READ fades NOTIFY revealedChanged)
    /// The item that the keyboard is on; -1 while the dock does not have the keyboard.
    Q_PROPERTY(int focusedRow READ focusedRow NOTIFY focusedRowChanged)
public:
    explicit SidebarState(AppModel& model);

    const SidebarPrefs& prefs() const { return m_prefs; }
    void setPrefs(const SidebarPrefs& prefs, bool monochrome);

    const std::optional<SidebarFrame>& frame() const { return m_frame; }
    void setFrame(const SidebarFrame& frame);
    /// Looks up names, pictures, badges and figures again; the placement stays.
    void refreshItems();

    bool revealed() const { return m_revealed; }
    bool fades() const { return m_fades; }
    void setRevealed(bool revealed, bool fades);

    int focusedRow() const { return m_focusedRow; }
    void setFocusedRow(int row);

    DockItemsModel* items() { return &m_items; }
    QRectF dockRect() const;
    /// The shape of the strip's ground, as its view draws it.
    SurfaceShape outline() const;
    bool collapsed() const { return m_frame && m_frame->collapsed; }
    double iconSize() const { return m_frame ? m_frame->arrangement.iconSize : 0; }
    double largestIconSize() const { return iconSize() * m_prefs.maxScale; }
    QString edge() const { return rawValue(m_prefs.edge); }
    QString placement() const { return rawValue(m_prefs.placement); }
    QString material() const { return rawValue(m_prefs.material); }
    QString tint() const { return rawValue(m_prefs.tint); }
    bool monochrome() const { return m_monochrome; }

Q_SIGNALS:
    void frameChanged();
    void prefsChanged();
    void revealedChanged();
    void focusedRowChanged();

private:
    SidebarPrefs m_prefs;
    bool m_monochrome = false;
    bool m_revealed = false;
    bool m_fades = false;
    int m_focusedRow = -1;
    std::optional<SidebarFrame> m_frame;
    DockItemsModel m_items;
};

} // namespace kestro
