#include "OssPreferenceManager.h"
#include "OssSettings.h"
#include "OssSnNodeGraphViewContextManager.h"
#include "OssTestPluginHost.h"

#include <QtTest>

#include <memory>
#include <vector>

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

    void toolTipsAreExact_data()
    {
        QTest::addColumn<QString>("key");
        QTest::addColumn<QString>("text");
        QTest::newRow("controlType") << "controlType"
                                     << "Setup the nodegraph navigation to match another software "
                                        "application.\n * Kova (default)\n * Ossa";
        QTest::newRow("defaultNodePortDisplayMode")
            << "defaultNodePortDisplayMode"
            << "Configures whether each node shows port list by default upon creation.\n * No "
               "Port List (Vertical): Nodes will not show port list upon creation\n * Show Port "
               "List (Horizontal): Nodes will show port list upon creation";
        QTest::newRow("isAutoInsertOn")
            << "isAutoInsertOn"
            << "Nodes will be inserted automatically into the tree when moved over an existing "
               "pipe. This is indicated by the pipe turning yellow when hovering.";
        QTest::newRow("zoomTo") << "zoomTo"
                                << "Which point to anchor when zooming in the Node Graph\n";
        QTest::newRow("autoUpdateUpstreamMergeNodeColorspaceEnabled")
            << "autoUpdateUpstreamMergeNodeColorspaceEnabled"
            << "<html>Control whether to automatically change the 'Use Blending Colorspace' "
               "attribute to 'Enable' for Merge nodes upstream of newly connected 8bit (byte) "
               "Channels or Bake Points configured for color paint data. When Merge nodes have "
               "this attribute set to 'Disable' for an 8-bit (byte) color paint data channel, "
               "precision issues in the blending math could occur, which could result in visual "
               "banding artefacts in your paint.</html>";
        QTest::newRow("defaultMCMCollapsedState")
            << "defaultMCMCollapsedState"
            << "Default collapsed state of Multi-Channel nodes when created";
        QTest::newRow("shakeToExtractEnabled")
            << "shakeToExtractEnabled"
            << "Shake selected nodes in the node graph to extract them.";
        QTest::newRow("shakeToExtractShakes")
            << "shakeToExtractShakes"
            << "Perform this many shakes in the required time to trigger Shake to Extract.\nA "
               "\"shake\" is moving the nodes in one direction then moving them in the opposite "
               "direction.";
        QTest::newRow("shakeToExtractTime")
            << "shakeToExtractTime"
            << "Perform the required number of shakes in this amount of time (in milliseconds) "
               "to trigger Shake to Extract.";
        QTest::newRow("numberOfLastUsedNodePathsToStore")
            << "numberOfLastUsedNodePathsToStore"
            << "The number of most recent nodes to be shown in the Node graph's Quick Create Menu";
    }

    void toolTipsAreExact()
    {
        QFETCH(QString, key);
        QFETCH(QString, text);
        Manager *manager = Manager::instance();
        QString toolTip;
        const QByteArray slot = (key + QStringLiteral("Tooltip")).toLatin1();
        QVERIFY(
            QMetaObject::invokeMethod(manager, slot.constData(), Q_RETURN_ARG(QString, toolTip)));
        QCOMPARE(toolTip, text);
        // The preference page shows the same text.
        QCOMPARE(
            OssPreferenceManager::instance()->find(QStringLiteral("Node Graph"), key).toolTip(),
            text);
    }

    void labels()
    {
        Manager *manager = Manager::instance();
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
        // Every change signal of the manager is counted.
        std::vector<std::unique_ptr<QSignalSpy>> spies;
        const QMetaObject *meta = manager->metaObject();
        for (int i = meta->methodOffset(); i < meta->methodCount(); ++i)
            if (meta->method(i).methodType() == QMetaMethod::Signal)
                spies.push_back(std::make_unique<QSignalSpy>(manager, meta->method(i)));

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
        int emitted = 0;
        for (const auto &spy : spies)
            emitted += spy->count();

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

    void roundTripAndReset_data() { preferenceRows(); }

    // A preference is saved under its key and read back, a reset gives its default, and one
    // missing from the settings falls back to its default or keeps its value on load.
    void roundTripAndReset()
    {
        QFETCH(QString, key);
        QFETCH(QVariant, defaultValue);
        QFETCH(QVariant, other);
        QFETCH(bool, missingGivesDefault);
        Manager *manager = Manager::instance();
        const QByteArray name = key.toLatin1();
        const QMetaProperty property = manager->metaObject()->property(
            manager->metaObject()->indexOfProperty(name.constData()));
        QVERIFY(property.isValid());
        resetAll(manager);
        QCOMPARE(valueOf(manager, key, defaultValue), defaultValue);
        const QVariant declared = OssPreferenceManager::instance()
                                      ->find(QStringLiteral("Node Graph"), key)
                                      .defaultValue();
        if (declared.isValid())
            QCOMPARE(declared, defaultValue);

        QVERIFY(manager->setProperty(name.constData(), other));
        QCOMPARE(valueOf(manager, key, defaultValue), other);
        QVERIFY(property.reset(manager));
        QCOMPARE(valueOf(manager, key, defaultValue), defaultValue);

        QVERIFY(manager->setProperty(name.constData(), other));
        manager->savePreferences();
        {
            OssSettings settings;
            settings.beginGroup(QStringLiteral("Node Graph"));
            QVERIFY(settings.contains(key));
            QCOMPARE(settings.value(key).toString(), other.toString());
        }
        resetAll(manager);
        manager->loadPreferences();
        QCOMPARE(valueOf(manager, key, defaultValue), other);

        {
            OssSettings settings;
            settings.beginGroup(QStringLiteral("Node Graph"));
            settings.remove(key);
        }
        resetAll(manager);
        QVERIFY(manager->setProperty(name.constData(), other));
        manager->loadPreferences();
        QCOMPARE(valueOf(manager, key, defaultValue), missingGivesDefault ? defaultValue : other);
        resetAll(manager);
    }

    // The settings are read in their own order: the collapsed state before the colour space
    // behaviour, whose change signals listeners then hear in that order.
    void loadReadsInTheSettingsOrder()
    {
        Manager *manager = Manager::instance();
        resetAll(manager);
        {
            OssSettings settings;
            settings.beginGroup(QStringLiteral("Node Graph"));
            settings.setValue(QStringLiteral("autoUpdateUpstreamMergeNodeColorspaceEnabled"),
                              QStringLiteral("Change"));
            settings.setValue(QStringLiteral("defaultMCMCollapsedState"), int(Manager::Collapsed));
        }
        QStringList heard;
        QObject listener;
        connect(manager, &Manager::autoUpdateUpstreamMergeNodeColorspaceEnabledChanged, &listener,
                [&heard] { heard << QStringLiteral("colour space"); });
        connect(manager, &Manager::defaultMCMCollapsedStateChangedAsInt, &listener,
                [&heard] { heard << QStringLiteral("collapsed state"); });
        manager->loadPreferences();
        QCOMPARE(heard, QStringList({"collapsed state", "colour space"}));
        OssSettings().remove(QStringLiteral("Node Graph"));
        resetAll(manager);
    }

    void listedOnceInItsSection_data() { preferenceRows(); }

    void listedOnceInItsSection()
    {
        QFETCH(QString, key);
        QFETCH(QString, section);
        Manager::instance();
        OssPreferenceManager *preferences = OssPreferenceManager::instance();
        const QString page = QStringLiteral("Node Graph");
        int listed = 0;
        for (const QString &group : preferences->groups(page))
            for (const OssPreference &preference : preferences->preferences(page, group))
                if (preference.key == key) {
                    ++listed;
                    QCOMPARE(group, section);
                }
        QCOMPARE(listed, 1);
    }

private:
    // Each preference with its section, its default and a value other than the default.
    static void preferenceRows()
    {
        QTest::addColumn<QString>("key");
        QTest::addColumn<QString>("section");
        QTest::addColumn<QVariant>("defaultValue");
        QTest::addColumn<QVariant>("other");
        // Whether a preference missing from the settings falls back to its default on load
        // (else it keeps its current value).
        QTest::addColumn<bool>("missingGivesDefault");
        const auto row = [](const char *key, const char *section, const QVariant &defaultValue,
                            const QVariant &other, bool missingGivesDefault) {
            QTest::newRow(key) << QString::fromLatin1(key) << QString::fromLatin1(section)
                               << defaultValue << other << missingGivesDefault;
        };
        row("controlType", "General", QStringLiteral("Kova"), QStringLiteral("Ossa"), true);
        row("defaultNodePortDisplayMode", "General", QStringLiteral("Show Port List (Horizontal)"),
            QStringLiteral("No Port List (Vertical)"), false);
        row("isAutoInsertOn", "General", true, false, false);
        row("zoomTo", "General", int(Manager::Cursor), int(Manager::Center), false);
        row("autoUpdateUpstreamMergeNodeColorspaceEnabled", "General", QStringLiteral("Prompt"),
            QStringLiteral("Leave"), true);
        row("defaultMCMCollapsedState", "Multi-Channel", int(Manager::StreamCollapsed),
            int(Manager::Collapsed), false);
        row("shakeToExtractEnabled", "Shake to Extract", true, false, true);
        row("shakeToExtractShakes", "Shake to Extract", 4, 7, true);
        row("shakeToExtractTime", "Shake to Extract", 500, 250, true);
        row("numberOfLastUsedNodePathsToStore", "Quick Node Create Menu", 5, 12, true);
    }

    // The property's value; enumerations as their numbers.
    static QVariant valueOf(Manager *manager, const QString &key, const QVariant &like)
    {
        const QVariant value = manager->property(key.toLatin1().constData());
        return like.userType() == QMetaType::Int ? QVariant(value.toInt()) : value;
    }

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
};

QTEST_MAIN(tst_NodeGraphPreferences)
#include "tst_NodeGraphPreferences.moc"
