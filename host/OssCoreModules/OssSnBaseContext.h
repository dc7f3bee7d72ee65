#pragma once

#include "OssCoreModulesExport.h"

#include <OssSerializableObject.h>

#include <QList>
#include <QSet>
#include <QString>

class OssSnBaseNode;

// Something a context attaches to a node and the node's viewers show: the base of every view
// context. A context is a child object of its business node.
class OSSCOREMODULES_EXPORT OssSnBaseContext : public OssSerializableObject
{
    Q_OBJECT
public:
    // How a context sees one input of its node.
    struct InputDescriptor
    {
        QString name;
        bool preferred = false;
        // True when the input was connected when the node was loaded or created.
        bool setAtLoad = false;
        QSet<QString> tags;
    };

    explicit OssSnBaseContext(OssSnBaseNode *parentNode);
    ~OssSnBaseContext() override;

    OssSnBaseNode *parentNode() const;
    // Adds a tag (possibly empty) to one of the node's inputs.
    void addInputTag(const QString &inputName, const QString &tag);
    QList<InputDescriptor> inputs() const;

    // Called by the host once, after the context is attached and its properties are set.
    virtual void initializeGui() {}
    virtual OssSnBaseContext *clone(OssSnBaseNode *) const { return nullptr; }
    virtual bool attributeIsStub(const QString &name, bool flag) const;
    // Text from which the host derives the context's version hash.
    virtual QString versionHashSource() const { return QString(); }
    // Whether the context's own state is compatible with a node type's version.
    virtual bool versionStateMatches() const { return true; }
    virtual bool versionMatch(const QString &hashSource) const;
    virtual void copyGuiStateFrom(OssSnBaseContext *) {}
    virtual void copyGuiNodeStateFrom(OssSnBaseContext *) {}

    bool guiInitialized() const { return m_guiInitialized; }
    // Calls initializeGui() the first time only.
    void ensureGuiInitialized();

public slots:
    virtual void onUserAttributeChanged(OssCustomAttribute attribute, OssSnBaseNode *node);

public:
    virtual void onUserAttributeRemoved(const QString &name, OssSnBaseNode *node);
    // The context's GUI object, if it has one.
    virtual QObject *guiNode() const { return nullptr; }

public slots:
    virtual void setText(QString text);

public:
    virtual void connectInputFromGui(OssSnBaseNode *source, const QString &inputName,
                                     const QString &outputPointName);
    virtual void applySelection(bool selected);

private:
    bool m_guiInitialized = false;
};
