#include "OssNumberAttributeEditor.h"

#include <QHBoxLayout>
#include <QLineEdit>
#include <QSlider>

#include <cmath>

namespace {

// Slider positions of a float attribute; an int attribute has one position per value.
constexpr int FloatSteps = 1000;

} // namespace

OssNumberAttributeEditor::OssNumberAttributeEditor(const OssAttributeSpec &spec, QWidget *parent)
    : OssAttributeEditor(spec, parent), m_field(new QLineEdit(this)),
      m_slider(new QSlider(Qt::Horizontal, this))
{
    auto *layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(4);
    m_field->setMaximumWidth(80);
    m_field->setObjectName(QStringLiteral("value"));
    m_slider->setObjectName(QStringLiteral("slider"));
    layout->addWidget(m_field);
    layout->addWidget(m_slider, 1);
    passUndoKeys(m_field);
    if (spec.minimum.isValid())
        m_low = spec.minimum.toDouble();
    if (spec.maximum.isValid())
        m_high = spec.maximum.toDouble();
    else if (isInt())
        m_high = qMax(m_low + 1.0, 100.0);
    else
        m_high = qMax(m_low + 1.0, 1.0);
    if (!isInt())
        m_slider->setRange(0, FloatSteps);
    fitSliderTo(m_low);

    connect(m_field, &QLineEdit::editingFinished, this,
            &OssNumberAttributeEditor::onEditingFinished);
    connect(m_slider, &QSlider::valueChanged, this, &OssNumberAttributeEditor::onSliderMoved);
    connect(m_slider, &QSlider::sliderReleased, this, &OssNumberAttributeEditor::onSliderReleased);
}

void OssNumberAttributeEditor::setValue(const QVariant &value)
{
    bool ok = false;
    const double number = value.toDouble(&ok);
    showValue(ok ? number : 0.0);
    setRefused(m_field, QString());
}

QVariant OssNumberAttributeEditor::value() const
{
    return variant(m_value);
}

void OssNumberAttributeEditor::onEditingFinished()
{
    const QString typed = m_field->text().trimmed();
    bool ok = false;
    double number = 0.0;
    if (isInt()) {
        number = typed.toInt(&ok);
    } else {
        number = typed.toDouble(&ok);
        ok = ok && std::isfinite(number);
    }
    if (!ok) {
        setRefused(m_field, isInt() ? tr("\"%1\" is not a whole number").arg(typed)
                                    : tr("\"%1\" is not a number").arg(typed));
        return;
    }
    setRefused(m_field, QString());
    const OssAttributeSpec &attribute = spec();
    if (attribute.minimum.isValid() && number < attribute.minimum.toDouble()) {
        number = attribute.minimum.toDouble();
        reportClamped(typed, text(number), false);
    } else if (attribute.maximum.isValid() && number > attribute.maximum.toDouble()) {
        number = attribute.maximum.toDouble();
        reportClamped(typed, text(number), true);
    }
    if (number == m_value) {
        showValue(number);
        return;
    }
    showValue(number);
    emit edited(variant(number), true);
}

void OssNumberAttributeEditor::onSliderMoved(int position)
{
    if (m_showing)
        return;
    const double number = valueAt(position);
    if (number == m_value)
        return;
    m_value = number;
    m_field->setText(text(number));
    setRefused(m_field, QString());
    // A drag previews every step; a click or a key on the slider is a change of its own.
    emit edited(variant(number), !m_slider->isSliderDown());
}

void OssNumberAttributeEditor::onSliderReleased()
{
    emit edited(variant(m_value), true);
}

void OssNumberAttributeEditor::fitSliderTo(double value)
{
    const OssAttributeSpec &attribute = spec();
    if (!attribute.minimum.isValid())
        m_low = qMin(m_low, value);
    // An unbounded value sits mid-way on its slider, leaving room to drag either way; the span
    // stays put while the slider is held so the handle does not run from the pointer.
    if (!attribute.maximum.isValid())
        m_high = qMax(m_high, m_slider->isSliderDown() || value <= 0 ? value : value * 2);
    if (isInt())
        m_slider->setRange(static_cast<int>(m_low), static_cast<int>(m_high));
}

void OssNumberAttributeEditor::showValue(double value)
{
    m_value = value;
    m_showing = true;
    fitSliderTo(value);
    m_slider->setValue(positionOf(value));
    m_field->setText(text(value));
    m_showing = false;
}

double OssNumberAttributeEditor::valueAt(int position) const
{
    if (isInt())
        return position;
    // Slider values are kept as short as the field shows them, so the two agree.
    return text(m_low + (m_high - m_low) * position / FloatSteps).toDouble();
}

int OssNumberAttributeEditor::positionOf(double value) const
{
    if (isInt())
        return static_cast<int>(std::lround(value));
    if (m_high <= m_low)
        return 0;
    return static_cast<int>(std::lround((value - m_low) / (m_high - m_low) * FloatSteps));
}

QString OssNumberAttributeEditor::text(double value) const
{
    return isInt() ? QString::number(static_cast<int>(std::lround(value)))
                   : QString::number(value, 'g', 6);
}

QVariant OssNumberAttributeEditor::variant(double value) const
{
    if (isInt())
        return static_cast<int>(std::lround(value));
    return value;
}
