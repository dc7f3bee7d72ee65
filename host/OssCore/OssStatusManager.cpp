#include "OssStatusManager.h"

OssStatusManager *OssStatusManager::instance()
{
    static OssStatusManager *manager = new OssStatusManager;
    return manager;
}

OssStatusManager::OssStatusManager(QObject *parent) : QObject(parent) {}

void OssStatusManager::beginProcessing(const QString &operation)
{
    if (m_depth++ == 0) {
        m_operation = operation;
        emit startProcessing(operation);
    }
}

void OssStatusManager::finishProcessing()
{
    if (m_depth == 0)
        return;
    if (--m_depth == 0) {
        m_operation.clear();
        emit endProcessing();
    }
}

void OssStatusManager::showMessage(const QString &message)
{
    m_message = message;
    emit messageShown(message);
}
