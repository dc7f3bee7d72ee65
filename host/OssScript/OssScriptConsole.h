#pragma once

#include "OssScriptExport.h"

#include <QPlainTextEdit>
#include <QStringList>
#include <QWidget>

class OssPalette;

// The input of the script console: Return runs the entry once it is complete (an open block or
// bracket continues on a new line), Shift+Return always starts a new line, Up and Down on the
// first and last line walk the history, Tab completes the name before the cursor.
class OSSSCRIPT_EXPORT OssScriptConsoleInput : public QPlainTextEdit
{
    Q_OBJECT
public:
    explicit OssScriptConsoleInput(QWidget *parent = nullptr);

    QStringList history() const { return m_history; }
    void addToHistory(const QString &entry);

signals:
    // Return on an entry; the console answers with accept() or continueEntry().
    void entered(const QString &source);
    void completionRequested(const QString &text);

public slots:
    void accept();
    void continueEntry();

protected:
    void keyPressEvent(QKeyEvent *event) override;

private:
    void showHistory(int index);

    QStringList m_history;
    int m_historyIndex = 0;
    QString m_draft;
};

// The "Script Console" palette's body: one log of what was entered, the output and the errors,
// above the input.
class OSSSCRIPT_EXPORT OssScriptConsole : public QWidget
{
    Q_OBJECT
public:
    explicit OssScriptConsole(QWidget *parent = nullptr);

    // Registers a "Script Console" palette with the console as its body and returns it.
    static OssPalette *createPalette();

    OssScriptConsoleInput *input() const { return m_input; }
    QPlainTextEdit *log() const { return m_log; }
    // Everything in the log, as plain text.
    QString logText() const { return m_log->toPlainText(); }

public slots:
    // Runs Source as if it were entered.
    void execute(const QString &source);

private:
    void append(const QString &text, const QColor &colour);
    void complete(const QString &text);

    QPlainTextEdit *m_log = nullptr;
    OssScriptConsoleInput *m_input = nullptr;
};
