#include "OssImageSetUtils.h"

#include "OssChannel.h"
#include "OssGeoImageSet.h"
#include "OssShaderNetworkUtils.h"
#include "OssShadingGroup.h"
#include "OssSnBaseNode.h"
#include "OssSnImageSetNodeBase.h"

#include <OssCustomAttribute.h>
#include <OssSerializer.h>
#include <OssUndoCommand.h>
#include <OssUndoManager.h>

#include <QCryptographicHash>
#include <QPointer>
#include <QSet>

namespace {

// Adds a made image set to its group; undo takes it out again and keeps it for a redo.
class AddImageSetCommand : public OssUndoCommand
{
public:
    AddImageSetCommand(OssShadingGroup *group, OssChannel *imageSet)
        : OssUndoCommand(QStringLiteral("Add Image Set %1").arg(imageSet->name())), m_group(group),
          m_imageSet(imageSet)
    {}
    ~AddImageSetCommand() override
    {
        if (m_imageSet && !m_imageSet->parent())
            delete m_imageSet;
    }
    void redo() override
    {
        if (m_group)
            m_group->insertChannelDirect(m_imageSet);
    }
    void undo() override
    {
        if (m_group)
            m_group->takeChannelDirect(m_imageSet);
    }

private:
    QPointer<OssShadingGroup> m_group;
    QPointer<OssChannel> m_imageSet;
};

class SetContentCommand : public OssUndoCommand
{
public:
    SetContentCommand(OssChannel *imageSet, const QString &content)
        : OssUndoCommand(QStringLiteral("Bake into %1").arg(imageSet->name())),
          m_imageSet(imageSet), m_old(imageSet->content()), m_new(content)
    {}
    void redo() override
    {
        if (m_imageSet)
            m_imageSet->setContent(m_new);
    }
    void undo() override
    {
        if (m_imageSet)
            m_imageSet->setContent(m_old);
    }

private:
    QPointer<OssChannel> m_imageSet;
    QString m_old;
    QString m_new;
};

class SetGeoImageSetCommand : public OssUndoCommand
{
public:
    SetGeoImageSetCommand(OssGeoImageSet *geoChannel, OssChannel *imageSet)
        : OssUndoCommand(QStringLiteral("Set Geo-Channel %1").arg(geoChannel->name())),
          m_geoChannel(geoChannel), m_old(geoChannel->imageSet()), m_new(imageSet)
    {}
    void redo() override
    {
        if (m_geoChannel)
            m_geoChannel->setImageSet(m_new);
    }
    void undo() override
    {
        if (m_geoChannel)
            m_geoChannel->setImageSet(m_old);
    }

private:
    QPointer<OssGeoImageSet> m_geoChannel;
    QPointer<OssChannel> m_old;
    QPointer<OssChannel> m_new;
};

QString uniqueName(const OssShadingGroup *group, const QString &name)
{
    QString candidate = name;
    for (int number = 1; group->channel(candidate); ++number)
        candidate = name + QString::number(number);
    return candidate;
}

OssChannel *addImageSet(OssShadingGroup *group, OssChannel *imageSet)
{
    OssUndoManager::instance()->addUndo(new AddImageSetCommand(group, imageSet));
    return imageSet;
}

} // namespace

OssChannel *OssImageSetUtils::duplicateImageSet(OssShadingGroup *group, const OssChannel *source,
                                                const QString &name)
{
    if (!group)
        return nullptr;
    auto *imageSet = new OssChannel(uniqueName(group, name));
    if (source) {
        imageSet->setChannelType(source->channelType());
        imageSet->setWidth(source->width());
        imageSet->setHeight(source->height());
        imageSet->setColorSpace(source->colorSpace());
        imageSet->setContent(source->content());
    }
    return addImageSet(group, imageSet);
}

OssChannel *OssImageSetUtils::createImageSetFromGeoChannel(OssShadingGroup *group,
                                                           const OssGeoImageSet *geoChannel,
                                                           const QString &name, const QSize &size)
{
    if (!group || !geoChannel)
        return nullptr;
    auto *imageSet = new OssChannel(uniqueName(group, name));
    imageSet->setChannelType(geoChannel->internalFormat());
    imageSet->setColorSpace(geoChannel->colorSpaceConfiguration());
    imageSet->setWidth(size.width());
    imageSet->setHeight(size.height());
    return addImageSet(group, imageSet);
}

QString OssImageSetUtils::resultDigest(const OssSnBaseNode *node, const QString &outputPoint)
{
    // Names, types, state and attribute values of every node upstream, in a fixed walk order,
    // with the connections between them, starting from the output point asked for.
    QCryptographicHash hash(QCryptographicHash::Sha1);
    hash.addData(outputPoint.toUtf8());
    QSet<const OssSnBaseNode *> seen;
    QList<const OssSnBaseNode *> stack{node};
    while (!stack.isEmpty()) {
        const OssSnBaseNode *each = stack.takeLast();
        if (!each || seen.contains(each))
            continue;
        seen.insert(each);
        hash.addData(each->name().toUtf8());
        hash.addData(each->pathKey().toUtf8());
        hash.addData(each->enabledAsBool() ? "1" : "0");
        hash.addData(each->bypassed() ? "1" : "0");
        for (const OssCustomAttribute &attribute : each->nodeAttributes()) {
            hash.addData(attribute.name().toUtf8());
            hash.addData(OssSerializer::variantToText(attribute.value()).toUtf8());
        }
        for (const QString &input : each->inputNames()) {
            const OssSnBaseNode *source = each->inputConnection(input);
            hash.addData(input.toUtf8());
            hash.addData(source ? source->name().toUtf8() : QByteArray("-"));
            hash.addData(each->inputOutputPoint(input).toUtf8());
            if (source)
                stack.append(source);
        }
    }
    return QString::fromLatin1(hash.result().toHex());
}

void OssImageSetUtils::bake(OssSnBaseNode *node, const QString &outputPoint, OssChannel *imageSet)
{
    if (node)
        writeContent(imageSet, resultDigest(node, outputPoint));
}

void OssImageSetUtils::writeContent(OssChannel *imageSet, const QString &content)
{
    if (imageSet && imageSet->content() != content)
        OssUndoManager::instance()->addUndo(new SetContentCommand(imageSet, content));
}

OssChannel *OssImageSetUtils::imageSetNamed(OssShadingGroup *group, const QString &name)
{
    if (!group)
        return nullptr;
    if (OssChannel *existing = group->channel(name))
        return existing;
    return addImageSet(group, new OssChannel(name));
}

QSize OssImageSetUtils::queryMaximumRequiredTextureResolutions(const OssSnBaseNode *node)
{
    QSize largest;
    for (OssSnBaseNode *up : OssShaderNetworkUtils::getUpstreamNodes(
             const_cast<OssSnBaseNode *>(node), false, true, false))
        if (OssSnImageSetNodeBase *imageSetNode = OssShaderNetworkUtils::asTrueImageSetNode(up))
            if (OssChannel *imageSet = imageSetNode->imageSet())
                largest = largest.expandedTo(QSize(imageSet->width(), imageSet->height()));
    return largest.isValid() ? largest : QSize(2048, 2048);
}

void OssImageSetUtils::setGeoChannelImageSet(OssGeoImageSet *geoChannel, OssChannel *imageSet)
{
    if (!geoChannel)
        return;
    OssUndoManager::instance()->addUndo(new SetGeoImageSetCommand(geoChannel, imageSet));
}
