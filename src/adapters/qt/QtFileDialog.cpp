#include "adapters/qt/QtFileDialog.h"

#include <QDir>
#include <QFileDialog>

#include "adapters/qt/QtText.h"

namespace kestrum::qt {
namespace {

/// "name (*.a, *.b)|*.a;*.b" in the toolkit's form, which takes the patterns from the brackets.
QString FilterOf(const String& filter) {
    const QStringList parts = ToQt(filter).split(u'|');
    if (parts.size() < 2) return ToQt(filter);
    const QString name = parts[0].section(u'(', 0, 0).trimmed();
    return name + QStringLiteral(" (") + parts[1].split(u';', Qt::SkipEmptyParts).join(u' ') + u')';
}

}  // namespace

std::optional<String> QtFileDialog::OpenFile(const host::FileQuestion& question) {
    QString folder = ToQt(question.folder);
    if (folder.isEmpty() || !QDir(folder).exists()) folder = QDir::homePath();
    QFileDialog dialog(nullptr, ToQt(question.title), folder, FilterOf(question.filter));
    dialog.setFileMode(QFileDialog::ExistingFile);
    dialog.setWindowModality(Qt::ApplicationModal);
    bool finished = false;
    QObject::connect(&dialog, &QDialog::finished, &dialog, [&finished] { finished = true; });
    m_open = &dialog;
    dialog.open();
    m_loop.RunUntil([&finished] { return finished; });
    m_open = nullptr;
    if (dialog.result() != QDialog::Accepted || dialog.selectedFiles().isEmpty()) return std::nullopt;
    return FromQt(dialog.selectedFiles().first());
}

void QtFileDialog::Leave() {
    if (m_open) m_open->reject();
}

}  // namespace kestrum::qt
