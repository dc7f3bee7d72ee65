#include "OssNgStyle.h"

#include <QFontMetricsF>

OssNgStyle *OssNgStyle::instance()
{
    static OssNgStyle *style = new OssNgStyle;
    return style;
}

OssNgStyle::OssNgStyle(QObject *parent)
    : QObject(parent), m_nodeTop(92, 96, 104), m_nodeBottom(64, 67, 74)
{
    m_labelFont.setPointSizeF(7);
    m_titleTextHeight = QFontMetricsF(m_titleFont).height();
    m_labelTextHeight = QFontMetricsF(m_labelFont).height();
    const auto add = [this](const char *category, QColor top) {
        m_categories.insert(QString::fromLatin1(category), {top, top.darker(140)});
    };
    add("Paint", QColor(176, 84, 84));
    add("TeleportBroadcast", QColor(64, 140, 150));
    add("TeleportReceiver", QColor(64, 120, 150));
    add("Layer", QColor(128, 92, 160));
    add("Filter", QColor(80, 112, 170));
    add("Adjust", QColor(90, 140, 110));
    add("Procedural", QColor(160, 130, 70));
    add("Mask", QColor(120, 120, 120));
    add("Math", QColor(100, 100, 140));
    add("Environment", QColor(70, 130, 120));
    add("Shaders", QColor(150, 70, 110));
    add("MultiChannelMerge", QColor(140, 100, 170));
    add("MultiChannelBakePoint", QColor(170, 120, 60));
    add("MultiChannelBottomTransparency", QColor(110, 110, 150));
    add("MultiChannelMaterial", QColor(160, 80, 120));
    add("MultiChannelInvalid", QColor(200, 40, 40));
}

QPair<QColor, QColor> OssNgStyle::categoryColors(const QString &category) const
{
    return m_categories.value(category, {m_nodeTop, m_nodeBottom});
}

void OssNgStyle::setCategoryColors(const QString &category, const QColor &top, const QColor &bottom)
{
    m_categories.insert(category, {top, bottom});
    emit colorsUpdated();
}

void OssNgStyle::setDefaultNodeColors(const QColor &top, const QColor &bottom)
{
    m_nodeTop = top;
    m_nodeBottom = bottom;
    emit colorsUpdated();
}
