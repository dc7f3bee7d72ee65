#include "OssClassFactory.h"
#include "OssColor.h"
#include "OssCustomAttribute.h"
#include "OssDebug.h"
#include "OssLinkedCustomAttributeManager.h"
#include "OssObjectReferenceManager.h"
#include "OssSerializableObject.h"
#include "OssSettings.h"
#include "OssStatusManager.h"
#include "OssTestEnvironment.h"

#include <QFile>
#include <QtTest>

#include <memory>

namespace {

class Widget : public QObject
{
    Q_OBJECT
public:
    explicit Widget(QObject *parent) : QObject(parent) {}
};

class Gadget : public QObject
{
    Q_OBJECT
public:
    explicit Gadget(QObject *parent) : QObject(parent) {}
};

OSS_DECLARE_CLASS_FACTORY(Widget)
OSS_DECLARE_CLASS_FACTORY(Gadget)

// A second factory for the class name "Widget" that makes Gadgets, to test replacement.
class WidgetAsGadgetFactory : public OssClassFactory
{
public:
    QPointer<QObject> create(QObject *object) override { return new Gadget(object); }
    QString className() const override { return QStringLiteral("Widget"); }
};

} // namespace

class tst_CoreServices : public QObject
{
    Q_OBJECT

private slots:
    void debugLines_data()
    {
        QTest::addColumn<QString>("message");
        QTest::addColumn<QString>("expected");

        QTest::newRow("plain") << "[ -- ] m_network is NULL"
                               << "[ -- ] m_network is NULL";
        QTest::newRow("banner") << "[ Plugin ] Shader Network - Node Graph View Context"
                                << "[ Plugin ] Shader Network - Node Graph View Context";
        QTest::newRow("utf-8") << "[ !! ] Knoten «Mischung» ✓"
                               << "[ !! ] Knoten «Mischung» ✓";
    }

    void debugLines()
    {
        QFETCH(QString, message);
        QFETCH(QString, expected);
        OssDebugCapture capture;
        OssDebug("OssShaderNetworkView", 12, "%s", message.toUtf8().constData());
        QCOMPARE(capture.messages(), QStringList{expected});
        QCOMPARE(capture.lines().first().sourceFile, QStringLiteral("OssShaderNetworkView"));
        QCOMPARE(capture.lines().first().line, 12);
    }

    void debugFormats()
    {
        OssDebugCapture capture;
        int value = 0;
        OssDebug(__FILE__, __LINE__, "[ -- ] %s has %d inputs, scale %f", "Merge", 3, 0.5);
        OssDebug(__FILE__, __LINE__, "[ !! ] view %p", static_cast<void *>(&value));
        OssDebug(__FILE__, __LINE__, "[ !! ] view %p", static_cast<void *>(nullptr));
        QCOMPARE(capture.messages().at(0),
                 QStringLiteral("[ -- ] Merge has 3 inputs, scale 0.500000"));
        QCOMPARE(capture.messages().at(1),
                 QStringLiteral("[ !! ] view 0x%1").arg(quintptr(&value), 0, 16));
        // glibc writes a null pointer as "(nil)".
        QCOMPARE(capture.messages().at(2), QStringLiteral("[ !! ] view (nil)"));
        const QString longText(5000, QLatin1Char('y'));
        OssDebug(__FILE__, __LINE__, "%s", longText.toLatin1().constData());
        QCOMPARE(capture.messages().at(3), longText);
    }

    void debugCapturesAreScoped()
    {
        auto outer = std::make_unique<OssDebugCapture>();
        OssDebug(__FILE__, __LINE__, "one");
        {
            OssDebugCapture inner;
            OssDebug(__FILE__, __LINE__, "two");
            QCOMPARE(inner.messages(), QStringList{QStringLiteral("two")});
        }
        OssDebug(__FILE__, __LINE__, "three");
        QCOMPARE(outer->messages(), QStringList({QStringLiteral("one"), QStringLiteral("two"),
                                                 QStringLiteral("three")}));
        QCOMPARE(outer->count(QStringLiteral("two")), 1);
        outer.reset();
        // No sink left behind: writing after the captures are gone must not touch freed memory.
        OssDebug(__FILE__, __LINE__, "four");
    }

    void settingsAreRedirected()
    {
        {
            OssSettings settings;
            QCOMPARE(settings.fileName(), OssSettings::storageFile());
            QVERIFY(settings.fileName().startsWith(m_environment.settingsDirectory()));
            settings.beginGroup(QStringLiteral("Node Graph"));
            settings.setValue(QStringLiteral("shakeToExtractShakes"), 6);
            settings.setValue(QStringLiteral("zoomTo"), QStringLiteral("Cursor"));
        }
        OssSettings settings;
        settings.beginGroup(QStringLiteral("Node Graph"));
        QCOMPARE(settings.value(QStringLiteral("shakeToExtractShakes"), 4).toInt(), 6);
        // A value of the wrong type converts as the settings store does: a non-number is 0.
        QCOMPARE(settings.value(QStringLiteral("zoomTo"), 1).toInt(), 0);
        QCOMPARE(settings.value(QStringLiteral("missing"), 5).toInt(), 5);
        QVERIFY(QFile::exists(OssSettings::storageFile()));
    }

    void classFactories()
    {
        OssClassFactoryManager *manager = OssClassFactoryManager::instance();
        auto *widgetFactory = new OssWidgetClassFactory;
        widgetFactory->registerMe(widgetFactory);
        auto *gadgetFactory = new OssGadgetClassFactory;
        gadgetFactory->registerMe(gadgetFactory);
        QCOMPARE(widgetFactory->name(), QStringLiteral("Widget"));

        QObject owner;
        QPointer<QObject> made = manager->create(QStringLiteral("Widget"), &owner);
        QVERIFY(made);
        QCOMPARE(made->metaObject()->className(), "Widget");
        QCOMPARE(made->parent(), &owner);
        QVERIFY(manager->create(QStringLiteral("Gadget"), &owner));
        QVERIFY(manager->create(QStringLiteral("NoSuchClass"), &owner).isNull());
        QVERIFY(manager->create(QStringLiteral("widget"), &owner).isNull());

        QPointer<OssClassFactory> replaced = widgetFactory;
        auto *replacement = new WidgetAsGadgetFactory;
        replacement->registerMe(replacement);
        QVERIFY(replaced.isNull());
        QCOMPARE(manager->create(QStringLiteral("Widget"), &owner)->metaObject()->className(),
                 "Gadget");
    }

    void objectReferences()
    {
        OssObjectReferenceManager *references = OssObjectReferenceManager::instance();
        auto object = std::make_unique<OssSerializableObject>();
        const QString text = object->uuidString();
        QVERIFY(text.startsWith(QLatin1Char('{')) && text.endsWith(QLatin1Char('}')));
        QCOMPARE(references->getPointer(text), object.get());
        QCOMPARE(references->getPointer(text.mid(1, text.size() - 2)), object.get());
        QCOMPARE(references->getPointer(object->uuid()), object.get());
        QCOMPARE(references->getPointer(QStringLiteral("not a uuid")), nullptr);
        const QUuid old = object->uuid();
        object->setUuid(QUuid::createUuid());
        QCOMPARE(references->getPointer(old), nullptr);
        QCOMPARE(references->getPointer(object->uuid()), object.get());
        const QUuid last = object->uuid();
        object.reset();
        QCOMPARE(references->getPointer(last), nullptr);
    }

    void selectionAndAttributes()
    {
        OssSerializableObject object;
        QSignalSpy selected(&object, &OssSerializableObject::selectedChanged);
        QSignalSpy changed(&object, &OssSerializableObject::userAttributeChanged);
        object.setSelected(true);
        object.setSelected(true);
        QCOMPARE(selected.count(), 1);
        QVERIFY(object.selected());
        QVERIFY(!object.userAttributesExist());
        object.setUserAttribute(OssCustomAttribute());
        QVERIFY(!object.userAttributesExist());
        object.setUserAttribute(OssCustomAttribute(QStringLiteral("Label"), QStringLiteral("a")));
        object.setUserAttribute(OssCustomAttribute(QStringLiteral("ZOrder"), 2), false);
        object.setUserAttribute(OssCustomAttribute(QStringLiteral("Label"), QStringLiteral("b")));
        QCOMPARE(changed.count(), 2);
        QVERIFY(object.exists(QStringLiteral("ZOrder")));
        QCOMPARE(object.userAttributes().first().value().toString(), QStringLiteral("b"));
        QCOMPARE(object.userAttribute(QStringLiteral("ZOrder")).typeName(), QStringLiteral("int"));
        QVERIFY(!object.userAttribute(QStringLiteral("Nope")).isValid());
        QVERIFY(object.removeUserAttribute(QStringLiteral("Label")));
        QVERIFY(!object.removeUserAttribute(QStringLiteral("Label")));
        QCOMPARE(object.userAttributes().size(), 1);
    }

    void colourText_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<bool>("valid");
        QTest::addColumn<QColor>("color");

        QTest::newRow("reals") << "1 0 0 1" << true << QColor(255, 0, 0);
        QTest::newRow("reals without alpha") << "0 1 0" << true << QColor(0, 255, 0);
        QTest::newRow("commas") << "0,0,1,0.5" << true << QColor::fromRgbF(0, 0, 1, 0.5);
        QTest::newRow("hex") << "#336699" << true << QColor(0x33, 0x66, 0x99);
        QTest::newRow("empty means the style's colour") << "" << false << QColor();
        QTest::newRow("garbage") << "reddish" << false << QColor();
        QTest::newRow("too many numbers") << "1 2 3 4 5" << false << QColor();
    }

    void colourText()
    {
        QFETCH(QString, text);
        QFETCH(bool, valid);
        QFETCH(QColor, color);
        bool ok = !valid;
        const OssColor parsed = OssColor::fromString(text, &ok);
        QCOMPARE(ok, valid);
        QCOMPARE(parsed.isValid(), valid);
        QCOMPARE(parsed.toQColor(), color);
        if (valid)
            QVERIFY(OssColor::fromString(parsed.toString()) == parsed);
    }

    void alphanumericUnderscore_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<bool>("accepted");
        QTest::newRow("word") << "Knob_1" << true;
        QTest::newRow("space") << "Knob 1" << false;
        QTest::newRow("dot") << "a.b" << false;
        QTest::newRow("empty") << "" << false;
    }

    void alphanumericUnderscore()
    {
        QFETCH(QString, text);
        QFETCH(bool, accepted);
        QCOMPARE(OssIsAlphanumericUnderscore(text), accepted);
    }

    void attributeLinks()
    {
        OssLinkedCustomAttributeManager *links = OssLinkedCustomAttributeManager::instance();
        QObject group;
        auto blur = std::make_unique<QObject>();
        QObject noise;
        const QString knob = QStringLiteral("Radius");
        QVERIFY(links->link(&group, knob, blur.get(), QStringLiteral("size")));
        QVERIFY(links->link(&group, knob, &noise, QStringLiteral("scale")));
        QVERIFY(!links->link(&group, knob, &noise, QStringLiteral("scale")));
        QVERIFY(!links->link(&group, knob, nullptr, QStringLiteral("scale")));
        QCOMPARE(links->links(&group, knob).size(), 2);
        QCOMPARE(links->links(&group, knob).first().first.data(), blur.get());
        QCOMPARE(links->linkedFrom(&noise, QStringLiteral("scale")).value(0).second, knob);

        links->renameAttribute(&group, knob, QStringLiteral("Softness"));
        QVERIFY(links->links(&group, knob).isEmpty());
        QCOMPARE(links->links(&group, QStringLiteral("Softness")).size(), 2);

        blur.reset();
        QCOMPARE(links->links(&group, QStringLiteral("Softness")).size(), 1);
        QVERIFY(links->unlink(&group, QStringLiteral("Softness"), &noise, QStringLiteral("scale")));
        QVERIFY(links->links(&group, QStringLiteral("Softness")).isEmpty());
        QVERIFY(links->link(&group, knob, &noise, QStringLiteral("scale")));
        QCOMPARE(links->unlinkAll(&group, knob).size(), 1);
        QVERIFY(links->links(&group, knob).isEmpty());
    }

    void statusNesting()
    {
        OssStatusManager *status = OssStatusManager::instance();
        QSignalSpy ended(status, &OssStatusManager::endProcessing);
        {
            OssStatusManager::Scope outer(QStringLiteral("Baking"));
            {
                OssStatusManager::Scope inner(QStringLiteral("Flattening"));
                QVERIFY(status->inProgress());
                QCOMPARE(status->currentOperation(), QStringLiteral("Baking"));
            }
            QCOMPARE(ended.count(), 0);
        }
        QCOMPARE(ended.count(), 1);
        QVERIFY(!status->inProgress());
        status->finishProcessing(); // unbalanced end is ignored
        QCOMPARE(ended.count(), 1);
    }

private:
    OssTestEnvironment m_environment;
};

QTEST_MAIN(tst_CoreServices)
#include "tst_CoreServices.moc"
