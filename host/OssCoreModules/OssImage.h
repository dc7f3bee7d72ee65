#pragma once

#include "OssCoreModulesExport.h"
#include "OssImageUniqueId.h"

#include <QObject>
#include <QSize>
#include <QString>

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
