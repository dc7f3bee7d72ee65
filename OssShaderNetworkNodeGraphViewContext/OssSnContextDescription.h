#pragma once

#include <QPoint>
#include <QString>
#include <QStringList>
#include <QVector>

// What the "Contexts" section of a node-type description says about a node's view context, read
// in document order. Reading stops at the first malformed spot and keeps what it read up to
// there, so applying the result in order gives the same context as applying while reading.
struct OssSnContextDescription
{
    // A value that may be absent. (std::optional of Qt's implicitly shared types trips GCC's
    // flow analysis into false warnings.)
    template <typename T> class Maybe
    {
    public:
        Maybe() = default;
        Maybe(const T &value) : m_value(value), m_set(true) {}
        bool has_value() const { return m_set; }
        const T &value() const { return m_value; }

    private:
        T m_value{};
        bool m_set = false;
    };

    // One "Input" or "Output" with a name.
    struct Port
    {
        QString name;
        // Input tags in order, empty parts included; only inputs carry tags.
        Maybe<QStringList> tags;
        // ((OriginOffset, 0), (x, y)); set only when the port's children were read completely
        // and the last "Pos" text had exactly two parts.
        Maybe<QPair<QPoint, QPoint>> initialPosition;
    };

    // One used "Context" element (Type "NodeGraphView" or "UINodeGraphView").
    struct Context
    {
        QString type;
        Maybe<QString> guiNodeClass;
        Maybe<QString> className;
        Maybe<int> shapeType;
        Maybe<QString> nodeColorTop;
        Maybe<QString> nodeColorBottom;
        Maybe<QString> pixmapPath;
        Maybe<QPoint> pixmapOffset;
        QVector<Port> inputs;
        QVector<Port> outputs;
    };

    QVector<Context> contexts;
    // True when the reader stopped at malformed XML.
    bool truncated = false;

    static OssSnContextDescription read(const QString &description);
    // The same as read(), remembered per description text: every node of a type carries the same
    // description, so a network of thousands of nodes reads each type's section once.
    static OssSnContextDescription readCached(const QString &description);
    // A decimal integer; text that is not a number reads as 0.
    static int toInt(const QString &text);
};
