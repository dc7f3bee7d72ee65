#pragma once

#include "OssNodeGraphExport.h"

#include <QColor>
#include <QFont>
#include <QHash>
#include <QObject>
#include <QPair>

// Colours and metrics of the node graph, shared by every view.
class OSSNODEGRAPH_EXPORT OssNgStyle : public QObject
{
    Q_OBJECT
public:
    static OssNgStyle *instance();

    // Node body colours (top and bottom of the gradient).
    QColor defaultNodeTopColor() const { return m_nodeTop; }
    QColor defaultNodeBottomColor() const { return m_nodeBottom; }
    // A category's colours, or the defaults for an unknown category.
    QPair<QColor, QColor> categoryColors(const QString &category) const;
    void setCategoryColors(const QString &category, const QColor &top, const QColor &bottom);
    void setDefaultNodeColors(const QColor &top, const QColor &bottom);

    QColor backgroundColor() const { return QColor(38, 38, 40); }
    QColor gridColor() const { return QColor(48, 48, 51); }
    QColor textColor() const { return QColor(230, 230, 230); }
    QColor selectedColor() const { return QColor(255, 176, 40); }
    QColor hoveredColor() const { return QColor(120, 200, 255); }
    QColor edgeColor() const { return QColor(170, 170, 170); }
    QColor activeEdgeColor() const { return QColor(255, 220, 90); }
    QColor bypassedEdgeColor() const { return QColor(110, 110, 110); }
    QColor sharedEdgeColor() const { return QColor(120, 220, 140); }
    QColor portColor() const { return QColor(200, 200, 200); }
    QColor usedPortColor() const { return QColor(255, 200, 80); }

    // Metrics in scene units.
    int nodeWidth() const { return 150; }
    int nodeHeight() const { return 44; }
    int portRadius() const { return 5; }
    int portRowHeight() const { return 18; }
    int gridSize() const { return 20; }
    // Vertical spacing used to find a free spot: the integer and the real part are added.
    int verticalSpacing() const { return 40; }
    double verticalSpacingFactor() const { return 0.5; }
    // Horizontal spacing between a backdrop and the node it is placed beside.
    int horizontalSpacing() const { return 60; }
    // Below this zoom, nodes and edges are drawn as plain shapes without ports or text.
    double levelOfDetailThreshold() const { return 0.15; }
    // Below this zoom, nodes show their ports but no text.
    double textThreshold() const { return 0.45; }
    // Fonts of node titles (which node sizes are measured with) and of port labels. Items set
    // them before drawing text: the views do not restore the painter between items.
    QFont titleFont() const { return m_titleFont; }
    QFont labelFont() const { return m_labelFont; }
    // Line heights of the two fonts, in scene units at scale 1.
    qreal titleTextHeight() const { return m_titleTextHeight; }
    qreal labelTextHeight() const { return m_labelTextHeight; }
    // Text of nodes is drawn while it is at least this many pixels tall on screen; below that
    // it could not be read and only costs time.
    qreal minimumTextPixels() const { return 7; }
    // Backdrop titles and sticky-note text, by which artists find their way in a big graph, are
    // drawn at least this many pixels tall at every zoom.
    qreal landmarkTextPixels() const { return 13; }

signals:
    void colorsUpdated();

private:
    explicit OssNgStyle(QObject *parent = nullptr);
    QFont m_titleFont;
    QFont m_labelFont;
    qreal m_titleTextHeight = 0;
    qreal m_labelTextHeight = 0;
    QColor m_nodeTop;
    QColor m_nodeBottom;
    QHash<QString, QPair<QColor, QColor>> m_categories;
};
