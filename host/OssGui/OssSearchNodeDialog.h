#pragma once

#include "OssGuiExport.h"

#include <QDialog>
#include <QList>
#include <QPointer>
#include <QStringList>

class OssSnBaseNode;
class QLineEdit;
class QListWidget;

// Finds a node of the network by name.
class OSSGUI_EXPORT OssSearchNodeDialog : public QDialog
{
    Q_OBJECT
public:
    explicit OssSearchNodeDialog(const QList<OssSnBaseNode *> &nodes, QWidget *parent = nullptr);
    void setFilter(const QString &text);
    QStringList shownNames() const;
    OssSnBaseNode *chosenNode() const;

public slots:
    void acceptCurrent();

private:
    void rebuild();
    QList<QPointer<OssSnBaseNode>> m_nodes;
    QPointer<OssSnBaseNode> m_chosen;
    QLineEdit *m_filter = nullptr;
    QListWidget *m_list = nullptr;
};
