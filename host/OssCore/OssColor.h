#pragma once

#include "OssCoreExport.h"

#include <QColor>
#include <QMetaType>
#include <QString>

// A colour with real-valued channels, written as text "r g b a" (reals in 0..1) and parsed back.
class OSSCORE_EXPORT OssColor
{
public:
    OssColor() = default;
    OssColor(double r, double g, double b, double a = 1.0);
    explicit OssColor(const QColor &color);

    double red() const { return m_r; }
    double green() const { return m_g; }
    double blue() const { return m_b; }
    double alpha() const { return m_a; }
    bool isValid() const { return m_valid; }

    QColor toQColor() const;
    QString toString() const;
    // Accepts "r g b [a]" (reals) and anything QColor accepts ("#rrggbb", "#aarrggbb", names).
    // Sets *ok to false and returns an invalid colour for other text, including the empty text.
    static OssColor fromString(const QString &text, bool *ok = nullptr);

    bool operator==(const OssColor &other) const;
    bool operator!=(const OssColor &other) const { return !(*this == other); }

private:
    double m_r = 0.0, m_g = 0.0, m_b = 0.0, m_a = 1.0;
    bool m_valid = false;
};

Q_DECLARE_METATYPE(OssColor)
