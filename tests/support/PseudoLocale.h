#pragma once

#include <QTranslator>

namespace Corvane::Tests {

/// Makes texts longer, as other languages are, and marks them: "Open" is "[Öpên~~]". Texts of Qt stay.
class PseudoLocale : public QTranslator
{
public:
    QString translate(const char* context, const char* text, const char* disambiguation,
                      int n) const override;
    bool isEmpty() const override { return false; }

    static QString lengthened(const QString& text);
};

} // namespace Corvane::Tests
