#pragma once

#include "OssGuiExport.h"

#include <QFrame>

class QHBoxLayout;
class QLabel;
class QVBoxLayout;

// The clickable title row of an expandable list: a text and room for small buttons.
class OSSGUI_EXPORT OssExpandableListHeading : public QFrame
{
    Q_OBJECT
public:
    explicit OssExpandableListHeading(const QString &text, QWidget *parent = nullptr);

    QString text() const;
    void setText(const QString &text);
    // Puts a widget into the row at Index (0 is the left end).
    void insertWidget(int index, QWidget *widget);

signals:
    void clicked();

protected:
    void mousePressEvent(QMouseEvent *event) override;

private:
    QHBoxLayout *m_layout = nullptr;
    QLabel *m_label = nullptr;
};

// A collapsible panel: a heading over a body. Carries the dynamic property
// "OssExpandableListWidget" = true so style sheets can address it.
class OSSGUI_EXPORT OssExpandableListWidget : public QFrame
{
    Q_OBJECT
public:
    explicit OssExpandableListWidget(const QString &title = QString(), QWidget *parent = nullptr);

    // The heading, or null for a panel without one.
    OssExpandableListHeading *heading() const { return m_heading; }
    void setBody(QWidget *body);
    QWidget *body() const { return m_body; }
    bool isCollapsed() const { return m_collapsed; }

public slots:
    void collapse();
    void expand();
    void toggle();

signals:
    void collapsedChanged(bool collapsed);

private:
    QVBoxLayout *m_layout = nullptr;
    OssExpandableListHeading *m_heading = nullptr;
    QWidget *m_body = nullptr;
    bool m_collapsed = false;
};
