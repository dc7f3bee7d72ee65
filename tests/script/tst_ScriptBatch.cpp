#include "OssTestPluginHost.h"

#include "OssSnNodeGraphViewContext.h"
#include "OssSnNodeGraphWidget.h"

#include <OssNgNode.h>
#include <OssProject.h>
#include <OssProjectManager.h>
#include <OssScriptEngine.h>
#include <OssScriptManager.h>
#include <OssShaderNetwork.h>
#include <OssShaderNetworkManager.h>
#include <OssSnBaseNode.h>
#include <OssSnGroupNode.h>
#include <OssaAPI.h>

#include <QDir>
#include <QFile>
#include <QImage>
#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QtTest>

// The shell's headless script runs: the README's batch example on a copy of the sample, and
// the exit status and messages of --script and --run.
class tst_ScriptBatch : public QObject
{
    Q_OBJECT

private:
    OssTestPluginHost m_host;

    struct Run
    {
        int status = -1;
        QString out;
        QString err;
    };

    Run shell(const QStringList &arguments)
    {
        QProcess process;
        process.setProgram(QStringLiteral(OSS_SHELL));
        process.setArguments(QStringList{QStringLiteral("--settings-dir"),
                                         m_host.scratchPath(QStringLiteral("settings"))} +
                             arguments);
        process.start();
        Run run;
        if (!process.waitForFinished(180000)) {
            process.kill();
            process.waitForFinished();
            run.err = QStringLiteral("timed out");
            return run;
        }
        run.status = process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -2;
        run.out = QString::fromUtf8(process.readAllStandardOutput());
        run.err = QString::fromUtf8(process.readAllStandardError());
        return run;
    }

    static QString readmeExample()
    {
        QFile readme(QStringLiteral(OSS_README));
        if (!readme.open(QIODevice::ReadOnly))
            return QString();
        const QString text = QString::fromUtf8(readme.readAll());
        const QRegularExpressionMatch block =
            QRegularExpression(QStringLiteral("```python\\n(.*?)```"),
                               QRegularExpression::DotMatchesEverythingOption)
                .match(text);
        return block.captured(1);
    }

    // Every network of the open project, groups included, depth first.
    static QList<OssShaderNetwork *> allNetworks()
    {
        QList<OssShaderNetwork *> found;
        for (OssShaderNetwork *root : OssProjectManager::instance()->currentProject()->networks()) {
            found.append(root);
            for (OssSnBaseNode *node : root->getAllNodes())
                if (auto *group = qobject_cast<OssSnGroupNode *>(node))
                    found.append(group->groupNetwork());
        }
        return found;
    }

    // The place of every node with a GUI node, by network path and node name.
    static QMap<QString, QPointF> places()
    {
        QMap<QString, QPointF> result;
        for (OssShaderNetwork *network : allNetworks())
            for (OssSnBaseNode *node : network->nodes())
                if (OssNgNode *gui = OssSnNodeGraphViewContext::guiNodeOf(node))
                    result.insert(network->path() + QLatin1Char('|') + node->name(), gui->pos());
        return result;
    }

private slots:
    void initTestCase()
    {
        // Qt Test fixes the logical resolution at 96 dpi; the shell uses the screen's. Text, and
        // so node sizes and layouts, must measure the same in both.
        QCoreApplication::setAttribute(Qt::AA_Use96Dpi, false);
        QVERIFY2(m_host.start(), qPrintable(m_host.errorString()));
    }

    void cleanup() { QVERIFY(m_host.reset()); }

    void readmeBatchExample()
    {
        const QString example = readmeExample();
        QVERIFY2(example.contains(QLatin1String("project.save()")), "no example in README.md");
        QTemporaryDir work;
        const QString script = work.filePath(QStringLiteral("autoplace_all.py"));
        const QString project = work.filePath(QStringLiteral("project.ossa"));
        const QString pictures = work.filePath(QStringLiteral("pictures"));
        QFile file(script);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(example.toUtf8());
        file.close();
        QVERIFY(QFile::copy(OssTestHost::samplePath(), project));
        QFile::setPermissions(project, QFile::ReadOwner | QFile::WriteOwner);

        const Run run = shell({QStringLiteral("--script"), script, project, pictures});
        QVERIFY2(run.status == 0, qPrintable(run.err));

        // The same script in this process, on a second copy: the layout it leaves in memory is
        // what the shell must have saved.
        const QString second = work.filePath(QStringLiteral("second.ossa"));
        QVERIFY(QFile::copy(OssTestHost::samplePath(), second));
        QFile::setPermissions(second, QFile::ReadOwner | QFile::WriteOwner);
        QVERIFY(m_host.openSample());
        const QMap<QString, QPointF> original = places();
        QVERIFY(m_host.reset());
        QVERIFY(m_host.openProject(second));
        // Shown, as in the shell.
        m_host.nodeGraphWidget()->window()->resize(1280, 800);
        m_host.nodeGraphWidget()->window()->show();
        QVERIFY(QTest::qWaitForWindowExposed(m_host.nodeGraphWidget()->window()));
        const int networkCount = allNetworks().size();
        const OssScriptEngine::Result inProcess = OssScriptEngine::instance()->runFile(
            script, {script, second, work.filePath(QStringLiteral("second-pictures"))});
        QVERIFY2(inProcess.status == 0, qPrintable(inProcess.error));
        QVERIFY(m_host.reset());
        QVERIFY(m_host.openProject(second));
        const QMap<QString, QPointF> expected = places();
        QVERIFY(m_host.reset());
        // The layout moved nodes.
        QCOMPARE(expected.keys(), original.keys());
        int moved = 0;
        for (auto it = expected.cbegin(); it != expected.cend(); ++it)
            if (QLineF(original.value(it.key()), it.value()).length() > 1)
                ++moved;
        QVERIFY(moved > 0);

        // One picture per network, each with a graph drawn in it.
        const QStringList written = QDir(pictures).entryList({QStringLiteral("*.png")});
        QCOMPARE(written.size(), networkCount);
        QCOMPARE(run.out.count(QStringLiteral("wrote ")), networkCount);
        for (const QString &name : written) {
            const QImage image(QDir(pictures).filePath(name));
            QVERIFY2(!image.isNull() && image.width() > 100 && image.height() > 100,
                     qPrintable(name));
            QSet<QRgb> colours;
            for (int y = 0; y < image.height(); y += 3)
                for (int x = 0; x < image.width(); x += 3)
                    colours.insert(image.pixel(x, y));
            QVERIFY2(colours.size() > 3, qPrintable(name));
        }

        // The saved project holds the laid out networks.
        QVERIFY2(m_host.openProject(project), qPrintable(m_host.errorString()));
        QCOMPARE(allNetworks().size(), networkCount);
        const QMap<QString, QPointF> saved = places();
        QCOMPARE(saved.keys(), expected.keys());
        for (auto it = expected.cbegin(); it != expected.cend(); ++it)
            QVERIFY2(QLineF(saved.value(it.key()), it.value()).length() < 0.5,
                     qPrintable(QStringLiteral("%1 saved at %2,%3 instead of %4,%5")
                                    .arg(it.key())
                                    .arg(saved.value(it.key()).x())
                                    .arg(saved.value(it.key()).y())
                                    .arg(it.value().x())
                                    .arg(it.value().y())));
    }

    void exitStatus_data()
    {
        QTest::addColumn<QStringList>("arguments");
        QTest::addColumn<int>("status");
        QTest::addColumn<QString>("out");
        QTest::addColumn<QString>("err");
        const QString sample = OssTestHost::samplePath();
        QTest::newRow("run prints") << QStringList{"--run", "print(ossa.project().name())", sample}
                                    << 0 << "Sample Helmet\n"
                                    << "";
        QTest::newRow("run exits 4") << QStringList{"--run", "raise SystemExit(4)"} << 4 << ""
                                     << "";
        QTest::newRow("run raises") << QStringList{"--run", "1 / 0"} << 1 << ""
                                    << "ZeroDivisionError: division by zero";
        QTest::newRow("script error")
            << QStringList{"--run", "ossa.palette('Node Graph').closeTab('x')"} << 1 << ""
            << "TypeError: closeTab() argument 1 (Index): expected int, "
               "not str";
        QTest::newRow("missing script") << QStringList{"--script", "/no/such/file.py"} << 2 << ""
                                        << "Cannot run the script /no/such/file.py: no such file";
        QTest::newRow("missing project")
            << QStringList{"--run", "print('ran')", "/no/such.ossa"} << 2 << ""
            << "Cannot open the project";
    }

    void exitStatus()
    {
        QFETCH(QStringList, arguments);
        QFETCH(int, status);
        QFETCH(QString, out);
        QFETCH(QString, err);
        const Run run = shell(arguments);
        QVERIFY2(run.status == status, qPrintable(run.err));
        QCOMPARE(run.out, out);
        QVERIFY2(run.err.contains(err), qPrintable(run.err));
    }

    void scriptGetsItsArguments()
    {
        QTemporaryDir work;
        const QString script = work.filePath(QStringLiteral("args.py"));
        QFile file(script);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write("import sys\nprint(sys.argv[1:])\nprint(__file__ == sys.argv[0])\n"
                   "raise SystemExit(len(sys.argv))\n");
        file.close();
        const Run run = shell({QStringLiteral("--script"), script, OssTestHost::samplePath(),
                               QStringLiteral("extra")});
        QCOMPARE(run.status, 3);
        QCOMPARE(run.out, QStringLiteral("['%1', 'extra']\nTrue\n").arg(OssTestHost::samplePath()));
    }
};

QTEST_MAIN(tst_ScriptBatch)
#include "tst_ScriptBatch.moc"
