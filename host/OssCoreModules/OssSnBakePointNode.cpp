#include "OssSnBakePointNode.h"

#include <OssCustomAttribute.h>
#include <OssSerializer.h>

#include <QCryptographicHash>
#include <QSet>

OssSnBakePointNode::OssSnBakePointNode(QObject *parent) : OssSnBaseNode(parent)
{
    // Any change upstream may make the bake stale; views re-read the state on this signal.
    connect(this, &OssSnBaseNode::inputNodeChanged, this, [this] {
        watchUpstream();
        emit bakedStateChanged();
    });
}

void OssSnBakePointNode::setGeoChannelName(const QString &name)
{
    if (name == m_geoChannelName)
        return;
    m_geoChannelName = name;
    emit geoChannelNameChanged(name);
}

void OssSnBakePointNode::setSyncGeoChannel(bool sync)
{
    if (sync == m_syncGeoChannel)
        return;
    m_syncGeoChannel = sync;
    emit syncGeoChannelChanged(sync);
}

void OssSnBakePointNode::setLimitBake(bool limit)
{
    if (limit == m_limitBake)
        return;
    m_limitBake = limit;
    emit limitBakeChanged(limit);
}

void OssSnBakePointNode::setFilterCollectionEnabled(bool enabled)
{
    if (enabled == m_filterCollectionEnabled)
        return;
    m_filterCollectionEnabled = enabled;
    emit filterCollectionEnabledChanged(enabled);
}

void OssSnBakePointNode::setFilterCollectionText(const QString &text)
{
    if (text == m_filterCollectionText)
        return;
    m_filterCollectionText = text;
    emit filterCollectionTextChanged(text);
}

QString OssSnBakePointNode::upstreamSignature() const
{
    // Names, types, state and attribute values of every node upstream, in a fixed walk order,
    // with the connections between them.
    QCryptographicHash hash(QCryptographicHash::Sha1);
    QSet<const OssSnBaseNode *> seen;
    QList<const OssSnBaseNode *> stack{this};
    while (!stack.isEmpty()) {
        const OssSnBaseNode *node = stack.takeLast();
        if (seen.contains(node))
            continue;
        seen.insert(node);
        hash.addData(node->name().toUtf8());
        hash.addData(node->pathKey().toUtf8());
        hash.addData(node->enabledAsBool() ? "1" : "0");
        hash.addData(node->bypassed() ? "1" : "0");
        for (const OssCustomAttribute &attribute : node->nodeAttributes()) {
            hash.addData(attribute.name().toUtf8());
            hash.addData(OssSerializer::variantToText(attribute.value()).toUtf8());
        }
        for (const QString &input : node->inputNames()) {
            const OssSnBaseNode *source = node->inputConnection(input);
            hash.addData(input.toUtf8());
            hash.addData(source ? source->name().toUtf8() : QByteArray("-"));
            hash.addData(node->inputOutputPoint(input).toUtf8());
            if (source)
                stack.append(source);
        }
    }
    return QString::fromLatin1(hash.result().toHex());
}

bool OssSnBakePointNode::isBakedResultUpToDate(bool deep) const
{
    if (!hasBakedResult() || m_bakedSignature != upstreamSignature())
        return false;
    if (!deep)
        return true;
    QSet<const OssSnBaseNode *> seen;
    QList<const OssSnBaseNode *> stack;
    for (OssSnBaseNode *input : inputNodes())
        if (input)
            stack.append(input);
    while (!stack.isEmpty()) {
        const OssSnBaseNode *node = stack.takeLast();
        if (seen.contains(node))
            continue;
        seen.insert(node);
        if (auto *bakePoint = qobject_cast<const OssSnBakePointNode *>(node))
            if (bakePoint->hasBakedResult() && !bakePoint->isBakedResultUpToDate(false))
                return false;
        for (OssSnBaseNode *input : node->inputNodes())
            if (input)
                stack.append(input);
    }
    return true;
}

void OssSnBakePointNode::bake(const QString &imageSetName)
{
    m_bakedImageSet = imageSetName;
    m_bakedSignature = upstreamSignature();
    emit bakedStateChanged();
    emit nodeStateRefreshed();
}

void OssSnBakePointNode::clearBake()
{
    if (m_bakedSignature.isEmpty())
        return;
    m_bakedSignature.clear();
    m_bakedImageSet.clear();
    emit bakedStateChanged();
}

void OssSnBakePointNode::watchUpstream()
{
    // Changes of attributes and state upstream are announced through the stale check the
    // views make on bakedStateChanged; connections are watched here.
    for (OssSnBaseNode *input : inputNodes()) {
        if (!input)
            continue;
        connect(input, &OssSnBaseNode::nodeAttributeChanged, this,
                &OssSnBakePointNode::bakedStateChanged, Qt::UniqueConnection);
        connect(input, &OssSnBaseNode::enabledChanged, this, &OssSnBakePointNode::bakedStateChanged,
                Qt::UniqueConnection);
    }
}
