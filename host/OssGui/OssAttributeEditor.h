#pragma once

#include "OssGuiExport.h"

#include <QVariant>
#include <QWidget>

class OssCustomAttribute;
class OssSnBaseNode;
class QLineEdit;

// What an editor needs to know of one node attribute: its names, the kind of value it holds and
// the range a number must stay in.
struct OSSGUI_EXPORT OssAttributeSpec
{
    enum Kind
    {
        Bool,
        Int,
        Float,
        String,
        FilePath,
        Color,
        Enum,
        Vector,
        ImageList,
    };

    QString name;
    QString prettyName;
    Kind kind = String;
    // Null when the number has no bound on that side.
    QVariant minimum;
    QVariant maximum;

    // The spec of a node's attribute: the kind and range its node type declares, or, for an
    // attribute the type does not know (a knob, a user attribute), the kind its value has.
    static OssAttributeSpec forAttribute(const OssSnBaseNode *node,
                                         const OssCustomAttribute &attribute);
    // The kind of a node-type attribute type ("float", "enum", ...); String for an unknown one.
    static Kind kindOfType(const QString &type);
    static Kind kindOfValue(const QVariant &value);
};

// The editor of one attribute value. It shows values given with setValue() without reporting
// them, and reports the user's changes with edited(): Final is false while a slider is dragged
// (the value is only previewed) and true for the value to keep. Text that does not parse is
// refused: the field turns red with the reason as its tool tip and nothing is reported.
class OSSGUI_EXPORT OssAttributeEditor : public QWidget
{
    Q_OBJECT
public:
    explicit OssAttributeEditor(const OssAttributeSpec &spec, QWidget *parent = nullptr);

    const OssAttributeSpec &spec() const { return m_spec; }
    QString attributeName() const { return m_spec.name; }
    virtual void setValue(const QVariant &value) = 0;
    virtual QVariant value() const = 0;

    // The editor for the spec's kind.
    static OssAttributeEditor *create(const OssAttributeSpec &spec, QWidget *parent = nullptr);

    // Whether a field of this editor refuses its text, and why.
    static bool isRefused(const QLineEdit *field);
    // Marks Field as refusing its text with Reason as tool tip, or clears the mark when Reason
    // is empty.
    static void setRefused(QLineEdit *field, const QString &reason);

signals:
    void edited(const QVariant &value, bool final);

protected:
    // Lets the host's undo and redo keys through a field whose text is the attribute's value,
    // so Ctrl+Z right after an entry undoes that entry's step; a field being typed in keeps
    // them for its own text.
    void passUndoKeys(QLineEdit *field);
    bool eventFilter(QObject *watched, QEvent *event) override;
    // Tells the user, in the status line, that a typed value was brought into range.
    void reportClamped(const QString &typed, const QString &kept, bool aboveMaximum) const;

private:
    OssAttributeSpec m_spec;
};
