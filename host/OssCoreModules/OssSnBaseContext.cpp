#include "OssSnBaseContext.h"

#include "OssSnBaseNode.h"

#include <QCryptographicHash>

OssSnBaseContext::OssSnBaseContext(OssSnBaseNode *parentNode) : OssSerializableObject(parentNode) {}

OssSnBaseContext::~OssSnBaseContext() = default;

OssSnBaseNode *OssSnBaseContext::parentNode() const
{
    return qobject_cast<OssSnBaseNode *>(parent());
}

void OssSnBaseContext::addInputTag(const QString &inputName, const QString &tag)
{
    if (OssSnBaseNode *node = parentNode())
        node->addInputTag(inputName, tag);
}

QList<OssSnBaseContext::InputDescriptor> OssSnBaseContext::inputs() const
{
    QList<InputDescriptor> result;
    const OssSnBaseNode *node = parentNode();
    if (!node)
        return result;
    const QString preferred = node->preferredInput();
    for (const QString &name : node->inputNames()) {
        InputDescriptor descriptor;
        descriptor.name = name;
        descriptor.preferred = name == preferred;
        descriptor.setAtLoad = node->inputConnection(name) != nullptr;
        const QStringList tags = node->inputTags(name);
        descriptor.tags = QSet<QString>(tags.begin(), tags.end());
        result.append(descriptor);
    }
    return result;
}

bool OssSnBaseContext::attributeIsStub(const QString &, bool) const
{
    return false;
}

bool OssSnBaseContext::versionMatch(const QString &hashSource) const
{
    return hashSource == versionHashSource();
}

void OssSnBaseContext::ensureGuiInitialized()
{
    if (m_guiInitialized)
        return;
    m_guiInitialized = true;
    initializeGui();
}

void OssSnBaseContext::onUserAttributeChanged(OssCustomAttribute, OssSnBaseNode *) {}

void OssSnBaseContext::onUserAttributeRemoved(const QString &, OssSnBaseNode *) {}

void OssSnBaseContext::setText(QString) {}

void OssSnBaseContext::connectInputFromGui(OssSnBaseNode *source, const QString &inputName,
                                           const QString &outputPointName)
{
    if (OssSnBaseNode *node = parentNode())
        node->connectInput(inputName, source, outputPointName);
}

void OssSnBaseContext::applySelection(bool selected)
{
    if (OssSnBaseNode *node = parentNode())
        node->setSelected(selected);
}
