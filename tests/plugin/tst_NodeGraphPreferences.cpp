#include "OssPreferenceManager.h"
#include "OssSettings.h"
#include "OssSnNodeGraphViewContextManager.h"
#include "OssTestPluginHost.h"

#include <QtTest>

using Manager = OssSnNodeGraphViewContextManager;

class tst_NodeGraphPreferences : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { QVERIFY2(m_host.start(), qPrintable(m_host.errorString())); }

    void defaults()
    {
        Manager *manager = Manager::instance();
        QCOMPARE(manager->objectName(), QStringLiteral("OssSnNodeGraphViewContextManager"));
        QCOMPARE(manager->controlType(), QStringLiteral("Kova"));
        QCOMPARE(manager->defaultNodePortDisplayMode(),
                 QStringLiteral("Show Port List (Horizontal)"));
        QCOMPARE(manager->defaultNodePortDisplayModeAsEnum(), 0);
        QCOMPARE(manager->isAutoInsertOn(), true);
        QCOMPARE(manager->zoomTo(), Manager::Cursor);
        QCOMPARE(manager->autoUpdateUpstreamMergeNodeColorspaceEnabled(), QStringLiteral("Prompt"));
        QCOMPARE(manager->defaultMCMCollapsedState(), Manager::StreamCollapsed);
        QCOMPARE(manager->shakeToExtractEnabled(), true);
        QCOMPARE(manager->shakeToExtractShakes(), 4);
        QCOMPARE(manager->shakeToExtractTime(), 500);
        QCOMPARE(manager->numberOfLastUsedNodePathsToStore(), 5);
    }

    void registration_data()
    {
        QTest::addColumn<QString>("key");
        QTest::addColumn<QString>("group");
        QTest::addColumn<QString>("label");
        QTest::addColumn<int>("editor");
        QTest::addColumn<QStringList>("allowed");

        const QStringList none;
        QTest::newRow("1") << "controlType"
                           << "General"
                           << "Control Type" << int(OssPreference::Editor::ComboBox)
                           << QStringList{QStringLiteral("Kova"), QStringLiteral("Ossa")};
        QTest::newRow("2") << "defaultNodePortDisplayMode"
                           << "General"
                           << "Default Port Display" << int(OssPreference::Editor::ComboBox)
                           << QStringList{QStringLiteral("Show Port List (Horizontal)"),
                                          QStringLiteral("No Port List (Vertical)")};
        QTest::newRow("3") << "isAutoInsertOn"
                           << "General"
                           << "Auto Insert Node" << int(OssPreference::Editor::CheckBox) << none;
        QTest::newRow("4") << "zoomTo"
                           << "General"
                           << "Zoom To" << int(OssPreference::Editor::EnumComboBox)
                           << QStringList{QStringLiteral("Center"), QStringLiteral("Cursor")};
        QTest::newRow("5") << "autoUpdateUpstreamMergeNodeColorspaceEnabled"
                           << "General"
                           << "Update Blending Colorspace" << int(OssPreference::Editor::ComboBox)
                           << QStringList{QStringLiteral("Prompt"), QStringLiteral("Change"),
                                          QStringLiteral("Leave")};
        QTest::newRow("6") << "defaultMCMCollapsedState"
                           << "Multi-Channel"
                           << "Default Collapsed State" << int(OssPreference::Editor::EnumComboBox)
                           << QStringList{
                                  QStringLiteral("Expanded"), QStringLiteral("StreamCollapsed"),
                                  QStringLiteral("ConnectedOnly"), QStringLiteral("Collapsed")};
        QTest::newRow("7") << "shakeToExtractEnabled"
                           << "Shake to Extract"
                           << "Shake to Extract Selected Nodes"
                           << int(OssPreference::Editor::CheckBox) << none;
        QTest::newRow("8") << "shakeToExtractShakes"
                           << "Shake to Extract"
                           << "Shakes to Trigger" << int(OssPreference::Editor::SpinBox) << none;
        QTest::newRow("9") << "shakeToExtractTime"
                           << "Shake to Extract"
                           << "Shakes in Time (ms)" << int(OssPreference::Editor::SpinBox) << none;
        QTest::newRow("10") << "numberOfLastUsedNodePathsToStore"
                            << "Quick Node Create Menu"
                            << "Number of Most Recent Nodes" << int(OssPreference::Editor::SpinBox)
                            << none;
    }

    void registration()
    {
        QFETCH(QString, key);
        QFETCH(QString, group);
        QFETCH(QString, label);
        QFETCH(int, editor);
        QFETCH(QStringList, allowed);
        Manager::instance();
        OssPreferenceManager *preferences = OssPreferenceManager::instance();
        const QString page = QStringLiteral("Node Graph");
        // Registration order: the row number is the position on the page.
        const int position = QString::fromLatin1(QTest::currentDataTag()).toInt() - 1;
        QList<OssPreference> all;
        for (const QString &g : preferences->groups(page))
            all += preferences->preferences(page, g);
        QCOMPARE(all.size(), 10);
        QCOMPARE(all.at(position).key, key);
        QCOMPARE(all.at(position).group, group);
        QCOMPARE(all.at(position).label(), label);
        QCOMPARE(int(all.at(position).editor()), editor);
        QCOMPARE(all.at(position).allowedValues(), allowed);
        QVERIFY(!all.at(position).toolTip().isEmpty());
        QVERIFY(!all.at(position).notifySignal().isEmpty());
    }

    void toolTipsAreExact()
    {
        Manager *manager = Manager::instance();
        QCOMPARE(manager->zoomToTooltip(),
                 QStringLiteral("Which point to anchor when zooming in the Node Graph\n"));
        QCOMPARE(manager->controlTypeTooltip(),
                 QStringLiteral("Setup the nodegraph navigation to match another software "
                                "application.\n * Kova (default)\n * Ossa"));
        QCOMPARE(manager->shakeToExtractShakesTooltip(),
                 QStringLiteral("Perform this many shakes in the required time to trigger Shake "
                                "to Extract.\nA \"shake\" is moving the nodes in one direction "
                                "then moving them in the opposite direction."));
        QCOMPARE(manager->prettyPropertyName(QStringLiteral("zoomTo")), QStringLiteral("Zoom To"));
        QCOMPARE(manager->prettyPropertyName(QStringLiteral("objectName")),
                 QStringLiteral("Object Name"));
    }

    void setters_data()
    {
        QTest::addColumn<QString>("slot");
        QTest::addColumn<QVariant>("argument");
        QTest::addColumn<QString>("property");
        QTest::addColumn<QVariant>("expected");
        QTest::addColumn<int>("announced");

        QTest::newRow("control type in lower case is ignored")
            << "setControlType" << QVariant(QStringLiteral("ossa")) << "controlType"
            << QVariant(QStringLiteral("Kova")) << 0;
        QTest::newRow("control type changes")
            << "setControlType" << QVariant(QStringLiteral("Ossa")) << "controlType"
            << QVariant(QStringLiteral("Ossa")) << 1;
        QTest::newRow("unknown port display picks the first entry")
            << "setDefaultNodePortDisplayMode" << QVariant(QStringLiteral("Sideways"))
            << "defaultNodePortDisplayMode"
            << QVariant(QStringLiteral("Show Port List (Horizontal)")) << 0;
        QTest::newRow("port display changes")
            << "setDefaultNodePortDisplayMode"
            << QVariant(QStringLiteral("No Port List (Vertical)")) << "defaultNodePortDisplayMode"
            << QVariant(QStringLiteral("No Port List (Vertical)")) << 1;
        QTest::newRow("colour space outside the list is ignored")
            << "setAutoUpdateUpstreamMergeNodeColorspaceEnabled"
            << QVariant(QStringLiteral("Always")) << "autoUpdateUpstreamMergeNodeColorspaceEnabled"
            << QVariant(QStringLiteral("Prompt")) << 0;
        QTest::newRow("zoom to 7 is kept and announced twice")
            << "setZoomTo" << QVariant(7) << "zoomTo" << QVariant(7) << 2;
        QTest::newRow("collapsed state as int") << "setDefaultMCMCollapsedState" << QVariant(3)
                                                << "defaultMCMCollapsedState" << QVariant(3) << 2;
        QTest::newRow("reset of an unchanged time emits nothing")
            << "resetShakeToExtractTime" << QVariant() << "shakeToExtractTime" << QVariant(500)
            << 0;
        QTest::newRow("negative shakes are accepted")
            << "setShakeToExtractShakes" << QVariant(-2) << "shakeToExtractShakes" << QVariant(-2)
            << 1;
        QTest::newRow("toggle") << "toggleShakeToExtractEnabled" << QVariant()
                                << "shakeToExtractEnabled" << QVariant(false) << 1;
        QTest::newRow("same auto insert emits nothing")
            << "setIsAutoInsertOn" << QVariant(true) << "isAutoInsertOn" << QVariant(true) << 0;
    }

    void setters()
    {
        QFETCH(QString, slot);
        QFETCH(QVariant, argument);
        QFETCH(QString, property);
        QFETCH(QVariant, expected);
        QFETCH(int, announced);

        Manager *manager = Manager::instance();
        resetAll(manager);
        // Count every change signal of the manager.
        int emitted = 0;
        const QMetaObject *meta = manager->metaObject();
        QList<QMetaObject::Connection> connections;
        for (int i = meta->methodOffset(); i < meta->methodCount(); ++i) {
            const QMetaMethod method = meta->method(i);
            if (method.methodType() == QMetaMethod::Signal)
                connections.append(
                    connect(manager, method, this,
                            metaObject()->method(metaObject()->indexOfSlot("count()"))));
        }
        m_count = &emitted;

        bool invoked = false;
        const QByteArray name = slot.toLatin1();
        if (!argument.isValid())
            invoked = QMetaObject::invokeMethod(manager, name.constData());
        else if (argument.userType() == QMetaType::Int)
            invoked =
                QMetaObject::invokeMethod(manager, name.constData(), Q_ARG(int, argument.toInt()));
        else if (argument.userType() == QMetaType::Bool)
            invoked = QMetaObject::invokeMethod(manager, name.constData(),
                                                Q_ARG(bool, argument.toBool()));
        else
            invoked = QMetaObject::invokeMethod(manager, name.constData(),
                                                Q_ARG(QString, argument.toString()));
        QVERIFY2(invoked, qPrintable(slot));
        for (const QMetaObject::Connection &connection : connections)
            disconnect(connection);
        m_count = nullptr;

        const QVariant value = manager->property(property.toLatin1().constData());
        if (expected.userType() == QMetaType::Int)
            QCOMPARE(value.toInt(), expected.toInt());
        else
            QCOMPARE(value, expected);
        QCOMPARE(emitted, announced);
    }

    void unknownPortDisplayLeavesVertical()
    {
        Manager *manager = Manager::instance();
        resetAll(manager);
        manager->setDefaultNodePortDisplayMode(QStringLiteral("No Port List (Vertical)"));
        QSignalSpy spy(manager, &Manager::defaultNodePortDisplayModeChanged);
        manager->setDefaultNodePortDisplayMode(QStringLiteral("show port list (horizontal)"));
        QCOMPARE(manager->defaultNodePortDisplayModeAsEnum(), 0);
        QCOMPARE(spy.count(), 1);
        QCOMPARE(spy.at(0).at(0).toString(), QStringLiteral("Show Port List (Horizontal)"));
    }

    void saveAndLoad()
    {
        Manager *manager = Manager::instance();
        resetAll(manager);
        manager->setControlType(QStringLiteral("Ossa"));
        manager->setDefaultNodePortDisplayMode(QStringLiteral("No Port List (Vertical)"));
        manager->setIsAutoInsertOn(false);
        manager->setZoomTo(Manager::Center);
        manager->setDefaultMCMCollapsedState(Manager::Collapsed);
        manager->setAutoUpdateUpstreamMergeNodeColorspaceEnabled(QStringLiteral("Leave"));
        manager->setShakeToExtractEnabled(false);
        manager->setShakeToExtractShakes(6);
        manager->setShakeToExtractTime(750);
        manager->setNumberOfLastUsedNodePathsToStore(9);
        manager->savePreferences();

        {
            OssSettings settings;
            settings.beginGroup(QStringLiteral("Node Graph"));
            QCOMPARE(settings.value(QStringLiteral("defaultNodePortDisplayMode")).toString(),
                     QStringLiteral("No Port List (Vertical)"));
            QCOMPARE(settings.value(QStringLiteral("zoomTo")).toInt(), 0);
            QCOMPARE(settings.childKeys().size(), 10);
        }

        resetAll(manager);
        QSignalSpy zoom(manager, &Manager::zoomToChangedAsInt);
        QSignalSpy recent(manager, &Manager::numberOfLastUsedNodePathsToStoreChanged);
        manager->loadPreferences();
        QCOMPARE(manager->controlType(), QStringLiteral("Ossa"));
        QCOMPARE(manager->defaultNodePortDisplayModeAsEnum(), 1);
        QCOMPARE(manager->isAutoInsertOn(), false);
        QCOMPARE(manager->zoomTo(), Manager::Center);
        QCOMPARE(manager->defaultMCMCollapsedState(), Manager::Collapsed);
        QCOMPARE(manager->autoUpdateUpstreamMergeNodeColorspaceEnabled(), QStringLiteral("Leave"));
        QCOMPARE(manager->shakeToExtractEnabled(), false);
        QCOMPARE(manager->shakeToExtractShakes(), 6);
        QCOMPARE(manager->shakeToExtractTime(), 750);
        QCOMPARE(manager->numberOfLastUsedNodePathsToStore(), 9);
        QCOMPARE(zoom.count(), 1);
        QCOMPARE(recent.count(), 1);

        // Loading again changes nothing and so announces nothing.
        manager->loadPreferences();
        QCOMPARE(zoom.count(), 1);
        QCOMPARE(recent.count(), 1);
    }

    void wrongTypesInSettings()
    {
        Manager *manager = Manager::instance();
        resetAll(manager);
        {
            OssSettings settings;
            settings.beginGroup(QStringLiteral("Node Graph"));
            settings.setValue(QStringLiteral("zoomTo"), QStringLiteral("Cursor"));
            settings.setValue(QStringLiteral("shakeToExtractShakes"), QStringLiteral("many"));
            settings.setValue(QStringLiteral("controlType"), 3);
            settings.setValue(QStringLiteral("defaultNodePortDisplayMode"), QStringLiteral("?"));
        }
        manager->loadPreferences();
        QCOMPARE(manager->zoomToAsInt(), 0);
        QCOMPARE(manager->shakeToExtractShakes(), 0);
        QCOMPARE(manager->controlType(), QStringLiteral("Kova"));
        QCOMPARE(manager->defaultNodePortDisplayModeAsEnum(), 0);
    }

    void count()
    {
        if (m_count)
            ++*m_count;
    }

private:
    static void resetAll(Manager *manager)
    {
        manager->resetControlType();
        manager->resetDefaultNodePortDisplayMode();
        manager->resetIsAutoInsertOn();
        manager->resetZoomTo();
        manager->resetAutoUpdateUpstreamMergeNodeColorspaceEnabled();
        manager->resetDefaultMCMCollapsedState();
        manager->resetShakeToExtractEnabled();
        manager->resetShakeToExtractShakes();
        manager->resetShakeToExtractTime();
        manager->resetNumberOfLastUsedNodePathsToStore();
    }

    OssTestPluginHost m_host;
    int *m_count = nullptr;
};

QTEST_MAIN(tst_NodeGraphPreferences)
#include "tst_NodeGraphPreferences.moc"
