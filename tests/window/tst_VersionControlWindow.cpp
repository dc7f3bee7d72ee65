#include <QApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QGuiApplication>
#include <QImage>
#include <QPixmap>
#include <QProcess>
#include <QScreen>
#include <QTemporaryDir>
#include <QThread>
#include <QtTest>

#include <cstring>

namespace {

constexpr int ScreenWidth = 1600;
constexpr int ScreenHeight = 1000;

} // namespace

// The version control window as a user opens it: the shell on the outdated sample project in a
// real X server, the Node Graph menu walked with the keyboard to "Upgrade All Node Info", and the
// window that comes up looked at in a picture.
class tst_VersionControlWindow : public QObject
{
    Q_OBJECT

private:
    QProcess m_server;
    QString m_display;
    QProcess m_shell;
    QTemporaryDir m_scratch;

    QProcessEnvironment displayEnvironment() const
    {
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QStringLiteral("DISPLAY"), m_display);
        environment.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("xcb"));
        return environment;
    }

    bool xdotool(const QStringList &arguments, QString *output = nullptr)
    {
        QProcess tool;
        tool.setProcessEnvironment(displayEnvironment());
        tool.start(QStringLiteral("xdotool"), arguments);
        const bool ok = tool.waitForFinished(15000) && tool.exitStatus() == QProcess::NormalExit &&
                        tool.exitCode() == 0;
        if (output)
            *output = QString::fromLocal8Bit(tool.readAllStandardOutput()).trimmed();
        return ok;
    }

    void pause(int milliseconds = 300) { QThread::msleep(milliseconds); }

    QImage screen(const QString &name)
    {
        QDir().mkpath(QStringLiteral(OSS_WINDOW_SHOTS_DIR));
        const QString path = QStringLiteral(OSS_WINDOW_SHOTS_DIR "/%1.png").arg(name);
        QProcess grabber;
        grabber.setProcessEnvironment(displayEnvironment());
        grabber.start(QCoreApplication::applicationFilePath(), {QStringLiteral("--grab"), path});
        if (!grabber.waitForFinished(20000) || grabber.exitCode() != 0)
            return QImage();
        return QImage(path);
    }

    // The window of that exact title, waited for up to Seconds.
    QString findWindow(const QString &title, int seconds)
    {
        QElapsedTimer clock;
        clock.start();
        QString found;
        do {
            if (xdotool({"search", "--onlyvisible", "--name", QStringLiteral("^%1$").arg(title)},
                        &found) &&
                !found.isEmpty())
                return found.split(QLatin1Char('\n')).first();
            pause(200);
        } while (clock.elapsed() < seconds * 1000);
        return QString();
    }

private slots:
    void initTestCase()
    {
        QVERIFY(m_scratch.isValid());
        for (int number = 93; number < 120 && m_display.isEmpty(); ++number) {
            if (QFileInfo::exists(QStringLiteral("/tmp/.X%1-lock").arg(number)) ||
                QFileInfo::exists(QStringLiteral("/tmp/.X11-unix/X%1").arg(number)))
                continue;
            m_server.start(QStringLiteral("Xvfb"),
                           {QStringLiteral(":%1").arg(number), "-screen", "0",
                            QStringLiteral("%1x%2x24").arg(ScreenWidth).arg(ScreenHeight),
                            "-nolisten", "tcp"});
            if (!m_server.waitForStarted(5000))
                break;
            QElapsedTimer clock;
            clock.start();
            while (clock.elapsed() < 5000 && m_server.state() == QProcess::Running &&
                   !QFileInfo::exists(QStringLiteral("/tmp/.X11-unix/X%1").arg(number)))
                pause(50);
            if (m_server.state() == QProcess::Running)
                m_display = QStringLiteral(":%1").arg(number);
        }
        if (m_display.isEmpty())
            QSKIP(qPrintable(QStringLiteral("Xvfb cannot start (%1): no real-window test")
                                 .arg(m_server.errorString())));
    }

    void cleanupTestCase()
    {
        if (m_shell.state() != QProcess::NotRunning) {
            m_shell.kill();
            m_shell.waitForFinished(5000);
        }
        if (m_server.state() != QProcess::NotRunning) {
            m_server.terminate();
            m_server.waitForFinished(5000);
        }
    }

    void theMenuOpensTheWindowOnTheOutdatedSample()
    {
        m_shell.setProcessEnvironment(displayEnvironment());
        m_shell.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        m_shell.start(QStringLiteral(OSS_SHELL_EXECUTABLE),
                      {QStringLiteral(OSS_OUTDATED_PROJECT), QStringLiteral("--settings-dir"),
                       m_scratch.filePath("settings")});
        QVERIFY(m_shell.waitForStarted(10000));
        QVERIFY(xdotool({"search", "--sync", "--onlyvisible", "--name", "Ossa"}));
        pause(1500);
        const QString main = findWindow(QStringLiteral(".*Ossa.*"), 10);
        QVERIFY(!main.isEmpty());
        xdotool({"windowactivate", "--sync", main});
        pause();
        QVERIFY(!screen(QStringLiteral("1-shell")).isNull());

        // A click opens the first menu, File; then Edit, Project and the Node Graph menu. Up
        // from its first entry wraps to the last, the Create submenu; above it the manager's
        // mode entries and Shake To Extract, and above those the command.
        QVERIFY(xdotool({"mousemove", "20", "10"}));
        pause();
        QVERIFY(xdotool({"click", "1"}));
        pause();
        for (int i = 0; i < 3; ++i) {
            QVERIFY(xdotool({"key", "Right"}));
            pause(150);
        }
        QVERIFY(!screen(QStringLiteral("2-menu")).isNull());
        for (int i = 0; i < 7; ++i) {
            QVERIFY(xdotool({"key", "Up"}));
            pause(100);
        }
        pause();
        QVERIFY(!screen(QStringLiteral("3-entry")).isNull());
        QVERIFY(xdotool({"key", "Return"}));

        const QString window = findWindow(QStringLiteral("Node Version Control"), 15);
        QVERIFY2(!window.isEmpty(), "the version control window did not open");
        pause(800);
        const QImage picture = screen(QStringLiteral("4-window"));
        QVERIFY(!picture.isNull());

        // Escape leaves the window; the shell is still there.
        QVERIFY(xdotool({"key", "Escape"}));
        QElapsedTimer clock;
        clock.start();
        while (!findWindow(QStringLiteral("Node Version Control"), 0).isEmpty() &&
               clock.elapsed() < 5000)
            pause(200);
        QVERIFY(findWindow(QStringLiteral("Node Version Control"), 0).isEmpty());
        QCOMPARE(m_shell.state(), QProcess::Running);
    }
};

int main(int argc, char **argv)
{
    // Run again with --grab <file>, the program writes a picture of the X screen it is given.
    if (argc == 3 && std::strcmp(argv[1], "--grab") == 0) {
        QGuiApplication app(argc, argv);
        const QPixmap picture = QGuiApplication::primaryScreen()->grabWindow(0);
        return !picture.isNull() && picture.save(QString::fromLocal8Bit(argv[2])) ? 0 : 1;
    }
    QApplication app(argc, argv);
    tst_VersionControlWindow test;
    QTEST_SET_MAIN_SOURCE_PATH
    return QTest::qExec(&test, argc, argv);
}

#include "tst_VersionControlWindow.moc"
