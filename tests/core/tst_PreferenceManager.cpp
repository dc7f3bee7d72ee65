#include "OssPreferenceManager.h"
#include "OssSerializableObject.h"
#include "OssTestEnvironment.h"

#include <QtTest>

// An object with preferences of each kind and the slots the preference manager reads by name.
class Preferences : public OssSerializableObject
{
    Q_OBJECT
    Q_PROPERTY(QString controlType READ controlType WRITE setControlType NOTIFY controlTypeChanged)
    Q_PROPERTY(bool isAutoInsertOn READ isAutoInsertOn WRITE setIsAutoInsertOn NOTIFY
                   isAutoInsertOnChanged)
    Q_PROPERTY(ZoomTo zoomTo READ zoomTo WRITE setZoomTo NOTIFY zoomToChanged)
    Q_PROPERTY(int shakeToExtractTime READ shakeToExtractTime WRITE setShakeToExtractTime)
    Q_PROPERTY(double spacing MEMBER m_spacing)
    Q_PROPERTY(QString title MEMBER m_title)

public:
    enum ZoomTo
    {
        Center = 0,
        Cursor = 1
    };
    Q_ENUM(ZoomTo)

    QString prettyPropertyName(const QString &Name) const override
    {
        if (Name == QLatin1String("zoomTo"))
            return QStringLiteral("Zoom To");
        if (Name == QLatin1String("isAutoInsertOn"))
            return QStringLiteral("Auto Insert Node");
        return OssSerializableObject::prettyPropertyName(Name);
    }

    int saves = 0;
    double m_spacing = 1.5;
    QString m_title;

public slots:
    QString controlType() const { return m_controlType; }
    void setControlType(const QString &value)
    {
        if (value == m_controlType || !controlTypeList().contains(value))
            return;
        m_controlType = value;
        emit controlTypeChanged(value);
    }
    void resetControlType() { setControlType(controlTypeDefault()); }
    QString controlTypeDefault() const { return QStringLiteral("Kova"); }
    QStringList controlTypeList() const { return {QStringLiteral("Kova"), QStringLiteral("Ossa")}; }
    QString controlTypeTooltip() const { return QStringLiteral("How the view navigates."); }

    bool isAutoInsertOn() const { return m_autoInsert; }
    void setIsAutoInsertOn(bool value)
    {
        if (value == m_autoInsert)
            return;
        m_autoInsert = value;
        emit isAutoInsertOnChanged(value);
    }

    ZoomTo zoomTo() const { return m_zoomTo; }
    void setZoomTo(ZoomTo value) { m_zoomTo = value; }
    QString zoomToTooltip() const { return QStringLiteral("Which point to anchor\n"); }

    int shakeToExtractTime() const { return m_time; }
    void setShakeToExtractTime(int value) { m_time = value; }
    void resetShakeToExtractTime() { setShakeToExtractTime(shakeToExtractTimeDefault()); }
    int shakeToExtractTimeDefault() const { return 500; }

    void savePreferences() { ++saves; }

signals:
    void controlTypeChanged(const QString &value);
    void isAutoInsertOnChanged(bool value);
    void zoomToChanged(ZoomTo value);

private:
    QString m_controlType = QStringLiteral("Kova");
    bool m_autoInsert = true;
    ZoomTo m_zoomTo = Cursor;
    int m_time = 500;
};

class tst_PreferenceManager : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        OssPreferenceManager *manager = OssPreferenceManager::instance();
        const QString page = QStringLiteral("Node Graph");
        QVERIFY(manager->registerPreference(page, QStringLiteral("General"), &m_object,
                                            QStringLiteral("controlType")));
        QVERIFY(manager->registerPreference(page, QStringLiteral("General"), &m_object,
                                            QStringLiteral("isAutoInsertOn")));
        QVERIFY(manager->registerPreference(QStringLiteral("Viewport"), QStringLiteral("Display"),
                                            &m_object, QStringLiteral("spacing")));
        QVERIFY(manager->registerPreference(page, QStringLiteral("Shake to Extract"), &m_object,
                                            QStringLiteral("shakeToExtractTime")));
        QVERIFY(manager->registerPreference(page, QStringLiteral("General"), &m_object,
                                            QStringLiteral("zoomTo")));
        QVERIFY(manager->registerPreference(page, QStringLiteral("General"), &m_object,
                                            QStringLiteral("title")));
        QVERIFY(!manager->registerPreference(page, QStringLiteral("General"), &m_object,
                                             QStringLiteral("noSuchKey")));
    }

    void registrationOrder()
    {
        OssPreferenceManager *manager = OssPreferenceManager::instance();
        QCOMPARE(manager->pages(),
                 QStringList({QStringLiteral("Node Graph"), QStringLiteral("Viewport")}));
        QCOMPARE(manager->groups(QStringLiteral("Node Graph")),
                 QStringList({QStringLiteral("General"), QStringLiteral("Shake to Extract")}));
        QStringList keys;
        for (const OssPreference &preference :
             manager->preferences(QStringLiteral("Node Graph"), QStringLiteral("General")))
            keys.append(preference.key);
        QCOMPARE(keys, QStringList({QStringLiteral("controlType"), QStringLiteral("isAutoInsertOn"),
                                    QStringLiteral("zoomTo"), QStringLiteral("title")}));
    }

    void readsThroughNamedSlots_data()
    {
        QTest::addColumn<QString>("key");
        QTest::addColumn<QString>("label");
        QTest::addColumn<QString>("toolTip");
        QTest::addColumn<QStringList>("allowed");
        QTest::addColumn<QVariant>("defaultValue");
        QTest::addColumn<int>("editor");

        QTest::newRow("string with a list")
            << "controlType"
            << "Control Type"
            << "How the view navigates."
            << QStringList{QStringLiteral("Kova"), QStringLiteral("Ossa")}
            << QVariant(QStringLiteral("Kova")) << int(OssPreference::Editor::ComboBox);
        QTest::newRow("bool") << "isAutoInsertOn"
                              << "Auto Insert Node"
                              << "" << QStringList() << QVariant()
                              << int(OssPreference::Editor::CheckBox);
        QTest::newRow("registered enum")
            << "zoomTo"
            << "Zoom To"
            << "Which point to anchor\n"
            << QStringList{QStringLiteral("Center"), QStringLiteral("Cursor")} << QVariant()
            << int(OssPreference::Editor::EnumComboBox);
        QTest::newRow("int with default")
            << "shakeToExtractTime"
            << "Shake To Extract Time"
            << "" << QStringList() << QVariant(500) << int(OssPreference::Editor::SpinBox);
        QTest::newRow("plain string")
            << "title"
            << "Title"
            << "" << QStringList() << QVariant() << int(OssPreference::Editor::LineEdit);
    }

    void readsThroughNamedSlots()
    {
        QFETCH(QString, key);
        QFETCH(QString, label);
        QFETCH(QString, toolTip);
        QFETCH(QStringList, allowed);
        QFETCH(QVariant, defaultValue);
        QFETCH(int, editor);
        const OssPreference preference =
            OssPreferenceManager::instance()->find(QStringLiteral("Node Graph"), key);
        QVERIFY(preference.isValid());
        QCOMPARE(preference.label(), label);
        QCOMPARE(preference.toolTip(), toolTip);
        QCOMPARE(preference.allowedValues(), allowed);
        QCOMPARE(preference.defaultValue(), defaultValue);
        QCOMPARE(int(preference.editor()), editor);
    }

    void writesAndResets()
    {
        OssPreferenceManager *manager = OssPreferenceManager::instance();
        const OssPreference control =
            manager->find(QStringLiteral("Node Graph"), QStringLiteral("controlType"));
        QSignalSpy spy(&m_object, &Preferences::controlTypeChanged);
        QVERIFY(control.setValue(QStringLiteral("Ossa")));
        QCOMPARE(m_object.controlType(), QStringLiteral("Ossa"));
        QCOMPARE(spy.count(), 1);
        QCOMPARE(control.value().toString(), QStringLiteral("Ossa"));
        QVERIFY(control.reset());
        QCOMPARE(m_object.controlType(), QStringLiteral("Kova"));
        QCOMPARE(control.notifySignal(), QByteArray("2controlTypeChanged(QString)"));

        const OssPreference zoom =
            manager->find(QStringLiteral("Node Graph"), QStringLiteral("zoomTo"));
        QVERIFY(zoom.setValue(0));
        QCOMPARE(m_object.zoomTo(), Preferences::Center);
        QVERIFY(!zoom.reset()); // there is no resetZoomTo()

        const OssPreference time =
            manager->find(QStringLiteral("Node Graph"), QStringLiteral("shakeToExtractTime"));
        QVERIFY(time.setValue(120));
        QVERIFY(time.reset());
        QCOMPARE(m_object.shakeToExtractTime(), 500);
        QVERIFY(time.notifySignal().isEmpty());

        manager->savePreferences();
        QCOMPARE(m_object.saves, 1); // once per object, not once per key
    }

    void destroyedObjectsDropOut()
    {
        OssPreferenceManager *manager = OssPreferenceManager::instance();
        {
            Preferences temporary;
            manager->registerPreference(QStringLiteral("Temporary"), QStringLiteral("G"),
                                        &temporary, QStringLiteral("title"));
            QVERIFY(manager->pages().contains(QStringLiteral("Temporary")));
        }
        QVERIFY(!manager->pages().contains(QStringLiteral("Temporary")));
        QVERIFY(!manager->find(QStringLiteral("Temporary"), QStringLiteral("title")).isValid());
    }

private:
    OssTestEnvironment m_environment;
    Preferences m_object;
};

QTEST_GUILESS_MAIN(tst_PreferenceManager)
#include "tst_PreferenceManager.moc"
