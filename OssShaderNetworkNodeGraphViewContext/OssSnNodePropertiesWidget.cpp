#include "OssSnNodePropertiesWidget.h"

#include "OssGroupNodeKnobWidget.h"
#include "OssShaderNetworkView.h"
#include "OssSnGroupNodeGraphViewContext.h"
#include "OssSnNodeGraphViewContext.h"

#include <OssActionTreeManager.h>
#include <OssDebug.h>
#include <OssExpandableListWidget.h>
#include <OssFormLayout.h>
#include <OssLayerShader.h>
#include <OssLayerShaderManager.h>
#include <OssLayerShaderUtils.h>
#include <OssMiniButton.h>
#include <OssNgNode.h>
#include <OssNodePropertyEditor.h>
#include <OssResourceInfo.h>
#include <OssSettings.h>
#include <OssSnChannelInputNode.h>
#include <OssSnGroupNode.h>
#include <OssStatusManager.h>

#include <QAction>
#include <QEvent>
#include <QHBoxLayout>
#include <QIcon>
#include <QIntValidator>
#include <QLineEdit>
#include <QMap>
#include <QPushButton>
#include <QScrollArea>
#include <QScrollBar>
#include <QToolButton>
#include <QVBoxLayout>

#include <climits>

namespace {

const char *const SettingsGroup = "OssSnNodePropertiesWidget";
const char *const MaxPanelsKey = "MaxPanels";
constexpr int DefaultMaxPanels = 10;

// The colour of a panel whose node has no GUI node.
const QColor DefaultFrameColor(0, 0, 255, 255);

// A layer shader's channel sections, in the order the panel shows them.
QList<QRegularExpression> layerShaderSectionOrder()
{
    QList<QRegularExpression> order;
    for (const char *pattern : {"Diffuse.*", "Specular.*", "Environment.*", "Ambient.*",
                                "Emissive.*", "Bump.*", "Normal.*", "Vector.*", "Displacement.*"})
        order.append(QRegularExpression(QLatin1String(pattern)));
    return order;
}

// Every expandable list inside Widget that has a heading, the widget itself included.
QList<OssExpandableListWidget *> headedLists(QWidget *widget)
{
    QList<OssExpandableListWidget *> lists;
    if (auto *list = qobject_cast<OssExpandableListWidget *>(widget))
        if (list->heading())
            lists.append(list);
    for (OssExpandableListWidget *list : widget->findChildren<OssExpandableListWidget *>())
        if (list->heading())
            lists.append(list);
    return lists;
}

} // namespace

OssSnNodePropertiesWidget::OssSnNodePropertiesWidget(OssShaderNetworkView *view, QWidget *parent)
    : QWidget(parent), m_view(view)
{
    if (!view) {
        OSS_DEBUG("View is NULL");
        return;
    }
    setWindowTitle(tr("Node Properties"));

    m_scrollArea = new QScrollArea(this);
    m_scrollArea->setWidgetResizable(true);
    auto *container = new QWidget;
    m_panelLayout = new QVBoxLayout(container);
    m_panelLayout->setContentsMargins(1, 1, 1, 1);
    m_panelLayout->setSpacing(2);
    m_panelLayout->addStretch();
    m_panelLayout->setSizeConstraint(QLayout::SetMinimumSize);
    m_scrollArea->setWidget(container);

    auto *outer = new QVBoxLayout(this);
    outer->setContentsMargins(0, 0, 0, 0);
    outer->setSpacing(1);

    auto *deleteAll = new QAction(tr("Delete All Properties"), this);
    deleteAll->setShortcut(QKeySequence(Qt::CTRL + Qt::SHIFT + Qt::Key_A));
    OssActionTreeManager *actions = OssActionTreeManager::instance();
    if (!actions->hasAction(QStringLiteral("/Ossa/NodeGraph/Delete all Properties")))
        actions->registerAction(QStringLiteral("/Ossa/NodeGraph/"), deleteAll);
    connect(deleteAll, &QAction::triggered, this, &OssSnNodePropertiesWidget::deleteAllProperties);

    auto *deleteButton = new QToolButton(this);
    deleteButton->setObjectName(QStringLiteral("deleteAllProperties"));
    deleteButton->setIcon(QIcon(OssResourceInfo::instance()->iconPath() +
                                QStringLiteral("/NodePropertiesDeleteAll.png")));
    deleteButton->setMaximumSize(24, 24);
    deleteButton->setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    deleteButton->setToolTip(tr("Remove all panels."));
    deleteButton->setWhatsThis(tr("Remove all panels."));
    deleteButton->setShortcut(deleteAll->shortcut());
    connect(deleteButton, &QToolButton::clicked, deleteAll, &QAction::trigger);

    m_maxPanels = new QLineEdit(this);
    m_maxPanels->setObjectName(QStringLiteral("maxPanels"));
    m_maxPanels->setMaximumWidth(30);
    m_maxPanels->setValidator(new QIntValidator(1, INT_MAX, m_maxPanels));
    m_maxPanels->setToolTip(tr("Max number of panels to display"));
    m_maxPanels->setWhatsThis(tr("Max number of panels to display"));
    {
        OssSettings settings;
        settings.beginGroup(QLatin1String(SettingsGroup));
        m_maxPanels->setText(
            QString::number(settings.value(QLatin1String(MaxPanelsKey), DefaultMaxPanels).toInt()));
    }
    connect(m_maxPanels, &QLineEdit::editingFinished, this,
            &OssSnNodePropertiesWidget::onMaxPanelsEditingFinished);

    auto *bar = new QHBoxLayout;
    bar->setContentsMargins(1, 1, 1, 1);
    bar->addWidget(m_maxPanels);
    bar->addWidget(deleteButton);
    bar->addStretch();
    outer->addLayout(bar);
    outer->addWidget(m_scrollArea);

    connect(view, &OssShaderNetworkView::nodeDoubleClicked, this,
            &OssSnNodePropertiesWidget::openProperty);
    connect(OssStatusManager::instance(), &OssStatusManager::endProcessing, this,
            &OssSnNodePropertiesWidget::onEndProcessing);
    setAttribute(Qt::WA_Hover);
}

QList<OssSnBaseNode *> OssSnNodePropertiesWidget::shownNodes() const
{
    QList<OssSnBaseNode *> nodes;
    if (!m_panelLayout)
        return nodes;
    for (int index = 0; index < m_panelLayout->count() - 1; ++index) {
        QWidget *widget = m_panelLayout->itemAt(index)->widget();
        for (auto it = m_panels.cbegin(); it != m_panels.cend(); ++it)
            if (it.value() == widget)
                nodes.append(it.key());
    }
    return nodes;
}

QWidget *OssSnNodePropertiesWidget::panel(OssSnBaseNode *node) const
{
    return m_panels.value(node).data();
}

int OssSnNodePropertiesWidget::panelCount() const
{
    return m_panelLayout ? m_panelLayout->count() - 1 : 0;
}

void OssSnNodePropertiesWidget::openProperty(OssSnBaseNode *Node)
{
    createPropertyWidget(Node, 0);
    emit nodeDoubledClicked();
}

void OssSnNodePropertiesWidget::showNodeProperties(OssSnBaseNode *Node)
{
    openProperty(Node);
}

void OssSnNodePropertiesWidget::showNodePropertiesAtPositionEnd(OssSnBaseNode *Node,
                                                                OssSnBaseNode *Target, bool)
{
    const int at = panelIndex(Target);
    createPropertyWidget(Node, at < 0 ? panelCount() : at + 1);
}

void OssSnNodePropertiesWidget::showNodePropertiesAtPositionBegin(OssSnBaseNode *Node,
                                                                  OssSnBaseNode *Target, bool)
{
    createPropertyWidget(Node, qMax(0, panelIndex(Target)));
}

QWidget *OssSnNodePropertiesWidget::createPropertyWidget(OssSnBaseNode *Node, int InsertionPoint)
{
    if (!Node) {
        OSS_DEBUG("Node is NULL");
        return nullptr;
    }
    if (!m_panelLayout || Node->hasTag(QStringLiteral("_dot")) ||
        Node->hasTag(QStringLiteral("_viewer")))
        return nullptr;

    QWidget *panel = m_panels.value(Node).data();
    if (!panel) {
        panel = buildPanel(Node);
        if (!panel)
            return nullptr;
        m_panels.insert(Node, panel);
    }

    // An open panel moves to the insertion point (the top by default).
    m_panelLayout->removeWidget(panel);
    m_panelLayout->insertWidget(qBound(0, InsertionPoint, m_panelLayout->count() - 1), panel);
    m_scrollArea->verticalScrollBar()->setValue(
        panel->inputMethodQuery(Qt::ImCursorRectangle).toRect().top());
    deletePanelsExceedingMax();
    return panel;
}

QWidget *OssSnNodePropertiesWidget::buildPanel(OssSnBaseNode *node)
{
    QWidget *container = m_panelLayout->parentWidget();
    OssNodePropertyEditorOptions options;
    if (OssLayerShaderUtils::isLayerShaderNode(node)) {
        if (!node->hasTag(QStringLiteral("_respectShaderGroupNodeAttributeOrder")))
            options.sectionOrder = layerShaderSectionOrder();
        OssLayerShader *shader = OssLayerShaderManager::instance()->getLayerShader(node);
        if (shader && shader->isStackShader())
            options.hiddenSections = QStringList{QStringLiteral("Displacement")};
        options.leadingAttributes = QStringList{QStringLiteral("name")};
        options.otherSectionPath = QStringList{QStringLiteral("/Node")};
        options.groupIntoSections = true;
        options.leadingAttributesFirst = true;
        options.otherAttributesInSection = true;
    }
    QWidget *panel = OssNodePropertyEditor::create(node, container, options);
    if (!panel)
        return nullptr;
    panel->setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Maximum);
    panel->setAttribute(Qt::WA_DeleteOnClose);
    panel->setObjectName(node->uuidString().remove(QLatin1Char('{')).remove(QLatin1Char('}')));
    panel->setStyleSheet(panelStyleSheet(node, panel->objectName(), DefaultFrameColor));
    panel->installEventFilter(this);
    addGroupButtons(node, panel);
    connectNode(node);
    if (auto *channelInput = qobject_cast<OssSnChannelInputNode *>(node))
        channelInput->enablePropertiesBasedOnManagedByChannel();
    OssFormLayout::alignLabels(panel);
    return panel;
}

void OssSnNodePropertiesWidget::addGroupButtons(OssSnBaseNode *node, QWidget *panel)
{
    auto *group = qobject_cast<OssSnGroupNode *>(node);
    auto *list = qobject_cast<OssExpandableListWidget *>(panel);
    if (!group || !list || !list->heading())
        return;
    auto *knobs = new OssMiniButton(QStringLiteral("p"), list->heading());
    knobs->setObjectName(QStringLiteral("groupKnobs"));
    knobs->setToolTip(tr("Choose which knobs and parameters should be included in the group"));
    knobs->setAutoFillBackground(true);
    knobs->setProperty("GroupNode", QVariant::fromValue<QObject *>(group));
    connect(knobs, &QPushButton::clicked, this,
            &OssSnNodePropertiesWidget::showGroupNodeKnobWidget);
    list->heading()->insertWidget(0, knobs);

    auto *subgraph = new OssMiniButton(QStringLiteral("s"), list->heading());
    subgraph->setObjectName(QStringLiteral("groupSubgraph"));
    subgraph->setToolTip(
        tr("Open Group Node subgraph (%1+Enter, %1+Doube-click)").arg(QStringLiteral("Ctrl")));
    subgraph->setAutoFillBackground(true);
    subgraph->setProperty("GroupNode", QVariant::fromValue<QObject *>(group));
    connect(subgraph, &QPushButton::clicked, this,
            &OssSnNodePropertiesWidget::showGroupNodeSubgraph);
    list->heading()->insertWidget(1, subgraph);
}

void OssSnNodePropertiesWidget::connectNode(OssSnBaseNode *node)
{
    using Self = OssSnNodePropertiesWidget;
    const auto unique = Qt::UniqueConnection;
    connect(node, &QObject::destroyed, this, &Self::onNodeRemoved, unique);
    connect(node, &OssSnBaseNode::nodeRemovedFromNetwork, this, &Self::onNodeRemoved, unique);
    connect(node, &OssSerializableObject::selectedChanged, this, &Self::refreshPanel, unique);
    connect(node, &OssSnBaseNode::nodeStateRefreshed, this, &Self::refreshPanel, unique);
    connect(node, &OssSnBaseNode::cacheActiveChanged, this, &Self::refreshPanel, unique);
    connect(node, &OssSnBaseNode::nodeRefreshed, this, &Self::onUserAttributePopulationChanged,
            unique);
    connect(node, &OssSnBaseNode::visibleNodeAttributeRemoved, this,
            &Self::onUserAttributePopulationChanged, unique);
    connect(node, &OssSnBaseNode::nodeAttributesSet, this, &Self::onUserAttributePopulationChanged,
            unique);
    connect(node, &OssSnBaseNode::nodeAttributeCreated, this, &Self::onUserAttributeChanged,
            unique);
    connect(node, &OssSnBaseNode::nodeAttributePrettyNameChanged, this,
            &Self::onUserAttributeChanged, unique);
    connect(node, &OssSnBaseNode::nodeAttributeRenamed, this, &Self::onUserAttributeRenamed,
            unique);
}

void OssSnNodePropertiesWidget::removePanel(QWidget *panel)
{
    if (!panel)
        return;
    m_panelLayout->removeWidget(panel);
    panel->hide();
    panel->deleteLater();
}

int OssSnNodePropertiesWidget::panelIndex(OssSnBaseNode *node) const
{
    QWidget *panel = this->panel(node);
    return panel && m_panelLayout ? m_panelLayout->indexOf(panel) : -1;
}

void OssSnNodePropertiesWidget::onMaxPanelsEditingFinished()
{
    OssSettings settings;
    settings.beginGroup(QLatin1String(SettingsGroup));
    settings.setValue(QLatin1String(MaxPanelsKey), m_maxPanels->text().toInt());
}

void OssSnNodePropertiesWidget::deleteAllProperties()
{
    if (m_panels.isEmpty())
        return;
    for (const QPointer<QWidget> &panel : qAsConst(m_panels))
        removePanel(panel);
    m_panels.clear();
}

void OssSnNodePropertiesWidget::deletePanelsExceedingMax()
{
    if (!m_panelLayout)
        return;
    const int max = m_maxPanels->text().toInt();
    const int count = m_panelLayout->count();
    if (count - 1 <= max)
        return;
    // The oldest panels are at the bottom, just above the stretch.
    for (int index = count - 2; index >= max; --index)
        removePanel(m_panelLayout->itemAt(index)->widget());
}

void OssSnNodePropertiesWidget::refreshPanel()
{
    auto *node = qobject_cast<OssSnBaseNode *>(sender());
    if (!node)
        return;
    if (OssStatusManager::instance()->inProgress()) {
        m_refreshPending = true;
        return;
    }
    if (QWidget *panel = this->panel(node))
        panel->setStyleSheet(panelStyleSheet(node, panel->objectName(), DefaultFrameColor));
}

void OssSnNodePropertiesWidget::onEndProcessing()
{
    if (!m_refreshPending)
        return;
    // Called with the status manager as sender, so this only settles the pending flag; the
    // panels are restyled by the next change of their nodes.
    refreshPanel();
    m_refreshPending = false;
}

void OssSnNodePropertiesWidget::onNodeRemoved()
{
    // No cast: the node may be half destroyed.
    QObject *removed = sender();
    for (auto it = m_panels.begin(); it != m_panels.end(); ++it) {
        if (static_cast<QObject *>(it.key()) != removed)
            continue;
        removePanel(it.value());
        m_panels.erase(it);
        return;
    }
}

void OssSnNodePropertiesWidget::onUserAttributePopulationChanged()
{
    if (auto *node = qobject_cast<OssSnBaseNode *>(sender()))
        refreshPropertiesForNode(node);
}

bool OssSnNodePropertiesWidget::rebuildsFor(OssSnBaseNode *node, const QString &attributeName) const
{
    return node && node->exists(attributeName) && node->userAttribute(attributeName).isVisible();
}

void OssSnNodePropertiesWidget::onUserAttributeChanged(QString AttributeName)
{
    auto *node = qobject_cast<OssSnBaseNode *>(sender());
    if (rebuildsFor(node, AttributeName))
        refreshPropertiesForNode(node);
}

void OssSnNodePropertiesWidget::onUserAttributeRenamed(QString, QString NewAttributeName)
{
    auto *node = qobject_cast<OssSnBaseNode *>(sender());
    if (rebuildsFor(node, NewAttributeName))
        refreshPropertiesForNode(node);
}

void OssSnNodePropertiesWidget::refreshPropertiesForNode(OssSnBaseNode *Node)
{
    QWidget *panel = this->panel(Node);
    if (!Node || !panel || m_panelLayout->indexOf(panel) < 0)
        return;
    const int index = m_panelLayout->indexOf(panel);
    QMap<QString, bool> collapsed;
    if (qobject_cast<OssExpandableListWidget *>(panel)) {
        for (OssExpandableListWidget *list : headedLists(panel))
            collapsed.insert(list->heading()->text(), list->isCollapsed());
    }
    removePanel(panel);
    m_panels.remove(Node);

    QWidget *rebuilt = createPropertyWidget(Node, index);
    if (!qobject_cast<OssExpandableListWidget *>(rebuilt))
        return;
    for (OssExpandableListWidget *list : headedLists(rebuilt)) {
        const auto found = collapsed.constFind(list->heading()->text());
        if (found == collapsed.cend())
            continue;
        if (found.value())
            list->collapse();
        else
            list->expand();
    }
}

void OssSnNodePropertiesWidget::showGroupNodeKnobWidget()
{
    auto *button = qobject_cast<QPushButton *>(sender());
    if (!button)
        return;
    auto *group = qobject_cast<OssSnGroupNode *>(button->property("GroupNode").value<QObject *>());
    if (!group) {
        OSS_DEBUG("GroupNode is NULL");
        return;
    }
    emit groupNodeKnobsRequested(group);
    // The group's knob manager, as Manage User Knobs opens it.
    OssGroupNodeKnobDialog dialog(group, this);
    dialog.resize(600, 400);
    dialog.exec();
}

void OssSnNodePropertiesWidget::showGroupNodeSubgraph()
{
    auto *button = qobject_cast<QPushButton *>(sender());
    if (!button)
        return;
    auto *group = qobject_cast<OssSnGroupNode *>(button->property("GroupNode").value<QObject *>());
    if (!group) {
        OSS_DEBUG("GroupNode is NULL");
        return;
    }
    auto *context = qobject_cast<OssSnGroupNodeGraphViewContext *>(
        group->context(QStringLiteral("NodeGraphView")));
    if (!context) {
        OSS_DEBUG("Context is NULL");
        return;
    }
    context->showGroupNodeTab();
}

bool OssSnNodePropertiesWidget::event(QEvent *Event)
{
    const QEvent::Type type = Event->type();
    if (type == QEvent::HoverEnter || type == QEvent::HoverMove || type == QEvent::HoverLeave) {
        OssSnBaseNode *under = nullptr;
        if (type != QEvent::HoverLeave) {
            for (auto it = m_panels.cbegin(); it != m_panels.cend(); ++it) {
                if (it.value() && it.value()->testAttribute(Qt::WA_UnderMouse)) {
                    under = it.key();
                    break;
                }
            }
        }
        setNodeUnderMouse(under);
    }
    return QWidget::event(Event);
}

bool OssSnNodePropertiesWidget::eventFilter(QObject *Watched, QEvent *Event)
{
    // Hover moves reach only the innermost widget under the pointer, so the panels report the
    // pointer entering and leaving them.
    if (Event->type() == QEvent::Enter || Event->type() == QEvent::Leave) {
        for (auto it = m_panels.cbegin(); it != m_panels.cend(); ++it) {
            if (it.value() != Watched)
                continue;
            if (Event->type() == QEvent::Enter)
                setNodeUnderMouse(it.key());
            else if (m_nodeUnderMouse == it.key())
                setNodeUnderMouse(nullptr);
            break;
        }
    }
    return QWidget::eventFilter(Watched, Event);
}

void OssSnNodePropertiesWidget::setNodeUnderMouse(OssSnBaseNode *node)
{
    if (node == m_nodeUnderMouse)
        return;
    OssSnBaseNode *old = m_nodeUnderMouse;
    m_nodeUnderMouse = node;
    emit propertiesUnderMouseChanged(node, old);
}

QString OssSnNodePropertiesWidget::panelStyleSheet(OssSnBaseNode *node, const QString &objectName,
                                                   const QColor &defaultColor)
{
    QString top = defaultColor.name();
    QString side = QStringLiteral("rgba(0, 0, 0, 0%)");
    if (OssNgNode *guiNode = OssSnNodeGraphViewContext::guiNodeOf(node)) {
        const QBrush brush = guiNode->fillBrush();
        const QColor color = brush.gradient() && !brush.gradient()->stops().isEmpty()
                                 ? brush.gradient()->stops().first().second
                                 : brush.color();
        top = color.name();
        if (node->selected())
            side = top;
        else if (guiNode->hovered())
            side = QStringLiteral("rgba(%1, %2, %3, %4%)")
                       .arg(color.red())
                       .arg(color.green())
                       .arg(color.blue())
                       .arg(QString::number(color.alphaF() * 50, 'g'));
    }
    return QStringLiteral(
               "QFrame#%1[OssExpandableListWidget=true] {    border-top-style: solid;    "
               "border-top-width: 2px;    border-top-color: %2;    border-left-style: "
               "solid;    border-left-width: 1px;    border-left-color: %3;    "
               "border-right-style: solid;    border-right-width: 1px;    "
               "border-right-color: %3;    border-bottom-style: solid;    "
               "border-bottom-width: 1px;    border-bottom-color: %3;    "
               "border-radius: 3px;}")
        .arg(objectName, top, side);
}
