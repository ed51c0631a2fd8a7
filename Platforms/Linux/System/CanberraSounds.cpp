#include "Platforms/Linux/System/CanberraSounds.h"

#include <canberra.h>
#include <memory>
#include <utility>

namespace kestro {

namespace {

constexpr std::chrono::seconds longestSound(10);

struct Destroy {
    void operator()(ca_context* context) const { ca_context_destroy(context); }
    void operator()(ca_proplist* properties) const { ca_proplist_destroy(properties); }
};

} // namespace

CanberraSounds::~CanberraSounds()
{
    const std::lock_guard lock(m_mutex);
    m_quitting = true;
    m_changed.notify_all();
}

void CanberraSounds::play(const QString& name)
{
    {
        // A sound that is asked for while another plays is dropped: after a silent server there would be a burst.
        const std::lock_guard lock(m_mutex);
        if (std::exchange(m_busy, true))
            return;
    }
    m_queue.async([this, name = name.toUtf8()] {
        playAndWait(name);
        const std::lock_guard lock(m_mutex);
        m_busy = false;
    });
}

void CanberraSounds::playAndWait(const QByteArray& name)
{
    ca_context* newContext = nullptr;
    if (ca_context_create(&newContext) != CA_SUCCESS)
        return;
    const std::unique_ptr<ca_context, Destroy> context(newContext);
    ca_proplist* newProperties = nullptr;
    if (ca_proplist_create(&newProperties) != CA_SUCCESS)
        return;
    const std::unique_ptr<ca_proplist, Destroy> properties(newProperties);
    ca_proplist_sets(properties.get(), CA_PROP_APPLICATION_NAME, "Kestro");
    ca_proplist_sets(properties.get(), CA_PROP_EVENT_ID, name.constData());
    ca_proplist_sets(properties.get(), CA_PROP_MEDIA_ROLE, "event");
    {
        const std::lock_guard lock(m_mutex);
        m_ended = false;
    }
    const auto hasEnded = [](ca_context*, uint32_t, int, void* sounds) {
        auto* self = static_cast<CanberraSounds*>(sounds);
        const std::lock_guard lock(self->m_mutex);
        self->m_ended = true;
        self->m_changed.notify_all();
    };
    if (ca_context_play_full(context.get(), 0, properties.get(), hasEnded, this) != CA_SUCCESS)
        return;
    std::unique_lock lock(m_mutex);
    m_changed.wait_for(lock, longestSound, [this] { return m_ended || m_quitting; });
}

} // namespace kestro
