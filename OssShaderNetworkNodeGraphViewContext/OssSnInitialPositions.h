#pragma once

#include "OssStringMap.h"

#include <QHash>
#include <QPair>
#include <QPoint>
#include <QString>

// The initial geometry of a node's edge stubs, per input or output name: A is where the stub
// leaves the node, B where it ends. Written into projects as collections of "key:Ax,Ay,Bx,By".
using OssSnInitialPositionMap = QHash<QString, QPair<QPoint, QPoint>>;
// Where each port's text sits, per port name.
using OssSnTextPositionMap = QHash<QString, float>;

namespace OssSnInitialPositions {

// The collection attributes: "map0", "map1", ... in the hash's own key order.
OssStringMap toAttributes(const OssSnInitialPositionMap &positions);
// Reads every well-formed value into Positions, replacing entries of the same key and keeping
// the others; values with other than one ":" or other than four numbers are skipped, and a part
// that is not a number reads as 0.
void readAttributes(const OssStringMap &attributes, OssSnInitialPositionMap &positions);
// "key A(x, y), B(x, y)" lines joined by "\n", in the hash's order.
QString dump(const OssSnInitialPositionMap &positions);
// "key value" lines, value in the "g" form with six significant digits.
QString dump(const OssSnTextPositionMap &positions);

} // namespace OssSnInitialPositions
