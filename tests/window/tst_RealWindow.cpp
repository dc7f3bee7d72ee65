#include <QApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QGuiApplication>
#include <QImage>
#include <QPixmap>
#include <QProcess>
#include <QRegularExpression>
#include <QScreen>
#include <QTemporaryDir>
#include <QThread>
#include <QtTest>

#include <cstring>

namespace {

// Nodes of the sample are found on screen by a fill colour nothing else in the graph has.
const QColor Moved(255, 0, 255);    // Dirt_Color: dragged, connected, zoomed at
const QColor Target(0, 255, 255);   // Paint_Roughness: receives the new connection
const QColor SecondOnly(0, 255, 0); // Rough_Clamp, in the second project only
const QColor Inserted(255, 255, 0); // Dirt_Soften, unconnected: dropped onto an edge
const QColor EdgeSource(255, 0, 0); // Rough_Clamp in the first project: its edge receives it
const QColor Group(0, 128, 255);    // the group Scratches
const QColor InGroup(128, 0, 255);  // Cellular, inside the group Scratches
// The colour of a selected node's frame and of the edge a dragged node would go into.
const QColor Highlight(255, 176, 40);
constexpr int ScreenWidth = 1600;
constexpr int ScreenHeight = 1000;

// Gives a node of a project's text a fill of one colour, top and bottom.
bool paintNode(QString &project, const QString &node, const QColor &colour)
{
    const int at =
        project.indexOf(QStringLiteral("<property name=\"name\" type=\"QString\">%1<").arg(node));
    if (at < 0)
        return false;
    const QString value =
        QStringLiteral("%1 %2 %3 1").arg(colour.redF()).arg(colour.greenF()).arg(colour.blueF());
    for (const char *key : {"nodeColorTop", "nodeColorBottom"}) {
        const QRegularExpression property(
            QStringLiteral("(<property name=\"%1\" type=\"QString\">)[^<]*(<)")
                .arg(QLatin1String(key)));
        const QRegularExpressionMatch match = property.match(project, at);
        if (!match.hasMatch())
            return false;
        project.replace(match.capturedStart(), match.capturedLength(),
                        match.captured(1) + value + match.captured(2));
    }
    return true;
}

// Takes out the connection into an input of a node, keeping the list's count right.
bool removeConnection(QString &project, const QString &target, const QString &input)
{
    const QRegularExpression element(
        QStringLiteral("\\s*<element>\\s*<attribute key=\"target\" value=\"%1\"/>\\s*"
                       "<attribute key=\"input\" value=\"%2\"/>[^/]*/>[^/]*/>\\s*</element>")
            .arg(target, input));
    const QRegularExpressionMatch match = element.match(project);
    if (!match.hasMatch())
        return false;
    const QString head = QStringLiteral("<collection name=\"connections\" count=\"");
    const int list = project.lastIndexOf(head, match.capturedStart());
    if (list < 0)
        return false;
    project.remove(match.capturedStart(), match.capturedLength());
    const int number = list + head.size();
    const int end = project.indexOf(QLatin1Char('"'), number);
    const int count = project.mid(number, end - number).toInt();
    project.replace(number, end - number, QString::number(count - 1));
    return true;
}

// The rectangle covered by pixels of exactly this colour, or within Tolerance of it in each
// channel (null when there are too few to be a node).
QRect findColour(const QImage &image, const QColor &colour, int tolerance = 0)
{
    const QRgb wanted = colour.rgb();
    const auto near = [&](QRgb pixel) {
        return qAbs(qRed(pixel) - qRed(wanted)) <= tolerance &&
               qAbs(qGreen(pixel) - qGreen(wanted)) <= tolerance &&
               qAbs(qBlue(pixel) - qBlue(wanted)) <= tolerance;
    };
    int left = image.width(), top = image.height(), right = -1, bottom = -1, count = 0;
    for (int y = 0; y < image.height(); ++y) {
        const QRgb *line = reinterpret_cast<const QRgb *>(image.constScanLine(y));
        for (int x = 0; x < image.width(); ++x)
            if ((line[x] | 0xff000000u) == wanted || (tolerance > 0 && near(line[x]))) {
                left = qMin(left, x);
                right = qMax(right, x);
                top = qMin(top, y);
                bottom = qMax(bottom, y);
                ++count;
            }
    }
    if (count < 30)
        return QRect();
    return QRect(QPoint(left, top), QPoint(right, bottom));
}

QString readText(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

// The first match of either pattern from a place on: projects are written with properties as
// attributes of one element, the sample is kept with one element per property.
QRegularExpressionMatch firstMatch(const QString &text, const QStringList &patterns, int from)
{
    QRegularExpressionMatch best;
    for (const QString &pattern : patterns) {
        const QRegularExpressionMatch match = QRegularExpression(pattern).match(text, from);
        if (match.hasMatch() && (!best.hasMatch() || match.capturedStart() < best.capturedStart()))
            best = match;
    }
    return best;
}

// The saved position of a node in a project file.
QPointF savedPosition(const QString &path, const QString &node)
{
    const QString text = readText(path);
    const QRegularExpressionMatch name = firstMatch(
        text, {QStringLiteral("name=\"%1\"").arg(node), QStringLiteral(">%1<").arg(node)}, 0);
    if (!name.hasMatch())
        return QPointF(qQNaN(), qQNaN());
    const QString number = QStringLiteral("([-0-9.e]+),([-0-9.e]+)");
    const QRegularExpressionMatch position =
        firstMatch(text,
                   {QStringLiteral(" position=\"%1\"").arg(number),
                    QStringLiteral("name=\"position\" type=\"QPointF\">%1<").arg(number)},
                   name.capturedEnd());
    if (!position.hasMatch())
        return QPointF(qQNaN(), qQNaN());
    return QPointF(position.captured(1).toDouble(), position.captured(2).toDouble());
}

// How often a project file names a node type (a rise means a node of it was added).
int savedCount(const QString &path, const QString &pathKey)
{
    return readText(path).count(QStringLiteral("\"%1\"").arg(pathKey));
}

// Whether a project file holds a connection.
bool hasConnection(const QString &path, const QString &target, const QString &input,
                   const QString &source)
{
    const QString text = readText(path);
    return firstMatch(text,
                      {QStringLiteral("target=\"%1\" input=\"%2\" source=\"%3\"")
                           .arg(target, input, source),
                       QStringLiteral("<attribute key=\"target\" value=\"%1\"/>\\s*"
                                      "<attribute key=\"input\" value=\"%2\"/>\\s*"
                                      "<attribute key=\"source\" value=\"%3\"/>")
                           .arg(target, input, source)},
                      0)
        .hasMatch();
}

// The saved text of a node's attribute in a project file (null when it is not there).
QString savedAttribute(const QString &path, const QString &node, const QString &attribute)
{
    const QString text = readText(path);
    const QRegularExpressionMatch name = firstMatch(
        text, {QStringLiteral("name=\"%1\"").arg(node), QStringLiteral(">%1<").arg(node)}, 0);
    if (!name.hasMatch())
        return QString();
    const QRegularExpressionMatch value =
        QRegularExpression(
            QStringLiteral("<userAttribute name=\"%1\"[^>]*>([^<]*)<").arg(attribute))
            .match(text, name.capturedEnd());
    return value.hasMatch() ? value.captured(1) : QString();
}

// The first stretch of at least Length pure white pixels in a row inside Area, top to bottom:
// the base of a text field.
QPoint firstField(const QImage &image, const QRect &area, int length = 24)
{
    for (int y = area.top(); y <= area.bottom(); ++y) {
        int run = 0;
        for (int x = area.left(); x <= area.right(); ++x) {
            run = (image.pixel(x, y) | 0xff000000u) == 0xffffffffu ? run + 1 : 0;
            if (run == length)
                return QPoint(x - length / 2, y + 3);
        }
    }
    return QPoint();
}
} // namespace

// The shell as a user meets it: a real window on a real X server, real pointer and keyboard
// events, and the saved project checked afterwards.
class tst_RealWindow : public QObject
{
    Q_OBJECT

private:
    QProcess m_server;
    QString m_display;
    QProcess m_shell;
    QTemporaryDir m_scratch;
    QString m_first;
    QString m_second;
    int m_shot = 0;

    QProcessEnvironment displayEnvironment() const
    {
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QStringLiteral("DISPLAY"), m_display);
        environment.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("xcb"));
        return environment;
    }

    bool xdotool(const QStringList &arguments)
    {
        QProcess tool;
        tool.setProcessEnvironment(displayEnvironment());
        tool.start(QStringLiteral("xdotool"), arguments);
        return tool.waitForFinished(10000) && tool.exitStatus() == QProcess::NormalExit &&
               tool.exitCode() == 0;
    }

    void pause(int milliseconds = 150) { QThread::msleep(milliseconds); }

    // A picture of the whole screen, kept under the build tree with the step's name.
    QImage screen(const QString &step)
    {
        QDir().mkpath(QStringLiteral(OSS_WINDOW_SHOTS_DIR));
        const QString path = QStringLiteral(OSS_WINDOW_SHOTS_DIR "/%1-%2.png")
                                 .arg(++m_shot, 2, 10, QLatin1Char('0'))
                                 .arg(step);
        QProcess grabber;
        grabber.setProcessEnvironment(displayEnvironment());
        grabber.start(QCoreApplication::applicationFilePath(), {QStringLiteral("--grab"), path});
        if (!grabber.waitForFinished(20000) || grabber.exitCode() != 0)
            return QImage();
        return QImage(path).convertToFormat(QImage::Format_RGB32);
    }

    // Waits (taking pictures) until a colour's rectangle satisfies a condition.
    template <typename Condition>
    QRect waitFor(const QString &step, const QColor &colour, Condition condition)
    {
        QElapsedTimer clock;
        clock.start();
        QRect found;
        do {
            found = findColour(screen(step), colour);
            if (condition(found))
                return found;
            pause(200);
        } while (clock.elapsed() < 8000);
        return found;
    }

    void drag(const QPoint &from, const QPoint &to)
    {
        xdotool({"mousemove", QString::number(from.x()), QString::number(from.y())});
        pause();
        xdotool({"mousedown", "1"});
        pause();
        for (int i = 1; i <= 8; ++i) {
            const QPoint step = from + (to - from) * i / 8;
            xdotool({"mousemove", QString::number(step.x()), QString::number(step.y())});
            pause(40);
        }
        pause();
        xdotool({"mouseup", "1"});
        pause(300);
    }

    bool startShell(const QString &project)
    {
        m_shell.setProcessEnvironment(displayEnvironment());
        m_shell.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        m_shell.start(QStringLiteral(OSS_SHELL_EXECUTABLE),
                      {project, QStringLiteral("--settings-dir"), m_scratch.filePath("settings")});
        if (!m_shell.waitForStarted(10000))
            return false;
        // The window is up once the graph's nodes can be seen.
        return xdotool({"search", "--sync", "--onlyvisible", "--name", "Ossa"});
    }

    bool shellEnds()
    {
        return m_shell.state() == QProcess::NotRunning || m_shell.waitForFinished(10000);
    }

private slots:
    void initTestCase()
    {
        QVERIFY(m_scratch.isValid());
        // Only this run's pictures stay, so that their numbers tell the order of the steps.
        QDir(QStringLiteral(OSS_WINDOW_SHOTS_DIR)).removeRecursively();
        // A display of our own: the first number nobody uses.
        for (int number = 71; number < 100 && m_display.isEmpty(); ++number) {
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

        // Two projects: the sample with two nodes in colours of their own, and the same
        // sample with a third node coloured instead.
        QFile sample(QStringLiteral(OSS_SAMPLE_PROJECT));
        QVERIFY(sample.open(QIODevice::ReadOnly));
        const QString text = QString::fromUtf8(sample.readAll());
        QString first = text, second = text;
        QVERIFY(paintNode(first, QStringLiteral("Dirt_Color"), Moved));
        QVERIFY(paintNode(first, QStringLiteral("Paint_Roughness"), Target));
        QVERIFY(paintNode(second, QStringLiteral("Rough_Clamp"), SecondOnly));
        // A free node to drop on the edge out of Rough_Clamp, and a node to see in the group.
        QVERIFY(removeConnection(first, QStringLiteral("Dirt_Soften"), QStringLiteral("Input")));
        QVERIFY(removeConnection(first, QStringLiteral("Rough_Mix"), QStringLiteral("Amount")));
        QVERIFY(paintNode(first, QStringLiteral("Dirt_Soften"), Inserted));
        QVERIFY(paintNode(first, QStringLiteral("Rough_Clamp"), EdgeSource));
        QVERIFY(paintNode(first, QStringLiteral("Scratches"), Group));
        QVERIFY(paintNode(first, QStringLiteral("Cellular"), InGroup));
        m_first = m_scratch.filePath(QStringLiteral("first.ossa"));
        m_second = m_scratch.filePath(QStringLiteral("second.ossa"));
        for (const auto &[path, content] :
             {std::pair{m_first, first}, std::pair{m_second, second}}) {
            QFile file(path);
            QVERIFY(file.open(QIODevice::WriteOnly));
            file.write(content.toUtf8());
        }
        QVERIFY2(startShell(m_first), "the shell did not show its window");
    }

    void cleanupTestCase()
    {
        if (m_shell.state() != QProcess::NotRunning) {
            m_shell.kill();
            m_shell.waitForFinished(5000);
        }
        if (m_server.state() != QProcess::NotRunning) {
            m_server.terminate();
            if (!m_server.waitForFinished(5000))
                m_server.kill();
        }
    }

    // A node dragged with the mouse moves with it; Ctrl+Z puts it back, Ctrl+Y moves it again.
    void dragANodeAndUndo()
    {
        const QRect start = waitFor("start", Moved, [](const QRect &r) { return r.isValid(); });
        QVERIFY2(start.isValid(), "the coloured node is not on the screen");
        drag(start.center(), start.center() + QPoint(140, 60));
        const QRect moved = waitFor("dragged", Moved, [&](const QRect &r) {
            return r.isValid() && qAbs(r.left() - start.left() - 140) <= 2;
        });
        QVERIFY(qAbs(moved.left() - start.left() - 140) <= 2);
        QVERIFY(qAbs(moved.top() - start.top() - 60) <= 2);
        xdotool({"key", "ctrl+z"});
        const QRect back = waitFor("undone", Moved, [&](const QRect &r) { return r == start; });
        QCOMPARE(back, start);
        // Redo answers Ctrl+Y (as well as Ctrl+Shift+Z) on every platform.
        xdotool({"key", "ctrl+y"});
        const QRect again = waitFor("redone", Moved, [&](const QRect &r) { return r == moved; });
        QCOMPARE(again, moved);
        xdotool({"key", "ctrl+z"});
        QCOMPARE(waitFor("undone again", Moved, [&](const QRect &r) { return r == start; }), start);
    }

    // A click on a node and the Delete key remove it; Ctrl+Z brings it back where it was.
    void deleteWithTheKeyAndUndo()
    {
        const QRect start =
            waitFor("before delete", Moved, [](const QRect &r) { return r.isValid(); });
        QVERIFY(start.isValid());
        xdotool({"mousemove", QString::number(start.center().x()),
                 QString::number(start.center().y())});
        pause();
        xdotool({"click", "1"});
        pause(300);
        xdotool({"key", "Delete"});
        const QRect gone = waitFor("deleted", Moved, [](const QRect &r) { return !r.isValid(); });
        QVERIFY2(!gone.isValid(), "the node is still on the screen after Delete");
        xdotool({"key", "ctrl+z"});
        QCOMPARE(waitFor("delete undone", Moved, [&](const QRect &r) { return r == start; }),
                 start);
    }

    // A right-click on a selected node opens the node graph's menu, which starts with Cut, Copy,
    // Paste, Duplicate and Delete: the fifth entry deletes the node; Ctrl+Z brings it back.
    void deleteFromTheContextMenu()
    {
        const QRect start =
            waitFor("before the menu", Moved, [](const QRect &r) { return r.isValid(); });
        QVERIFY(start.isValid());
        xdotool({"mousemove", QString::number(start.center().x()),
                 QString::number(start.center().y())});
        pause();
        xdotool({"click", "1"});
        pause(300);
        const QImage before = screen("selected for the menu");
        xdotool({"click", "3"});
        pause(600);
        const QImage menu = screen("context menu");
        // The menu covers the area right of and below the cursor.
        const QPoint inMenu = start.center() + QPoint(40, 40);
        QVERIFY2(before.pixel(inMenu) != menu.pixel(inMenu) ||
                     before.pixel(inMenu + QPoint(20, 60)) != menu.pixel(inMenu + QPoint(20, 60)),
                 "no menu opened at the cursor");
        for (int i = 0; i < 5; ++i) {
            xdotool({"key", "Down"});
            pause(80);
        }
        screen("delete highlighted");
        xdotool({"key", "Return"});
        const QRect gone =
            waitFor("deleted from the menu", Moved, [](const QRect &r) { return !r.isValid(); });
        QVERIFY2(!gone.isValid(), "the node is still on the screen after Delete in the menu");
        xdotool({"key", "ctrl+z"});
        QCOMPARE(waitFor("menu delete undone", Moved, [&](const QRect &r) { return r == start; }),
                 start);
    }

    // F frames the selected node (it grows, up to 100 %); Home frames the whole graph again.
    void frameTheSelectionAndTheGraph()
    {
        const QRect start =
            waitFor("before framing", Moved, [](const QRect &r) { return r.isValid(); });
        QVERIFY(start.isValid());
        xdotool({"mousemove", QString::number(start.center().x()),
                 QString::number(start.center().y())});
        pause();
        xdotool({"click", "1"});
        pause(300);
        xdotool({"key", "f"});
        const QRect framed = waitFor("framed selection", Moved, [&](const QRect &r) {
            return r.isValid() && r.width() > start.width() * 1.3;
        });
        QVERIFY2(framed.width() > start.width() * 1.3,
                 qPrintable(QStringLiteral("%1 -> %2").arg(start.width()).arg(framed.width())));
        xdotool({"key", "Home"});
        const QRect all = waitFor("framed graph", Moved, [&](const QRect &r) {
            return qAbs(r.width() - start.width()) <= 2;
        });
        QVERIFY(qAbs(all.width() - start.width()) <= 2);
        QVERIFY(qAbs(all.left() - start.left()) <= 2 && qAbs(all.top() - start.top()) <= 2);
    }

    // Five wheel notches in and five out at a node: the point under the cursor stays there.
    void zoomStaysUnderTheCursor()
    {
        const QRect start =
            waitFor("before zoom", Moved, [](const QRect &r) { return r.isValid(); });
        QVERIFY(start.isValid());
        const QPoint cursor = start.topLeft() + QPoint(start.width() / 3, start.height() / 2);
        xdotool({"mousemove", QString::number(cursor.x()), QString::number(cursor.y())});
        pause();
        for (int i = 0; i < 5; ++i) {
            xdotool({"click", "4"});
            pause(120);
        }
        const QRect in = waitFor("zoomed in", Moved,
                                 [&](const QRect &r) { return r.width() > start.width() * 1.8; });
        QVERIFY2(in.width() > start.width() * 1.8, "the wheel did not zoom in");
        // The scene point under the cursor is the same fraction of the node's width and height.
        const QPointF fraction(double(cursor.x() - start.left()) / start.width(),
                               double(cursor.y() - start.top()) / start.height());
        const QPointF underCursor(in.left() + fraction.x() * in.width(),
                                  in.top() + fraction.y() * in.height());
        QVERIFY2(qAbs(underCursor.x() - cursor.x()) <= 2 && qAbs(underCursor.y() - cursor.y()) <= 2,
                 qPrintable(QStringLiteral("%1, %2").arg(underCursor.x()).arg(underCursor.y())));
        for (int i = 0; i < 5; ++i) {
            xdotool({"click", "5"});
            pause(120);
        }
        const QRect out = waitFor("zoomed out", Moved, [&](const QRect &r) {
            return qAbs(r.width() - start.width()) <= 2;
        });
        QVERIFY(qAbs(out.left() - start.left()) <= 2 && qAbs(out.top() - start.top()) <= 2);
    }

    // An edge dragged from one node's output to another node, then File > Save (Ctrl+S): the
    // file holds the connection.
    void connectByDraggingAndSave()
    {
        const QImage image = screen("before connecting");
        const QRect from = findColour(image, Moved);
        const QRect to = findColour(image, Target);
        QVERIFY(from.isValid() && to.isValid());
        // The output port sits on the right edge, half way down; a drop on the body takes the
        // first free input.
        drag(QPoint(from.right() + 1, from.center().y()), to.center());
        screen("connected");
        xdotool({"key", "ctrl+s"});
        QElapsedTimer clock;
        clock.start();
        bool saved = false;
        while (!saved && clock.elapsed() < 8000) {
            saved = hasConnection(m_first, QStringLiteral("Paint_Roughness"),
                                  QStringLiteral("Mask"), QStringLiteral("Dirt_Color"));
            if (!saved)
                pause(200);
        }
        QVERIFY2(saved, "the saved project has no connection from Dirt_Color to Paint_Roughness");
    }

    // A free node dragged onto an edge lights the edge up and, dropped, goes into it (Auto
    // Insert is on by default); the saved file holds both halves of the edge.
    void dropANodeOntoAnEdgeInsertsIt()
    {
        const QImage image = screen("before inserting");
        const QRect node = findColour(image, Inserted);
        const QRect source = findColour(image, EdgeSource);
        QVERIFY(node.isValid() && source.isValid());
        // The edge leaves the output port (the right edge, half way down) level.
        const QPoint onEdge(source.right() + 45, source.center().y());
        xdotool(
            {"mousemove", QString::number(node.center().x()), QString::number(node.center().y())});
        pause();
        xdotool({"mousedown", "1"});
        pause();
        for (int i = 1; i <= 8; ++i) {
            const QPoint step = node.center() + (onEdge - node.center()) * i / 8;
            xdotool({"mousemove", QString::number(step.x()), QString::number(step.y())});
            pause(40);
        }
        pause(300);
        // The lit edge reaches far beyond the dragged node's frame.
        // Drawn smooth, the edge has few pixels of the exact colour.
        const QRect lit = findColour(screen("edge lit"), Highlight, 24);
        xdotool({"mouseup", "1"});
        pause(300);
        QVERIFY2(lit.isValid() && lit.right() > onEdge.x() + 100,
                 qPrintable(QStringLiteral("%1 %2").arg(lit.right()).arg(onEdge.x())));
        screen("inserted");
        xdotool({"key", "ctrl+s"});
        QElapsedTimer clock;
        clock.start();
        bool saved = false;
        while (!saved && clock.elapsed() < 8000) {
            saved = hasConnection(m_first, QStringLiteral("Shell_Surface"),
                                  QStringLiteral("Roughness"), QStringLiteral("Dirt_Soften")) &&
                    hasConnection(m_first, QStringLiteral("Dirt_Soften"), QStringLiteral("Input"),
                                  QStringLiteral("Rough_Clamp"));
            if (!saved)
                pause(200);
        }
        QVERIFY2(saved, "the saved project does not have Dirt_Soften between Rough_Clamp and "
                        "Shell_Surface");
    }

    // Tab opens quick create at the cursor; typed letters find the type, Return creates it
    // there: a node made from the keyboard alone, kept by Ctrl+S.
    void quickCreateFromTheKeyboard()
    {
        const QRect target = findColour(screen("before quick create"), Target);
        QVERIFY(target.isValid());
        // Empty canvas below Paint_Roughness: the click there leaves nothing selected.
        const QPoint spot = target.center() + QPoint(0, 160);
        xdotool({"mousemove", QString::number(spot.x()), QString::number(spot.y())});
        pause();
        xdotool({"click", "1"});
        pause(300);
        const int before = savedCount(m_first, QStringLiteral("Filter/Sharpen"));
        xdotool({"key", "Tab"});
        pause(800);
        xdotool({"type", "--delay", "40", "shrp"});
        pause(400);
        screen("quick create typed");
        xdotool({"key", "Return"});
        pause(500);
        screen("quick created");
        xdotool({"key", "ctrl+s"});
        QElapsedTimer clock;
        clock.start();
        int after = before;
        while (after == before && clock.elapsed() < 8000) {
            pause(200);
            after = savedCount(m_first, QStringLiteral("Filter/Sharpen"));
        }
        QVERIFY2(after > before, "the saved project holds no new Sharpen node");
    }

    // A double-click on a node opens its panel in the properties palette; a value typed into
    // the panel is one step that Ctrl+Z takes back, and the saved file says so each time.
    void editANodeInItsPanelAndUndo()
    {
        const QRect node =
            waitFor("before panel", Inserted, [](const QRect &r) { return r.isValid(); });
        QVERIFY(node.isValid());
        xdotool(
            {"mousemove", QString::number(node.center().x()), QString::number(node.center().y())});
        pause();
        xdotool({"click", "--repeat", "2", "--delay", "80", "1"});
        pause(800);
        // The panel is framed in the node's colour: look for it away from the node itself.
        QRect frame;
        QImage shot;
        QElapsedTimer clock;
        clock.start();
        do {
            shot = screen("panel opened");
            QImage masked = shot;
            for (int y = node.top() - 8; y <= node.bottom() + 8; ++y)
                for (int x = node.left() - 8; x <= node.right() + 8; ++x)
                    if (masked.valid(x, y))
                        masked.setPixel(x, y, 0xff000000u);
            frame = findColour(masked, Inserted);
            if (!frame.isValid())
                pause(200);
        } while (!frame.isValid() && clock.elapsed() < 8000);
        QVERIFY2(frame.isValid(), "no panel framed in the node's colour");
        QVERIFY2(frame.width() > 150 && frame.height() > 40,
                 qPrintable(QStringLiteral("%1x%2").arg(frame.width()).arg(frame.height())));

        // The first field of the panel is the Radius of the blur.
        const QPoint field = firstField(shot, frame.adjusted(2, 2, -2, -2));
        QVERIFY2(!field.isNull(), "no text field in the panel");
        xdotool({"mousemove", QString::number(field.x()), QString::number(field.y())});
        pause();
        xdotool({"click", "1"});
        pause();
        xdotool({"key", "ctrl+a"});
        xdotool({"type", "--delay", "20", "7.5"});
        xdotool({"key", "Return"});
        pause(300);
        screen("radius typed");
        xdotool({"key", "ctrl+s"});
        const auto savedRadius = [this](const QString &expected) {
            QElapsedTimer wait;
            wait.start();
            while (wait.elapsed() < 8000) {
                if (savedAttribute(m_first, QStringLiteral("Dirt_Soften"),
                                   QStringLiteral("Radius")) == expected)
                    return true;
                pause(200);
            }
            return false;
        };
        QVERIFY2(savedRadius(QStringLiteral("7.5")),
                 qPrintable(savedAttribute(m_first, "Dirt_Soften", "Radius")));

        // Ctrl+Z with the field still focused undoes the step, not the field's text.
        xdotool({"key", "ctrl+z"});
        pause(300);
        screen("radius undone");
        xdotool({"key", "ctrl+s"});
        QVERIFY2(savedRadius(QStringLiteral("2")),
                 qPrintable(savedAttribute(m_first, "Dirt_Soften", "Radius")));
    }

    // Control + double-click on the group opens its subgraph in a tab of its own.
    void controlDoubleClickOpensTheGroup()
    {
        QVERIFY(!findColour(screen("group closed"), InGroup).isValid());
        const QRect body = findColour(screen("before opening"), Group);
        QVERIFY(body.isValid());
        const QPoint group = body.center();
        xdotool({"mousemove", QString::number(group.x()), QString::number(group.y())});
        pause();
        xdotool({"keydown", "ctrl"});
        pause();
        xdotool({"click", "--repeat", "2", "--delay", "80", "1"});
        pause();
        xdotool({"keyup", "ctrl"});
        const QRect inside =
            waitFor("group opened", InGroup, [](const QRect &r) { return r.isValid(); });
        QVERIFY2(inside.isValid(), "the group's subgraph is not shown");
    }

    // File > Open Project (Ctrl+O) in the running shell shows the second project's graph, and
    // Ctrl+Q right after the file dialog reaches the window.
    void openASecondProjectThroughTheMenu()
    {
        xdotool({"key", "ctrl+o"});
        pause(800);
        screen("open dialog");
        xdotool({"type", "--delay", "5", m_second});
        pause(200);
        xdotool({"key", "Return"});
        const QRect shown =
            waitFor("second project", SecondOnly, [](const QRect &r) { return r.isValid(); });
        QVERIFY2(shown.isValid(), "the second project's nodes are not shown");
        QVERIFY(!findColour(screen("second project only"), Moved).isValid());
        xdotool({"key", "ctrl+q"});
        QVERIFY2(shellEnds(), "Ctrl+Q after the file dialog did not quit");
    }

    // An edit, then Quit: the shell asks about saving; Return answers Save, and the file holds
    // the edit.
    void quitAnswersTheSavePrompt()
    {
        QVERIFY(startShell(m_second));
        const QPointF before = savedPosition(m_second, QStringLiteral("Rough_Clamp"));
        const QRect node =
            waitFor("reopened", SecondOnly, [](const QRect &r) { return r.isValid(); });
        QVERIFY(node.isValid());
        // Down into empty canvas, clear of every edge (a node dropped on an edge is spliced in).
        drag(node.center(), node.center() + QPoint(0, 200));
        waitFor("edited", SecondOnly, [&](const QRect &r) { return r.top() > node.top() + 150; });
        xdotool({"key", "ctrl+q"});
        pause(800);
        screen("save prompt");
        QVERIFY2(m_shell.state() == QProcess::Running, "the shell quit without asking");
        xdotool({"key", "Return"});
        QVERIFY2(shellEnds(), "the shell did not quit after the answer");
        const QPointF after = savedPosition(m_second, QStringLiteral("Rough_Clamp"));
        QCOMPARE(after.x(), before.x());
        QVERIFY2(after.y() > before.y() + 60, qPrintable(QString::number(after.y())));
    }

    // Ctrl+C on a node in one running shell and Ctrl+V in another: the node arrives through
    // the system clipboard, and the second shell saves it.
    void copyAndPasteBetweenTwoShells()
    {
        QVERIFY(startShell(m_first));
        const QRect node = waitFor("copy from", Moved, [](const QRect &r) { return r.isValid(); });
        QVERIFY(node.isValid());
        xdotool(
            {"mousemove", QString::number(node.center().x()), QString::number(node.center().y())});
        pause();
        xdotool({"click", "1"});
        pause(300);
        xdotool({"key", "ctrl+c"});
        pause(300);

        QProcess other;
        other.setProcessEnvironment(displayEnvironment());
        other.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        other.start(QStringLiteral(OSS_SHELL_EXECUTABLE),
                    {m_second, QStringLiteral("--settings-dir"), m_scratch.filePath("settings2")});
        QVERIFY(other.waitForStarted(10000));
        // The second shell's window comes up over the first; its graph has no node of that
        // colour until the paste.
        const QRect second =
            waitFor("second shell", SecondOnly, [](const QRect &r) { return r.isValid(); });
        QVERIFY2(second.isValid(), "the second shell's graph is not shown");
        QVERIFY(!findColour(screen("second shell only"), Moved).isValid());
        // Empty canvas above the graph.
        const QPoint canvas(second.center().x(), 160);
        xdotool({"mousemove", QString::number(canvas.x()), QString::number(canvas.y())});
        pause();
        xdotool({"click", "1"});
        pause(300);
        xdotool({"key", "ctrl+v"});
        const QRect pasted = waitFor("pasted", Moved, [](const QRect &r) { return r.isValid(); });
        xdotool({"key", "ctrl+s"});
        QElapsedTimer clock;
        clock.start();
        bool saved = false;
        while (pasted.isValid() && !saved && clock.elapsed() < 8000) {
            saved = readText(m_second).contains(QStringLiteral("Dirt_Color"));
            if (!saved)
                pause(200);
        }
        other.kill();
        other.waitForFinished(5000);
        QVERIFY2(pasted.isValid(), "the copied node did not arrive in the second shell");
        QVERIFY2(saved, "the second shell did not save the pasted node");
    }

    // An image file dragged in from a file manager becomes a tiled texture node showing it. The
    // X test tools cannot drag files between programs, so the shell's test hook delivers the
    // drag (file URLs, enter, move, drop) into its graph once its window is up.
    void anImageFileDroppedFromOutsideBecomesATexture()
    {
        const QString project = m_scratch.filePath(QStringLiteral("dropped.ossa"));
        QFile::remove(project);
        QVERIFY(QFile::copy(m_second, project));
        const QString picture = m_scratch.filePath(QStringLiteral("brick wall.png"));
        QImage image(64, 64, QImage::Format_RGB32);
        image.fill(QColor(120, 60, 30));
        QVERIFY(image.save(picture));

        QProcess dropper;
        QProcessEnvironment environment = displayEnvironment();
        environment.insert(QStringLiteral("OSSA_TEST_DROP"), QStringLiteral("160,120;") + picture);
        dropper.setProcessEnvironment(environment);
        dropper.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        dropper.start(QStringLiteral(OSS_SHELL_EXECUTABLE),
                      {project, QStringLiteral("--settings-dir"), m_scratch.filePath("settings3")});
        QVERIFY(dropper.waitForStarted(10000));
        QVERIFY2(
            waitFor("drop shell", SecondOnly, [](const QRect &r) { return r.isValid(); }).isValid(),
            "the dropping shell's graph is not shown");
        pause(2500);
        screen("image dropped");
        // Empty canvas of this shell's graph takes the focus for the save.
        xdotool({"mousemove", "400", "150"});
        pause();
        xdotool({"click", "1"});
        pause(300);
        xdotool({"key", "ctrl+s"});
        QElapsedTimer clock;
        clock.start();
        bool saved = false;
        while (!saved && clock.elapsed() < 8000) {
            const QString text = readText(project);
            saved = text.contains(QStringLiteral("Procedural/Pattern/Tiled")) &&
                    text.contains(QStringLiteral("TileImage"));
            if (!saved)
                pause(200);
        }
        dropper.kill();
        dropper.waitForFinished(5000);
        QVERIFY2(saved, "the dropped image did not become a saved tiled node");
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
    tst_RealWindow test;
    QTEST_SET_MAIN_SOURCE_PATH
    return QTest::qExec(&test, argc, argv);
}

#include "tst_RealWindow.moc"
