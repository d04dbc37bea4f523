#include "PanelPictures.h"

#include <QAbstractButton>
#include <QApplication>
#include <QCheckBox>
#include <QDir>
#include <QGroupBox>
#include <QImage>
#include <QLabel>
#include <QLineEdit>
#include <QPainter>
#include <QPalette>
#include <QSet>
#include <QStyle>
#include <QStyleFactory>
#include <QTabBar>
#include <QtTest>

#include <cmath>

namespace Corvane::Tests {
namespace {

constexpr int plainDotsPerInch = 96;
constexpr double leastContrast = 3.0; // of large text, and of what is disabled
constexpr int leastColours = 8;       // antialiased text alone brings more

QPalette lightPalette()
{
    return QPalette(QColor(239, 239, 239), QColor(239, 239, 239));
}

QPalette darkPalette()
{
    QPalette palette(QColor(53, 53, 53), QColor(45, 45, 45));
    palette.setColor(QPalette::Base, QColor(35, 35, 35));
    palette.setColor(QPalette::AlternateBase, QColor(48, 48, 48));
    palette.setColor(QPalette::Text, Qt::white);
    palette.setColor(QPalette::WindowText, Qt::white);
    palette.setColor(QPalette::ButtonText, Qt::white);
    palette.setColor(QPalette::BrightText, Qt::red);
    palette.setColor(QPalette::Highlight, QColor(42, 130, 218));
    palette.setColor(QPalette::HighlightedText, Qt::white);
    palette.setColor(QPalette::PlaceholderText, QColor(160, 160, 160));
    for (const auto role : {QPalette::Text, QPalette::WindowText, QPalette::ButtonText}) {
        palette.setColor(QPalette::Disabled, role, QColor(150, 150, 150));
    }
    return palette;
}

double luminance(const QColor& colour)
{
    const auto part = [](double value) {
        return value <= 0.03928 ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * part(colour.redF()) + 0.7152 * part(colour.greenF()) +
           0.0722 * part(colour.blueF());
}

double contrast(const QColor& a, const QColor& b)
{
    const double first = luminance(a) + 0.05;
    const double second = luminance(b) + 0.05;
    return first > second ? first / second : second / first;
}

QString nameOf(const QWidget& widget)
{
    return QStringLiteral("%1 %2").arg(QLatin1String(widget.metaObject()->className()),
                                       widget.objectName());
}

bool shows(const QWidget& widget)
{
    return widget.isVisible() && !widget.visibleRegion().isEmpty();
}

// A label or button is cut off if it is smaller than it would like to be.
void checkTexts(const QWidget& widget, QStringList* complaints)
{
    const auto check = [complaints](const QWidget& one, const QString& text, bool wraps) {
        if (!shows(one) || text.isEmpty()) {
            return;
        }
        const QSize wanted = wraps ? QSize(0, one.heightForWidth(one.width())) : one.sizeHint();
        if (one.width() < wanted.width() || one.height() < wanted.height()) {
            *complaints << QStringLiteral("%1 is cut off: %2").arg(nameOf(one), text);
        }
        const QPalette palette = one.palette();
        const bool disabled = !one.isEnabled();
        if (!disabled && contrast(palette.color(one.foregroundRole()),
                                  palette.color(one.backgroundRole())) < leastContrast)
        {
            *complaints << QStringLiteral("%1 cannot be read: %2").arg(nameOf(one), text);
        }
    };
    for (const QLabel* label : widget.findChildren<QLabel*>()) {
        check(*label, label->text(), label->wordWrap());
    }
    for (const QAbstractButton* button : widget.findChildren<QAbstractButton*>()) {
        check(*button, button->text(), false);
    }
    for (const QGroupBox* box : widget.findChildren<QGroupBox*>()) {
        const int room = box->width();
        if (shows(*box) && room < box->fontMetrics().horizontalAdvance(box->title())) {
            *complaints << QStringLiteral("%1 is cut off: %2").arg(nameOf(*box), box->title());
        }
    }
    for (const QLineEdit* line : widget.findChildren<QLineEdit*>()) {
        if (shows(*line) && line->height() < line->fontMetrics().height()) {
            *complaints << nameOf(*line) + QStringLiteral(" is too low for its text");
        }
    }
    for (const QTabBar* bar : widget.findChildren<QTabBar*>()) {
        for (int i = 0; shows(*bar) && i < bar->count(); ++i) {
            if (bar->tabRect(i).width() < bar->fontMetrics().horizontalAdvance(bar->tabText(i))) {
                *complaints << QStringLiteral("tab is cut off: ") + bar->tabText(i);
            }
        }
    }
}

QImage pictureOf(QWidget& widget, int scale)
{
    QImage picture(widget.size() * scale, QImage::Format_ARGB32_Premultiplied);
    picture.setDevicePixelRatio(scale);
    picture.fill(Qt::transparent);
    widget.render(&picture);
    return picture;
}

int coloursOf(const QImage& picture)
{
    QSet<QRgb> colours;
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x) {
            colours.insert(picture.pixel(x, y));
        }
    }
    return colours.size();
}

} // namespace

QStringList textComplaints(const QWidget& widget)
{
    QStringList complaints;
    checkTexts(widget, &complaints);
    return complaints;
}

QStringList takePictures(QWidget& widget, const QString& name)
{
    const QPalette before = QApplication::palette();
    const QString styleBefore = QApplication::style()->objectName();
    const QDir folder(QCoreApplication::applicationDirPath() + QStringLiteral("/pictures"));
    folder.mkpath(QStringLiteral("."));
    QApplication::setStyle(QStyleFactory::create(QStringLiteral("Fusion")));

    QStringList complaints;
    for (const bool dark : {false, true}) {
        const QString look = dark ? QStringLiteral("dark") : QStringLiteral("light");
        QApplication::setPalette(dark ? darkPalette() : lightPalette());
        widget.show();
        const bool isMenu = widget.windowType() == Qt::Popup; // these the platform does not expose
        if (!isMenu && !QTest::qWaitForWindowExposed(widget.window())) {
            complaints << QStringLiteral("it is not shown");
            break;
        }
        QCoreApplication::processEvents(); // polishes and lays out
        QStringList found = textComplaints(widget);
        for (const int scale : {1, 2}) {
            const QString file =
                QStringLiteral("%1-%2-%3.png").arg(name, look).arg(plainDotsPerInch * scale);
            const QImage picture = pictureOf(widget, scale);
            if (!picture.save(folder.filePath(file))) {
                found << file + QStringLiteral(" could not be written");
            }
            if (coloursOf(picture) < leastColours) {
                found << file + QStringLiteral(" shows nothing");
            }
        }
        for (const QString& line : qAsConst(found)) {
            complaints << look + QStringLiteral(": ") + line;
        }
    }
    QApplication::setStyle(QStyleFactory::create(styleBefore));
    QApplication::setPalette(before);
    return complaints;
}

} // namespace Corvane::Tests
