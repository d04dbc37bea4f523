#include <viewer/preferences/AppearancePage.h>

#include <viewer/frame/Languages.h>
#include <viewer/preferences/ColorScheme.h>

#include <corvane/core/Application.h>

#include <QComboBox>
#include <QFormLayout>
#include <QLabel>
#include <QStyle>
#include <QStyleFactory>

namespace Corvane::Viewer {

AppearancePage::AppearancePage(QWidget* parent)
    : QWidget(parent),
      language(createLanguages()),
      scheme(createSchemes()),
      style(createStyles()),
      languageNotice(new QLabel(this))
{
    setObjectName("appearancePage");
    setWindowTitle(tr("Appearance"));
    languageNotice->setObjectName("languageNoticeLabel");
    languageNotice->setWordWrap(true);
    auto* const form = new QFormLayout(this);
    form->addRow(tr("&Language:"), language);
    form->addRow(QString(), languageNotice);
    form->addRow(tr("&Colors:"), scheme);
    form->addRow(tr("&Style:"), style);
    connect(language, QOverload<int>::of(&QComboBox::currentIndexChanged), this, [this] {
        languageNotice->setText(language->currentData() == chosenLanguage()
                                    ? QString()
                                    : tr("The language changes when the program starts again."));
    });
}

QComboBox* AppearancePage::createLanguages()
{
    auto* const box = new QComboBox(this);
    box->setObjectName("languageComboBox");
    box->addItem(tr("That of the desktop"), QString());
    for (const Language& one : languages()) {
        box->addItem(one.name, one.code);
    }
    box->setCurrentIndex(qMax(0, box->findData(chosenLanguage())));
    return box;
}

QComboBox* AppearancePage::createSchemes()
{
    auto* const box = new QComboBox(this);
    box->setObjectName("colorSchemeComboBox");
    const QStringList schemes = colorSchemes();
    const QStringList names = {tr("Those of the desktop"), tr("Light"), tr("Dark")};
    for (int i = 0; i < schemes.size(); ++i) {
        box->addItem(names.at(i), schemes.at(i));
    }
    box->setCurrentIndex(box->findData(chosenColorScheme()));
    return box;
}

QComboBox* AppearancePage::createStyles()
{
    auto* const box = new QComboBox(this);
    box->setObjectName("styleComboBox");
    box->addItems(QStyleFactory::keys());
    box->setCurrentIndex(box->findText(QApplication::style()->objectName(), Qt::MatchFixedString));
    return box;
}

void AppearancePage::apply()
{
    chooseLanguage(language->currentData().toString());
    // the application keeps the style's name when it ends
    if (style->currentText().compare(QApplication::style()->objectName(), Qt::CaseInsensitive) != 0)
    {
        QApplication::setStyle(style->currentText());
        applyColorScheme();
    }
    if (scheme->currentData() != chosenColorScheme()) {
        chooseColorScheme(scheme->currentData().toString());
    }
}

} // namespace Corvane::Viewer
