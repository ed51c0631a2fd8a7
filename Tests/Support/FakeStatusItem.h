#pragma once

#include "Kestro/Platform/StatusItem.h"

#include <QList>

namespace kestro::test {

class FakeStatusItem final : public StatusItem {
public:
    void show(std::function<QImage(int)>, QList<MenuEntry> entries) override { menu = std::move(entries); }
    void hide() override { menu.clear(); }
    QList<MenuEntry> menu;
};

} // namespace kestro::test
