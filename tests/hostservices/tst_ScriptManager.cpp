#include "OssDebug.h"
#include "OssScriptManager.h"
#include "OssTestEnvironment.h"
#include "OssaAPI.h"

#include <QtTest>

#include <memory>

namespace {

class Base : public QObject
{
    Q_OBJECT
};

class Derived : public Base
{
    Q_OBJECT
};

class Unrelated : public QObject
{
    Q_OBJECT
};

// Makes Ossa::Palette objects for "Base"; refuses (makes a null script object) when the
// internal object's name is "refuse".
class BaseFactory : public OssAPIFactory
{
public:
    Ossa::API *create(QObject *internalObject) override
    {
        auto *api = new Ossa::Palette;
        if (internalObject->objectName() != QLatin1String("refuse"))
            api->initAPI(internalObject);
        ++made;
        return api;
    }
    QString internalClassName() const override { return QStringLiteral("Base"); }
    QString scriptClassName() const override { return QStringLiteral("Ossa::Palette"); }
    int made = 0;
};

} // namespace

class tst_ScriptManager : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        m_factory = new BaseFactory;
        OssScriptManager::instance()->registerAPIFactory(m_factory);
    }

    void factoryLookUpWalksBaseClasses_data()
    {
        QTest::addColumn<QString>("kind");
        QTest::addColumn<bool>("served");
        QTest::newRow("own class") << "Base" << true;
        QTest::newRow("base class") << "Derived" << true;
        QTest::newRow("no factory") << "Unrelated" << false;
    }

    void factoryLookUpWalksBaseClasses()
    {
        QFETCH(QString, kind);
        QFETCH(bool, served);
        std::unique_ptr<QObject> object;
        if (kind == QLatin1String("Base"))
            object = std::make_unique<Base>();
        else if (kind == QLatin1String("Derived"))
            object = std::make_unique<Derived>();
        else
            object = std::make_unique<Unrelated>();
        OssScriptManager *manager = OssScriptManager::instance();
        QCOMPARE(manager->factoryFor(object.get()) == m_factory, served);
        Ossa::API *api = manager->apiFor(object.get());
        QCOMPARE(api != nullptr, served);
        if (!served)
            return;
        QCOMPARE(api->internalObject(), object.get());
        // The registry hands back the same script object the second time.
        const int made = m_factory->made;
        QCOMPARE(manager->apiFor(object.get()), api);
        QCOMPARE(m_factory->made, made);
        QPointer<Ossa::API> guarded = api;
        object.reset();
        QVERIFY(guarded);
        QVERIFY(guarded->isNull());
    }

    void nullScriptObjectsAreTakenBack()
    {
        Base object;
        object.setObjectName(QStringLiteral("refuse"));
        QCOMPARE(OssScriptManager::instance()->apiFor(&object), nullptr);
        QCOMPARE(OssScriptManager::instance()->existingAPI(&object), nullptr);
    }

    void errorsReachTheChannel()
    {
        OssScriptManager *manager = OssScriptManager::instance();
        QSignalSpy spy(manager, &OssScriptManager::scriptError);
        OssDebugCapture capture;
        OssScriptError(OssScriptException::OutOfRange, "NodeGraphPalette.cpp", 40,
                       "CurrentTabIndex cannot be a negative number");
        OssScriptError(OssScriptException::ObjectUnavailable, "NodeGraphPalette.cpp", 41,
                       "Invalid OssPalette object passed to %s().",
                       "Ossa::NodeGraphPalette::NodeGraphPalette");
        QCOMPARE(spy.count(), 2);
        QCOMPARE(manager->lastError().type, 11);
        QCOMPARE(manager->lastError().message,
                 QStringLiteral("Invalid OssPalette object passed to "
                                "Ossa::NodeGraphPalette::NodeGraphPalette()."));
        QCOMPARE(manager->errors().at(0).type, 13);
        QCOMPARE(spy.at(0).at(1).toString(),
                 QStringLiteral("CurrentTabIndex cannot be a negative number"));
        QCOMPARE(capture.messages().size(), 2);
    }

private:
    OssTestEnvironment m_environment;
    BaseFactory *m_factory = nullptr;
};

QTEST_MAIN(tst_ScriptManager)
#include "tst_ScriptManager.moc"
