#include "KestroCore/Timer/TimerState.h"

#include "KestroCore/Support/StorageError.h"

#include <algorithm>
#include <cmath>
#include <nlohmann/json.hpp>

namespace kestro {

namespace {

using nlohmann::json;

// Dates of this century are exact to 0.12 µs: without a tolerance, "5 minutes from now" minus "now" rounds up to 5:01.
constexpr double dateResolution = 1e-6;

double clampedMinutes(int minutes) { return std::clamp(minutes * 60.0, 0.0, TimerState::maxDuration); }
double clampedSum(double seconds, int minutes)
{
    return std::clamp(seconds + minutes * 60.0, 0.0, TimerState::maxDuration);
}

double finiteNumber(const json& object, const char* key)
{
    const auto field = object.is_object() ? object.find(key) : object.end();
    if (field == object.end() || !field->is_number())
        throw StorageError(QStringLiteral("\"%1\" is not a number.").arg(QLatin1StringView(key)));
    return field->get<double>();
}

json phaseToJson(const TimerState::Phase& phase)
{
    json object = json::object();
    if (const auto* running = std::get_if<TimerState::Running>(&phase))
        object["running"]["until"] = running->until.seconds;
    else if (const auto* paused = std::get_if<TimerState::Paused>(&phase))
        object["paused"]["remaining"] = paused->remaining;
    else
        object["idle"] = json::object();
    return object;
}

TimerState::Phase phaseFromJson(const json& object)
{
    if (!object.is_object())
        throw StorageError(QStringLiteral("\"phase\" is not an object."));
    if (object.size() != 1)
        throw StorageError(QStringLiteral("Invalid number of keys found, expected one."));
    const std::string& name = object.begin().key();
    const json& payload = object.begin().value();
    if (name == "running")
        return TimerState::Running{ { finiteNumber(payload, "until") } };
    if (name == "paused")
        return TimerState::Paused{ finiteNumber(payload, "remaining") };
    if (name == "idle" && payload.is_object())
        return TimerState::Idle{};
    throw StorageError(QStringLiteral("\"%1\" is not a phase.").arg(QString::fromStdString(name)));
}

} // namespace

std::optional<Date> TimerState::until() const
{
    const auto* running = std::get_if<Running>(&phase);
    return running ? std::optional(running->until) : std::nullopt;
}

double TimerState::remaining(Date now) const
{
    if (const auto end = until())
        return std::max(0.0, *end - now);
    const auto* paused = std::get_if<Paused>(&phase);
    return paused ? paused->remaining : duration;
}

bool TimerState::isFinished(Date now) const
{
    const auto end = until();
    return end && now >= *end;
}

void TimerState::start(int minutes, Date now)
{
    duration = clampedMinutes(minutes);
    phase = Running{ now + duration };
}

void TimerState::start(Date now)
{
    const double left = remaining(now);
    if (!isRunning() && left > 0)
        phase = Running{ now + left };
}

void TimerState::pause(Date now)
{
    if (isRunning())
        phase = Paused{ remaining(now) };
}

void TimerState::adjust(int minutes, Date now)
{
    if (isIdle())
        duration = clampedSum(duration, minutes);
    else if (isRunning())
        phase = Running{ now + clampedSum(remaining(now), minutes) };
    else
        phase = Paused{ clampedSum(remaining(now), minutes) };
}

qint64 TimerState::wholeSeconds(double seconds)
{
    constexpr double most = 1e15; // the stored number is unchecked, and casting a larger double is undefined behaviour
    return qint64(std::ceil(std::min(std::max(0.0, seconds - dateResolution), most)));
}

QString TimerState::format(double seconds)
{
    const qint64 whole = wholeSeconds(seconds);
    return QStringLiteral("%1:%2").arg(whole / 60).arg(whole % 60, 2, 10, QLatin1Char('0'));
}

QString TimerState::wingText(double seconds)
{
    const qint64 whole = wholeSeconds(seconds);
    return whole < 60 ? QStringLiteral("%1s").arg(whole) : QStringLiteral("%1m").arg((whole + 59) / 60);
}

std::optional<QByteArray> TimerState::encode() const
{
    const json document{ { "phase", phaseToJson(phase) }, { "duration", duration } };
    const auto* paused = std::get_if<Paused>(&phase);
    const double stored = isRunning() ? until()->seconds : paused ? paused->remaining : 0;
    if (!std::isfinite(duration) || !std::isfinite(stored))
        return std::nullopt;
    return QByteArray::fromStdString(document.dump());
}

TimerState TimerState::decode(const QByteArray& bytes)
{
    const json document = json::parse(bytes.begin(), bytes.end(), nullptr, false);
    if (!document.is_object() || !document.contains("phase"))
        throw StorageError(QStringLiteral("The timer's state is not a JSON object with a phase."));
    return { phaseFromJson(document["phase"]), finiteNumber(document, "duration") };
}

} // namespace kestro
