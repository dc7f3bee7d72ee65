#include "OssSnNodeGraphWidget.h"

#include "OssShaderNetworkView.h"
#include "OssSnGroupNodeGraphViewContext.h"

#include <OssDebug.h>
#include <OssEntity.h>
#include <OssShaderNetwork.h>
#include <OssShaderNetworkManager.h>
#include <OssSnGroupNode.h>

#include <QMouseEvent>
#include <QTabBar>

OssSnNodeGraphWidget::OssSnNodeGraphWidget(const QString &controlType, QWidget *parent)
    : QTabWidget(parent)
{
    m_rootView = new OssShaderNetworkView(this);
    m_controlType = controlType;
    setWindowTitle(tr("Node Graph"));
    setMinimumSize(100, 100);
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Preferred);
    setTabsClosable(true);
    connect(this, &QTabWidget::tabCloseRequested, this, &OssSnNodeGraphWidget::hideTab);
    connect(this, &QTabWidget::currentChanged, this, &OssSnNodeGraphWidget::onCurrentTabChanged);
    addRootView();
}

OssSnNodeGraphWidget::~OssSnNodeGraphWidget() = default;

void OssSnNodeGraphWidget::addRootView()
{
    insertTab(0, m_rootView, QStringLiteral("Root"));
    // The root tab can never be closed.
    for (QTabBar::ButtonPosition side : {QTabBar::LeftSide, QTabBar::RightSide})
        if (QWidget *button = tabBar()->tabButton(0, side))
            button->hide();
}

OssShaderNetworkView *OssSnNodeGraphWidget::currentView() const
{
    return qobject_cast<OssShaderNetworkView *>(currentWidget());
}

void OssSnNodeGraphWidget::refreshCurrentChanged()
{
    emit currentChanged(currentIndex());
}

void OssSnNodeGraphWidget::selectTabForNetwork(OssShaderNetwork *network)
{
    for (int i = 0; i < count(); ++i) {
        auto *tabView = qobject_cast<OssShaderNetworkView *>(widget(i));
        if (tabView && tabView->network() == network) {
            setCurrentIndex(i);
            return;
        }
    }
}

void OssSnNodeGraphWidget::hideTab(int Index)
{
    removeTab(Index);
}

QString OssSnNodeGraphWidget::rootTabText(OssShaderNetwork *network, QString *toolTip)
{
    QString prefix;
    QString name;
    if (network && network->geoEntity()) {
        name = network->geoEntity()->name();
        QString shown = name;
        if (shown.size() > 40)
            shown = shown.left(20) + QStringLiteral("...") + shown.right(20);
        prefix = shown + QStringLiteral(" - ");
    }
    if (toolTip)
        *toolTip = name;
    return QStringLiteral("%1Root").arg(prefix, 0, QLatin1Char(' '));
}

void OssSnNodeGraphWidget::updateRootLevelText(OssShaderNetwork *Network)
{
    if (widget(0) != m_rootView)
        return;
    QString toolTip;
    setTabText(0, rootTabText(Network, &toolTip));
    setTabToolTip(0, toolTip);
}

void OssSnNodeGraphWidget::setNavigationControlType(QString ControlType)
{
    m_controlType = ControlType;
    OSS_DEBUG("[ -- ] Nodegraph navigation set to '%s'", m_controlType.toLocal8Bit().constData());
    for (int i = 0; i < count(); ++i)
        if (auto *tabView = qobject_cast<OssShaderNetworkView *>(widget(i)))
            tabView->setNavigationControlType(m_controlType);
}

void OssSnNodeGraphWidget::showGroupNodeSubgraph(const OssSnGroupNode *GroupNode)
{
    if (!GroupNode) {
        OSS_DEBUG("GroupNode is NULL");
        return;
    }
    auto *context = qobject_cast<OssSnGroupNodeGraphViewContext *>(
        GroupNode->context(QStringLiteral("NodeGraphView")));
    if (!context) {
        OSS_DEBUG("Context is NULL");
        return;
    }
    context->showGroupNodeTab();
}

void OssSnNodeGraphWidget::onCurrentTabChanged(int Index)
{
    if (auto *tabView = qobject_cast<OssShaderNetworkView *>(widget(Index)))
        OssShaderNetworkManager::instance()->setCurrentViewNetwork(tabView->network());
    setNavigationControlType(m_controlType);
}

void OssSnNodeGraphWidget::mousePressEvent(QMouseEvent *event)
{
    // The position is taken in this widget's coordinates on purpose: a press outside any tab
    // leaves no tab current.
    if (event->button() == Qt::LeftButton)
        setCurrentIndex(tabBar()->tabAt(event->pos()));
    QTabWidget::mousePressEvent(event);
}
