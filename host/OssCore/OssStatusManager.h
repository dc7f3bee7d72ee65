#pragma once

#include "OssCoreExport.h"

#include <QObject>
#include <QString>

// Tells whether the host is busy with a long operation. Operations nest; endProcessing() is
// emitted when the outermost one ends.
class OSSCORE_EXPORT OssStatusManager : public QObject
{
    Q_OBJECT
public:
    static OssStatusManager *instance();

    bool inProgress() const { return m_depth > 0; }
    QString currentOperation() const { return m_operation; }

    void beginProcessing(const QString &operation);
    void finishProcessing();

    // A short note for the user's status line (a value clamped, an entry refused); the last
    // one is kept until the next.
    void showMessage(const QString &message);
    QString lastMessage() const { return m_message; }

    // Ends the outermost operation when it goes out of scope.
    class OSSCORE_EXPORT Scope
    {
    public:
        explicit Scope(const QString &operation) { instance()->beginProcessing(operation); }
        ~Scope() { instance()->finishProcessing(); }
        Scope(const Scope &) = delete;
        Scope &operator=(const Scope &) = delete;
    };

signals:
    void startProcessing(const QString &operation);
    void endProcessing();
    void messageShown(const QString &message);

private:
    explicit OssStatusManager(QObject *parent = nullptr);
    int m_depth = 0;
    QString m_operation;
    QString m_message;
};
