#include "OssScriptConsole.h"

#include "OssScriptEngine.h"

#include <OssPalette.h>

#include <QKeyEvent>
#include <QRegularExpression>
#include <QScrollBar>
#include <QTextBlock>
#include <QVBoxLayout>

namespace {

// The log keeps this many lines; a script that prints without end does not fill the memory.
constexpr int MaximumLogLines = 5000;
const QColor InputColour(140, 190, 255);
const QColor OutputColour(220, 220, 220);
const QColor ErrorColour(255, 110, 100);

QString commonPrefix(const QStringList &words)
{
    if (words.isEmpty())
        return QString();
    QString prefix = words.first();
    for (const QString &word : words) {
        int same = 0;
        while (same < prefix.size() && same < word.size() && prefix.at(same) == word.at(same))
            ++same;
        prefix.truncate(same);
    }
    return prefix;
}

} // namespace

OssScriptConsoleInput::OssScriptConsoleInput(QWidget *parent) : QPlainTextEdit(parent)
{
    setObjectName(QStringLiteral("ScriptConsoleInput"));
    setTabChangesFocus(false);
    setLineWrapMode(QPlainTextEdit::NoWrap);
    QFont mono(QStringLiteral("Monospace"));
    mono.setStyleHint(QFont::TypeWriter);
    setFont(mono);
    // Room for a short block; longer entries scroll.
    setMaximumHeight(fontMetrics().lineSpacing() * 5);
    setPlaceholderText(tr("Python: Return runs, Shift+Return adds a line, Tab completes"));
}

void OssScriptConsoleInput::addToHistory(const QString &entry)
{
    if (!entry.trimmed().isEmpty() && (m_history.isEmpty() || m_history.last() != entry))
        m_history.append(entry);
    m_historyIndex = m_history.size();
    m_draft.clear();
}

void OssScriptConsoleInput::accept()
{
    addToHistory(toPlainText().trimmed() == toPlainText() ? toPlainText()
                                                          : toPlainText().trimmed());
    clear();
}

void OssScriptConsoleInput::continueEntry()
{
    // A new line indented like the last one, one level deeper after a colon.
    const QString last = document()->lastBlock().text();
    QString indent = last.left(last.indexOf(QRegularExpression(QStringLiteral("\\S"))));
    if (last.trimmed().endsWith(QLatin1Char(':')))
        indent += QStringLiteral("    ");
    moveCursor(QTextCursor::End);
    insertPlainText(QLatin1Char('\n') + indent);
}

void OssScriptConsoleInput::showHistory(int index)
{
    if (index < 0 || index > m_history.size())
        return;
    if (m_historyIndex == m_history.size())
        m_draft = toPlainText();
    m_historyIndex = index;
    setPlainText(index == m_history.size() ? m_draft : m_history.at(index));
    moveCursor(QTextCursor::End);
}

void OssScriptConsoleInput::keyPressEvent(QKeyEvent *event)
{
    const QTextCursor cursor = textCursor();
    switch (event->key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
        if (event->modifiers() & Qt::ShiftModifier) {
            insertPlainText(QStringLiteral("\n"));
            return;
        }
        emit entered(toPlainText());
        return;
    case Qt::Key_Up:
        if (cursor.blockNumber() == 0) {
            showHistory(m_historyIndex - 1);
            return;
        }
        break;
    case Qt::Key_Down:
        if (cursor.blockNumber() == document()->blockCount() - 1) {
            showHistory(m_historyIndex + 1);
            return;
        }
        break;
    case Qt::Key_Tab: {
        const QString before = cursor.block().text().left(cursor.positionInBlock());
        const QRegularExpressionMatch word =
            QRegularExpression(QStringLiteral("[A-Za-z_][\\w.]*$")).match(before);
        if (!word.hasMatch()) {
            insertPlainText(QStringLiteral("    "));
            return;
        }
        emit completionRequested(word.captured(0));
        return;
    }
    default:
        break;
    }
    QPlainTextEdit::keyPressEvent(event);
}

OssScriptConsole::OssScriptConsole(QWidget *parent) : QWidget(parent)
{
    setObjectName(QStringLiteral("ScriptConsole"));
    setWindowTitle(tr("Script Console"));
    m_log = new QPlainTextEdit(this);
    m_log->setObjectName(QStringLiteral("ScriptConsoleLog"));
    m_log->setReadOnly(true);
    m_log->setMaximumBlockCount(MaximumLogLines);
    m_log->setFont(QFont(QStringLiteral("Monospace")));
    m_log->setMinimumHeight(m_log->fontMetrics().lineSpacing() * 10);
    m_log->setStyleSheet(QStringLiteral("QPlainTextEdit { background: #202020; }"));
    m_input = new OssScriptConsoleInput(this);
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(2, 2, 2, 2);
    layout->addWidget(m_log, 1);
    layout->addWidget(m_input);
    setFocusProxy(m_input);

    OssScriptEngine *engine = OssScriptEngine::instance();
    connect(engine, &OssScriptEngine::output, this, [this](const QString &text, bool isError) {
        append(text, isError ? ErrorColour : OutputColour);
    });
    connect(m_input, &OssScriptConsoleInput::entered, this, &OssScriptConsole::execute);
    connect(m_input, &OssScriptConsoleInput::completionRequested, this,
            &OssScriptConsole::complete);
}

OssPalette *OssScriptConsole::createPalette()
{
    auto *palette = new OssPalette;
    palette->setObjectName(QStringLiteral("Script Console"));
    palette->setWindowTitle(tr("Script Console"));
    palette->setBodyWidget(new OssScriptConsole);
    if (!OssPaletteManager::instance()->registerPalette(palette)) {
        delete palette;
        return OssPaletteManager::instance()->find(QStringLiteral("Script Console"));
    }
    return palette;
}

void OssScriptConsole::append(const QString &text, const QColor &colour)
{
    QTextCursor cursor(m_log->document());
    cursor.movePosition(QTextCursor::End);
    QTextCharFormat format;
    format.setForeground(colour);
    cursor.insertText(text, format);
    m_log->verticalScrollBar()->setValue(m_log->verticalScrollBar()->maximum());
}

void OssScriptConsole::execute(const QString &source)
{
    OssScriptEngine *engine = OssScriptEngine::instance();
    if (engine->needsMoreInput(source)) {
        m_input->continueEntry();
        return;
    }
    QStringList lines = source.split(QLatin1Char('\n'));
    while (!lines.isEmpty() && lines.last().trimmed().isEmpty())
        lines.removeLast();
    QString echoed;
    for (int i = 0; i < lines.size(); ++i)
        echoed += (i == 0 ? QStringLiteral(">>> ") : QStringLiteral("... ")) + lines.at(i) +
                  QLatin1Char('\n');
    append(echoed.isEmpty() ? QStringLiteral(">>>\n") : echoed, InputColour);
    m_input->accept();
    const OssScriptEngine::Result result = engine->runInteractive(source);
    if (!result.error.isEmpty())
        append(result.error, ErrorColour);
}

void OssScriptConsole::complete(const QString &text)
{
    const QStringList found = OssScriptEngine::instance()->completions(text);
    if (found.isEmpty())
        return;
    const QString prefix = commonPrefix(found);
    if (prefix.size() > text.size())
        m_input->insertPlainText(prefix.mid(text.size()));
    if (found.size() > 1)
        append(found.join(QStringLiteral("  ")) + QLatin1Char('\n'), InputColour);
}
