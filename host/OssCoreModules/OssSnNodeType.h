#pragma once

#include <QString>
#include <QStringList>
#include <QVariant>
#include <QVector>

// One input or output point of a node type.
struct OssSnNodeTypePort
{
    QString name;
    // "color", "float", "vector", "shader", "material" or "any".
    QString type;
    // Input tags in order, empty parts kept ("a,,b" gives three tags, "" none); outputs have
    // none.
    QStringList tags;

    bool hasTag(const QString &tag) const { return tags.contains(tag); }
};

// One node attribute of a node type, with the value a new node starts with.
//
// Value types: "bool" (bool), "int" (int), "float" (double), "string" (QString), "file" (QString,
// a file path), "color" (OssColor), "enum" (QString in the OssUserEnum text form
// "index:key1|key2"), "imageList" (QStringList of image ids), "vector" (QString "x y z").
//
// A number may have a range (Min and Max, either or both); editors keep typed values inside it.
struct OssSnNodeTypeAttribute
{
    QString name;
    QString prettyName;
    QString type;
    QVariant defaultValue;
    bool visible = true;
    // Null when the description sets no bound.
    QVariant minimum;
    QVariant maximum;
};

// Everything the host knows about one creatable kind of shader-network node, as read from its
// description file.
struct OssSnNodeType
{
    QString pathKey, menuPath, nodeClass, description, versionUuid, hash, date, filePath;
    // The whole description text, given unchanged to context loaders.
    QString source;
    // Creatable in a node graph (listed by nodeGraphPathKeys).
    bool nodeGraph = true;
    QStringList tags;
    QVector<OssSnNodeTypePort> inputs;
    QString preferredInput;
    QVector<OssSnNodeTypePort> outputs;
    QString preferredOutput;
    QVector<OssSnNodeTypeAttribute> attributes;

    bool hasTag(const QString &tag) const { return tags.contains(tag); }

    // The port or attribute of that name, or null.
    const OssSnNodeTypePort *input(const QString &name) const { return find(inputs, name); }
    const OssSnNodeTypePort *output(const QString &name) const { return find(outputs, name); }
    const OssSnNodeTypeAttribute *attribute(const QString &name) const
    {
        return find(attributes, name);
    }

    QStringList inputNames() const { return names(inputs); }
    QStringList outputNames() const { return names(outputs); }
    QStringList attributeNames() const { return names(attributes); }

private:
    template <typename T> static const T *find(const QVector<T> &items, const QString &name)
    {
        for (const T &item : items) {
            if (item.name == name)
                return &item;
        }
        return nullptr;
    }
    template <typename T> static QStringList names(const QVector<T> &items)
    {
        QStringList result;
        result.reserve(items.size());
        for (const T &item : items)
            result.append(item.name);
        return result;
    }
};
