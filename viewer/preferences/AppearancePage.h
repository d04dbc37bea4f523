#pragma once

#include <QWidget>

class QComboBox;
class QLabel;

namespace Corvane::Viewer {

/// The page "Appearance" of the preferences: language, colours and style of the program. GUI thread
/// only.
class AppearancePage : public QWidget
{
    Q_OBJECT
public:
    explicit AppearancePage(QWidget* parent = nullptr);

public slots:
    /// Colours and style change at once, the language with the next start.
    void apply();

private:
    QComboBox* createLanguages();
    QComboBox* createSchemes();
    QComboBox* createStyles();

    QComboBox* language;
    QComboBox* scheme;
    QComboBox* style;
    QLabel* languageNotice;
};

} // namespace Corvane::Viewer
