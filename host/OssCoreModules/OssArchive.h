#pragma once

#include "OssCoreModulesExport.h"

#include <QByteArray>
#include <QString>

// Material (*.oma) and custom procedural (*.opc) archives: one header line
// "OSSA-ARCHIVE <version> <kind>" followed by the payload (an XML document).
class OSSCOREMODULES_EXPORT OssArchive
{
public:
    static constexpr int Version = 1;
    static const char *const MaterialKind;
    static const char *const CustomProceduralKind;

    static bool write(const QString &path, const QString &kind, const QByteArray &payload,
                      QString *error);
    // The payload of an archive of the expected kind; false with "<path>": problem otherwise.
    static bool read(const QString &path, const QString &kind, QByteArray *payload, QString *error);
};
