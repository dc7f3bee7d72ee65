#pragma once

#include "OssGuiExport.h"

#include <QDialog>
#include <QList>
#include <QString>

class OssSnBaseNode;
class QPlainTextEdit;

// "Info Viewer": what the host knows of the given nodes.
class OSSGUI_EXPORT OssNodeInfoDialog : public QDialog
{
    Q_OBJECT
public:
    explicit OssNodeInfoDialog(const QList<OssSnBaseNode *> &nodes, QWidget *parent = nullptr);
    QString text() const;

private:
    QPlainTextEdit *m_text = nullptr;
};
