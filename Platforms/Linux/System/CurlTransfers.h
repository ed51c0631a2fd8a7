#pragma once

#include <QObject>
#include <QTimer>
#include <curl/curl.h>
#include <functional>
#include <map>
#include <memory>

class QSocketNotifier;

namespace kestro {

/// libcurl's transfers on the loop of the application: no thread but libcurl's resolver. Main thread.
class CurlTransfers final : public QObject {
public:
    CurlTransfers();
    /// All transfers have been removed before.
    ~CurlTransfers() override;
    CurlTransfers(const CurlTransfers&) = delete;
    CurlTransfers& operator=(const CurlTransfers&) = delete;

    /// Begins a transfer. `finished` is called once, on a later turn and outside of libcurl, with the transfer removed;
    /// the handle stays the caller's.
    void add(CURL* transfer, std::function<void(CURLcode)> finished);
    /// Ends a transfer without a word; not from one of its callbacks. Nothing happens if it has finished.
    void remove(CURL* transfer);

private:
    struct Watched {
        QSocketNotifier* readable = nullptr;
        QSocketNotifier* writable = nullptr;
    };

    static int watchSocket(CURL* transfer, curl_socket_t socket, int what, void* self, void* unused);
    static int startTimer(CURLM* multi, long milliseconds, void* self);
    void watch(curl_socket_t socket, int what);
    void act(curl_socket_t socket, int events);

    CURLM* m_multi;
    QTimer m_timer;
    std::map<curl_socket_t, Watched> m_watched;
    std::map<CURL*, std::function<void(CURLcode)>> m_running;
};

} // namespace kestro
