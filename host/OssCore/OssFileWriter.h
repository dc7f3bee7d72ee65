#pragma once

#include "OssCoreExport.h"

#include <QByteArray>
#include <QList>
#include <QString>

// Writes whole files so that a reader finds either the complete new content or the file as it
// was: the data goes to a temporary file beside the target, which replaces the target only once
// every byte is on disk. A failure (a full disk, a read-only folder, a size limit) leaves the
// target untouched and says which file failed and the system's reason.
namespace OssFileWriter {

// Writes the parts one after the other into path. With a backup suffix, an existing file is kept
// as path + suffix (the previous version) before it is replaced.
OSSCORE_EXPORT bool writeAtomically(const QString &path, const QList<QByteArray> &parts,
                                    QString *error, const QString &backupSuffix = QString());

} // namespace OssFileWriter
