#pragma once

#include "OssCoreModulesExport.h"

#include <QHash>
#include <QList>
#include <QMetaType>
#include <QObject>
#include <QPointer>
#include <QSize>
#include <QStringList>
#include <QUuid>
#include <QVariantMap>

class OssShaderNetwork;
class OssSnBaseNode;
class QAction;
class QDragEnterEvent;
class QMimeData;

// The unique id of a loaded image.
class OSSCOREMODULES_EXPORT OssImageUniqueId
{
public:
    OssImageUniqueId() = default;
    explicit OssImageUniqueId(const QUuid &uuid) : m_uuid(uuid) {}
    static OssImageUniqueId create() { return OssImageUniqueId(QUuid::createUuid()); }
    // An id from its text; invalid for anything else.
    static OssImageUniqueId fromString(const QString &text);
    // The ids of a list separated by newlines or commas; invalid entries are left out.
    static QList<OssImageUniqueId> imageIdListFromString(const QString &text);
    bool isValid() const { return !m_uuid.isNull(); }
    QString toString() const { return m_uuid.toString(); }
    bool operator==(const OssImageUniqueId &other) const { return m_uuid == other.m_uuid; }
    bool operator!=(const OssImageUniqueId &other) const { return !(*this == other); }

private:
    QUuid m_uuid;
};

// A list of image ids, as node attributes hold them ("TileImage", "frontImage", ...).
class OSSCOREMODULES_EXPORT OssImageList
{
public:
    OssImageList() = default;
    explicit OssImageList(const QList<OssImageUniqueId> &ids) : m_ids(ids) {}
    QList<OssImageUniqueId> ids() const { return m_ids; }
    void append(const OssImageUniqueId &id) { m_ids.append(id); }
    int size() const { return m_ids.size(); }
    bool operator==(const OssImageList &other) const { return m_ids == other.m_ids; }
    // The ids joined by newlines (the text form saved in projects).
    QString toString() const;
    static OssImageList fromString(const QString &text);
    // Makes the type known to QVariant with its text conversions.
    static void registerType();

private:
    QList<OssImageUniqueId> m_ids;
};

Q_DECLARE_METATYPE(OssImageUniqueId)
Q_DECLARE_METATYPE(OssImageList)

// One image read from a file (one layer of it).
class OSSCOREMODULES_EXPORT OssImage : public QObject
{
    Q_OBJECT
public:
    static const char *const MimeType;     // loaded image ids, as text
    static const char *const PathMimeType; // image file paths, one per line

    OssImage(const QString &path, int layer, const QSize &size, int depth,
             QObject *parent = nullptr);
    OssImageUniqueId uniqueId() const { return m_id; }
    QString path() const { return m_path; }
    int layer() const { return m_layer; }
    QSize size() const { return m_size; }
    int depth() const { return m_depth; }
    bool isSelected() const { return m_selected; }
    void setSelected(bool selected);

signals:
    void selectedChanged(bool selected);

private:
    OssImageUniqueId m_id;
    QString m_path;
    int m_layer = 0;
    QSize m_size;
    int m_depth = 0;
    bool m_selected = false;
};

// The images the host has loaded.
class OSSCOREMODULES_EXPORT OssImageManager : public QObject
{
    Q_OBJECT
public:
    static OssImageManager *instance();

    // Reads an image file with Qt's image readers: one image per layer (a multi-page file
    // gives several). An unreadable file gives none and a debug line with the reason.
    QList<OssImage *> open(const QString &path, int flags = 0);
    QList<OssImage *> images() const { return m_images; }
    QList<OssImage *> selectedImages() const;
    OssImage *getImage(const OssImageUniqueId &id) const;
    void clear();

    // Context-menu actions are QActions. The manager keeps them as QObjects, so that the model
    // needs no QtWidgets, and gives an action its icon through the "icon" property; the typed
    // list is made where QAction is known (the menu that shows them).
    void registerGlobalContextMenuAction(QObject *action, const QString &menuTitle,
                                         const QString &iconPath);
    template <typename Action = QAction>
    QList<Action *> globalContextMenuActions(const QString &menuTitle) const
    {
        QList<Action *> actions;
        for (QObject *object : globalContextMenuObjects(menuTitle))
            if (auto *action = qobject_cast<Action *>(object))
                actions.append(action);
        return actions;
    }
    QList<QObject *> globalContextMenuObjects(const QString &menuTitle) const;
    QStringList globalContextMenuTitles() const;

    // Takes a drag of image files or loaded image ids for target 4 (the node graph).
    bool processDragEvent(QDragEnterEvent *event, int target);
    // The local files of a drop that Qt can read as images.
    QStringList dropEvent_AcceptURLs(const QMimeData *mimeData) const;

signals:
    void imagesChanged();

private:
    explicit OssImageManager(QObject *parent = nullptr);
    QList<OssImage *> m_images;
    QList<QPair<QString, QPointer<QObject>>> m_actions;
};

// The host's general drag and drop: drops on the node graph (target 4) of image files or image
// ids make tiled-image nodes; other modules add handlers for their own kinds.
class OSSCOREMODULES_EXPORT OssDragAndDropManager : public QObject
{
    Q_OBJECT
public:
    static constexpr int NodeGraphTarget = 4;
    using Handler = std::function<bool(const QMimeData *, int, const QVariantMap &)>;
    static OssDragAndDropManager *instance();

    bool acceptDragEnter(const QMimeData *mimeData, int target) const;
    // Parameters: "NodeGraph" (the network, as a QObject*) and "Position" (scene point).
    bool drop(const QMimeData *mimeData, int target, const QVariantMap &parameters);
    // A handler answers true when it took the drop; handlers are asked in registration order
    // before the host's own.
    void registerHandler(const QString &name, Handler accepts, Handler handle);

private:
    explicit OssDragAndDropManager(QObject *parent = nullptr);
    struct Entry
    {
        QString name;
        Handler accepts;
        Handler handle;
    };
    QList<Entry> m_handlers;
};

// Material and custom procedural archives as dragged things, and merge auto-connection.
class OSSCOREMODULES_EXPORT OssMaterialPaintManager : public QObject
{
    Q_OBJECT
public:
    static OssMaterialPaintManager *instance();
    bool draggableMaterialType(const QMimeData *mimeData) const;
    bool draggableCustomProceduralType(const QMimeData *mimeData) const;
    QStringList pathListFromMimeData(const QMimeData *mimeData) const;
    // Feeds the selected node's preferred output into the merge's "Over" input when free,
    // else its "Base" (one undo step).
    bool autoconnectMergeNode(OssSnBaseNode *selected, OssSnBaseNode *merge);

private:
    explicit OssMaterialPaintManager(QObject *parent = nullptr);
};
