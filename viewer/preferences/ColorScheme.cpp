#include <viewer/preferences/ColorScheme.h>

#include <corvane/core/Application.h>

#include <QPalette>
#include <QSettings>
#include <QStringList>
#include <QStyle>
#include <QToolTip>

namespace Corvane::Viewer {
namespace {

const char* const schemeKey = "Viewer/colorScheme";
const char* const desktopScheme = "desktop";
const char* const lightScheme = "light";
const char* const darkScheme = "dark";

constexpr QRgb darkWindow = 0xff2d2f33;
constexpr QRgb darkBase = 0xff222427;
constexpr QRgb darkButton = 0xff3a3d42;
constexpr QRgb darkText = 0xffe6e6e6;
constexpr QRgb darkFaint = 0xff8b8f96;
constexpr QRgb darkAccent = 0xff3d7dca;
constexpr QRgb darkLink = 0xff6cb0ff;

QPalette lightPalette()
{
    QPalette colors(QColor(0xff, 0xff, 0xff), QColor(0xef, 0xef, 0xef));
    colors.setColor(QPalette::WindowText, Qt::black);
    colors.setColor(QPalette::Text, Qt::black);
    colors.setColor(QPalette::ButtonText, Qt::black);
    colors.setColor(QPalette::Base, Qt::white);
    colors.setColor(QPalette::AlternateBase, QColor(0xf5, 0xf5, 0xf5));
    colors.setColor(QPalette::Highlight, QColor(0x30, 0x8c, 0xc6));
    colors.setColor(QPalette::HighlightedText, Qt::white);
    for (const QPalette::ColorRole role :
         {QPalette::WindowText, QPalette::Text, QPalette::ButtonText}) {
        colors.setColor(QPalette::Disabled, role, QColor(0x80, 0x80, 0x80));
    }
    return colors;
}

QPalette darkPalette()
{
    QPalette colors{QColor(darkButton), QColor(darkWindow)};
    for (const QPalette::ColorRole role :
         {QPalette::WindowText, QPalette::Text, QPalette::ButtonText, QPalette::ToolTipText})
    {
        colors.setColor(role, QColor(darkText));
        colors.setColor(QPalette::Disabled, role, QColor(darkFaint));
    }
    colors.setColor(QPalette::Base, QColor(darkBase));
    colors.setColor(QPalette::AlternateBase, QColor(darkWindow));
    colors.setColor(QPalette::ToolTipBase, QColor(darkButton));
    colors.setColor(QPalette::PlaceholderText, QColor(darkFaint));
    colors.setColor(QPalette::Highlight, QColor(darkAccent));
    colors.setColor(QPalette::HighlightedText, Qt::white);
    colors.setColor(QPalette::Disabled, QPalette::Highlight, QColor(darkButton));
    colors.setColor(QPalette::Disabled, QPalette::HighlightedText, QColor(darkFaint));
    colors.setColor(QPalette::Link, QColor(darkLink));
    colors.setColor(QPalette::LinkVisited, QColor(darkLink));
    return colors;
}

/// An empty palette stands for the desktop's.
QPalette paletteOf(const QString& scheme)
{
    if (scheme == lightScheme) {
        return lightPalette();
    }
    return scheme == darkScheme ? darkPalette() : QPalette();
}

} // namespace

QStringList colorSchemes()
{
    return {desktopScheme, lightScheme, darkScheme};
}

QString chosenColorScheme()
{
    const QString scheme =
        Application::instance()->getSettings()->value(schemeKey, desktopScheme).toString();
    return colorSchemes().contains(scheme) ? scheme : desktopScheme;
}

void chooseColorScheme(const QString& scheme)
{
    Application::instance()->getSettings()->setValue(schemeKey, scheme);
    applyColorScheme();
}

void applyColorScheme()
{
    const QPalette colors = paletteOf(chosenColorScheme());
    QApplication::setPalette(colors);
    QToolTip::setPalette(QApplication::palette());
}

} // namespace Corvane::Viewer
