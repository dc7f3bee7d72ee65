#include "OssArchive.h"

#include <OssFileWriter.h>

#include <QFile>

const char *const OssArchive::MaterialKind = "material";
const char *const OssArchive::CustomProceduralKind = "customProcedural";

namespace {

const QByteArray magic("OSSA-ARCHIVE");

bool fail(QString *error, const QString &path, const QString &problem)
{
    if (error)
        *error = QStringLiteral("\"%1\": %2").arg(path, problem);
    return false;
}

} // namespace

bool OssArchive::write(const QString &path, const QString &kind, const QByteArray &payload,
                       QString *error)
{
    const QByteArray header =
        magic + ' ' + QByteArray::number(Version) + ' ' + kind.toUtf8() + '\n';
    return OssFileWriter::writeAtomically(path, {header, payload}, error);
}

bool OssArchive::read(const QString &path, const QString &kind, QByteArray *payload, QString *error)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return fail(error, path, QStringLiteral("cannot open: %1").arg(file.errorString()));
    const QByteArray data = file.readAll();
    if (data.isEmpty())
        return fail(error, path, QStringLiteral("the file is empty"));
    const int end = data.indexOf('\n');
    const QList<QByteArray> header = data.left(end < 0 ? data.size() : end).trimmed().split(' ');
    if (header.size() != 3 || header.at(0) != magic)
        return fail(error, path, QStringLiteral("not an archive"));
    bool ok = false;
    const int version = header.at(1).toInt(&ok);
    if (!ok || version < 1)
        return fail(error, path,
                    QStringLiteral("archive version '%1' is not a version")
                        .arg(QString::fromUtf8(header.at(1))));
    if (version > Version)
        return fail(error, path,
                    QStringLiteral("archive version %1 is newer than this program reads (%2)")
                        .arg(version)
                        .arg(Version));
    if (QString::fromUtf8(header.at(2)) != kind)
        return fail(error, path,
                    QStringLiteral("holds a %1 archive, not a %2 archive")
                        .arg(QString::fromUtf8(header.at(2)), kind));
    if (end < 0 || end + 1 >= data.size())
        return fail(error, path, QStringLiteral("the archive is truncated"));
    *payload = data.mid(end + 1);
    return true;
}
