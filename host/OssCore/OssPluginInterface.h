#pragma once

#include <QString>
#include <QtPlugin>

#define OssPluginInterface_iid "com.halvern.ossa.pluginterface/1.0"

// The host's plug-in interface. The host reads a plug-in's metadata, checks this interface id,
// takes the plug-in instance, and calls initialize() once, in ascending initializePriority().
class OssPluginInterface
{
public:
    virtual bool initialize() = 0;
    virtual bool uninitialize() { return true; }
    virtual ~OssPluginInterface() = default;
    virtual QString name() const = 0;
    virtual QString description() const = 0;
    virtual QString authorName() const = 0;
    virtual QString legalNotice() const = 0;
    virtual int version() const = 0;
    // Lower values initialise first.
    virtual int initializePriority() const { return DefaultInitializePriority; }

    static constexpr int DefaultInitializePriority = 100;
};

Q_DECLARE_INTERFACE(OssPluginInterface, OssPluginInterface_iid)
