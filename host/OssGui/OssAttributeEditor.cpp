#include "OssAttributeEditor.h"

#include "OssAttributeEditors.h"
#include "OssNumberAttributeEditor.h"

#include <OssColor.h>
#include <OssCustomAttribute.h>
#include <OssImageList.h>
#include <OssSnBaseNode.h>
#include <OssSnNodeTypeCatalogue.h>
#include <OssStatusManager.h>

#include <QHash>
#include <QKeyEvent>
#include <QLineEdit>

namespace {

// The dynamic property a refused field carries (style sheets and tests read it).
const char *const RefusedProperty = "refused";

} // namespace

OssAttributeSpec OssAttributeSpec::forAttribute(const OssSnBaseNode *node,
                                                const OssCustomAttribute &attribute)
{
    OssAttributeSpec spec;
    spec.name = attribute.name();
    spec.prettyName = attribute.prettyName();
    const OssSnNodeTypeAttribute *declared = nullptr;
    if (node) {
        if (const OssSnNodeType *type = OssSnNodeTypeCatalogue::instance()->type(node->pathKey()))
            declared = type->attribute(attribute.name());
    }
    if (declared) {
        spec.kind = kindOfType(declared->type);
        spec.minimum = declared->minimum;
        spec.maximum = declared->maximum;
    } else {
        spec.kind = kindOfValue(attribute.value());
    }
    return spec;
}

OssAttributeSpec::Kind OssAttributeSpec::kindOfType(const QString &type)
{
    static const QHash<QString, Kind> kinds = {
        {QStringLiteral("bool"), Bool},           {QStringLiteral("int"), Int},
        {QStringLiteral("float"), Float},         {QStringLiteral("string"), String},
        {QStringLiteral("file"), FilePath},       {QStringLiteral("color"), Color},
        {QStringLiteral("enum"), Enum},           {QStringLiteral("vector"), Vector},
        {QStringLiteral("imageList"), ImageList},
    };
    return kinds.value(type, String);
}

OssAttributeSpec::Kind OssAttributeSpec::kindOfValue(const QVariant &value)
{
    switch (value.userType()) {
    case QMetaType::Bool:
        return Bool;
    case QMetaType::Int:
    case QMetaType::UInt:
    case QMetaType::LongLong:
    case QMetaType::ULongLong:
        return Int;
    case QMetaType::Double:
    case QMetaType::Float:
        return Float;
    case QMetaType::QStringList:
        return ImageList;
    default:
        break;
    }
    if (value.userType() == qMetaTypeId<OssColor>() || value.userType() == QMetaType::QColor)
        return Color;
    if (value.userType() == qMetaTypeId<OssUserEnum>())
        return Enum;
    if (value.userType() == qMetaTypeId<OssImageList>())
        return ImageList;
    return String;
}

OssAttributeEditor::OssAttributeEditor(const OssAttributeSpec &spec, QWidget *parent)
    : QWidget(parent), m_spec(spec)
{
    setObjectName(spec.name);
}

OssAttributeEditor *OssAttributeEditor::create(const OssAttributeSpec &spec, QWidget *parent)
{
    switch (spec.kind) {
    case OssAttributeSpec::Bool:
        return new OssBoolAttributeEditor(spec, parent);
    case OssAttributeSpec::Int:
    case OssAttributeSpec::Float:
        return new OssNumberAttributeEditor(spec, parent);
    case OssAttributeSpec::Enum:
        return new OssEnumAttributeEditor(spec, parent);
    case OssAttributeSpec::Color:
        return new OssColorAttributeEditor(spec, parent);
    case OssAttributeSpec::Vector:
        return new OssVectorAttributeEditor(spec, parent);
    case OssAttributeSpec::ImageList:
        return new OssImageAttributeEditor(spec, parent);
    case OssAttributeSpec::String:
    case OssAttributeSpec::FilePath:
        break;
    }
    return new OssStringAttributeEditor(spec, parent);
}

bool OssAttributeEditor::isRefused(const QLineEdit *field)
{
    return field && field->property(RefusedProperty).toBool();
}

void OssAttributeEditor::setRefused(QLineEdit *field, const QString &reason)
{
    if (!field || (reason.isEmpty() && !isRefused(field)))
        return;
    field->setProperty(RefusedProperty, !reason.isEmpty());
    field->setToolTip(reason);
    field->setStyleSheet(reason.isEmpty() ? QString()
                                          : QStringLiteral("QLineEdit { background-color: "
                                                           "#b03030; color: white; }"));
}

void OssAttributeEditor::passUndoKeys(QLineEdit *field)
{
    field->installEventFilter(this);
}

bool OssAttributeEditor::eventFilter(QObject *watched, QEvent *event)
{
    auto *field = qobject_cast<QLineEdit *>(watched);
    if (field && event->type() == QEvent::ShortcutOverride && !field->isModified() &&
        !isRefused(field)) {
        auto *key = static_cast<QKeyEvent *>(event);
        if (key->matches(QKeySequence::Undo) || key->matches(QKeySequence::Redo)) {
            event->ignore();
            return true;
        }
    }
    return QWidget::eventFilter(watched, event);
}

void OssAttributeEditor::reportClamped(const QString &typed, const QString &kept,
                                       bool aboveMaximum) const
{
    const QString message =
        aboveMaximum
            ? tr("%1: %2 is above the maximum; set to %3").arg(m_spec.prettyName, typed, kept)
            : tr("%1: %2 is below the minimum; set to %3").arg(m_spec.prettyName, typed, kept);
    OssStatusManager::instance()->showMessage(message);
}
