#include "OssPluginInterface.h"
#include "OssTestHost.h"

#include <OssActionTreeManager.h>
#include <OssPalette.h>
#include <OssShaderNetwork.h>
#include <OssShaderNetworkManager.h>
#include <QFile>
#include <QJsonObject>
#include <QPluginLoader>
#include <QtEndian>

#include <QAction>
#include <QLineEdit>
#include <QtTest>

namespace {

// The bytes of a named section of a 64-bit little-endian ELF file, or empty.
QByteArray elfSection(const QByteArray &file, const QByteArray &wanted)
{
    if (file.size() < 64 ||
        !file.startsWith("\x7f"
                         "ELF") ||
        file.at(4) != 2 || file.at(5) != 1)
        return {};
    const auto *data = reinterpret_cast<const uchar *>(file.constData());
    const quint64 sectionTable = qFromLittleEndian<quint64>(data + 0x28);
    const quint16 entrySize = qFromLittleEndian<quint16>(data + 0x3a);
    const quint16 count = qFromLittleEndian<quint16>(data + 0x3c);
    const quint16 namesIndex = qFromLittleEndian<quint16>(data + 0x3e);
    auto header = [&](int index) { return data + sectionTable + quint64(index) * entrySize; };
    if (sectionTable + quint64(count) * entrySize > quint64(file.size()) || namesIndex >= count)
        return {};
    const quint64 namesOffset = qFromLittleEndian<quint64>(header(namesIndex) + 0x18);
    for (int i = 0; i < count; ++i) {
        const quint32 nameOffset = qFromLittleEndian<quint32>(header(i));
        const char *name = file.constData() + namesOffset + nameOffset;
        if (wanted != name)
            continue;
        const quint64 offset = qFromLittleEndian<quint64>(header(i) + 0x18);
        const quint64 size = qFromLittleEndian<quint64>(header(i) + 0x20);
        return file.mid(int(offset), int(size));
    }
    return {};
}

QByteArray cborText(const QByteArray &text)
{
    // A definite-length text string of 24 to 255 bytes: major type 3 with a one-byte length.
    return QByteArray("\x78") + char(text.size()) + text;
}

} // namespace

class tst_PluginEntry : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { QVERIFY2(m_host.start(), qPrintable(m_host.errorString())); }

    void cleanup() { QVERIFY2(m_host.reset(), qPrintable(m_host.errorString())); }

    void metadataBlockIsExact()
    {
        QFile file(QStringLiteral(OSS_PLUGIN_FILE));
        QVERIFY2(file.open(QIODevice::ReadOnly), qPrintable(file.fileName()));
        const QByteArray section = elfSection(file.readAll(), ".qtmetadata");
        QVERIFY(!section.isEmpty());

        QByteArray expected("QTMETADATA !");
        expected += char(0);    // metadata format version
        expected += char(5);    // Qt major version
        expected += char(15);   // Qt minor version
        expected += char(0);    // architecture requirements: release, nothing special
        expected += char(0xbf); // map of indefinite length
        expected += char(0x02) + cborText("com.halvern.ossa.pluginterface/1.0");
        expected += char(0x03) + cborText("OssShaderNetworkNodeGraphViewContextPlugin");
        expected += char(0xff); // break: no key 4, no JSON metadata
        QCOMPARE(section.left(expected.size()).toHex(' '), expected.toHex(' '));
        // Whatever follows is alignment padding only.
        for (int i = expected.size(); i < section.size(); ++i)
            QCOMPARE(int(section.at(i)), 0);
    }

    void loaderReadsMetadataWithoutLoading()
    {
        QPluginLoader loader(QStringLiteral(OSS_PLUGIN_FILE));
        const QJsonObject meta = loader.metaData();
        QCOMPARE(meta.value(QStringLiteral("IID")).toString(),
                 QStringLiteral(OssPluginInterface_iid));
        QCOMPARE(meta.value(QStringLiteral("className")).toString(),
                 QStringLiteral("OssShaderNetworkNodeGraphViewContextPlugin"));
        QVERIFY(meta.value(QStringLiteral("MetaData")).toObject().isEmpty());
        QCOMPARE(meta.value(QStringLiteral("debug")).toBool(), false);
        QVERIFY(!loader.isLoaded());
    }

    void instanceAndIdentity()
    {
        QPluginLoader loader(QStringLiteral(OSS_PLUGIN_FILE));
        QObject *instance = loader.instance();
        QVERIFY2(instance, qPrintable(loader.errorString()));
        QCOMPARE(loader.instance(), instance);
        QCOMPARE(instance->metaObject()->className(), "OssShaderNetworkNodeGraphViewContextPlugin");
        QCOMPARE(instance->parent(), nullptr);
        auto *plugin = qobject_cast<OssPluginInterface *>(instance);
        QVERIFY(plugin);
        QCOMPARE(plugin->name(), QStringLiteral("Node Graph View Context"));
        QCOMPARE(plugin->description(), QStringLiteral("Node Graph View of the Shader Network"));
        QCOMPARE(plugin->version(), 1);
        QCOMPARE(plugin->initializePriority(), OssPluginInterface::DefaultInitializePriority);
        QVERIFY(!plugin->authorName().isEmpty());
        QVERIFY(!plugin->legalNotice().isEmpty());

        m_host.clearLines();
        QVERIFY(plugin->initialize());
        QCOMPARE(m_host.lines().value(0),
                 QStringLiteral("[ Plugin ] Shader Network - Node Graph View Context"));

        // Start-up made one creation action per creatable type, none for hidden folders.
        OssActionTreeManager *tree = OssActionTreeManager::instance();
        QVERIFY(tree->hasAction(QStringLiteral("/Ossa/NodeGraph/Create/Filter/Blur")));
        QVERIFY(tree->hasAction(QStringLiteral("/Ossa/NodeGraph/Create/Misc/Backdrop")));
        for (const QString &folder : tree->folders())
            QVERIFY2(!folder.startsWith(QStringLiteral("/Ossa/NodeGraph/Create/_")),
                     qPrintable(folder));
        const int actions = tree->actions(QStringLiteral("/Ossa/NodeGraph/Create/Filter")).size();
        // A change of the node population runs the creation again: no duplicates.
        emit OssShaderNetworkManager::instance()->registeredNodePopulationChanged();
        QCOMPARE(tree->actions(QStringLiteral("/Ossa/NodeGraph/Create/Filter")).size(), actions);
        QVERIFY(OssPaletteManager::instance()->find(QStringLiteral("Node Graph")));

        // An action fired while focus is outside the node graph runs on the current view.
        OssShaderNetwork *network = m_host.newProject();
        QLineEdit field;
        field.show();
        field.setFocus();
        QVERIFY(QTest::qWaitForWindowExposed(&field));
        QApplication::setActiveWindow(&field);
        m_host.clearLines();
        tree->findAction(QStringLiteral("/Ossa/NodeGraph/Create/Filter/Blur"))->trigger();
        QVERIFY(m_host.lines().value(0).startsWith(
            "[ !! ] Could not get the current active widget, fallback onto current nodegraph "
            "view 0x"));
        QCOMPARE(network->nodes().size(), 1);
        QCOMPARE(network->nodes().first()->pathKey(), QStringLiteral("Filter/Blur"));
        QVERIFY(plugin->uninitialize());
    }

private:
    OssTestHost m_host;
};

QTEST_MAIN(tst_PluginEntry)
#include "tst_PluginEntry.moc"
