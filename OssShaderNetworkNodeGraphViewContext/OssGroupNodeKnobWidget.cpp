#include "OssGroupNodeKnobWidget.h"

#include "OssSnTextPrompt.h"

#include <OssCustomAttribute.h>
#include <OssDebug.h>
#include <OssIcon.h>
#include <OssLinkedCustomAttributeManager.h>
#include <OssMessageBox.h>
#include <OssObjectReferenceManager.h>
#include <OssShaderNetwork.h>
#include <OssShaderNetworkManager.h>
#include <OssSnGroupNode.h>
#include <OssSnImageSetNodeBase.h>
#include <OssUndoManager.h>

#include <QDialogButtonBox>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRegExp>
#include <QTreeWidget>
#include <QVBoxLayout>

#include <functional>

namespace {

const QStringList &excludedTags()
{
    static const QStringList tags{QStringLiteral("_input"), QStringLiteral("_output"),
                                  QStringLiteral("_viewer"), QStringLiteral("_bottomTransparency"),
                                  QStringLiteral("_shaderInput")};
    return tags;
}

// Whether an inner node's attributes may be offered as knobs.
bool offersKnobs(const OssSnBaseNode *node)
{
    for (const QString &tag : excludedTags())
        if (node->hasTag(tag))
            return false;
    const QString uuid = node->versionUUID();
    if (uuid == QLatin1String("OSS_Misc_Set_Unlit") || uuid == QLatin1String("OSS_Misc_Set_Vector"))
        return false;
    if (uuid.isEmpty() && !node->hasTag(QStringLiteral("_group")))
        return false;
    if (qobject_cast<const OssSnImageSetNodeBase *>(node))
        return false;
    return node->userAttributesExist();
}

// Every item of a tree, depth first, in display order.
QList<QTreeWidgetItem *> itemsInOrder(QTreeWidget *tree)
{
    QList<QTreeWidgetItem *> items;
    std::function<void(QTreeWidgetItem *)> add = [&](QTreeWidgetItem *item) {
        items.append(item);
        for (int i = 0; i < item->childCount(); ++i)
            add(item->child(i));
    };
    for (int i = 0; i < tree->topLevelItemCount(); ++i)
        add(tree->topLevelItem(i));
    return items;
}

void notifyManualChange()
{
    OssShaderNetworkManager::instance()->emitNodeGraphIsManuallyChanged();
}

} // namespace

// --- OssEnterIgnorantDialog

OssEnterIgnorantDialog::OssEnterIgnorantDialog(QWidget *parent) : QDialog(parent) {}

void OssEnterIgnorantDialog::keyPressEvent(QKeyEvent *event)
{
    // No key reaches QDialog's handling, which would accept on Enter or Return and reject on
    // Escape.
    if (event->key() == Qt::Key_Enter && event->modifiers().testFlag(Qt::KeypadModifier))
        event->accept();
}

// --- OssGroupNodeKnobWidget

OssGroupNodeKnobWidget::OssGroupNodeKnobWidget(OssSnGroupNode *groupNode, QWidget *parent)
    : QWidget(parent), m_groupNode(groupNode)
{
    auto *layout = new QHBoxLayout(this);
    m_knobTree = new QTreeWidget(this);
    m_knobTree->setHeaderHidden(true);
    m_knobTree->setSelectionMode(QAbstractItemView::ExtendedSelection);
    layout->addWidget(m_knobTree);

    m_buttonBox = new QDialogButtonBox(QDialogButtonBox::Ok, Qt::Vertical, this);
    auto *pick = m_buttonBox->addButton(tr("Pick"), QDialogButtonBox::ActionRole);
    m_editButton = m_buttonBox->addButton(tr("Edit"), QDialogButtonBox::ActionRole);
    m_linkButton = m_buttonBox->addButton(tr("Link"), QDialogButtonBox::ActionRole);
    m_deleteButton = m_buttonBox->addButton(tr("Delete"), QDialogButtonBox::ActionRole);
    m_upButton = m_buttonBox->addButton(tr("Up"), QDialogButtonBox::ActionRole);
    m_downButton = m_buttonBox->addButton(tr("Down"), QDialogButtonBox::ActionRole);
    layout->addWidget(m_buttonBox);

    connect(pick, &QPushButton::pressed, this, &OssGroupNodeKnobWidget::showGizmoPropertySelection);
    connect(m_editButton, &QPushButton::pressed, this, &OssGroupNodeKnobWidget::editKnob);
    connect(m_linkButton, &QPushButton::pressed, this, &OssGroupNodeKnobWidget::linkKnobs);
    connect(m_deleteButton, &QPushButton::pressed, this, &OssGroupNodeKnobWidget::deleteKnob);
    connect(m_upButton, &QPushButton::pressed, this, &OssGroupNodeKnobWidget::moveSelectedKnobUp);
    connect(m_downButton, &QPushButton::pressed, this,
            &OssGroupNodeKnobWidget::moveSelectedKnobDown);
    connect(m_knobTree, &QTreeWidget::itemSelectionChanged, this,
            &OssGroupNodeKnobWidget::itemSelectionChanged);
    connect(m_knobTree, &QTreeWidget::itemDoubleClicked, this, &OssGroupNodeKnobWidget::editKnob);

    refreshKnobList(QString(), false);
    itemSelectionChanged();
}

bool OssGroupNodeKnobWidget::groupSelected() const
{
    for (QTreeWidgetItem *item : m_knobTree->selectedItems())
        if (!item->parent())
            return true;
    return false;
}

QList<QTreeWidgetItem *> OssGroupNodeKnobWidget::selectedKnobItems() const
{
    QList<QTreeWidgetItem *> knobs;
    for (QTreeWidgetItem *item : m_knobTree->selectedItems())
        if (item->parent())
            knobs.append(item);
    return knobs;
}

void OssGroupNodeKnobWidget::itemSelectionChanged()
{
    const int count = m_knobTree->selectedItems().size();
    const bool group = groupSelected();
    m_editButton->setEnabled(!group && count == 1);
    m_linkButton->setEnabled(!group && count >= 1);
    m_deleteButton->setEnabled(count >= 1);
    m_upButton->setEnabled(count == 1);
    m_downButton->setEnabled(count == 1);
}

void OssGroupNodeKnobWidget::refreshKnobList(QString CurrentKnobName, bool CurrentKnobIsNode)
{
    m_knobTree->clear();
    if (!m_groupNode) {
        OSS_DEBUG("GroupNode is NULL");
        return;
    }
    const QList<OssCustomAttribute> attributes = m_groupNode->nodeAttributes();
    QStringList names;
    for (const OssCustomAttribute &attribute : attributes)
        names.append(attribute.name());
    OSS_DEBUG("[ -- ] Group node attributes : '%s'", qPrintable(names.join(QStringLiteral(", "))));

    OssShaderNetwork *inner = m_groupNode->groupNetwork();
    for (const OssCustomAttribute &attribute : attributes) {
        const QString name = m_groupNode->nodeAttributeNameAsUserAttributeName(attribute.name());
        const QString group = OssSnGroupNode::getAttributeGroupName(name);
        // Knobs are named "group/knob"; other attributes are the group node's own state.
        if (group.isEmpty())
            continue;
        const QString prettyName = m_groupNode->userAttribute(name).prettyName();
        const auto links = OssLinkedCustomAttributeManager::instance()->links(m_groupNode, name);

        QTreeWidgetItem *groupItem = nullptr;
        for (int i = 0; i < m_knobTree->topLevelItemCount() && !groupItem; ++i)
            if (m_knobTree->topLevelItem(i)->text(0) == group)
                groupItem = m_knobTree->topLevelItem(i);
        if (!groupItem) {
            groupItem = new QTreeWidgetItem(m_knobTree, QStringList(group));
            groupItem->setData(0, OssKnobGroupRole, group);
            if (CurrentKnobIsNode && group == CurrentKnobName) {
                groupItem->setSelected(true);
                m_knobTree->setCurrentItem(groupItem);
            }
            groupItem->setExpanded(true);
        }

        // A link is broken when its node is no longer in the group's subgraph; a knob without
        // any link left (its node destroyed) is broken as well.
        QStringList linkTexts;
        bool broken = links.isEmpty();
        for (const auto &link : links) {
            auto *node = qobject_cast<OssSnBaseNode *>(link.first);
            const bool gone = !node || node->network() != inner;
            broken = broken || gone;
            const QString text =
                QStringLiteral("%1.%2").arg(node ? node->name() : QString(), link.second);
            linkTexts.append(gone ? tr("%1 (deleted)").arg(text) : text);
        }
        if (linkTexts.isEmpty())
            linkTexts.append(tr("(no link)"));

        auto *item = new QTreeWidgetItem(
            groupItem,
            QStringList(
                QStringLiteral("%1 { %2 }").arg(prettyName, linkTexts.join(QStringLiteral(", ")))));
        QObject *firstNode = links.isEmpty() ? nullptr : links.first().first.data();
        item->setData(0, OssKnobLinkedNodeRole, QVariant::fromValue(firstNode));
        item->setData(0, OssKnobLinkedAttributeRole,
                      links.isEmpty() ? QString() : links.first().second);
        item->setData(0, OssKnobAttributeRole, name);
        item->setData(0, OssKnobGroupRole, group);
        item->setData(0, OssKnobPrettyNameRole, prettyName);
        item->setData(0, OssKnobBrokenRole, broken);
        if (broken) {
            item->setForeground(0, QBrush(Qt::red));
            item->setToolTip(0, tr("The attribute this knob drives is gone; delete the knob."));
        }
        if (!CurrentKnobIsNode && name == CurrentKnobName) {
            item->setSelected(true);
            m_knobTree->setCurrentItem(item);
        }
    }
    m_knobTree->setFocus();
}

// --- picking

void OssGroupNodeKnobWidget::showGizmoPropertySelection()
{
    if (!qobject_cast<QPushButton *>(sender()))
        return;
    if (!m_groupNode) {
        OSS_DEBUG("GroupNode is NULL");
        return;
    }
    OssEnterIgnorantDialog dialog(this);
    dialog.setModal(true);
    dialog.setWindowTitle(tr("Pick Knobs to Add"));
    auto *layout = new QVBoxLayout(&dialog);
    auto *searchRow = new QHBoxLayout;
    searchRow->addWidget(new QLabel(tr("Search"), &dialog));
    auto *search = new QLineEdit(&dialog);
    searchRow->addWidget(search);
    auto *previous = new QPushButton(OssIcon::createIconFromFilename(QStringLiteral("Left.png")),
                                     QString(), &dialog);
    auto *next = new QPushButton(OssIcon::createIconFromFilename(QStringLiteral("Right.png")),
                                 QString(), &dialog);
    // The search buttons must not become the dialog's default button.
    previous->setAutoDefault(false);
    next->setAutoDefault(false);
    searchRow->addWidget(previous);
    searchRow->addWidget(next);
    layout->addLayout(searchRow);
    auto *tree = new QTreeWidget(&dialog);
    tree->setHeaderHidden(true);
    tree->setSelectionMode(QAbstractItemView::ExtendedSelection);
    layout->addWidget(tree);
    auto *buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel,
                                         Qt::Horizontal, &dialog);
    layout->addWidget(buttons);
    connect(buttons, &QDialogButtonBox::accepted, &dialog, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, &dialog, &QDialog::reject);
    connect(search, &QLineEdit::returnPressed, this, &OssGroupNodeKnobWidget::findNextPickItem);
    connect(next, &QPushButton::pressed, this, &OssGroupNodeKnobWidget::findNextPickItem);
    connect(previous, &QPushButton::pressed, this, &OssGroupNodeKnobWidget::findPreviousPickItem);
    dialog.resize(600, 400);

    m_pickTree = tree;
    m_searchField = search;
    fillPickTree();
    search->setFocus();
    const int result = dialog.exec();
    QList<QPair<QString, QString>> picked;
    for (QTreeWidgetItem *item : tree->selectedItems())
        if (item->parent())
            picked.append(qMakePair(item->parent()->data(0, Qt::UserRole).toString(),
                                    item->data(0, Qt::UserRole).toString()));
    m_pickTree = nullptr;
    m_searchField = nullptr;
    if (result != QDialog::Accepted || !m_groupNode)
        return;

    {
        OssUndoManager::AutoMacro macro(QStringLiteral("Creating Knobs"));
        for (const auto &pick : qAsConst(picked)) {
            auto *node = qobject_cast<OssSnBaseNode *>(
                OssObjectReferenceManager::instance()->getPointer(pick.first));
            if (!node) {
                OSS_DEBUG("Node is NULL");
                continue;
            }
            m_groupNode->createKnob(node, pick.second);
        }
    }
    notifyManualChange();
    refreshKnobList(QString(), false);
}

void OssGroupNodeKnobWidget::fillPickTree()
{
    for (OssSnBaseNode *node : m_groupNode->groupNetwork()->nodes()) {
        if (!offersKnobs(node))
            continue;
        auto *nodeItem = new QTreeWidgetItem(m_pickTree, QStringList(node->name()));
        nodeItem->setData(0, Qt::UserRole, node->uuidString());
        nodeItem->setFlags(Qt::ItemIsEnabled);
        for (const OssCustomAttribute &attribute : node->nodeAttributes()) {
            const QString name = node->nodeAttributeNameAsUserAttributeName(attribute.name());
            if (name.startsWith(QLatin1Char('_')))
                continue;
            const QString prettyName = node->userAttribute(name).prettyName();
            const QString text =
                prettyName == name ? name : QStringLiteral("%1 (%2)").arg(prettyName, name);
            auto *item = new QTreeWidgetItem(nodeItem, QStringList(text));
            item->setData(0, Qt::UserRole, name);
        }
    }
}

void OssGroupNodeKnobWidget::findNextPickItem()
{
    findPickItem(1);
}

void OssGroupNodeKnobWidget::findPreviousPickItem()
{
    findPickItem(-1);
}

void OssGroupNodeKnobWidget::findPickItem(int step)
{
    if (!m_pickTree || !m_searchField)
        return;
    const QRegExp pattern(m_searchField->text(), Qt::CaseInsensitive, QRegExp::WildcardUnix);
    const QList<QTreeWidgetItem *> items = itemsInOrder(m_pickTree);
    if (items.isEmpty())
        return;
    const auto matches = [&](QTreeWidgetItem *item) { return pattern.indexIn(item->text(0)) >= 0; };
    QTreeWidgetItem *current = m_pickTree->currentItem();
    QTreeWidgetItem *found = nullptr;
    if (!current) {
        for (int i = 0; i < items.size() && !found; ++i) {
            QTreeWidgetItem *item = items.at(step > 0 ? i : items.size() - 1 - i);
            if (matches(item))
                found = item;
        }
    } else {
        const int start = items.indexOf(current);
        const int count = items.size();
        for (int offset = 1; offset < count && !found; ++offset) {
            QTreeWidgetItem *item = items.at(((start + step * offset) % count + count) % count);
            if (matches(item))
                found = item;
        }
    }
    if (!found)
        return;
    if (found->childCount() > 0)
        found->setExpanded(true);
    // The search moves the current item only: the attributes picked so far stay picked.
    m_pickTree->setCurrentItem(found, 0, QItemSelectionModel::NoUpdate);
    m_pickTree->scrollToItem(found);
}

// --- linking, editing, deleting, moving

QString OssGroupNodeKnobWidget::askNewKnobName()
{
    QString text;
    const QStringList selected = [this] {
        QStringList names;
        for (QTreeWidgetItem *item : selectedKnobItems())
            names.append(item->data(0, OssKnobAttributeRole).toString());
        return names;
    }();
    const QString group =
        OssSnGroupNode::getAttributeGroupName(selected.value(0)) + QLatin1Char('/');
    forever
    {
        bool ok = false;
        text = OssSnTextPrompt::getText(this, tr("Link Knobs"), tr("Name of New Knob"), text, &ok);
        if (!ok)
            return QString();
        if (!OssIsAlphanumericUnderscore(text)) {
            OSS_DEBUG("Entry must consist of alphabets, numbers and underscores.");
            OssMessageBox::information(
                this, tr("Link Knobs"),
                tr("The new name must consist of alphabets, numbers and underscores."));
            continue;
        }
        // The new knob takes the first knob's group: a knob of that name outside the selection
        // is as much in the way as an attribute of the bare name.
        const bool taken = m_groupNode->exists(text) ||
                           (m_groupNode->exists(group + text) && !selected.contains(group + text));
        if (taken) {
            OSS_DEBUG("There already is an user attribute with the same name : %s",
                      qPrintable(text));
            OssMessageBox::information(
                this, tr("Link Knobs"),
                tr("There is a node attribute of the same name. The new knob name must be "
                   "unique."));
            continue;
        }
        return text;
    }
}

void OssGroupNodeKnobWidget::linkKnobs()
{
    if (groupSelected() || !m_groupNode)
        return;
    const QList<QTreeWidgetItem *> knobs = selectedKnobItems();
    if (knobs.size() < 2) {
        OssMessageBox::warning(this, tr("Link Knobs"),
                               tr("More than one knob needs to be selected in order to link."));
        return;
    }
    QString type;
    QStringList names;
    for (QTreeWidgetItem *item : knobs) {
        const QString name = item->data(0, OssKnobAttributeRole).toString();
        names.append(name);
        // The linked attribute's value decides; a broken knob has only its own.
        auto *node =
            qobject_cast<OssSnBaseNode *>(item->data(0, OssKnobLinkedNodeRole).value<QObject *>());
        const QString attribute = item->data(0, OssKnobLinkedAttributeRole).toString();
        const QString knobType = node && node->exists(attribute)
                                     ? node->userAttribute(attribute).typeName()
                                     : m_groupNode->userAttribute(name).typeName();
        if (!type.isEmpty() && knobType != type) {
            OssMessageBox::warning(this, tr("Link Knobs"),
                                   tr("Cannot link knobs of differing types."));
            return;
        }
        type = knobType;
    }
    const QString newName = askNewKnobName();
    if (newName.isEmpty())
        return;
    QString linked;
    {
        OssUndoManager::AutoMacro macro(QStringLiteral("Link Knobs: %1").arg(newName));
        linked = m_groupNode->linkKnobs(newName, names);
    }
    notifyManualChange();
    refreshKnobList(linked, false);
}

void OssGroupNodeKnobWidget::editKnob()
{
    QTreeWidgetItem *item = m_knobTree->currentItem();
    if (!item || !item->parent() || groupSelected() || !m_groupNode)
        return;
    auto *node =
        qobject_cast<OssSnBaseNode *>(item->data(0, OssKnobLinkedNodeRole).value<QObject *>());
    const QString title = tr("Knob linked to") + QLatin1Char(' ') +
                          QStringLiteral("\"%1.%2\"")
                              .arg(node ? node->name() : QString(),
                                   item->data(0, OssKnobLinkedAttributeRole).toString());
    const QString name = item->data(0, OssKnobAttributeRole).toString();
    const QString prettyName = item->data(0, OssKnobPrettyNameRole).toString();
    bool ok = false;
    const QString text = OssSnTextPrompt::getText(this, title, tr("Name:"), prettyName, &ok);
    if (!ok || text.isEmpty() || text == prettyName)
        return;
    m_groupNode->renameKnobName(name, prettyName, text);
    notifyManualChange();
    refreshKnobList(name, false);
}

void OssGroupNodeKnobWidget::deleteKnob()
{
    if (!m_groupNode)
        return;
    QStringList names;
    for (QTreeWidgetItem *item : m_knobTree->selectedItems()) {
        QList<QTreeWidgetItem *> knobs;
        if (item->parent())
            knobs.append(item);
        else
            for (int i = 0; i < item->childCount(); ++i)
                knobs.append(item->child(i));
        for (QTreeWidgetItem *knob : qAsConst(knobs)) {
            const QString name = knob->data(0, OssKnobAttributeRole).toString();
            if (!names.contains(name))
                names.append(name);
        }
    }
    if (names.isEmpty())
        return;
    {
        OssUndoManager::AutoMacro macro(QStringLiteral("Delete Knobs"));
        for (const QString &name : qAsConst(names))
            m_groupNode->deleteAttribute(name);
    }
    notifyManualChange();
    refreshKnobList(QString(), false);
}

void OssGroupNodeKnobWidget::moveSelectedKnobUp()
{
    moveSelectedKnob(-1);
}

void OssGroupNodeKnobWidget::moveSelectedKnobDown()
{
    moveSelectedKnob(1);
}

void OssGroupNodeKnobWidget::moveSelectedKnob(int step)
{
    QTreeWidgetItem *item = m_knobTree->currentItem();
    if (!item || !m_groupNode)
        return;
    QList<OssCustomAttribute> attributes = m_groupNode->nodeAttributes();
    const auto indexOf = [&attributes](const QString &name) {
        for (int i = 0; i < attributes.size(); ++i)
            if (attributes.at(i).name() == name)
                return i;
        return -1;
    };
    const QString group = item->data(0, OssKnobGroupRole).toString();
    const QString prefix = group + QLatin1Char('/');
    if (item->parent()) {
        const QString name = item->data(0, OssKnobAttributeRole).toString();
        const int index = indexOf(name);
        const int target = index + step;
        if (index < 0 || target < 0 || target >= attributes.size())
            return;
        // A knob never leaves its group.
        if (!attributes.at(target).name().startsWith(prefix, Qt::CaseSensitive))
            return;
        attributes.swapItemsAt(index, target);
        m_groupNode->setNodeAttributesUndo(attributes);
        notifyManualChange();
        refreshKnobList(name, false);
        return;
    }
    const int row = m_knobTree->indexOfTopLevelItem(item);
    QTreeWidgetItem *neighbour = m_knobTree->topLevelItem(row + step);
    if (!neighbour)
        return;
    const QString neighbourPrefix =
        neighbour->data(0, OssKnobGroupRole).toString() + QLatin1Char('/');
    QList<OssCustomAttribute> block, rest;
    for (const OssCustomAttribute &attribute : qAsConst(attributes))
        (attribute.name().startsWith(prefix) ? block : rest).append(attribute);
    int at = -1;
    for (int i = 0; i < rest.size(); ++i)
        if (rest.at(i).name().startsWith(neighbourPrefix)) {
            if (step < 0) {
                at = i;
                break;
            }
            at = i + 1;
        }
    if (at < 0 || block.isEmpty())
        return;
    for (int i = 0; i < block.size(); ++i)
        rest.insert(at + i, block.at(i));
    m_groupNode->setNodeAttributesUndo(rest);
    notifyManualChange();
    refreshKnobList(group, true);
}

void OssGroupNodeKnobWidget::printInfoOfKnobItem()
{
    for (QTreeWidgetItem *item : selectedKnobItems()) {
        auto *node =
            qobject_cast<OssSnBaseNode *>(item->data(0, OssKnobLinkedNodeRole).value<QObject *>());
        OSS_DEBUG("[ -- ] Selected: this.'%s' ('%s') --> '%s'.'%s'",
                  qPrintable(item->data(0, OssKnobAttributeRole).toString()),
                  qPrintable(item->data(0, OssKnobPrettyNameRole).toString()),
                  qPrintable(node ? node->name() : QString()),
                  qPrintable(item->data(0, OssKnobLinkedAttributeRole).toString()));
    }
}

// --- OssGroupNodeKnobDialog

OssGroupNodeKnobDialog::OssGroupNodeKnobDialog(OssSnGroupNode *groupNode, QWidget *parent)
    : QDialog(parent)
{
    setWindowTitle(tr("Group Node Knobs"));
    setWindowFlags(windowFlags() | Qt::WindowStaysOnTopHint);
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    m_widget = new OssGroupNodeKnobWidget(groupNode, this);
    layout->addWidget(m_widget);
    connect(m_widget->buttonBox(), &QDialogButtonBox::accepted, this, &QDialog::accept);
}
