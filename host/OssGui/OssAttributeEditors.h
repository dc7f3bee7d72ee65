#pragma once

#include "OssAttributeEditor.h"

#include <QColorDialog>
#include <QFileDialog>
#include <QPointer>
#include <QStringList>

class QCheckBox;
class QComboBox;
class QLineEdit;
class QToolButton;

// A bool attribute: a check box.
class OSSGUI_EXPORT OssBoolAttributeEditor : public OssAttributeEditor
{
    Q_OBJECT
public:
    explicit OssBoolAttributeEditor(const OssAttributeSpec &spec, QWidget *parent = nullptr);
    void setValue(const QVariant &value) override;
    QVariant value() const override;
    QCheckBox *checkBox() const { return m_box; }

private:
    QCheckBox *m_box = nullptr;
};

// An enum attribute: a combo box of its keys. The value keeps the form it came in (the text
// form "index:key1|key2" or an OssUserEnum).
class OSSGUI_EXPORT OssEnumAttributeEditor : public OssAttributeEditor
{
    Q_OBJECT
public:
    explicit OssEnumAttributeEditor(const OssAttributeSpec &spec, QWidget *parent = nullptr);
    void setValue(const QVariant &value) override;
    QVariant value() const override;
    QComboBox *comboBox() const { return m_combo; }

private:
    QVariant valueFor(int index) const;

    QComboBox *m_combo = nullptr;
    QStringList m_keys;
    int m_current = -1;
    bool m_asText = true;
};

// A colour attribute: a swatch that opens a colour dialog, and a field for the text form
// "r g b a" (or any colour name).
class OSSGUI_EXPORT OssColorAttributeEditor : public OssAttributeEditor
{
    Q_OBJECT
public:
    explicit OssColorAttributeEditor(const OssAttributeSpec &spec, QWidget *parent = nullptr);
    void setValue(const QVariant &value) override;
    QVariant value() const override;
    QToolButton *swatch() const { return m_swatch; }
    QLineEdit *field() const { return m_field; }
    // The colour dialog while it is open.
    QColorDialog *dialog() const { return m_dialog; }

public slots:
    void chooseColor();

private:
    void onEditingFinished();
    void commit(const QVariant &value);
    void showValue(const QVariant &value);

    QToolButton *m_swatch = nullptr;
    QLineEdit *m_field = nullptr;
    QPointer<QColorDialog> m_dialog;
    QVariant m_value;
};

// A vector attribute: three fields, x, y and z. The value is the text "x y z".
class OSSGUI_EXPORT OssVectorAttributeEditor : public OssAttributeEditor
{
    Q_OBJECT
public:
    explicit OssVectorAttributeEditor(const OssAttributeSpec &spec, QWidget *parent = nullptr);
    void setValue(const QVariant &value) override;
    QVariant value() const override;
    QLineEdit *field(int axis) const { return m_fields.at(axis); }

private:
    void onEditingFinished();

    QList<QLineEdit *> m_fields;
    QString m_value;
};

// A string attribute: a field; a file path attribute adds a button that opens a file dialog.
class OSSGUI_EXPORT OssStringAttributeEditor : public OssAttributeEditor
{
    Q_OBJECT
public:
    explicit OssStringAttributeEditor(const OssAttributeSpec &spec, QWidget *parent = nullptr);
    void setValue(const QVariant &value) override;
    QVariant value() const override;
    QLineEdit *field() const { return m_field; }
    // The browse button of a file path, or null.
    QToolButton *browseButton() const { return m_browse; }
    QFileDialog *dialog() const { return m_dialog; }

public slots:
    void browse();

private:
    void commit(const QString &text);

    QLineEdit *m_field = nullptr;
    QToolButton *m_browse = nullptr;
    QPointer<QFileDialog> m_dialog;
    QString m_value;
};

// An image reference (a list of loaded images' ids): a combo box of the loaded images, and a
// button that loads an image file and picks it.
class OSSGUI_EXPORT OssImageAttributeEditor : public OssAttributeEditor
{
    Q_OBJECT
public:
    explicit OssImageAttributeEditor(const OssAttributeSpec &spec, QWidget *parent = nullptr);
    void setValue(const QVariant &value) override;
    QVariant value() const override;
    QComboBox *comboBox() const { return m_combo; }
    QToolButton *loadButton() const { return m_load; }
    QFileDialog *dialog() const { return m_dialog; }

public slots:
    void loadImage();
    // Lists the loaded images again, keeping the current choice.
    void refillImages();

private:
    void commitId(const QString &id);
    QVariant valueFor(const QString &id) const;

    QComboBox *m_combo = nullptr;
    QToolButton *m_load = nullptr;
    QPointer<QFileDialog> m_dialog;
    QString m_id;
    bool m_asImageList = false;
};
