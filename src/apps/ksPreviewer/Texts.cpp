#include "apps/ksPreviewer/Texts.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QXmlStreamReader>

namespace kestrum::preview {

QString GetResString(const QString& section, const QString& key, const QString& fallback) {
    QFile file(QDir(QCoreApplication::applicationDirPath()).filePath(QStringLiteral("res.xml")));
    if (!file.open(QIODevice::ReadOnly)) return fallback;
    QXmlStreamReader reader(&file);
    bool inSection = false;
    while (!reader.atEnd()) {
        if (reader.readNext() != QXmlStreamReader::StartElement) continue;
        const auto name = reader.attributes().value(QLatin1String("name"));
        if (reader.name() == QLatin1String("section")) inSection = name == section;
        if (inSection && reader.name() == QLatin1String("text") && name == key) return reader.readElementText();
    }
    return fallback;
}

}  // namespace kestrum::preview
