#include "OssExpandableListWidget.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QMouseEvent>
#include <QVBoxLayout>

OssExpandableListHeading::OssExpandableListHeading(const QString &text, QWidget *parent)
    : QFrame(parent), m_layout(new QHBoxLayout(this)), m_label(new QLabel(text, this))
{
    m_layout->setContentsMargins(4, 2, 4, 2);
    m_layout->setSpacing(4);
    m_layout->addWidget(m_label, 1);
}

QString OssExpandableListHeading::text() const
{
    return m_label->text();
}

void OssExpandableListHeading::setText(const QString &text)
{
    m_label->setText(text);
}

void OssExpandableListHeading::insertWidget(int index, QWidget *widget)
{
    m_layout->insertWidget(qBound(0, index, m_layout->count()), widget);
}

void OssExpandableListHeading::mousePressEvent(QMouseEvent *event)
{
    if (event->button() == Qt::LeftButton)
        emit clicked();
    QFrame::mousePressEvent(event);
}

OssExpandableListWidget::OssExpandableListWidget(const QString &title, QWidget *parent)
    : QFrame(parent), m_layout(new QVBoxLayout(this))
{
    setProperty("OssExpandableListWidget", true);
    m_layout->setContentsMargins(0, 0, 0, 0);
    m_layout->setSpacing(0);
    if (!title.isNull()) {
        m_heading = new OssExpandableListHeading(title, this);
        m_layout->addWidget(m_heading);
        connect(m_heading, &OssExpandableListHeading::clicked, this,
                &OssExpandableListWidget::toggle);
    }
}

void OssExpandableListWidget::setBody(QWidget *body)
{
    if (body == m_body)
        return;
    delete m_body;
    m_body = body;
    if (body) {
        m_layout->addWidget(body);
        body->setVisible(!m_collapsed);
    }
}

void OssExpandableListWidget::collapse()
{
    if (m_collapsed)
        return;
    m_collapsed = true;
    if (m_body)
        m_body->setVisible(false);
    emit collapsedChanged(true);
}

void OssExpandableListWidget::expand()
{
    if (!m_collapsed)
        return;
    m_collapsed = false;
    if (m_body)
        m_body->setVisible(true);
    emit collapsedChanged(false);
}

void OssExpandableListWidget::toggle()
{
    if (m_collapsed)
        expand();
    else
        collapse();
}
