#include "OssShaderNetworkUpgradeView.h"

#include <OssApplication.h>
#include <OssDebug.h>
#include <OssShaderNetworkManager.h>
#include <OssSnBaseNode.h>
#include <OssUndoManager.h>

#include <QHBoxLayout>
#include <QHeaderView>
#include <QMap>
#include <QMenu>
#include <QMessageBox>
#include <QPushButton>
#include <QTreeWidget>
#include <QVBoxLayout>

#include <algorithm>

namespace {

const int NodeRole = Qt::UserRole;
const int MaxStateColumnWidth = 170;

QString emptyText()
{
    return QObject::tr("<EMPTY>");
}

} // namespace

OssShaderNetworkUpgradeView::OssShaderNetworkUpgradeView(QWidget *parent) : QDialog(parent)
{
    setWindowTitle(tr("Node Version Control"));
    setMinimumSize(1024, 480);
    // Room for the hash, the date and every state column on a common screen.
    resize(1480, 600);
    auto *layout = new QVBoxLayout(this);

    m_tree = new QTreeWidget(this);
    m_tree->setSelectionMode(QAbstractItemView::ExtendedSelection);
    m_tree->setColumnCount(ColumnCount);
    m_tree->setHeaderLabels({tr("UUID"), tr("Hash"), tr("Date"), tr("Same"), tr("Different"),
                             tr("Older"), tr("Newer"), tr("Custom")});
    // Paths are long: a cut one keeps its end, the node's name.
    m_tree->setTextElideMode(Qt::ElideLeft);
    m_tree->setMouseTracking(true);
    m_tree->setContextMenuPolicy(Qt::CustomContextMenu);
    connect(m_tree, &QTreeWidget::customContextMenuRequested, this,
            &OssShaderNetworkUpgradeView::onTreeWidgetCustomContextMenuRequested);
    connect(m_tree, &QTreeWidget::itemEntered, this,
            &OssShaderNetworkUpgradeView::onTreeWidgetItemEntered);
    layout->addWidget(m_tree);

    auto *row = new QHBoxLayout;
    row->addStretch();
    auto *close = new QPushButton(tr("Close"), this);
    connect(close, &QPushButton::clicked, this, &QDialog::accept);
    row->addWidget(close);
    layout->addLayout(row);
}

OssSnBaseNode *OssShaderNetworkUpgradeView::nodeOfRow(QTreeWidgetItem *item)
{
    return item ? qobject_cast<OssSnBaseNode *>(item->data(UuidColumn, NodeRole).value<QObject *>())
                : nullptr;
}

void OssShaderNetworkUpgradeView::addToCount(QTreeWidgetItem *versionRow, int column, int delta)
{
    const int count = versionRow->text(column).toInt() + delta;
    versionRow->setText(column, count > 0 ? QStringLiteral("%1").arg(count) : QString());
}

void OssShaderNetworkUpgradeView::populateNodes(const QList<OssSnBaseNode *> &Nodes)
{
    OssShaderNetworkManager *manager = OssShaderNetworkManager::instance();
    QMap<QString, QList<OssSnBaseNode *>> byVersion;
    for (OssSnBaseNode *node : Nodes) {
        if (!node) {
            OSS_DEBUG("Node is NULL");
            continue;
        }
        byVersion[node->versionUUID()].append(node);
        m_nodes.append(node);
    }
    for (auto group = byVersion.begin(); group != byVersion.end(); ++group) {
        const QString uuid = group.key();
        const QString installedHash = manager->hashStringForVersionUUID(uuid);
        auto *versionRow = new QTreeWidgetItem(m_tree);
        versionRow->setText(UuidColumn, uuid.isEmpty() ? emptyText() : uuid);
        versionRow->setText(HashColumn, installedHash.isEmpty() ? emptyText() : installedHash);
        versionRow->setText(DateColumn, manager->versionDatePresent(uuid));
        QList<OssSnBaseNode *> nodes = group.value();
        std::sort(nodes.begin(), nodes.end(),
                  [](OssSnBaseNode *a, OssSnBaseNode *b) { return a->name() < b->name(); });
        for (OssSnBaseNode *node : qAsConst(nodes))
            addNodeRow(versionRow, node);
        versionRow->setExpanded(true);
    }
    // Every state column stays in sight: a long path is cut rather than pushing the columns
    // after it out of the window.
    for (int column = 0; column < ColumnCount; ++column) {
        m_tree->resizeColumnToContents(column);
        if (column >= SameColumn)
            m_tree->setColumnWidth(column, qMin(m_tree->columnWidth(column), MaxStateColumnWidth));
    }
}

void OssShaderNetworkUpgradeView::addNodeRow(QTreeWidgetItem *versionRow, OssSnBaseNode *node)
{
    OssShaderNetworkManager *manager = OssShaderNetworkManager::instance();
    const QString installed = manager->hashStringForVersionUUID(node->versionUUID());
    const QString installedDate = manager->versionDatePresent(node->versionUUID());
    const QString present = node->versionHashPresent();
    const QString created = node->versionHashCreated();
    const QString date = node->versionDate();

    auto *row = new QTreeWidgetItem(versionRow);
    row->setData(UuidColumn, NodeRole, QVariant::fromValue<QObject *>(node));
    row->setText(HashColumn, present);
    row->setData(HashColumn, NodeRole, present);
    row->setText(DateColumn, date.isEmpty() ? emptyText() : date);
    row->setData(DateColumn, NodeRole, date);

    const auto show = [&](int column) {
        row->setText(column, node->path());
        row->setData(column, NodeRole, QVariant::fromValue<QObject *>(node));
    };
    if (present.isEmpty() || installed.isEmpty()) {
        // Nothing to compare with: shown as Same but, unlike a real match, not counted.
        show(SameColumn);
    } else if (present == installed) {
        show(SameColumn);
        addToCount(versionRow, SameColumn, 1);
    } else {
        show(DifferentColumn);
        addToCount(versionRow, DifferentColumn, 1);
        int detail = -1;
        if (present == created) {
            if (OssSnBaseNode::versionDateLT(installedDate, date))
                detail = NewerColumn;
            else if (OssSnBaseNode::versionDateLT(date, installedDate))
                detail = OlderColumn;
        } else {
            detail = CustomColumn;
        }
        if (detail >= 0) {
            show(detail);
            addToCount(versionRow, detail, 1);
        }
    }
}

void OssShaderNetworkUpgradeView::onTreeWidgetItemEntered(QTreeWidgetItem *item, int column)
{
    m_enteredItem = item;
    m_enteredColumn = column;
}

void OssShaderNetworkUpgradeView::onTreeWidgetCustomContextMenuRequested(QPoint pos)
{
    QTreeWidgetItem *item = m_tree->itemAt(pos);
    if (!item)
        return;
    QMenu menu(this);
    QAction *all = menu.addAction(tr("All"));
    QAction *old = menu.addAction(tr("Old"));
    QAction *newer = menu.addAction(tr("New"));
    QAction *custom = menu.addAction(tr("Custom"));
    menu.addSeparator();
    QAction *dump = menu.addAction(tr("Dump"));
    QMenu *convert = menu.addMenu(tr("Convert To"));
    QStringList keys = OssShaderNetworkManager::instance()->nodePathKeys();
    keys.sort();
    for (const QString &key : qAsConst(keys))
        convert->addAction(key)->setData(key);

    const QMap<int, QAction *> byColumn{
        {DifferentColumn, all}, {OlderColumn, old}, {NewerColumn, newer}, {CustomColumn, custom}};
    if (QAction *active = byColumn.value(m_enteredColumn))
        menu.setActiveAction(active);

    QAction *chosen = menu.exec(m_tree->viewport()->mapToGlobal(pos));
    if (!chosen)
        return;
    const int column = byColumn.key(chosen, -1);
    if (column >= 0) {
        upgradeNodesOfState(item, column);
    } else if (chosen == dump) {
        OssSnBaseNode *node = nodeOfRow(item);
        if (!node && item->childCount() > 0)
            node = nodeOfRow(item->child(0));
        if (!node) {
            OSS_DEBUG("Node is NULL");
            return;
        }
        OSS_DEBUG("[ -- ] Definition of '%s' (%s):\n%s", qPrintable(node->path()),
                  qPrintable(node->versionUUID()),
                  qPrintable(node->versionHashSourcePresentDump()));
    } else if (chosen->parentWidget() == convert) {
        convertSelectedNodes(chosen->data().toString());
    }
}

bool OssShaderNetworkUpgradeView::confirmLostConnections(const QStringList &connections)
{
    const QString text =
        tr("The installed definitions no longer have these connected ports; upgrading drops "
           "the connections:\n\n%1\n\nUpgrade anyway?")
            .arg(connections.join(QLatin1Char('\n')));
    if (OssApplication::hasDialogAnswer())
        return OssApplication::takeDialogAnswer().toInt() == QMessageBox::Yes;
    if (!OssApplication::popupsAllowed()) {
        OSS_DEBUG("[ !! ] Upgrade Nodes: %s", qPrintable(text));
        return false;
    }
    QMessageBox box(QMessageBox::Warning, tr("Upgrade Nodes"), text,
                    QMessageBox::Yes | QMessageBox::No, this);
    box.setDefaultButton(QMessageBox::No);
    return box.exec() == QMessageBox::Yes;
}

int OssShaderNetworkUpgradeView::upgradeNodesOfState(QTreeWidgetItem *item, int column)
{
    if (column < DifferentColumn || column > CustomColumn)
        return 0;
    if (!item) {
        OSS_DEBUG("Item is NULL");
        return 0;
    }
    // The rows that hold a node in the column: the item's and its children's.
    QList<QTreeWidgetItem *> rows;
    QList<QTreeWidgetItem *> work{item};
    while (!work.isEmpty()) {
        QTreeWidgetItem *row = work.takeFirst();
        if (!row->data(column, NodeRole).isNull())
            rows.append(row);
        for (int i = 0; i < row->childCount(); ++i)
            work.append(row->child(i));
    }
    OssShaderNetworkManager *manager = OssShaderNetworkManager::instance();
    QStringList lost;
    for (QTreeWidgetItem *row : qAsConst(rows))
        if (OssSnBaseNode *node = nodeOfRow(row))
            lost += manager->upgradeLostConnections(node);
    if (!lost.isEmpty() && !confirmLostConnections(lost))
        return 0;

    int upgraded = 0;
    {
        OssUndoManager::AutoMacro macro(tr("Upgrade Nodes"));
        for (QTreeWidgetItem *row : qAsConst(rows)) {
            OssSnBaseNode *node = nodeOfRow(row);
            if (!node) {
                OSS_DEBUG("Node is NULL");
                continue;
            }
            if (!manager->upgradeNode(node, true))
                continue;
            ++upgraded;
            row->setText(DateColumn, node->versionDate());
            row->setData(DateColumn, NodeRole, node->versionDate());
            row->setText(HashColumn, node->versionHashCreated());
            row->setData(HashColumn, NodeRole, node->versionHashCreated());
            QTreeWidgetItem *versionRow = row->parent();
            for (int state = DifferentColumn; state <= CustomColumn; ++state) {
                if (row->data(state, NodeRole).isNull())
                    continue;
                row->setText(state, QString());
                row->setData(state, NodeRole, QVariant());
                if (versionRow)
                    addToCount(versionRow, state, -1);
            }
            row->setText(SameColumn, node->path());
            row->setData(SameColumn, NodeRole, QVariant::fromValue<QObject *>(node));
            if (versionRow)
                addToCount(versionRow, SameColumn, 1);
        }
    }
    if (upgraded > 0)
        manager->emitNodeGraphIsManuallyChanged();
    return upgraded;
}

int OssShaderNetworkUpgradeView::convertSelectedNodes(const QString &pathKey)
{
    QList<OssSnBaseNode *> nodes;
    for (QTreeWidgetItem *row : m_tree->selectedItems()) {
        QList<QTreeWidgetItem *> rows{row};
        for (int i = 0; i < row->childCount(); ++i)
            rows.append(row->child(i));
        for (QTreeWidgetItem *each : qAsConst(rows))
            if (OssSnBaseNode *node = nodeOfRow(each))
                if (!nodes.contains(node))
                    nodes.append(node);
    }
    if (nodes.isEmpty())
        return 0;
    OssShaderNetworkManager *manager = OssShaderNetworkManager::instance();
    int converted = 0;
    {
        OssUndoManager::AutoMacro macro(tr("Convert to %1").arg(pathKey));
        for (OssSnBaseNode *node : qAsConst(nodes)) {
            OssSnBaseNode *replacement = manager->convertNodeToKeyPath(node, pathKey);
            if (!replacement)
                continue;
            ++converted;
            for (QPointer<OssSnBaseNode> &shown : m_nodes)
                if (shown == node)
                    shown = replacement;
        }
    }
    if (converted == 0)
        return 0;
    manager->emitNodeGraphIsManuallyChanged();
    // The tree shows the nodes now in the networks.
    QList<OssSnBaseNode *> shown;
    for (const QPointer<OssSnBaseNode> &node : qAsConst(m_nodes))
        if (node)
            shown.append(node);
    m_nodes.clear();
    m_tree->clear();
    m_enteredItem = nullptr;
    populateNodes(shown);
    return converted;
}
