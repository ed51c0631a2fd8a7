#pragma once

#include <Kestro/Platform/Appearance.h>

#include <QColor>
#include <QFont>
#include <QObject>
#include <QtQml/qqmlregistration.h>

class QJSEngine;
class QQmlEngine;

namespace kestro {

/// The look of everything: colours, type, space, motion. One for the program, given to each engine by `install`.
/// It follows the desktop's appearance. Main thread.
class Theme : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_SINGLETON

    Q_PROPERTY(bool dark READ isDark NOTIFY changed FINAL)
    Q_PROPERTY(bool reduceMotion READ reducesMotion NOTIFY changed FINAL)
    Q_PROPERTY(bool composited READ isComposited WRITE setComposited NOTIFY changed FINAL)

    /// Writing, secondary writing, and lines and tracks.
    Q_PROPERTY(QColor ink READ ink NOTIFY changed FINAL)
    Q_PROPERTY(QColor secondaryInk READ secondaryInk NOTIFY changed FINAL)
    Q_PROPERTY(QColor line READ line NOTIFY changed FINAL)
    Q_PROPERTY(QColor hover READ hover NOTIFY changed FINAL)

    Q_PROPERTY(QColor window READ window NOTIFY changed FINAL)
    Q_PROPERTY(QColor card READ card NOTIFY changed FINAL)
    Q_PROPERTY(QColor hairline READ hairline NOTIFY changed FINAL)
    Q_PROPERTY(QColor accent READ accent NOTIFY changed FINAL)
    Q_PROPERTY(QColor onAccent READ onAccent NOTIFY changed FINAL) ///< writing on the accent

    /// A window of panes: its list of panes, the cards in which rows are grouped, and what can be pressed in them.
    Q_PROPERTY(QColor sidebar READ sidebar NOTIFY changed FINAL)
    Q_PROPERTY(QColor group READ group NOTIFY changed FINAL)
    Q_PROPERTY(QColor control READ control NOTIFY changed FINAL)
    Q_PROPERTY(QColor knob READ knob NOTIFY changed FINAL)
    Q_PROPERTY(QColor shade READ shade NOTIFY changed FINAL) ///< over what waits for an answer

    Q_PROPERTY(QColor red READ red NOTIFY changed FINAL)
    Q_PROPERTY(QColor orange READ orange NOTIFY changed FINAL)
    Q_PROPERTY(QColor yellow READ yellow NOTIFY changed FINAL)
    Q_PROPERTY(QColor green READ green NOTIFY changed FINAL)
    Q_PROPERTY(QColor blue READ blue NOTIFY changed FINAL)
    Q_PROPERTY(QColor purple READ purple NOTIFY changed FINAL)
    Q_PROPERTY(QColor pink READ pink NOTIFY changed FINAL)
    Q_PROPERTY(QColor gray READ gray NOTIFY changed FINAL)

    /// The same hues for writing, dark enough to be read on a light surface.
    Q_PROPERTY(QColor redInk READ redInk NOTIFY changed FINAL)
    Q_PROPERTY(QColor orangeInk READ orangeInk NOTIFY changed FINAL)
    Q_PROPERTY(QColor greenInk READ greenInk NOTIFY changed FINAL)

    /// All follow the desktop's text scale.
    Q_PROPERTY(QFont paneFont READ paneFont NOTIFY changed FINAL) ///< 20 semibold: a pane's title
    Q_PROPERTY(QFont titleFont READ titleFont NOTIFY changed FINAL) ///< 15 semibold: a card's title
    Q_PROPERTY(QFont bodyFont READ bodyFont NOTIFY changed FINAL) ///< 13: rows
    Q_PROPERTY(QFont strongFont READ strongFont NOTIFY changed FINAL) ///< 13 medium: a word that carries a state
    Q_PROPERTY(QFont captionFont READ captionFont NOTIFY changed FINAL) ///< 12: secondary text and figures

    Q_PROPERTY(int grid READ grid CONSTANT FINAL)
    Q_PROPERTY(int rowHeight READ rowHeight NOTIFY changed FINAL)
    Q_PROPERTY(int headerHeight READ headerHeight NOTIFY changed FINAL)
    Q_PROPERTY(qreal growth READ growth NOTIFY changed FINAL) ///< of what holds writing, with the desktop's text scale
    Q_PROPERTY(int horizontalPadding READ horizontalPadding CONSTANT FINAL)
    Q_PROPERTY(int verticalPadding READ verticalPadding CONSTANT FINAL)
    Q_PROPERTY(int radius READ radius CONSTANT FINAL)

    /// Milliseconds; nothing moves for longer than `slow`. All are 0 under reduced motion.
    Q_PROPERTY(int quick READ quick NOTIFY changed FINAL)
    Q_PROPERTY(int normal READ normal NOTIFY changed FINAL)
    Q_PROPERTY(int slow READ slow NOTIFY changed FINAL)

public:
    /// `appearance` must outlive the theme, and the theme every engine that it is installed in.
    explicit Theme(const Appearance& appearance, QObject* parent = nullptr);

    /// Makes this theme the `Theme` of the views of `engine`. To be called before the first view is made.
    void install(QQmlEngine& engine);

    /// For the QML engine: the theme that was installed in it.
    static Theme* create(QQmlEngine* engine, QJSEngine*);

    bool isDark() const { return m_look.dark; }
    bool reducesMotion() const { return m_look.reduceMotion; }

    /// Whether what lies behind a translucent window can be seen. Surfaces are opaque and cast no shadow where not.
    bool isComposited() const { return m_composited; }
    void setComposited(bool composited);

    QColor ink() const;
    QColor secondaryInk() const;
    QColor line() const;
    QColor hover() const;
    QColor window() const;
    QColor card() const;
    QColor hairline() const;
    QColor accent() const { return m_look.accent; }
    QColor onAccent() const;
    QColor sidebar() const;
    QColor group() const;
    QColor control() const;
    QColor knob() const;
    QColor shade() const;

    QColor red() const;
    QColor orange() const;
    QColor yellow() const;
    QColor green() const;
    QColor blue() const;
    QColor purple() const;
    QColor pink() const;
    QColor gray() const;
    QColor redInk() const;
    QColor orangeInk() const;
    QColor greenInk() const;

    /// The colour of one of the names of a dock's tint ("accent", "red", …, "graphite"); transparent for any other.
    Q_INVOKABLE QColor tint(const QString& name) const;

    /// The colour of a bar at `level` (0 to 1): green below 0.6, yellow below 0.85, else red; the accent in the style
    /// "accent".
    Q_INVOKABLE QColor meter(qreal level, const QString& style) const;

    QFont paneFont() const;
    QFont titleFont() const;
    QFont bodyFont() const;
    QFont strongFont() const;
    QFont captionFont() const;

    int grid() const { return 4; }
    int rowHeight() const { return m_look.grown(24); }
    int headerHeight() const { return m_look.grown(28); }
    qreal growth() const { return m_look.growth(); }
    int horizontalPadding() const { return 16; }
    int verticalPadding() const { return 10; }
    int radius() const { return 12; }

    int quick() const { return m_look.reduceMotion ? 0 : 120; }
    int normal() const { return m_look.reduceMotion ? 0 : 250; }
    int slow() const { return m_look.reduceMotion ? 0 : 500; }

    /// `spring` and `damping` of a SpringAnimation that moves like a spring of this response (seconds) and damping
    /// fraction (1 does not overshoot).
    Q_INVOKABLE qreal springStrength(qreal response) const;
    Q_INVOKABLE qreal springDamping(qreal response, qreal fraction) const;

Q_SIGNALS:
    void changed();

private:
    QColor either(QRgb light, QRgb dark) const;
    QFont font(int pixels, QFont::Weight weight) const;
    void follow();

    const Appearance& m_appearance;
    Look m_look;
    QString m_family;
    bool m_composited = true;
};

} // namespace kestro
