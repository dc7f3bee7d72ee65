#pragma once

#include "OssCoreExport.h"

#include <QList>
#include <QObject>
#include <QPointer>
#include <QStringList>
#include <QVariant>

// One registered preference: a Qt property (Key) of Object, shown on Page in Group.
struct OSSCORE_EXPORT OssPreference
{
    QString page;
    QString group;
    QPointer<QObject> object;
    QString key;

    enum class Editor
    {
        ComboBox,      // the property has a <key>List() of allowed values
        EnumComboBox,  // the property is a registered enumeration: a combo of its keys
        CheckBox,      // bool
        SpinBox,       // int
        DoubleSpinBox, // double
        LineEdit,      // anything else
    };

    bool isValid() const;
    QVariant value() const;
    // Writes through the property's setter; false when the object is gone or refuses.
    bool setValue(const QVariant &value) const;
    // Calls reset<Key>() where the object has it; false otherwise.
    bool reset() const;
    QString label() const;
    QString toolTip() const;
    // <key>List(), or the keys of a registered enumeration, or empty.
    QStringList allowedValues() const;
    // <key>Default(), or an invalid variant.
    QVariant defaultValue() const;
    Editor editor() const;
    // The property's notify signal (as a signature usable with QObject::connect), or empty.
    QByteArray notifySignal() const;
};

// The host's preferences, kept by page, group and key in registration order.
class OSSCORE_EXPORT OssPreferenceManager : public QObject
{
    Q_OBJECT
public:
    static OssPreferenceManager *instance();

    // False (and nothing registered) when Object has no property named Key.
    bool registerPreference(const QString &page, const QString &group, QObject *object,
                            const QString &key);

    QStringList pages() const;
    QStringList groups(const QString &page) const;
    QList<OssPreference> preferences(const QString &page, const QString &group) const;
    QList<OssPreference> preferences() const;
    OssPreference find(const QString &page, const QString &key) const;

    // Asks every object that has a savePreferences() slot to save (the dialog's OK does this).
    void savePreferences();

signals:
    void preferenceRegistered(const QString &page, const QString &group, const QString &key);

private:
    explicit OssPreferenceManager(QObject *parent = nullptr);
    QList<OssPreference> m_preferences;
};
