#pragma once

#include "Kestro/Platform/DesktopWindows.h"

#include <QList>
#include <algorithm>

namespace kestro::test {

class FakeWindows final : public DesktopWindows {
public:
    std::vector<DesktopWindow> all() const override { return windows; }
    quint32 active() const override { return activeId; }
    bool raise(quint32 id) override
    {
        if (std::ranges::find(windows, id, &DesktopWindow::id) == windows.end())
            return false;
        raised.append(id);
        activeId = id;
        return true;
    }

    std::vector<DesktopWindow> windows;
    quint32 activeId = 0;
    QList<quint32> raised;
};

} // namespace kestro::test
