#include "apps/ksPreviewer/Movie.h"

#include <QFileInfo>
#include <QProcess>
#include <QStorageInfo>

#include "apps/ksPreviewer/Texts.h"

namespace kestrum::preview {

namespace {

QString Sentence(QStringView key, QStringView fallback, const QString& filled) {
    QString text = GetResString(QStringLiteral("preview"), key.toString(), fallback.toString());
    return text.replace(QLatin1String("%s"), filled);
}

}  // namespace

QString MakeMovie(const QString& package, const QString& file) {
    constexpr qint64 kSpare = 50 * 1024 * 1024;
    const QFileInfo source(package);
    if (!source.isFile()) return Sentence(u"msgNoPackage", u"There is no package \"%s\".", package);
    const QString folder = QFileInfo(file).path();
    if (QStorageInfo(folder).bytesAvailable() < source.size() + kSpare) {
        return Sentence(u"msgNoSpace", u"There is not enough space in \"%s\" to show the recording.", folder);
    }
    QProcess ffmpeg;
    ffmpeg.setProcessChannelMode(QProcess::MergedChannels);
    // The screen and the sound; the index at the file's front, so that the page can jump at once.
    ffmpeg.start(QStringLiteral("ffmpeg"), {"-v", "error", "-nostdin", "-y", "-i", package, "-map", "0:v:0", "-map",
                                            "0:a:0?", "-c", "copy", "-movflags", "+faststart", file});
    if (!ffmpeg.waitForStarted()) return Sentence(u"msgNoProgram", u"The program %s is missing.", ffmpeg.program());
    ffmpeg.waitForFinished(-1);
    if (ffmpeg.exitStatus() == QProcess::NormalExit && ffmpeg.exitCode() == 0) return {};
    return Sentence(u"msgNotShown", u"The recording cannot be shown: %s",
                    QString::fromUtf8(ffmpeg.readAll()).trimmed());
}

}  // namespace kestrum::preview
