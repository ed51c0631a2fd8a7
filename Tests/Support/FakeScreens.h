#pragma once

#include "Kestro/Platform/Screens.h"

namespace kestro::test {

class FakeScreens final : public Screens {
public:
    QList<Screen> all() const override { return screens; }
    /// One screen of `size` at the origin, with nothing reserved.
    void setOne(QSizeF size)
    {
        const QRectF frame(QPointF(), size);
        screens = { Screen{ { 1, frame, false }, QStringLiteral("One"), frame, 1 } };
        Q_EMIT changed();
    }

    QList<Screen> screens;

protected:
    QPointF origin() const override { return { 0, screens.isEmpty() ? 0 : screens.first().info.frame.height() }; }
};

} // namespace kestro::test
