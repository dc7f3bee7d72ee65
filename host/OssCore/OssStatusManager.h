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

private:
    explicit OssStatusManager(QObject *parent = nullptr);
    int m_depth = 0;
    QString m_operation;
};
