#include "Kestro/Timer/TimerActivity.h"

#include "Kestro/Platform/MainLoop.h"
#include "Kestro/Preferences/PreferenceKeys.h"
#include "Kestro/Style/Symbols.h"
#include "Kestro/Timer/TimerModel.h"

#include <utility>

namespace kestro {

namespace {
constexpr double maxNoticeAge = 60; // seconds
}

TimerActivity::TimerActivity(
    TimerModel& model, MainLoop& loop, const PreferenceStore& preferences, TimerNotices& notices)
    : m_model(model)
    , m_loop(loop)
    , m_preferences(preferences)
    , m_notices(notices)
{
    m_model.onDone = [this] { post(m_loop.now()); };
}

TimerActivity::~TimerActivity()
{
    m_model.onDone = [] {};
}

void TimerActivity::post(Date since)
{
    m_pendingDone.reset();
    if (m_loop.now() - since >= maxNoticeAge || !prefs::liveActivity.read(m_preferences, u"timer"))
        return;
    if (!m_notices.show(symbols::timer, QStringLiteral("Timer done")))
        m_pendingDone = since;
}

void TimerActivity::unblocked()
{
    if (const auto since = m_pendingDone)
        post(*since);
}

} // namespace kestro
