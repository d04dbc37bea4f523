#pragma once

#include <viewer/measuring/MeasureText.h>

#include <QFrame>

class QComboBox;
class QHBoxLayout;
class QLabel;
class QPushButton;

namespace Corvane::Viewer {

/// Shows what was measured, in a corner of the map, and what the user wants to have measured. Keeps
/// the choices in the settings. GUI thread only.
class MeasurePanel : public QFrame
{
    Q_OBJECT
public:
    explicit MeasurePanel(QWidget* view);

    MeasureKind getKind() const;
    MeasureUnits getUnits() const;
    MeasureSurface getSurface() const;

    /// points is how many the measurement has. The surface can be chosen only where there is a plane.
    void showMeasurement(const Measurement& measurement, int points, bool hasPlane);

signals:
    void chosen(); ///< another kind, other units or another surface
    void copyRequested();
    void closeRequested();

private:
    QComboBox* addChoice(const QString& name, const QString& meaning, const QStringList& texts,
                         const char* settingsKey, const QStringList& keys);
    QLabel* addResult(const QString& name);
    QHBoxLayout* addButtons();

    QComboBox* kind;
    QComboBox* units;
    QComboBox* surface;
    QLabel* result;
    QLabel* details;
    QLabel* basis;
    QPushButton* copyButton;
};

} // namespace Corvane::Viewer
