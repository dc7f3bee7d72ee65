#include "OssSnInitialPositions.h"

#include <QStringList>

namespace OssSnInitialPositions {

OssStringMap toAttributes(const OssSnInitialPositionMap &positions)
{
    OssStringMap attributes;
    int index = 0;
    for (auto it = positions.cbegin(); it != positions.cend(); ++it, ++index) {
        const QPoint a = it.value().first;
        const QPoint b = it.value().second;
        attributes.insert(QStringLiteral("map%1").arg(index), QStringLiteral("%1:%2,%3,%4,%5")
                                                                  .arg(it.key())
                                                                  .arg(a.x())
                                                                  .arg(a.y())
                                                                  .arg(b.x())
                                                                  .arg(b.y()));
    }
    return attributes;
}

void readAttributes(const OssStringMap &attributes, OssSnInitialPositionMap &positions)
{
    for (const OssStringMap::Entry &entry : attributes) {
        const QStringList parts = entry.second.split(QLatin1Char(':'), Qt::KeepEmptyParts);
        if (parts.size() != 2)
            continue;
        const QStringList numbers = parts.at(1).split(QLatin1Char(','), Qt::KeepEmptyParts);
        if (numbers.size() != 4)
            continue;
        int values[4];
        for (int i = 0; i < 4; ++i)
            values[i] = numbers.at(i).toInt(nullptr, 10); // not a number: 0
        positions.insert(parts.at(0),
                         qMakePair(QPoint(values[0], values[1]), QPoint(values[2], values[3])));
    }
}

QString dump(const OssSnInitialPositionMap &positions)
{
    QStringList lines;
    for (auto it = positions.cbegin(); it != positions.cend(); ++it) {
        const QPoint a = it.value().first;
        const QPoint b = it.value().second;
        lines.append(QStringLiteral("%1 %2").arg(
            it.key(),
            QStringLiteral("A(%1, %2), B(%3, %4)").arg(a.x()).arg(a.y()).arg(b.x()).arg(b.y())));
    }
    return lines.join(QLatin1Char('\n'));
}

QString dump(const OssSnTextPositionMap &positions)
{
    QStringList lines;
    for (auto it = positions.cbegin(); it != positions.cend(); ++it)
        lines.append(QStringLiteral("%1 %2").arg(it.key()).arg(double(it.value()), 0, 'g', 6));
    return lines.join(QLatin1Char('\n'));
}

} // namespace OssSnInitialPositions
