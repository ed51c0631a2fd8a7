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
    HttpsServer()
    {
        QProcess openssl;
        openssl.start(QStringLiteral("openssl"),
            QStringLiteral("req -x509 -newkey ec -pkeyopt ec_paramgen_curve:P-256 -nodes -days 2 -subj /CN=kestro-test "
                           "-addext subjectAltName=IP:127.0.0.1 -keyout %1 -out %2")
                .arg(m_folder.filePath(QStringLiteral("key")), m_folder.filePath(QStringLiteral("certificate")))
                .split(QLatin1Char(' ')));
        openssl.waitForFinished();
        QSslConfiguration tls = QSslConfiguration::defaultConfiguration();
        tls.setLocalCertificate(authority().value(0));
        tls.setPrivateKey(QSslKey(contentOf(m_folder.filePath(QStringLiteral("key"))), QSsl::Ec));
        m_server.setSslConfiguration(tls);
        QObject::connect(&m_server, &QTcpServer::pendingConnectionAvailable, &m_server, [this] { accept(); });
        m_server.listen(QHostAddress::AnyIPv4);
    }

    QList<QSslCertificate> authority() const
    {
        return QSslCertificate::fromData(contentOf(m_folder.filePath(QStringLiteral("certificate"))));
    }
    QUrl url(const char* path) const
    {
        return QUrl(QStringLiteral("https://127.0.0.1:%1%2").arg(m_server.serverPort()).arg(QLatin1String(path)));
    }
    qint64 endlessBytes() const { return m_endlessBytes; }
    int loops() const { return m_loops; }
    int requests() const { return m_requests; }
    const QByteArray& lastRequest() const { return m_lastRequest; }

private:
    void accept()
    {
        while (QTcpSocket* const socket = m_server.nextPendingConnection()) {
            QObject::connect(socket, &QTcpSocket::readyRead, socket, [this, socket] {
                QByteArray request = socket->property("request").toByteArray() + socket->readAll();
                const bool whole = request.endsWith("\r\n\r\n");
                socket->setProperty("request", whole ? QByteArray() : request);
                if (whole)
                    answer(*socket, request);
            });
            QObject::connect(socket, &QTcpSocket::disconnected, socket, &QObject::deleteLater);
        }
    }

    static void send(QTcpSocket& socket, const QByteArray& status, const QByteArray& headers, const QByteArray& body)
    {
        socket.write("HTTP/1.1 " + status + "\r\nContent-Length: " + QByteArray::number(body.size()) + "\r\n" + headers
            + "\r\n" + body);
    }
    static void redirect(QTcpSocket& socket, const QUrl& target)
    {
        send(socket, "302 Found", "Location: " + target.toEncoded() + "\r\n", {});
    }

    void answer(QTcpSocket& socket, const QByteArray& request)
    {
        ++m_requests;
        m_lastRequest = request;
        const QByteArray path = request.split(' ').value(1);
        if (path == "/good")
            send(socket, "200 OK", {}, "hello");
        else if (path == "/missing")
            send(socket, "404 Not Found", {}, "none");
        else if (path == "/broken")
            send(socket, "503 Service Unavailable", {}, {});
        else if (path == "/cookie")
            send(socket, "200 OK", "Set-Cookie: a=b; Path=/\r\n", "hello");
        else if (path == "/packed")
            send(socket, "200 OK", "Content-Encoding: gzip\r\n", "\x1F\x8B not unpacked");
        else if (path == "/full")
            send(socket, "200 OK", {}, QByteArray(100'000, 'x'));
        else if (path == "/over")
            send(socket, "200 OK", {}, QByteArray(100'001, 'x'));
        else if (path == "/redirect")
            redirect(socket, url("/good"));
        else if (path == "/insecure")
            redirect(socket, QUrl(QStringLiteral("http://127.0.0.1:1/")));
        else
            misbehave(socket, path);
    }

    void misbehave(QTcpSocket& socket, const QByteArray& path)
    {
        if (path == "/loop") {
            ++m_loops;
            redirect(socket, url("/loop"));
        } else if (path == "/cut") {
            socket.write("HTTP/1.1 200 OK\r\nContent-Length: 100\r\n\r\nfirst");
            socket.disconnectFromHost();
        } else if (path == "/trickle") {
            socket.write("HTTP/1.1 200 OK\r\nContent-Length: 100000\r\n\r\n");
            auto* const timer = new QTimer(&socket);
            QObject::connect(timer, &QTimer::timeout, &socket, [&socket] { socket.write("x"); });
            timer->start(20);
        } else if (path == "/endless") {
            socket.write("HTTP/1.1 200 OK\r\nContent-Length: 1073741824\r\n\r\n");
            auto& secure = dynamic_cast<QSslSocket&>(socket);
            const auto more = [this, &secure] {
                constexpr qint64 chunk = 64 * 1024;
                if (secure.bytesToWrite() + secure.encryptedBytesToWrite() < chunk && m_endlessBytes < 1073741824)
                    m_endlessBytes += std::max<qint64>(0, secure.write(QByteArray(chunk, 'x')));
            };
            QObject::connect(&secure, &QSslSocket::encryptedBytesWritten, &secure, more, Qt::QueuedConnection);
            more();
        } // anything else waits for ever
    }

    QTemporaryDir m_folder;
    QSslServer m_server;
    qint64 m_endlessBytes = 0;
    int m_loops = 0;
    int m_requests = 0;
    QByteArray m_lastRequest;
};

} // namespace kestro::test
