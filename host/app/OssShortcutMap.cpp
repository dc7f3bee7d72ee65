#include "OssShortcutMap.h"

#include "OssDefaultShortcuts.h"

#include <OssSettings.h>

#include <QAction>
#include <QUrl>
#include <QWidget>

#include <algorithm>

namespace {

// Marks an action whose keys came from the map, so that binding again may replace them.
const char *const BoundProperty = "ossShortcutMapBound";

// Settings keys treat "/" as a group separator: identities are stored percent-encoded, so that
// "/Ossa/NodeGraph/X" and "Ossa/NodeGraph/X" stay two entries.
QString settingsKey(const QString &identity)
{
    return QString::fromLatin1(QUrl::toPercentEncoding(identity));
}

} // namespace

QString OssShortcutMap::settingsGroup()
{
    return QStringLiteral("Shortcuts");
}

QString OssShortcutMap::keysText(const QList<QKeySequence> &keys)
{
    return QKeySequence::listToString(keys, QKeySequence::PortableText);
}

QList<QKeySequence> OssShortcutMap::keysFromText(const QString &text)
{
    QList<QKeySequence> keys;
    for (const QKeySequence &key : QKeySequence::listFromString(text, QKeySequence::PortableText))
        if (!key.isEmpty())
            keys.append(key);
    return keys;
}

QList<QKeySequence> OssShortcutMap::defaultKeys(const QString &identity)
{
    return OssDefaultShortcuts::keysFor(identity);
}

bool OssShortcutMap::hasUserKeys(const QString &identity)
{
    OssSettings settings;
    settings.beginGroup(settingsGroup());
    return settings.contains(settingsKey(identity));
}

QList<QKeySequence> OssShortcutMap::userKeys(const QString &identity)
{
    OssSettings settings;
    settings.beginGroup(settingsGroup());
    return keysFromText(settings.value(settingsKey(identity)).toString());
}

QList<QKeySequence> OssShortcutMap::keysFor(const QString &identity)
{
    return hasUserKeys(identity) ? userKeys(identity) : defaultKeys(identity);
}

void OssShortcutMap::setUserKeys(const QString &identity, const QList<QKeySequence> &keys)
{
    OssSettings settings;
    settings.beginGroup(settingsGroup());
    settings.setValue(settingsKey(identity), keysText(keys));
}

void OssShortcutMap::resetKeys(const QString &identity)
{
    OssSettings settings;
    settings.beginGroup(settingsGroup());
    settings.remove(settingsKey(identity));
}

void OssShortcutMap::resetAll()
{
    OssSettings settings;
    settings.remove(settingsGroup());
}

bool OssShortcutMap::bind(QAction *action, const QString &identity, QWidget *scope)
{
    if (!action || !scope)
        return false;
    const bool user = hasUserKeys(identity);
    if (!user && !action->shortcuts().isEmpty() && !action->property(BoundProperty).toBool())
        return false;
    const QList<QKeySequence> keys = user ? userKeys(identity) : defaultKeys(identity);
    if (keys.isEmpty() && !action->property(BoundProperty).toBool())
        return false;
    action->setShortcuts(keys);
    action->setShortcutContext(Qt::WidgetWithChildrenShortcut);
    action->setProperty(BoundProperty, true);
    if (!scope->actions().contains(action))
        scope->addAction(action);
    return true;
}

QMap<QString, QStringList>
OssShortcutMap::conflicts(const QHash<QString, QList<QKeySequence>> &bindings)
{
    QMap<QString, QStringList> byKey;
    for (auto it = bindings.cbegin(); it != bindings.cend(); ++it)
        for (const QKeySequence &key : it.value()) {
            QStringList &owners = byKey[key.toString(QKeySequence::PortableText)];
            if (!owners.contains(it.key()))
                owners.append(it.key());
        }
    QMap<QString, QStringList> found;
    for (auto it = byKey.begin(); it != byKey.end(); ++it)
        if (it.value().size() > 1) {
            std::sort(it.value().begin(), it.value().end());
            found.insert(it.key(), it.value());
        }
    return found;
}
