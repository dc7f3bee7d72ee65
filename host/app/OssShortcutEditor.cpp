#include "OssShortcutEditor.h"

#include "OssShortcutMap.h"

#include <OssActionTreeManager.h>

#include <QAction>
#include <QDialogButtonBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QKeySequenceEdit>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTableWidget>
#include <QVBoxLayout>

namespace {

const QColor ConflictColour(255, 190, 190);

QString nativeText(const QList<QKeySequence> &keys)
{
    QStringList texts;
    for (const QKeySequence &key : keys)
        texts << key.toString(QKeySequence::NativeText);
    return texts.join(QStringLiteral(", "));
}

} // namespace

OssShortcutEditor::OssShortcutEditor(QWidget *parent) : QDialog(parent)
{
    setWindowTitle(tr("Keyboard Shortcuts"));

    // Every action of the tree once, by identity, in the tree's order.
    OssActionTreeManager *tree = OssActionTreeManager::instance();
    for (const QString &folder : tree->folders())
        for (QAction *action : tree->actions(folder)) {
            const QString identity =
                OssActionTreeManager::identity(OssActionTreeManager::fullPath(folder, action));
            if (m_rowByIdentity.contains(identity))
                continue;
            m_rowByIdentity.insert(identity, m_rows.size());
            m_rows.append(Row{identity, OssShortcutMap::defaultKeys(identity),
                              OssShortcutMap::keysFor(identity)});
        }

    m_filter = new QLineEdit(this);
    m_filter->setPlaceholderText(tr("Search actions and keys"));
    m_filter->setClearButtonEnabled(true);
    connect(m_filter, &QLineEdit::textChanged, this, &OssShortcutEditor::setFilter);

    m_table = new QTableWidget(m_rows.size(), 3, this);
    m_table->setHorizontalHeaderLabels({tr("Action"), tr("Key"), tr("Default")});
    m_table->setSelectionBehavior(QAbstractItemView::SelectRows);
    m_table->setSelectionMode(QAbstractItemView::SingleSelection);
    m_table->setEditTriggers(QAbstractItemView::NoEditTriggers);
    m_table->verticalHeader()->hide();
    m_table->horizontalHeader()->setSectionResizeMode(ActionColumn, QHeaderView::Stretch);
    m_table->horizontalHeader()->setSectionResizeMode(KeyColumn, QHeaderView::ResizeToContents);
    m_table->horizontalHeader()->setSectionResizeMode(DefaultColumn, QHeaderView::ResizeToContents);
    for (int row = 0; row < m_rows.size(); ++row) {
        for (int column = 0; column < 3; ++column)
            m_table->setItem(row, column, new QTableWidgetItem);
        m_table->item(row, ActionColumn)->setText(m_rows.at(row).identity);
        m_table->item(row, DefaultColumn)->setText(nativeText(m_rows.at(row).defaults));
        refreshRow(row);
    }
    connect(m_table, &QTableWidget::currentCellChanged, this, &OssShortcutEditor::showCurrent);

    // The key of the current row: typing a key replaces its keys.
    m_keyEdit = new QKeySequenceEdit(this);
    connect(m_keyEdit, &QKeySequenceEdit::editingFinished, this, [this] {
        const QString identity = currentIdentity();
        if (identity.isEmpty())
            return;
        const QKeySequence key = m_keyEdit->keySequence();
        setKeys(identity, key.isEmpty() ? QList<QKeySequence>{} : QList<QKeySequence>{key});
    });
    m_clear = new QPushButton(tr("Clear"), this);
    connect(m_clear, &QPushButton::clicked, this, [this] {
        if (!currentIdentity().isEmpty())
            setKeys(currentIdentity(), {});
    });
    m_reset = new QPushButton(tr("Reset"), this);
    connect(m_reset, &QPushButton::clicked, this, [this] {
        if (!currentIdentity().isEmpty())
            resetKeys(currentIdentity());
    });
    auto *resetAllButton = new QPushButton(tr("Reset All"), this);
    connect(resetAllButton, &QPushButton::clicked, this, &OssShortcutEditor::resetAll);
    auto *keyRow = new QHBoxLayout;
    keyRow->addWidget(new QLabel(tr("Key:"), this));
    keyRow->addWidget(m_keyEdit, 1);
    keyRow->addWidget(m_clear);
    keyRow->addWidget(m_reset);
    keyRow->addWidget(resetAllButton);

    auto *buttons = new QDialogButtonBox(
        QDialogButtonBox::Ok | QDialogButtonBox::Apply | QDialogButtonBox::Cancel, this);
    connect(buttons, &QDialogButtonBox::accepted, this, [this] {
        apply();
        accept();
    });
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    connect(buttons->button(QDialogButtonBox::Apply), &QPushButton::clicked, this,
            &OssShortcutEditor::apply);

    auto *layout = new QVBoxLayout(this);
    layout->addWidget(m_filter);
    layout->addWidget(m_table, 1);
    layout->addLayout(keyRow);
    layout->addWidget(buttons);
    refreshConflicts();
    showCurrent();
}

QStringList OssShortcutEditor::visibleIdentities() const
{
    QStringList shown;
    for (int row = 0; row < m_rows.size(); ++row)
        if (!m_table->isRowHidden(row))
            shown << m_rows.at(row).identity;
    return shown;
}

int OssShortcutEditor::rowOf(const QString &identity) const
{
    return m_rowByIdentity.value(identity, -1);
}

QList<QKeySequence> OssShortcutEditor::keys(const QString &identity) const
{
    const int row = rowOf(identity);
    return row < 0 ? QList<QKeySequence>{} : m_rows.at(row).keys;
}

QStringList OssShortcutEditor::conflictsOf(const QString &identity) const
{
    return m_conflicts.value(identity);
}

void OssShortcutEditor::setKeys(const QString &identity, const QList<QKeySequence> &keys)
{
    const int row = rowOf(identity);
    if (row < 0)
        return;
    m_rows[row].keys = keys;
    refreshRow(row);
    refreshConflicts();
    if (row == m_table->currentRow())
        showCurrent();
}

void OssShortcutEditor::resetKeys(const QString &identity)
{
    const int row = rowOf(identity);
    if (row >= 0)
        setKeys(identity, m_rows.at(row).defaults);
}

void OssShortcutEditor::resetAll()
{
    for (int row = 0; row < m_rows.size(); ++row) {
        m_rows[row].keys = m_rows.at(row).defaults;
        refreshRow(row);
    }
    refreshConflicts();
    showCurrent();
}

void OssShortcutEditor::setFilter(const QString &text)
{
    if (m_filter->text() != text)
        m_filter->setText(text); // comes back here through textChanged
    const QString wanted = text.trimmed();
    for (int row = 0; row < m_rows.size(); ++row) {
        const Row &entry = m_rows.at(row);
        const bool shown =
            wanted.isEmpty() || entry.identity.contains(wanted, Qt::CaseInsensitive) ||
            nativeText(entry.keys).contains(wanted, Qt::CaseInsensitive) ||
            OssShortcutMap::keysText(entry.keys).contains(wanted, Qt::CaseInsensitive);
        m_table->setRowHidden(row, !shown);
    }
}

void OssShortcutEditor::apply()
{
    for (const Row &row : qAsConst(m_rows)) {
        if (row.keys == row.defaults)
            OssShortcutMap::resetKeys(row.identity);
        else
            OssShortcutMap::setUserKeys(row.identity, row.keys);
    }
    emit applied();
}

QString OssShortcutEditor::currentIdentity() const
{
    const int row = m_table->currentRow();
    return row >= 0 && row < m_rows.size() ? m_rows.at(row).identity : QString();
}

void OssShortcutEditor::refreshRow(int row)
{
    const Row &entry = m_rows.at(row);
    QTableWidgetItem *key = m_table->item(row, KeyColumn);
    key->setText(nativeText(entry.keys));
    // A key the user changed shows in bold.
    QFont font = key->font();
    font.setBold(entry.keys != entry.defaults);
    key->setFont(font);
}

void OssShortcutEditor::refreshConflicts()
{
    QHash<QString, QList<QKeySequence>> bindings;
    for (const Row &row : qAsConst(m_rows))
        if (!row.keys.isEmpty())
            bindings.insert(row.identity, row.keys);
    m_conflicts.clear();
    const QMap<QString, QStringList> clashes = OssShortcutMap::conflicts(bindings);
    for (const QStringList &owners : clashes)
        for (const QString &owner : owners)
            for (const QString &other : owners)
                if (other != owner && !m_conflicts[owner].contains(other))
                    m_conflicts[owner].append(other);
    for (int row = 0; row < m_rows.size(); ++row) {
        const QStringList others = m_conflicts.value(m_rows.at(row).identity);
        for (int column = 0; column < 3; ++column) {
            QTableWidgetItem *item = m_table->item(row, column);
            item->setBackground(others.isEmpty() ? QBrush() : QBrush(ConflictColour));
            item->setToolTip(others.isEmpty()
                                 ? QString()
                                 : tr("The same key is bound to:\n%1").arg(others.join('\n')));
        }
    }
}

void OssShortcutEditor::showCurrent()
{
    const QString identity = currentIdentity();
    const bool any = !identity.isEmpty();
    m_keyEdit->setEnabled(any);
    m_clear->setEnabled(any);
    m_reset->setEnabled(any);
    const QList<QKeySequence> current = keys(identity);
    QSignalBlocker quiet(m_keyEdit);
    m_keyEdit->setKeySequence(current.value(0));
}
