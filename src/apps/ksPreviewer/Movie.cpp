#include "apps/ksPreviewer/Movie.h"

#include <QFileInfo>
#include <QProcess>
#include <QStorageInfo>

namespace kestrum::preview {

QString MakeMovie(const QString& package, const QString& file) {
    constexpr qint64 kSpare = 50 * 1024 * 1024;
    const QFileInfo source(package);
    if (!source.isFile()) return QStringLiteral("There is no package \"%1\".").arg(package);
    const QString folder = QFileInfo(file).path();
    if (QStorageInfo(folder).bytesAvailable() < source.size() + kSpare) {
        return QStringLiteral("There is not enough space in \"%1\" to show the recording.").arg(folder);
    }
    QProcess ffmpeg;
    ffmpeg.setProcessChannelMode(QProcess::MergedChannels);
    // The screen and the sound; the index at the file's front, so that the page can jump at once.
    ffmpeg.start(QStringLiteral("ffmpeg"), {"-v", "error", "-nostdin", "-y", "-i", package, "-map", "0:v:0", "-map",
                                            "0:a:0?", "-c", "copy", "-movflags", "+faststart", file});
    if (!ffmpeg.waitForStarted()) return QStringLiteral("The program ffmpeg is missing.");
    ffmpeg.waitForFinished(-1);
    if (ffmpeg.exitStatus() == QProcess::NormalExit && ffmpeg.exitCode() == 0) return {};
    return QStringLiteral("The recording cannot be shown: %1").arg(QString::fromUtf8(ffmpeg.readAll()).trimmed());
}

}  // namespace kestrum::preview
