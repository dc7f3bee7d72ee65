#include "OssNgExtendedNode.h"

#include "OssNgEdge.h"
#include "OssNgStyle.h"

#include <QPainter>
#include <QStyleOptionGraphicsItem>

OssNgExtendedNode::OssNgExtendedNode(QGraphicsItem *parentItem) : OssNgNode(parentItem)
{
    setFlow(Flow::Horizontal);
    connect(OssNgStyle::instance(), &OssNgStyle::colorsUpdated, this, [this] { update(); });
}

void OssNgExtendedNode::setPortListMode(PortListMode mode)
{
    if (mode == m_portListMode)
        return;
    m_portListMode = mode;
    // Graphs run left to right; only the mode without a port list turns the node to run top
    // to bottom.
    setFlow(mode == PortListHidden ? Flow::Vertical : Flow::Horizontal);
    applyPortVisibility();
}

void OssNgExtendedNode::setPortListModeFromInt(int mode)
{
    if (mode >= PortListShown && mode <= PortListExpanded)
        setPortListMode(static_cast<PortListMode>(mode));
}

void OssNgExtendedNode::cyclePortListMode()
{
    const int last = m_multiChannelModes ? PortListExpanded : PortListHidden;
    const int next = m_portListMode >= last ? PortListShown : m_portListMode + 1;
    setPortListMode(static_cast<PortListMode>(next));
    emit nodePortListModeChanged(next);
}

void OssNgExtendedNode::applyPortVisibility()
{
    // Which ports show depends on the mode; folded modes keep the preferred ports and, in the
    // connected mode, those with edges.
    const QString preferredInput = preferredInputPort();
    const QString preferredOutput = preferredOutputPort();
    m_relayingOut = true;
    for (OssNgPort &port : inputPortVector()) {
        bool visible = true;
        if (m_portListMode == PortListFolded)
            visible = port.name == preferredInput;
        else if (m_portListMode == PortListConnected)
            visible = port.name == preferredInput || input(port.name);
        port.visible = visible;
    }
    for (OssNgPort &port : outputPortVector()) {
        bool visible = true;
        if (m_portListMode == PortListFolded)
            visible = port.name == preferredOutput;
        else if (m_portListMode == PortListConnected)
            visible = port.name == preferredOutput || port.used;
        port.visible = visible;
    }
    m_relayingOut = false;
    OssNgNode::relayout();
}

void OssNgExtendedNode::relayout()
{
    if (m_relayingOut)
        return;
    if (m_portListMode == PortListFolded || m_portListMode == PortListConnected)
        applyPortVisibility();
    else
        OssNgNode::relayout();
}

bool OssNgExtendedNode::showPortLabels() const
{
    return m_portListMode != PortListHidden;
}

void OssNgExtendedNode::setCategory(const QString &category)
{
    m_category = category;
    update();
}

QBrush OssNgExtendedNode::fillBrush() const
{
    // Explicit colours win; otherwise the category's.
    QPair<QColor, QColor> colors = OssNgStyle::instance()->categoryColors(m_category);
    const QColor top = OssNgNode::topColor();
    const QColor bottom = OssNgNode::bottomColor();
    const OssNgStyle *style = OssNgStyle::instance();
    if (top != style->defaultNodeTopColor())
        colors.first = top;
    if (bottom != style->defaultNodeBottomColor())
        colors.second = bottom;
    if (m_marks[DisabledMark]) {
        colors.first = colors.first.darker(180);
        colors.second = colors.second.darker(180);
    }
    QLinearGradient gradient(0, 0, 0, nodeSize().height());
    gradient.setColorAt(0, colors.first);
    gradient.setColorAt(1, colors.second);
    return QBrush(gradient);
}

QColor OssNgExtendedNode::farColor() const
{
    const QColor top = OssNgNode::topColor();
    if (top != OssNgStyle::instance()->defaultNodeTopColor())
        return top;
    return OssNgStyle::instance()->categoryColors(m_category).first;
}

void OssNgExtendedNode::setPixmap(const QPixmap &pixmap, const QPoint &offset)
{
    m_pixmap = pixmap;
    m_scaledPixmap = pixmap.isNull() ? QPixmap() : pixmap.scaledToHeight(16);
    m_pixmapOffset = offset;
    relayout();
    update();
}

qreal OssNgExtendedNode::titleMargin() const
{
    return m_scaledPixmap.isNull() ? 0.0 : m_scaledPixmap.width() + 6.0;
}

int OssNgExtendedNode::addIcon(const QString &name)
{
    m_icons.append(Icon{name, false});
    update();
    return m_icons.size() - 1;
}

void OssNgExtendedNode::setIconVisible(int index, bool visible)
{
    if (index < 0 || index >= m_icons.size() || m_icons.at(index).visible == visible)
        return;
    m_icons[index].visible = visible;
    update();
}

bool OssNgExtendedNode::iconVisible(int index) const
{
    return index >= 0 && index < m_icons.size() && m_icons.at(index).visible;
}

QStringList OssNgExtendedNode::iconNames() const
{
    QStringList names;
    for (const Icon &icon : m_icons)
        names.append(icon.name);
    return names;
}

void OssNgExtendedNode::setMark(Mark mark, bool on)
{
    if (m_marks[mark] == on)
        return;
    m_marks[mark] = on;
    update();
}

void OssNgExtendedNode::setPortCluster(const QString &port, const QString &cluster)
{
    for (OssNgPort &entry : inputPortVector())
        if (entry.name == port)
            entry.cluster = cluster;
    for (OssNgPort &entry : outputPortVector())
        if (entry.name == port)
            entry.cluster = cluster;
    update();
}

void OssNgExtendedNode::clearPortClusters()
{
    for (OssNgPort &entry : inputPortVector())
        entry.cluster.clear();
    for (OssNgPort &entry : outputPortVector())
        entry.cluster.clear();
    update();
}

QStringList OssNgExtendedNode::portClusters() const
{
    QStringList clusters;
    for (const QString &name : inputPortNames())
        if (const OssNgPort *port = inputPort(name))
            if (!port->cluster.isEmpty() && !clusters.contains(port->cluster))
                clusters.append(port->cluster);
    for (const QString &name : outputPortNames())
        if (const OssNgPort *port = outputPort(name))
            if (!port->cluster.isEmpty() && !clusters.contains(port->cluster))
                clusters.append(port->cluster);
    return clusters;
}

void OssNgExtendedNode::refresh()
{
    relayout();
    update();
}

void OssNgExtendedNode::updateShape()
{
    prepareGeometryChange();
    update();
}

void OssNgExtendedNode::copyFrom(const OssNgNode *other)
{
    OssNgNode::copyFrom(other);
    if (const auto *extended = qobject_cast<const OssNgExtendedNode *>(other)) {
        setPortListMode(extended->portListMode());
        setCategory(extended->category());
        setPixmap(extended->pixmap(), extended->pixmapOffset());
    }
}

void OssNgExtendedNode::paint(QPainter *painter, const QStyleOptionGraphicsItem *option,
                              QWidget *widget)
{
    OssNgNode::paint(painter, option, widget);
    const qreal detail = option->levelOfDetailFromTransform(painter->worldTransform());
    if (detail < OssNgStyle::instance()->levelOfDetailThreshold())
        return;
    const QRectF body = bodyRect();
    if (!m_pixmap.isNull())
        // The icon goes before the title, clear of the input labels.
        painter->drawPixmap(
            QPointF(titleRect().left(), (body.height() - m_scaledPixmap.height()) / 2) +
                m_pixmapOffset,
            m_scaledPixmap);
    // Marks as small badges along the bottom edge, icons along the top.
    struct Badge
    {
        bool on;
        QColor color;
        const char *letter;
    };
    const Badge badges[] = {
        {m_marks[SystemShaderMark], QColor(90, 160, 220), "S"},
        {m_marks[CachedMark], QColor(120, 200, 120), "C"},
        {m_marks[GuiActiveMark], QColor(240, 240, 120), "A"},
        {m_marks[BakedMark], QColor(80, 200, 80), "B"},
        {m_marks[StaleMark], QColor(240, 150, 40), "!"},
    };
    qreal x = body.right() - 14;
    QFont font = OssNgStyle::instance()->titleFont();
    font.setPointSizeF(6.5);
    painter->setFont(font);
    for (const Badge &badge : badges) {
        if (!badge.on)
            continue;
        const QRectF box(x, body.bottom() - 14, 11, 11);
        painter->setPen(Qt::NoPen);
        painter->setBrush(badge.color);
        painter->drawEllipse(box);
        painter->setPen(Qt::black);
        painter->drawText(box, Qt::AlignCenter, QString::fromLatin1(badge.letter));
        x -= 13;
    }
    qreal iconX = body.right() - 14;
    for (const Icon &icon : m_icons) {
        if (!icon.visible)
            continue;
        const QRectF box(iconX, body.top() + 3, 11, 11);
        painter->setPen(QPen(OssNgStyle::instance()->textColor(), 1));
        painter->setBrush(Qt::NoBrush);
        painter->drawRect(box);
        painter->drawText(box, Qt::AlignCenter, icon.name.left(1));
        iconX -= 13;
    }
    if (m_marks[DisabledMark]) {
        painter->setPen(QPen(QColor(220, 60, 60), 2));
        painter->drawLine(body.topLeft(), body.bottomRight());
    }
}
