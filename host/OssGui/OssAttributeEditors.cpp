#include "OssAttributeEditors.h"

#include <OssColor.h>
#include <OssCustomAttribute.h>
#include <OssImage.h>
#include <OssImageList.h>
#include <OssImageManager.h>

#include <QCheckBox>
#include <QColorDialog>
#include <QComboBox>
#include <QFileDialog>
#include <QFileInfo>
#include <QHBoxLayout>
#include <QLineEdit>
#include <QToolButton>

#include <cmath>

namespace {

QHBoxLayout *rowLayout(QWidget *widget)
{
    auto *layout = new QHBoxLayout(widget);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(4);
    return layout;
}

// A short text for a colour channel or a vector component.
QString shortNumber(double value)
{
    return QString::number(value, 'g', 6);
}

QString colorText(const OssColor &color)
{
    return QStringLiteral("%1 %2 %3 %4")
        .arg(shortNumber(color.red()), shortNumber(color.green()), shortNumber(color.blue()),
             shortNumber(color.alpha()));
}

OssColor toOssColor(const QVariant &value)
{
    if (value.userType() == qMetaTypeId<OssColor>())
        return value.value<OssColor>();
    if (value.userType() == QMetaType::QColor)
        return OssColor(value.value<QColor>());
    return OssColor::fromString(value.toString());
}

} // namespace

// --- bool

OssBoolAttributeEditor::OssBoolAttributeEditor(const OssAttributeSpec &spec, QWidget *parent)
    : OssAttributeEditor(spec, parent), m_box(new QCheckBox(this))
{
    QHBoxLayout *layout = rowLayout(this);
    layout->addWidget(m_box);
    layout->addStretch(1);
    connect(m_box, &QCheckBox::clicked, this, [this](bool checked) { emit edited(checked, true); });
}

void OssBoolAttributeEditor::setValue(const QVariant &value)
{
    m_box->setChecked(value.toBool());
}

QVariant OssBoolAttributeEditor::value() const
{
    return m_box->isChecked();
}

// --- enum

OssEnumAttributeEditor::OssEnumAttributeEditor(const OssAttributeSpec &spec, QWidget *parent)
    : OssAttributeEditor(spec, parent), m_combo(new QComboBox(this))
{
    rowLayout(this)->addWidget(m_combo, 1);
    connect(m_combo, QOverload<int>::of(&QComboBox::activated), this, [this](int index) {
        const QVariant chosen = valueFor(index);
        if (!chosen.isValid() || index == m_current)
            return;
        m_current = index;
        emit edited(chosen, true);
    });
}

void OssEnumAttributeEditor::setValue(const QVariant &value)
{
    OssUserEnum userEnum;
    m_asText = value.userType() != qMetaTypeId<OssUserEnum>();
    if (m_asText)
        userEnum = OssUserEnum::fromString(value.toString());
    else
        userEnum = value.value<OssUserEnum>();
    if (userEnum.keys() != m_keys) {
        m_keys = userEnum.keys();
        const QSignalBlocker blocker(m_combo);
        m_combo->clear();
        m_combo->addItems(m_keys);
    }
    m_current = userEnum.keys().isEmpty() ? -1 : userEnum.currentValue();
    const QSignalBlocker blocker(m_combo);
    m_combo->setCurrentIndex(m_current);
}

QVariant OssEnumAttributeEditor::value() const
{
    return valueFor(m_current);
}

QVariant OssEnumAttributeEditor::valueFor(int index) const
{
    OssUserEnum userEnum(m_keys, 0);
    if (!userEnum.setCurrentValue(index))
        return QVariant();
    return m_asText ? QVariant(userEnum.toString()) : QVariant::fromValue(userEnum);
}

// --- colour

OssColorAttributeEditor::OssColorAttributeEditor(const OssAttributeSpec &spec, QWidget *parent)
    : OssAttributeEditor(spec, parent), m_swatch(new QToolButton(this)),
      m_field(new QLineEdit(this))
{
    QHBoxLayout *layout = rowLayout(this);
    m_swatch->setObjectName(QStringLiteral("swatch"));
    m_swatch->setToolTip(tr("Choose a colour"));
    m_swatch->setFixedSize(32, 20);
    m_field->setObjectName(QStringLiteral("value"));
    layout->addWidget(m_swatch);
    layout->addWidget(m_field, 1);
    passUndoKeys(m_field);
    connect(m_swatch, &QToolButton::clicked, this, &OssColorAttributeEditor::chooseColor);
    connect(m_field, &QLineEdit::editingFinished, this,
            &OssColorAttributeEditor::onEditingFinished);
}

void OssColorAttributeEditor::setValue(const QVariant &value)
{
    showValue(value);
    setRefused(m_field, QString());
}

QVariant OssColorAttributeEditor::value() const
{
    return m_value;
}

void OssColorAttributeEditor::chooseColor()
{
    if (m_dialog) {
        m_dialog->raise();
        return;
    }
    m_dialog = new QColorDialog(toOssColor(m_value).toQColor(), this);
    m_dialog->setAttribute(Qt::WA_DeleteOnClose);
    m_dialog->setOption(QColorDialog::ShowAlphaChannel);
    m_dialog->setOption(QColorDialog::DontUseNativeDialog);
    m_dialog->setWindowTitle(tr("%1 Colour").arg(spec().prettyName));
    connect(m_dialog.data(), &QColorDialog::colorSelected, this,
            [this](const QColor &color) { commit(QVariant::fromValue(OssColor(color))); });
    m_dialog->open();
}

void OssColorAttributeEditor::onEditingFinished()
{
    const QString typed = m_field->text().trimmed();
    bool ok = false;
    const OssColor color = OssColor::fromString(typed, &ok);
    if (!ok) {
        setRefused(m_field, tr("\"%1\" is not a colour: write \"r g b a\" with values from 0 to "
                               "1, or a colour name such as #ff8000")
                                .arg(typed));
        return;
    }
    setRefused(m_field, QString());
    commit(QVariant::fromValue(color));
}

void OssColorAttributeEditor::commit(const QVariant &value)
{
    if (toOssColor(value) == toOssColor(m_value)) {
        showValue(m_value);
        return;
    }
    showValue(value);
    emit edited(value, true);
}

void OssColorAttributeEditor::showValue(const QVariant &value)
{
    m_value = value;
    const OssColor color = toOssColor(value);
    m_field->setText(colorText(color));
    m_swatch->setStyleSheet(QStringLiteral("QToolButton { background-color: %1; border: 1px solid "
                                           "#202020; }")
                                .arg(color.toQColor().name()));
}

// --- vector

OssVectorAttributeEditor::OssVectorAttributeEditor(const OssAttributeSpec &spec, QWidget *parent)
    : OssAttributeEditor(spec, parent)
{
    QHBoxLayout *layout = rowLayout(this);
    for (const QString &axis : {QStringLiteral("x"), QStringLiteral("y"), QStringLiteral("z")}) {
        auto *field = new QLineEdit(this);
        field->setObjectName(axis);
        field->setPlaceholderText(axis);
        layout->addWidget(field, 1);
        passUndoKeys(field);
        connect(field, &QLineEdit::editingFinished, this,
                &OssVectorAttributeEditor::onEditingFinished);
        m_fields.append(field);
    }
}

void OssVectorAttributeEditor::setValue(const QVariant &value)
{
    m_value = value.toString();
    const QStringList parts = m_value.split(QLatin1Char(' '), Qt::SkipEmptyParts);
    for (int axis = 0; axis < m_fields.size(); ++axis) {
        m_fields.at(axis)->setText(parts.value(axis, QStringLiteral("0")));
        setRefused(m_fields.at(axis), QString());
    }
}

QVariant OssVectorAttributeEditor::value() const
{
    return m_value;
}

void OssVectorAttributeEditor::onEditingFinished()
{
    QStringList parts;
    bool allNumbers = true;
    for (QLineEdit *field : qAsConst(m_fields)) {
        const QString typed = field->text().trimmed();
        bool ok = false;
        const double number = typed.toDouble(&ok);
        if (!ok || !std::isfinite(number)) {
            setRefused(field, tr("\"%1\" is not a number").arg(typed));
            allNumbers = false;
            continue;
        }
        setRefused(field, QString());
        parts.append(shortNumber(number));
    }
    if (!allNumbers)
        return;
    for (int axis = 0; axis < m_fields.size(); ++axis)
        m_fields.at(axis)->setText(parts.at(axis));
    const QString text = parts.join(QLatin1Char(' '));
    if (text == m_value)
        return;
    m_value = text;
    emit edited(text, true);
}

// --- string and file path

OssStringAttributeEditor::OssStringAttributeEditor(const OssAttributeSpec &spec, QWidget *parent)
    : OssAttributeEditor(spec, parent), m_field(new QLineEdit(this))
{
    QHBoxLayout *layout = rowLayout(this);
    m_field->setObjectName(QStringLiteral("value"));
    layout->addWidget(m_field, 1);
    passUndoKeys(m_field);
    connect(m_field, &QLineEdit::editingFinished, this, [this] { commit(m_field->text()); });
    if (spec.kind == OssAttributeSpec::FilePath) {
        m_browse = new QToolButton(this);
        m_browse->setObjectName(QStringLiteral("browse"));
        m_browse->setText(QStringLiteral("..."));
        m_browse->setToolTip(tr("Choose a file"));
        layout->addWidget(m_browse);
        connect(m_browse, &QToolButton::clicked, this, &OssStringAttributeEditor::browse);
    }
}

void OssStringAttributeEditor::setValue(const QVariant &value)
{
    m_value = value.toString();
    m_field->setText(m_value);
}

QVariant OssStringAttributeEditor::value() const
{
    return m_value;
}

void OssStringAttributeEditor::browse()
{
    if (m_dialog) {
        m_dialog->raise();
        return;
    }
    m_dialog = new QFileDialog(this, tr("Choose %1").arg(spec().prettyName),
                               m_value.isEmpty() ? QString() : QFileInfo(m_value).absolutePath());
    m_dialog->setAttribute(Qt::WA_DeleteOnClose);
    m_dialog->setOption(QFileDialog::DontUseNativeDialog);
    m_dialog->setFileMode(QFileDialog::AnyFile);
    m_dialog->setAcceptMode(QFileDialog::AcceptOpen);
    if (!m_value.isEmpty())
        m_dialog->selectFile(m_value);
    connect(m_dialog.data(), &QFileDialog::fileSelected, this, &OssStringAttributeEditor::commit);
    m_dialog->open();
}

void OssStringAttributeEditor::commit(const QString &text)
{
    m_field->setText(text);
    if (text == m_value)
        return;
    m_value = text;
    emit edited(text, true);
}

// --- image reference

OssImageAttributeEditor::OssImageAttributeEditor(const OssAttributeSpec &spec, QWidget *parent)
    : OssAttributeEditor(spec, parent), m_combo(new QComboBox(this)), m_load(new QToolButton(this))
{
    QHBoxLayout *layout = rowLayout(this);
    m_load->setObjectName(QStringLiteral("load"));
    m_load->setText(QStringLiteral("..."));
    m_load->setToolTip(tr("Load an image file"));
    layout->addWidget(m_combo, 1);
    layout->addWidget(m_load);
    connect(m_combo, QOverload<int>::of(&QComboBox::activated), this,
            [this](int index) { commitId(m_combo->itemData(index).toString()); });
    connect(m_load, &QToolButton::clicked, this, &OssImageAttributeEditor::loadImage);
    connect(OssImageManager::instance(), &OssImageManager::imagesChanged, this,
            &OssImageAttributeEditor::refillImages);
    refillImages();
}

void OssImageAttributeEditor::setValue(const QVariant &value)
{
    m_asImageList = value.userType() == qMetaTypeId<OssImageList>();
    if (m_asImageList) {
        const QList<OssImageUniqueId> ids = value.value<OssImageList>().ids();
        m_id = ids.isEmpty() ? QString() : ids.first().toString();
    } else {
        m_id = value.toStringList().value(0);
    }
    refillImages();
}

QVariant OssImageAttributeEditor::value() const
{
    return valueFor(m_id);
}

void OssImageAttributeEditor::refillImages()
{
    const QSignalBlocker blocker(m_combo);
    m_combo->clear();
    m_combo->addItem(tr("(none)"), QString());
    for (OssImage *image : OssImageManager::instance()->images())
        m_combo->addItem(QFileInfo(image->path()).fileName(), image->uniqueId().toString());
    int current = m_combo->findData(m_id);
    if (current < 0) {
        // An image the project refers to but has not loaded stays visible as such.
        m_combo->addItem(tr("(missing) %1").arg(m_id), m_id);
        current = m_combo->count() - 1;
    }
    m_combo->setCurrentIndex(current);
}

void OssImageAttributeEditor::loadImage()
{
    if (m_dialog) {
        m_dialog->raise();
        return;
    }
    m_dialog = new QFileDialog(this, tr("Load Image for %1").arg(spec().prettyName));
    m_dialog->setAttribute(Qt::WA_DeleteOnClose);
    m_dialog->setOption(QFileDialog::DontUseNativeDialog);
    m_dialog->setFileMode(QFileDialog::ExistingFile);
    m_dialog->setNameFilter(
        tr("Images (*.png *.jpg *.jpeg *.tif *.tiff *.exr *.tx);;All files (*)"));
    connect(m_dialog.data(), &QFileDialog::fileSelected, this, [this](const QString &path) {
        const QList<OssImage *> images = OssImageManager::instance()->open(path);
        if (!images.isEmpty())
            commitId(images.first()->uniqueId().toString());
    });
    m_dialog->open();
}

void OssImageAttributeEditor::commitId(const QString &id)
{
    if (id == m_id)
        return;
    m_id = id;
    refillImages();
    emit edited(valueFor(id), true);
}

QVariant OssImageAttributeEditor::valueFor(const QString &id) const
{
    if (m_asImageList) {
        OssImageList list;
        if (!id.isEmpty())
            list.append(OssImageUniqueId::fromString(id));
        return QVariant::fromValue(list);
    }
    return id.isEmpty() ? QStringList() : QStringList{id};
}
