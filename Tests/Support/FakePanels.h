#pragma once

#include "Kestro/Platform/Panels.h"

#include <QHash>
#include <QRegion>
#include <QWindow>

namespace kestro::test {

class FakePanels final : public Panels {
public:
    void adopt(QWindow& window) override { adopted.append(&window); }
    void setShape(QWindow& window, const QRegion& shape) override { shapes[&window] = shape; }
    void takeFocus(QWindow& window) override { focused = &window; }
    void returnFocus(QWindow& window) override
    {
        if (focused == &window)
            focused = nullptr;
    }
    bool isComposited() const override { return composited; }

    QWindow* focused = nullptr;
    QList<QWindow*> adopted;
    QHash<QWindow*, QRegion> shapes;
    bool composited = true;
};

} // namespace kestro::test
