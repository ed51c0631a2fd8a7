#include "CurlTransfers.h"

#include <QSocketNotifier>
#include <utility>

namespace kestro {

CurlTransfers::CurlTransfers()
{
    [[maybe_unused]] static const CURLcode initialised = ::curl_global_init(CURL_GLOBAL_DEFAULT);
    m_multi = ::curl_multi_init();
    ::curl_multi_setopt(m_multi, CURLMOPT_SOCKETFUNCTION, &CurlTransfers::watchSocket);
    ::curl_multi_setopt(m_multi, CURLMOPT_SOCKETDATA, this);
    ::curl_multi_setopt(m_multi, CURLMOPT_TIMERFUNCTION, &CurlTransfers::startTimer);
    ::curl_multi_setopt(m_multi, CURLMOPT_TIMERDATA, this);
    m_timer.setSingleShot(true);
    m_timer.setTimerType(Qt::PreciseTimer);
    connect(&m_timer, &QTimer::timeout, this, [this] { act(CURL_SOCKET_TIMEOUT, 0); });
}

CurlTransfers::~CurlTransfers() { ::curl_multi_cleanup(m_multi); }

void CurlTransfers::add(CURL* transfer, std::function<void(CURLcode)> finished)
{
    m_running[transfer] = std::move(finished);
    ::curl_multi_add_handle(m_multi, transfer);
}

void CurlTransfers::remove(CURL* transfer)
{
    if (m_running.erase(transfer) > 0)
        ::curl_multi_remove_handle(m_multi, transfer);
}

int CurlTransfers::watchSocket(CURL*, curl_socket_t socket, int what, void* self, void*)
{
    static_cast<CurlTransfers*>(self)->watch(socket, what);
    return 0;
}

int CurlTransfers::startTimer(CURLM*, long milliseconds, void* self)
{
    QTimer& timer = static_cast<CurlTransfers*>(self)->m_timer;
    if (milliseconds < 0)
        timer.stop();
    else
        timer.start(static_cast<int>(milliseconds));
    return 0;
}

void CurlTransfers::watch(curl_socket_t socket, int what)
{
    const auto follow = [&](QSocketNotifier*& notifier, bool wanted, QSocketNotifier::Type type, int event) {
        if (!wanted && notifier) {
            // A deferred delete: this may run inside the notifier's own signal.
            notifier->setEnabled(false);
            notifier->deleteLater();
            notifier = nullptr;
        } else if (wanted && !notifier) {
            notifier = new QSocketNotifier(socket, type, this);
            connect(notifier, &QSocketNotifier::activated, this, [this, socket, event] { act(socket, event); });
        }
    };
    Watched& watched = m_watched[socket];
    const bool both = what == CURL_POLL_INOUT;
    follow(watched.readable, both || what == CURL_POLL_IN, QSocketNotifier::Read, CURL_CSELECT_IN);
    follow(watched.writable, both || what == CURL_POLL_OUT, QSocketNotifier::Write, CURL_CSELECT_OUT);
    if (what == CURL_POLL_REMOVE)
        m_watched.erase(socket);
}

void CurlTransfers::act(curl_socket_t socket, int events)
{
    int running = 0;
    ::curl_multi_socket_action(m_multi, socket, events, &running);
    int left = 0;
    while (const CURLMsg* const message = ::curl_multi_info_read(m_multi, &left)) {
        if (message->msg != CURLMSG_DONE)
            continue;
        CURL* const transfer = message->easy_handle; // the message goes with the next call
        const CURLcode result = message->data.result;
        const auto found = m_running.extract(transfer);
        ::curl_multi_remove_handle(m_multi, transfer);
        if (!found.empty())
            found.mapped()(result);
    }
}

} // namespace kestro
