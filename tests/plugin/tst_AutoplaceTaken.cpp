#include "OssTestPluginHost.h"

#include "OssShaderNetworkView.h"
#include "OssSnNodeGraphViewContext.h"
#include "OssSnNodeGraphViewContextManager.h"

#include <OssActionTreeManager.h>
#include <OssMenuManager.h>
#include <OssNgNode.h>
#include <OssShaderNetwork.h>
#include <OssShaderNetworkManager.h>
#include <OssUndoManager.h>

#include <QAction>
#include <QMenu>
#include <QtTest>

#include <memory>

// The host already has an action "/Ossa/NodeGraph/Autoplace" when the plug-in starts: the
// manager's own Autoplace stays out of the tree, and is still offered in the network's menu.
class tst_AutoplaceTaken : public QObject
{
    Q_OBJECT

private:
    QAction m_hostsOwn{QStringLiteral("Autoplace")};
    OssTestPluginHost m_host;

    QAction *managersAutoplace() const
    {
        for (QAction *action : OssShaderNetworkManager::instance()->globalContextMenuActions())
            if (action->parent() == m_host.manager() &&
                action->text() == QLatin1String("Autoplace"))
                return action;
        return nullptr;
    }

private slots:
    void initTestCase()
    {
        OssActionTreeManager::instance()->registerAction(QStringLiteral("/Ossa/NodeGraph/"),
                                                         &m_hostsOwn);
        QVERIFY2(m_host.start(), qPrintable(m_host.errorString()));
    }

    void cleanup() { QVERIFY2(m_host.reset(), qPrintable(m_host.errorString())); }

    void managersAutoplaceIsNotFiled()
    {
        OssActionTreeManager *tree = OssActionTreeManager::instance();
        QCOMPARE(tree->findActions(QStringLiteral("/Ossa/NodeGraph/Autoplace")),
                 QList<QAction *>{&m_hostsOwn});
        QAction *own = managersAutoplace();
        QVERIFY(own);
        for (const QString &folder : tree->folders())
            QVERIFY(!tree->actions(folder).contains(own));
    }

    void managersAutoplaceIsInTheMenuAndLaysOut()
    {
        OssShaderNetwork *network = m_host.newProject();
        QVERIFY(m_host.createMixChain(network));
        std::unique_ptr<QMenu> menu(m_host.manager()->currentView()->makeContextMenu());
        QVERIFY(menu);
        QAction *own = managersAutoplace();
        QVERIFY(menu->actions().contains(own));
        // A node far out of place: the layout brings it back to its column.
        OssNgNode *out = OssSnNodeGraphViewContext::guiNodeOf(network->node(QStringLiteral("N1")));
        out->setPos(5000, 5000);
        OssUndoManager::instance()->clear();
        own->trigger();
        QVERIFY(out->pos() != QPointF(5000, 5000));
        QCOMPARE(OssUndoManager::instance()->undoText(), QStringLiteral("Layout Nodes"));
    }
};

QTEST_MAIN(tst_AutoplaceTaken)
#include "tst_AutoplaceTaken.moc"
