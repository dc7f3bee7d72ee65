#include "OssMenuManager.h"

#include "OssActionTreeManager.h"

#include <OssDebug.h>
#include <OssResourceInfo.h>

#include <QAction>
#include <QFile>
#include <QXmlStreamReader>

OssMenu::OssMenu(const QString &title, QWidget *parent) : QMenu(title, parent) {}

OssMenuManager *OssMenuManager::instance()
{
    static OssMenuManager *manager = [] {
        auto *made = new OssMenuManager;
        // The menus the host ships with; a broken file leaves the menus undefined, and says so.
        const QString path = defaultDefinitionsPath();
        QString error;
        if (QFile::exists(path) && !made->loadDefinitions(path, &error))
            OSS_DEBUG("[ !! ] %s", qPrintable(error));
        return made;
    }();
    return manager;
}

QString OssMenuManager::defaultDefinitionsPath()
{
    return OssResourceInfo::instance()->resourceRoot() + QStringLiteral("/menus/menus.xml");
}

OssMenuManager::OssMenuManager(QObject *parent) : QObject(parent) {}

QString OssMenuManager::key(const QString &group, const QString &name)
{
    return group + QLatin1Char('\n') + name;
}

void OssMenuManager::setDefinition(const QString &group, const QString &name,
                                   const QStringList &entries)
{
    m_definitions.insert(key(group, name), entries);
}

QStringList OssMenuManager::definition(const QString &group, const QString &name) const
{
    return m_definitions.value(key(group, name));
}

void OssMenuManager::removeDefinition(const QString &group, const QString &name)
{
    m_definitions.remove(key(group, name));
}

bool OssMenuManager::hasDefinition(const QString &group, const QString &name) const
{
    return m_definitions.contains(key(group, name));
}

bool OssMenuManager::loadDefinitions(const QString &path, QString *error)
{
    auto fail = [&](const QString &message) {
        if (error)
            *error = QStringLiteral("\"%1\": %2").arg(path, message);
        return false;
    };
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return fail(QStringLiteral("cannot open the file (%1)").arg(file.errorString()));

    QHash<QString, QStringList> found;
    QXmlStreamReader reader(&file);
    QString current;
    QStringList entries;
    while (!reader.atEnd()) {
        reader.readNext();
        if (reader.isStartElement()) {
            const QStringRef element = reader.name();
            if (element == QLatin1String("menu")) {
                current = key(reader.attributes().value(QLatin1String("group")).toString(),
                              reader.attributes().value(QLatin1String("name")).toString());
                entries.clear();
            } else if (element == QLatin1String("action")) {
                entries.append(reader.attributes().value(QLatin1String("path")).toString());
            } else if (element == QLatin1String("separator")) {
                entries.append(QStringLiteral("-"));
            } else if (element == QLatin1String("submenu")) {
                entries.append(reader.attributes().value(QLatin1String("title")).toString() +
                               QLatin1Char('>'));
            }
        } else if (reader.isEndElement()) {
            if (reader.name() == QLatin1String("menu")) {
                found.insert(current, entries);
            } else if (reader.name() == QLatin1String("submenu")) {
                entries.append(QStringLiteral(">"));
            }
        }
    }
    if (reader.hasError())
        return fail(
            QStringLiteral("%1 at line %2").arg(reader.errorString()).arg(reader.lineNumber()));
    for (auto it = found.cbegin(); it != found.cend(); ++it)
        m_definitions.insert(it.key(), it.value());
    return true;
}

void OssMenuManager::dropIfEmpty(QMenu *submenu)
{
    // A sub-menu none of whose actions is registered would open on nothing.
    for (QAction *action : submenu->actions())
        if (!action->isSeparator())
            return;
    delete submenu;
}

OssMenu *OssMenuManager::makeMenu(const QString &group, const QString &name, QWidget *parent) const
{
    const auto it = m_definitions.constFind(key(group, name));
    if (it == m_definitions.cend())
        return nullptr;
    auto *menu = new OssMenu(name, parent);
    QList<QMenu *> stack{menu};
    OssActionTreeManager *tree = OssActionTreeManager::instance();
    for (const QString &entry : it.value()) {
        if (entry == QLatin1String("-")) {
            stack.last()->addSeparator();
        } else if (entry == QLatin1String(">")) {
            if (stack.size() > 1)
                dropIfEmpty(stack.takeLast());
        } else if (entry.endsWith(QLatin1Char('>'))) {
            stack.append(stack.last()->addMenu(entry.left(entry.size() - 1)));
        } else if (QAction *action = tree->findAction(entry)) {
            stack.last()->addAction(action);
        }
    }
    while (stack.size() > 1)
        dropIfEmpty(stack.takeLast());
    return menu;
}
