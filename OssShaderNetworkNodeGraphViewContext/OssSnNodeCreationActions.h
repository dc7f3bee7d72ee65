#pragma once

#include <QList>
#include <QString>

class QAction;
class QObject;

namespace OssSnNodeCreationActions {

// The action-tree folder and text of a node type's creation action, from its menu path:
// "Filter//Blur/" gives ("/Ossa/NodeGraph/Create/Filter", "Blur"). False for an empty menu path
// and for hidden folders (a first component starting with "_").
bool folderAndText(const QString &menuPath, QString *folder, QString *text);

// Makes one action per creatable node type that has none yet (sorted by path key), parented to
// Owner, its data the path key, its triggered() connected to Owner's slot Slot (a SLOT()
// string), filed in the action tree. Returns the new actions.
QList<QAction *> create(QObject *owner, const char *slot);

} // namespace OssSnNodeCreationActions
