// ksPreviewer PAGE TEMPLATE [PACKAGE]: shows a lecture in the browser, from the page in its scratch folder. Tells the
// page's address, ends when the page has been closed. The template's files lie beside the page already. Exit code 1 if
// no page was opened at all, 2 for wrong words.
#include <QCoreApplication>
#include <QFileInfo>
#include <QProcess>
#include <QTextStream>
#include <QUrl>

#include "apps/ksPreviewer/FolderServer.h"
#include "apps/ksPreviewer/Movie.h"
#include "apps/ksPreviewer/Texts.h"

namespace {

using kestrum::preview::FolderServer;
using kestrum::preview::GetResString;
using kestrum::preview::MakeMovie;

constexpr char kMovie[] = "preview.mp4";

/// The page with what it shall play; what went wrong goes in its place.
QString QueryFor(const QStringList& words, const QFileInfo& page) {
    if (words.size() < 4) return {};
    const QString problem = MakeMovie(words[3], page.dir().filePath(QLatin1String(kMovie)));
    if (problem.isEmpty()) return QStringLiteral("?media=%1").arg(QLatin1String(kMovie));
    return QStringLiteral("?message=") + QString::fromLatin1(QUrl::toPercentEncoding(problem));
}

}  // namespace

int main(int argc, char** argv) {
    QCoreApplication program(argc, argv);
    const QStringList words = QCoreApplication::arguments();
    QTextStream out(stdout), complaint(stderr);
    const QFileInfo page(words.value(1));
    if (words.size() < 3 || words.size() > 4 || !page.isFile()) {
        complaint << "ksPreviewer PAGE TEMPLATE [PACKAGE]: shows the lecture of a page in the browser\n";
        return 2;
    }
    const QString query = QueryFor(words, page);
    FolderServer server(page.path(), [] { QCoreApplication::quit(); });
    if (!server.Listen()) return 1;
    const QString address = server.AddressOf(page.fileName()) + query;
    out << address << Qt::endl;
    if (!QProcess::startDetached(QStringLiteral("xdg-open"), {address})) {
        complaint << GetResString(QStringLiteral("preview"), QStringLiteral("msgNoBrowser"),
                                  QStringLiteral("No browser can be opened."))
                  << Qt::endl;
        return 1;
    }
    return QCoreApplication::exec();
}
