#include "OssImage.h"

const char *const OssImage::MimeType = "application/x-ossa-image-ids";
const char *const OssImage::PathMimeType = "application/x-ossa-image-paths";

OssImage::OssImage(const QString &path, int layer, const QSize &size, int depth, QObject *parent)
    : QObject(parent), m_id(OssImageUniqueId::create()), m_path(path), m_layer(layer), m_size(size),
      m_depth(depth)
{}

void OssImage::setSelected(bool selected)
{
    if (selected == m_selected)
        return;
    m_selected = selected;
    emit selectedChanged(selected);
}
