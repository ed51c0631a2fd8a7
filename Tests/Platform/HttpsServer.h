#pragma once

#include "Helpers.h"

#include <QProcess>
#include <QSslKey>
#include <QSslServer>
#include <QSslSocket>
#include <QTimer>
#include <QUrl>

namespace kestro::test {

/// A web server on loopback whose paths misbehave each in their way, with a certificate for 127.0.0.1 by an authority
/// of its own. It runs on the test's loop.
class HttpsServer {
public:
    static constexpr qint64 gigabyte = 1 << 30;

    HttpsServer()
    {
        const QString key = m_folder.filePath(u"key"_s);
        const QString certificate = m_folder.filePath(u"certificate"_s);
        QProcess::execute(u"openssl"_s,
            u"req -x509 -newkey ec -pkeyopt ec_paramgen_curve:P-256 -nodes -days 2 -subj /CN=kestro-test "
            "-addext subjectAltName=IP:127.0.0.1 -keyout %1 -out %2"_s.arg(key, certificate)
                .split(u' '));
        authority = contentOf(certificate);
        QSslConfiguration tls = QSslConfiguration::defaultConfiguration();
        tls.setLocalCertificate(QSslCertificate(authority));
        tls.setPrivateKey(QSslKey(contentOf(key), QSsl::Ec));
        m_server.setSslConfiguration(tls);
        QObject::connect(&m_server, &QTcpServer::pendingConnectionAvailable, &m_server, [this] {
            while (QTcpSocket* const socket = m_server.nextPendingConnection())
                QObject::connect(socket, &QTcpSocket::readyRead, socket, [this, socket] { read(*socket); });
        });
        m_server.listen(QHostAddress::AnyIPv4);
    }
    QUrl url(const char* path, const char* host = "127.0.0.1") const
    {
        return QUrl(u"https://%1:%2%3"_s.arg(QLatin1String(host)).arg(m_server.serverPort()).arg(QLatin1String(path)));
    }
    /// Bytes of a good answer before its body of five digits' length.
    static constexpr qsizetype headBytes = sizeof("HTTP/1.1 200 OK\r\nContent-Length: 12345\r\n\r\n") - 1;

    QByteArray authority; ///< PEM
    QByteArrayList requests;
    qint64 endlessBytes = 0;

private:
    void read(QTcpSocket& socket)
    {
        const QByteArray request = socket.property("request").toByteArray() + socket.readAll();
        const bool whole = request.endsWith("\r\n\r\n");
        socket.setProperty("request", whole ? QByteArray() : request);
        if (whole) {
            requests.append(request);
            answer(socket, request.split(' ').value(1));
        }
    }
    void answer(QTcpSocket& socket, const QByteArray& path)
    {
        const struct {
            const char* path;
            const char* status;
            QByteArray header;
            QByteArray body;
        } answers[] = {
            { "/good", "200 OK", {}, "hello" },
            { "/missing", "404 Not Found", {}, "none" },
            { "/cookie", "200 OK", "Set-Cookie: a=b; Path=/\r\n", "hello" },
            { "/packed", "200 OK", "Content-Encoding: gzip\r\n", "\x1F\x8B not unpacked" },
            { "/full", "200 OK", {}, QByteArray(100'000 - headBytes, 'x') },
            { "/over", "200 OK", {}, QByteArray(100'001 - headBytes, 'x') },
            { "/redirect", "302 Found", "Location: " + url("/good").toEncoded() + "\r\n", {} },
            { "/loop", "302 Found", "Location: " + url("/loop").toEncoded() + "\r\n", {} },
            { "/elsewhere", "302 Found", "Location: " + url("/good", "127.0.0.2").toEncoded() + "\r\n", {} },
            { "/insecure", "302 Found", "Location: http://127.0.0.1:1/\r\n", {} },
        };
        const auto head = [&](qint64 size) { return "Content-Length: " + QByteArray::number(size) + "\r\n"; };
        for (const auto& a : answers) {
            if (path == a.path)
                socket.write(
                    "HTTP/1.1 " + QByteArray(a.status) + "\r\n" + head(a.body.size()) + a.header + "\r\n" + a.body);
        }
        if (path == "/cut") {
            socket.write("HTTP/1.1 200 OK\r\n" + head(100) + "\r\nfirst");
            socket.disconnectFromHost();
        } else if (path == "/trickle") {
            socket.write("HTTP/1.1 200 OK\r\n" + head(100'000) + "\r\n");
            auto* const timer = new QTimer(&socket);
            QObject::connect(timer, &QTimer::timeout, &socket, [&socket] { socket.write("x"); });
            timer->start(20);
        } else if (path == "/endless") {
            writeForEver(socket, "HTTP/1.1 200 OK\r\n" + head(gigabyte) + "\r\n", QByteArray(chunk, 'x'));
        } else if (path == "/headers") {
            writeForEver(socket, "HTTP/1.1 200 OK\r\n", "X-More: " + QByteArray(4000, 'x') + "\r\n");
        } else if (path == "/header") {
            writeForEver(socket, "HTTP/1.1 200 OK\r\nX-More: ", QByteArray(chunk, 'x'));
        } // anything else waits for ever
    }

    void writeForEver(QTcpSocket& socket, const QByteArray& first, const QByteArray& more)
    {
        auto& secure = dynamic_cast<QSslSocket&>(socket);
        secure.write(first);
        const auto feed = [this, &secure, more] {
            while (secure.bytesToWrite() + secure.encryptedBytesToWrite() < chunk && endlessBytes < gigabyte) {
                const qint64 written = secure.write(more);
                if (written <= 0)
                    return;
                endlessBytes += written;
            }
        };
        QObject::connect(&secure, &QSslSocket::encryptedBytesWritten, &secure, feed, Qt::QueuedConnection);
        feed();
    }

    static constexpr qint64 chunk = 64 * 1024;
    QTemporaryDir m_folder;
    QSslServer m_server;
};

} // namespace kestro::test
