#pragma once

class QObject;

namespace Ossa {
class API;
}

namespace OssSnScriptObjects {

// Registers the script factories of the palette and then of the view with the host's script
// manager, which owns them.
void registerFactories();

// The script object of Internal that has the script class ClassName: the one the script manager
// already holds, else one made by the factory of Internal's class (or its nearest base class)
// and registered. Null when none can be had.
Ossa::API *scriptObjectFor(QObject *Internal, const char *ClassName);

} // namespace OssSnScriptObjects
