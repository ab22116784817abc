// A web server of this computer for one folder and one reader: a browser plays a movie and asks for data files only
// over HTTP. It answers on the loopback address, under a name that nobody can guess, and tells when the last page that
// it gave has been closed.
#pragma once

#include <QDir>
#include <QHash>
#include <QTcpServer>
#include <QTimer>
#include <functional>

class QTcpSocket;

namespace kestrum::preview {

class FolderServer : public QObject {
  public:
    /// Serves what lies in `folder`. `ended` runs once: when no page has been open for a while, or none came at all.
    FolderServer(const QString& folder, std::function<void()> ended);

    /// False if there is no free port.
    bool Listen();
    /// Address of a file of the folder.
    QString AddressOf(const QString& file) const;

  private:
    struct Request {
        QByteArray method;
        QString path;
        QByteArray range;
    };
    void Accept();
    void Read(QTcpSocket& socket);
    void Answer(QTcpSocket& socket, const Request& request);
    void KeepAlive(QTcpSocket& socket);
    void SendPage(QTcpSocket& socket, const QString& file, bool withBody);
    void SendFile(QTcpSocket& socket, const QString& file, const Request& request);
    /// The file that a request names; empty for one outside the folder.
    QString FileOf(const QString& path) const;

    QDir m_folder;
    std::function<void()> m_ended;
    QTcpServer m_server;
    QString m_token;
    /// What each connection has sent so far of its request.
    QHash<QTcpSocket*, QByteArray> m_received;
    int m_pages = 0;
    QTimer m_idle;
};

}  // namespace kestrum::preview
