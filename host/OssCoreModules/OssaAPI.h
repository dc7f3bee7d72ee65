#pragma once

#include "OssCoreModulesExport.h"

#include <QObject>
#include <QPointer>

namespace Ossa {

// Base of every script object: a thin QObject whose public slots are what scripts call, bound
// to one internal object through a guarded pointer.
class OSSCOREMODULES_EXPORT API : public QObject
{
    Q_OBJECT
public:
    explicit API(QObject *parent = nullptr);
    ~API() override;

    void initAPI(QObject *internalObject);
    // True when no internal object is bound or the bound one is gone.
    bool isNull() const { return m_internal.isNull(); }
    QObject *internalObject() const { return m_internal.data(); }

private:
    QPointer<QObject> m_internal;
};

// Script object of a palette.
class OSSCOREMODULES_EXPORT Palette : public API
{
    Q_OBJECT
public:
    explicit Palette(QObject *parent = nullptr);
};

// Script object of a shader network.
class OSSCOREMODULES_EXPORT NodeGraph : public API
{
    Q_OBJECT
public:
    explicit NodeGraph(QObject *parent = nullptr);

public slots:
    // The network's name; empty when the network is gone.
    QString name() const;
};

} // namespace Ossa
