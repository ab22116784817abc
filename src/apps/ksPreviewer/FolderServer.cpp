#include "apps/ksPreviewer/FolderServer.h"

#include <QFile>
#include <QFileInfo>
#include <QMimeDatabase>
#include <QTcpSocket>
#include <QUrl>
#include <QUuid>
#include <algorithm>
#include <memory>

#include "apps/ksPreviewer/ByteRange.h"

namespace kestrum::preview {

namespace {

/// A browser that is starting may take its time.
constexpr int kFirstPageMs = 120000;
/// A page that is loaded again is away for a moment.
constexpr int kReloadMs = 5000;
constexpr int kLargestRequest = 16 * 1024;
constexpr qint64 kChunk = 256 * 1024;
/// The page holds this address open for as long as it is shown.
constexpr char kAlive[] = "alive";
constexpr char kWatch[] = "<script>new EventSource('alive');</script></body>";

void Head(QTcpSocket& socket, const QByteArray& status, const QByteArray& fields) {
    socket.write("HTTP/1.1 " + status + "\r\nCache-Control: no-store\r\nX-Content-Type-Options: nosniff\r\n" + fields +
                 "\r\n");
}

void Refuse(QTcpSocket& socket, const QByteArray& status) {
    Head(socket, status, "Content-Length: 0\r\nConnection: close\r\n");
    socket.disconnectFromHost();
}

/// Writes `left` bytes of `file` as fast as the reader takes them, then closes.
void Pour(QTcpSocket& socket, const std::shared_ptr<QFile>& file, qint64 left) {
    const auto rest = std::make_shared<qint64>(left);
    const auto more = [&socket, file, rest] {
        while (*rest > 0 && socket.bytesToWrite() < kChunk) {
            const QByteArray bytes = file->read(std::min(kChunk, *rest));
            if (bytes.isEmpty()) break;
            *rest -= bytes.size();
            socket.write(bytes);
        }
        if (*rest <= 0 || file->atEnd()) socket.disconnectFromHost();
    };
    QObject::connect(&socket, &QTcpSocket::bytesWritten, &socket, more);
    more();
}

}  // namespace

FolderServer::FolderServer(const QString& folder, std::function<void()> ended)
    : m_folder(QFileInfo(folder).canonicalFilePath()),
      m_ended(std::move(ended)),
      m_token(QUuid::createUuid().toString(QUuid::Id128)) {
    m_idle.setSingleShot(true);
    QObject::connect(&m_idle, &QTimer::timeout, this, [this] { m_ended(); });
    QObject::connect(&m_server, &QTcpServer::newConnection, this, [this] { Accept(); });
}

bool FolderServer::Listen() {
    m_idle.start(kFirstPageMs);
    return m_server.listen(QHostAddress::LocalHost);
}

QString FolderServer::AddressOf(const QString& file) const {
    return QStringLiteral("http://127.0.0.1:%1/%2/%3").arg(m_server.serverPort()).arg(m_token, file);
}

void FolderServer::Accept() {
    while (QTcpSocket* socket = m_server.nextPendingConnection()) {
        QObject::connect(socket, &QTcpSocket::readyRead, this, [this, socket] { Read(*socket); });
        QObject::connect(socket, &QTcpSocket::disconnected, this, [this, socket] {
            m_received.remove(socket);
            socket->deleteLater();
        });
    }
}

// One request a connection: the reader is on this computer.
void FolderServer::Read(QTcpSocket& socket) {
    QByteArray& received = m_received[&socket];
    received += socket.readAll();
    if (received.size() > kLargestRequest) return Refuse(socket, "431 Request Header Fields Too Large");
    const qsizetype end = received.indexOf("\r\n\r\n");
    if (end < 0) return;
    const QList<QByteArray> lines = received.left(end).split('\n');
    const QList<QByteArray> first = lines.first().trimmed().split(' ');
    if (first.size() != 3) return Refuse(socket, "400 Bad Request");
    Request request{first[0], QUrl(QString::fromUtf8(first[1])).path(QUrl::FullyDecoded), {}};
    for (const QByteArray& line : lines) {
        const qsizetype colon = line.indexOf(':');
        if (line.left(colon).trimmed().toLower() == "range") request.range = line.mid(colon + 1).trimmed();
    }
    QObject::disconnect(&socket, &QTcpSocket::readyRead, nullptr, nullptr);
    Answer(socket, request);
}

void FolderServer::Answer(QTcpSocket& socket, const Request& request) {
    if (request.method != "GET" && request.method != "HEAD") return Refuse(socket, "405 Method Not Allowed");
    if (request.path == QStringLiteral("/%1/%2").arg(m_token, QLatin1String(kAlive))) return KeepAlive(socket);
    const QString file = FileOf(request.path);
    if (file.isEmpty()) return Refuse(socket, "404 Not Found");
    if (file.endsWith(QStringLiteral(".html"))) return SendPage(socket, file, request.method == "GET");
    SendFile(socket, file, request);
}

QString FolderServer::FileOf(const QString& path) const {
    const QString prefix = QStringLiteral("/%1/").arg(m_token);
    if (!path.startsWith(prefix)) return {};
    const QFileInfo file(m_folder.filePath(path.mid(prefix.size())));
    const QString real = file.canonicalFilePath();
    return file.isFile() && real.startsWith(m_folder.path() + QLatin1Char('/')) ? real : QString();
}

void FolderServer::KeepAlive(QTcpSocket& socket) {
    ++m_pages;
    m_idle.stop();
    QObject::connect(&socket, &QTcpSocket::disconnected, this, [this] {
        if (--m_pages == 0) m_idle.start(kReloadMs);
    });
    Head(socket, "200 OK", "Content-Type: text/event-stream\r\n");
    socket.write(":\n\n");
}

void FolderServer::SendPage(QTcpSocket& socket, const QString& file, bool withBody) {
    QFile page(file);
    if (!page.open(QIODevice::ReadOnly)) return Refuse(socket, "404 Not Found");
    QByteArray text = page.readAll();
    const qsizetype end = text.lastIndexOf("</body>");
    text.replace(end < 0 ? text.size() : end, end < 0 ? 0 : 7, kWatch);
    Head(socket, "200 OK",
         "Content-Type: text/html; charset=utf-8\r\nConnection: close\r\nContent-Length: " +
             QByteArray::number(text.size()) + "\r\n");
    if (withBody) socket.write(text);
    socket.disconnectFromHost();
}

void FolderServer::SendFile(QTcpSocket& socket, const QString& file, const Request& request) {
    const auto source = std::make_shared<QFile>(file);
    if (!source->open(QIODevice::ReadOnly)) return Refuse(socket, "404 Not Found");
    const qint64 size = source->size();
    const std::optional<ByteRange> part = RangeOf(request.range, size);
    const ByteRange range = part.value_or(ByteRange{0, size});
    QByteArray fields = "Accept-Ranges: bytes\r\nConnection: close\r\nContent-Type: " +
                        QMimeDatabase().mimeTypeForFile(file).name().toLatin1() +
                        "\r\nContent-Length: " + QByteArray::number(range.length) + "\r\n";
    if (part) {
        fields += "Content-Range: bytes " + QByteArray::number(range.begin) + "-" +
                  QByteArray::number(range.begin + range.length - 1) + "/" + QByteArray::number(size) + "\r\n";
    }
    Head(socket, part ? "206 Partial Content" : "200 OK", fields);
    source->seek(range.begin);
    Pour(socket, source, request.method == "GET" ? range.length : 0);
}

}  // namespace kestrum::preview
