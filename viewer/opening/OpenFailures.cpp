#include <viewer/opening/OpenFailures.h>

#include <QMessageBox>
#include <QTimer>

namespace Corvane::Viewer {
namespace {

// Failures that come together are shown together.
constexpr int gatheringMilliseconds = 150;
constexpr int mostLines = 20;

// GDAL begins many of its reasons with the name that stands before them here.
QString withoutName(const QString& source, const QString& reason)
{
    const QString name = QString("`%1' ").arg(source);
    return reason.startsWith(name) ? reason.mid(name.size()) : reason;
}

} // namespace

OpenFailures::OpenFailures(QWidget* parent) : QObject(parent), window(parent) {}

void OpenFailures::add(const QString& source, const QString& reason)
{
    lines << QString("%1: %2").arg(source, withoutName(source, reason));
    if (!isGathering) {
        isGathering = true;
        QTimer::singleShot(gatheringMilliseconds, this, &OpenFailures::showBox);
    }
}

void OpenFailures::showBox()
{
    isGathering = false;
    if (lines.isEmpty()) {
        return; // the box that showed them was closed meanwhile
    }
    if (!box) {
        box = new QMessageBox(QMessageBox::Warning, tr("Open"), QString(), QMessageBox::Ok, window);
        box->setObjectName("openFailures");
        box->setAttribute(Qt::WA_DeleteOnClose);
        box->setTextFormat(Qt::PlainText);
        connect(box, &QMessageBox::finished, this, [this] {
            lines.clear();
            box = nullptr;
        });
    }
    QStringList shown = lines.mid(0, mostLines);
    if (lines.size() > mostLines) {
        shown << tr("and %n more", nullptr, lines.size() - mostLines);
    }
    box->setText(lines.size() == 1 ? tr("This could not be opened:")
                                   : tr("These could not be opened:"));
    box->setInformativeText(shown.join('\n'));
    box->open();
}

} // namespace Corvane::Viewer
