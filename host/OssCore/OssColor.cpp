#include "OssColor.h"

#include <QStringList>

#include <cmath>

namespace {
// Qt registers the type when the library loads, so "OssColor" is known by name at once.
const int ossColorTypeId = qRegisterMetaType<OssColor>("OssColor");
} // namespace

OssColor::OssColor(double r, double g, double b, double a)
    : m_r(r), m_g(g), m_b(b), m_a(a), m_valid(true)
{}

OssColor::OssColor(const QColor &color)
{
    if (!color.isValid())
        return;
    color.getRgbF(&m_r, &m_g, &m_b, &m_a);
    m_valid = true;
}

QColor OssColor::toQColor() const
{
    if (!m_valid)
        return QColor();
    QColor color;
    color.setRgbF(qBound(0.0, m_r, 1.0), qBound(0.0, m_g, 1.0), qBound(0.0, m_b, 1.0),
                  qBound(0.0, m_a, 1.0));
    return color;
}

QString OssColor::toString() const
{
    if (!m_valid)
        return QString();
    return QStringLiteral("%1 %2 %3 %4")
        .arg(QString::number(m_r, 'g', 17), QString::number(m_g, 'g', 17),
             QString::number(m_b, 'g', 17), QString::number(m_a, 'g', 17));
}

OssColor OssColor::fromString(const QString &text, bool *ok)
{
    if (ok)
        *ok = false;
    const QString trimmed = text.trimmed();
    if (trimmed.isEmpty())
        return OssColor();
    const QStringList parts = trimmed.split(QRegExp(QStringLiteral("[\\s,]+")), Qt::SkipEmptyParts);
    if (parts.size() == 3 || parts.size() == 4) {
        double channels[4] = {0.0, 0.0, 0.0, 1.0};
        bool allNumbers = true;
        for (int i = 0; i < parts.size() && allNumbers; ++i) {
            channels[i] = parts.at(i).toDouble(&allNumbers);
            allNumbers = allNumbers && std::isfinite(channels[i]);
        }
        if (allNumbers) {
            if (ok)
                *ok = true;
            return OssColor(channels[0], channels[1], channels[2], channels[3]);
        }
    }
    const QColor named(trimmed);
    if (!named.isValid())
        return OssColor();
    if (ok)
        *ok = true;
    return OssColor(named);
}

bool OssColor::operator==(const OssColor &other) const
{
    if (m_valid != other.m_valid)
        return false;
    if (!m_valid)
        return true;
    return m_r == other.m_r && m_g == other.m_g && m_b == other.m_b && m_a == other.m_a;
}
