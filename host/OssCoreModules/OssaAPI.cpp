#include "OssaAPI.h"

namespace Ossa {

API::API(QObject *parent) : QObject(parent) {}

API::~API() = default;

void API::initAPI(QObject *internalObject)
{
    m_internal = internalObject;
}

Palette::Palette(QObject *parent) : API(parent) {}

NodeGraph::NodeGraph(QObject *parent) : API(parent) {}

QString NodeGraph::name() const
{
    return internalObject() ? internalObject()->objectName() : QString();
}

} // namespace Ossa
