#include "EndWatchdog.h"

#include "KestroCore/Support/FileDescriptor.h"
#include "KestroCore/Support/SerialQueue.h"
#include "StderrLog.h"

#include <cerrno>
#include <chrono>
#include <condition_variable>
#include <csignal>
#include <future>
#include <mutex>
#include <poll.h>
#include <sys/eventfd.h>
#include <thread>
#include <unistd.h>

namespace kestro {
namespace {

using namespace std::chrono_literals;

constexpr auto endLimit = 1300ms;
constexpr auto saveLimit = 400ms;
constexpr auto savedLimit = 250ms; // for destructors, once everything is saved

/// Never freed: the thread uses it while static objects are destroyed.
struct Watch {
    std::mutex mutex;
    std::condition_variable changed;
    std::function<bool()> save;
    bool allSaved = false;
    bool saving = false;
};

Watch* watch = nullptr;
volatile std::sig_atomic_t armDescriptor = -1;

bool lastSave(std::function<bool()> save)
{
    auto done = std::make_shared<std::promise<bool>>();
    auto saved = done->get_future();
    std::thread([save = std::move(save), done] { done->set_value(!save || save()); }).detach();
    return saved.wait_for(saveLimit) == std::future_status::ready && saved.get();
}

void guard(const int armed)
{
    setThreadName("kestro.end");
    pollfd asked{ armed, POLLIN, 0 };
    while (::poll(&asked, 1, -1) < 1) { }
    const auto limit = std::chrono::steady_clock::now() + endLimit;

    std::unique_lock lock(watch->mutex);
    if (watch->changed.wait_until(lock, limit, [] { return watch->allSaved; })) {
        const auto destroyed = std::min(limit, std::chrono::steady_clock::now() + savedLimit);
        watch->changed.wait_until(lock, destroyed, [] { return false; });
        ::_exit(0);
    }
    watch->saving = true;
    auto save = std::move(watch->save);
    lock.unlock();
    const bool saved = lastSave(std::move(save));
    StderrLog().write(saved
            ? QStringLiteral("Kestro: something did not end in time; everything was saved before the end")
            : QStringLiteral("Kestro: something did not end in time, and not everything could be saved"));
    ::_exit(saved ? 0 : 1);
}

} // namespace

EndWatchdog::EndWatchdog(std::function<bool()> save)
{
    if (!watch)
        watch = new Watch;
    {
        const std::lock_guard lock(watch->mutex);
        watch->save = std::move(save);
    }
    if (armDescriptor >= 0)
        return;
    const int descriptor = ::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK);
    if (descriptor < 0)
        return;
    armDescriptor = descriptor;
    std::thread(guard, descriptor).detach();
}

EndWatchdog::~EndWatchdog()
{
    std::unique_lock lock(watch->mutex);
    // A main thread that has come free again does not destroy what is being saved: the end is a moment away.
    watch->changed.wait(lock, [] { return !watch->saving; });
    watch->save = nullptr;
}

void EndWatchdog::arm()
{
    const int saved = errno;
    if (armDescriptor >= 0)
        ::eventfd_write(armDescriptor, 1);
    errno = saved;
}

void EndWatchdog::allSaved()
{
    if (!watch)
        return;
    const std::lock_guard lock(watch->mutex);
    watch->allSaved = true;
    watch->changed.notify_all();
}

} // namespace kestro
