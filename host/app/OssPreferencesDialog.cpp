#include "OssPreferencesDialog.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QDoubleSpinBox>
#include <QFormLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QSpinBox>
#include <QStackedWidget>
#include <QVBoxLayout>

#include <climits>

OssPreferencesDialog::OssPreferencesDialog(QWidget *parent) : QDialog(parent)
{
    setWindowTitle(tr("Preferences"));
    m_pages = new QListWidget(this);
    m_pages->setMaximumWidth(180);
    m_stack = new QStackedWidget(this);
    OssPreferenceManager *manager = OssPreferenceManager::instance();
    for (const QString &page : manager->pages()) {
        m_pages->addItem(page);
        auto *pageWidget = new QWidget;
        auto *pageLayout = new QVBoxLayout(pageWidget);
        for (const QString &group : manager->groups(page)) {
            auto *box = new QGroupBox(group, pageWidget);
            auto *form = new QFormLayout(box);
            for (const OssPreference &preference : manager->preferences(page, group)) {
                QWidget *editor = makeEditor(preference);
                editor->setToolTip(preference.toolTip());
                editor->setObjectName(preference.key);
                form->addRow(preference.label(), editor);
                m_rows.append(Row{preference, editor});
            }
            pageLayout->addWidget(box);
        }
        pageLayout->addStretch();
        m_stack->addWidget(pageWidget);
    }
    connect(m_pages, &QListWidget::currentRowChanged, m_stack, &QStackedWidget::setCurrentIndex);
    m_pages->setCurrentRow(0);

    auto *buttons =
        new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Apply |
                                 QDialogButtonBox::Cancel | QDialogButtonBox::RestoreDefaults,
                             this);
    connect(buttons, &QDialogButtonBox::accepted, this, [this] {
        apply();
        accept();
    });
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    connect(buttons->button(QDialogButtonBox::Apply), &QPushButton::clicked, this,
            &OssPreferencesDialog::apply);
    connect(buttons->button(QDialogButtonBox::RestoreDefaults), &QPushButton::clicked, this,
            &OssPreferencesDialog::restoreDefaults);

    auto *body = new QHBoxLayout;
    body->addWidget(m_pages);
    body->addWidget(m_stack, 1);
    auto *layout = new QVBoxLayout(this);
    layout->addLayout(body);
    layout->addWidget(buttons);
    refresh();
}

QWidget *OssPreferencesDialog::makeEditor(const OssPreference &preference)
{
    switch (preference.editor()) {
    case OssPreference::Editor::ComboBox:
    case OssPreference::Editor::EnumComboBox: {
        auto *combo = new QComboBox;
        combo->addItems(preference.allowedValues());
        return combo;
    }
    case OssPreference::Editor::CheckBox:
        return new QCheckBox;
    case OssPreference::Editor::SpinBox: {
        auto *spin = new QSpinBox;
        spin->setRange(INT_MIN, INT_MAX);
        return spin;
    }
    case OssPreference::Editor::DoubleSpinBox: {
        auto *spin = new QDoubleSpinBox;
        spin->setRange(-1e9, 1e9);
        spin->setDecimals(3);
        return spin;
    }
    case OssPreference::Editor::LineEdit:
        break;
    }
    return new QLineEdit;
}

QVariant OssPreferencesDialog::editorValue(const Row &row)
{
    if (auto *combo = qobject_cast<QComboBox *>(row.editor)) {
        // An enumeration is written by its key name; Qt converts it for the setter.
        return combo->currentText();
    }
    if (auto *check = qobject_cast<QCheckBox *>(row.editor))
        return check->isChecked();
    if (auto *spin = qobject_cast<QSpinBox *>(row.editor))
        return spin->value();
    if (auto *spin = qobject_cast<QDoubleSpinBox *>(row.editor))
        return spin->value();
    if (auto *line = qobject_cast<QLineEdit *>(row.editor))
        return line->text();
    return QVariant();
}

void OssPreferencesDialog::setEditorValue(const Row &row, const QVariant &value)
{
    if (auto *combo = qobject_cast<QComboBox *>(row.editor)) {
        int index = combo->findText(value.toString());
        // An enumeration property reads as its number; its keys are listed in value order.
        if (index < 0 && row.preference.editor() == OssPreference::Editor::EnumComboBox) {
            bool ok = false;
            const int number = value.toInt(&ok);
            const QStringList keys = row.preference.allowedValues();
            if (ok)
                for (int i = 0; i < keys.size(); ++i)
                    if (i == number)
                        index = i;
        }
        combo->setCurrentIndex(index);
    } else if (auto *check = qobject_cast<QCheckBox *>(row.editor)) {
        check->setChecked(value.toBool());
    } else if (auto *spin = qobject_cast<QSpinBox *>(row.editor)) {
        spin->setValue(value.toInt());
    } else if (auto *spin = qobject_cast<QDoubleSpinBox *>(row.editor)) {
        spin->setValue(value.toDouble());
    } else if (auto *line = qobject_cast<QLineEdit *>(row.editor)) {
        line->setText(value.toString());
    }
}

QWidget *OssPreferencesDialog::editorFor(const QString &page, const QString &key) const
{
    for (const Row &row : m_rows)
        if (row.preference.page == page && row.preference.key == key)
            return row.editor;
    return nullptr;
}

QStringList OssPreferencesDialog::pageNames() const
{
    QStringList names;
    for (int i = 0; i < m_pages->count(); ++i)
        names.append(m_pages->item(i)->text());
    return names;
}

void OssPreferencesDialog::refresh()
{
    for (const Row &row : qAsConst(m_rows))
        if (row.preference.isValid())
            setEditorValue(row, row.preference.value());
}

void OssPreferencesDialog::apply()
{
    for (const Row &row : qAsConst(m_rows)) {
        if (!row.preference.isValid())
            continue;
        const QVariant value = editorValue(row);
        if (value != row.preference.value())
            row.preference.setValue(value);
    }
    OssPreferenceManager::instance()->savePreferences();
    refresh();
}

void OssPreferencesDialog::restoreDefaults()
{
    // The defaults go into the editors only: Apply or OK writes them, Cancel drops them.
    const QString page = m_pages->currentItem() ? m_pages->currentItem()->text() : QString();
    for (const Row &row : qAsConst(m_rows)) {
        if (row.preference.page != page || !row.preference.isValid())
            continue;
        QVariant value = row.preference.defaultValue();
        if (!value.isValid()) {
            // Only the object's reset knows the default: reset, read, and put the value back.
            const QVariant current = row.preference.value();
            if (!row.preference.reset())
                continue;
            value = row.preference.value();
            row.preference.setValue(current);
        }
        setEditorValue(row, value);
    }
}
