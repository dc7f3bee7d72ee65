#pragma once

#include "OssNgNode.h"

// A sticky note: a coloured box with a title and a label.
class OSSNODEGRAPH_EXPORT OssNgUINode : public OssNgNode
{
    Q_OBJECT
public:
    enum
    {
        Type = UserType + 105
    };
    explicit OssNgUINode(QGraphicsItem *parentItem = nullptr);
    int type() const override { return Type; }
    QString label() const { return m_label; }
    QString titleText() const { return m_title; }
    QColor backgroundColour() const { return m_background; }
    void paint(QPainter *painter, const QStyleOptionGraphicsItem *option, QWidget *widget) override;

public slots:
    void setLabel(const QString &label);
    void setTitleText(const QString &title);
    void setNodeBackgroundColour(const QColor &colour);

protected:
    void relayout() override;

private:
    QString m_label;
    QString m_title;
    QColor m_background = QColor(222, 200, 110);
};

// A dot: a small round node that routes one edge.
class OSSNODEGRAPH_EXPORT OssNgDotNode : public OssNgNode
{
    Q_OBJECT
public:
    enum
    {
        Type = UserType + 106
    };
    explicit OssNgDotNode(QGraphicsItem *parentItem = nullptr);
    int type() const override { return Type; }
    bool hitTest(const QPointF &local) const override;
    QPainterPath shape() const override;
    void paint(QPainter *painter, const QStyleOptionGraphicsItem *option, QWidget *widget) override;

protected:
    void relayout() override;
    bool showPortLabels() const override { return false; }
};
