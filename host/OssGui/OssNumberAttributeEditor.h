#pragma once

#include "OssAttributeEditor.h"

class QLineEdit;
class QSlider;

// The editor of an int or float attribute: a field for typing the value and a slider for
// dragging it. A typed value outside the attribute's range is clamped (and the user told so);
// a drag previews each step and keeps the value where the slider is let go.
class OSSGUI_EXPORT OssNumberAttributeEditor : public OssAttributeEditor
{
    Q_OBJECT
public:
    explicit OssNumberAttributeEditor(const OssAttributeSpec &spec, QWidget *parent = nullptr);

    void setValue(const QVariant &value) override;
    QVariant value() const override;

    QLineEdit *field() const { return m_field; }
    QSlider *slider() const { return m_slider; }
    // The values at the slider's two ends.
    double sliderMinimum() const { return m_low; }
    double sliderMaximum() const { return m_high; }

private:
    bool isInt() const { return spec().kind == OssAttributeSpec::Int; }
    void onEditingFinished();
    void onSliderMoved(int position);
    void onSliderReleased();
    // Widens the slider's span so that Value lies on it (bounded attributes span their range).
    void fitSliderTo(double value);
    void showValue(double value);
    double valueAt(int position) const;
    int positionOf(double value) const;
    QString text(double value) const;
    QVariant variant(double value) const;

    QLineEdit *m_field = nullptr;
    QSlider *m_slider = nullptr;
    double m_value = 0.0;
    double m_low = 0.0;
    double m_high = 1.0;
    bool m_showing = false;
};
