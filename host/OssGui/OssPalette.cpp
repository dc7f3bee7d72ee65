#include "OssPalette.h"

#include <QVBoxLayout>

OssPalette::OssPalette(QWidget *parent) : QWidget(parent)
{
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
}

void OssPalette::setBodyWidget(QWidget *body)
{
    if (body == m_body)
        return;
    delete m_body;
    m_body = body;
    if (body)
        layout()->addWidget(body);
}

void OssPalette::showBySidebar()
{
    emit showRequested();
    if (!isVisible())
        setVisible(true);
}

OssPaletteManager *OssPaletteManager::instance()
{
    static OssPaletteManager *manager = new OssPaletteManager;
    return manager;
}

OssPaletteManager::OssPaletteManager(QObject *parent) : QObject(parent) {}

bool OssPaletteManager::registerPalette(OssPalette *palette, int flags, const QString &iconPath)
{
    if (!palette || palette->objectName().isEmpty() || find(palette->objectName()))
        return false;
    m_entries.append(Entry{palette, flags, iconPath});
    emit paletteRegistered(palette);
    return true;
}

OssPalette *OssPaletteManager::find(const QString &name, int flags) const
{
    for (const Entry &entry : m_entries) {
        if (!entry.palette || entry.palette->objectName() != name)
            continue;
        if ((flags & VisibleOnly) && !entry.palette->isVisible())
            return nullptr;
        return entry.palette;
    }
    return nullptr;
}

QList<OssPalette *> OssPaletteManager::palettes() const
{
    QList<OssPalette *> result;
    for (const Entry &entry : m_entries) {
        if (entry.palette)
            result.append(entry.palette);
    }
    return result;
}

QString OssPaletteManager::iconPath(const OssPalette *palette) const
{
    for (const Entry &entry : m_entries) {
        if (entry.palette == palette)
            return entry.iconPath;
    }
    return QString();
}

int OssPaletteManager::flags(const OssPalette *palette) const
{
    for (const Entry &entry : m_entries) {
        if (entry.palette == palette)
            return entry.flags;
    }
    return NoFlags;
}
