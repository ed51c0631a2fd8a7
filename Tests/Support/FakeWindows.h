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

    bool close(quint32 id) override
    {
        return closed.append(id), std::erase_if(windows, [&](auto& each) { return each.id == id; });
    }
    std::shared_ptr<void> watch(std::function<void()> changed) override
    {
        return std::shared_ptr<void>((tell = std::move(changed), nullptr), [this](void*) { tell = [] {}; });
    }
    std::function<void()> tell = [] {}; ///< whoever watches

    std::vector<DesktopWindow> windows;
    QList<quint32> closed;
    quint32 activeId = 0;
    QList<quint32> raised;
};

} // namespace kestro::test
