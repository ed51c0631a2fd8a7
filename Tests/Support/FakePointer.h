#pragma once

#include "Kestro/Platform/Pointer.h"

#include <list>

namespace kestro::test {

class FakePointer final : public Pointer {
public:
    QPointF location() const override { return at; }
    std::unique_ptr<PointerWatch> watch(std::function<void()> moved) override
    {
        return std::make_unique<Watch>(*this, m_watchers.insert(m_watchers.end(), std::move(moved)));
    }
    void moveTo(QPointF point)
    {
        at = point;
        const auto watchers = m_watchers; // a callback may end its own watch
        for (const auto& moved : watchers)
            moved();
    }
    int watches() const { return int(m_watchers.size()); }

    QPointF at{ 400, 400 };

private:
    using Watchers = std::list<std::function<void()>>;

    class Watch final : public PointerWatch {
    public:
        Watch(FakePointer& owner, Watchers::iterator place)
            : m_owner(owner)
            , m_place(place)
        {
        }
        ~Watch() override { m_owner.m_watchers.erase(m_place); }

    private:
        FakePointer& m_owner;
        Watchers::iterator m_place;
    };

    Watchers m_watchers;
};

} // namespace kestro::test
