#pragma once

#include <QString>
#include <QStringList>
#include <QVariant>

class QObject;

// The ten node-graph preferences as one table: each preference's key (the name of the Qt
// property that holds it), label, section on the preference page, default and tool tip. The
// manager's preference slots, the settings and the preference page all read it.
class OssSnNodeGraphPreferences
{
public:
    // The preferences in the order of the preference page.
    enum Preference
    {
        ControlType,
        DefaultNodePortDisplayMode,
        IsAutoInsertOn,
        ZoomTo,
        AutoUpdateUpstreamMergeNodeColorspaceEnabled,
        DefaultMCMCollapsedState,
        ShakeToExtractEnabled,
        ShakeToExtractShakes,
        ShakeToExtractTime,
        NumberOfLastUsedNodePathsToStore,
        Count
    };

    struct Entry
    {
        const char *key;
        const char *label;
        // Translated in the manager's context.
        const char *section;
        // A preference with choices defaults to its first choice and saves the choice's text;
        // the others save their default's type (bool, or int for numbers and enumerations).
        QVariant defaultValue;
        QStringList choices;
        const char *toolTip;
        bool toolTipTranslated;
    };

    static const Entry &entry(Preference preference);
    static QString key(Preference preference);
    static QVariant defaultValue(Preference preference);
    static const QStringList &choices(Preference preference);
    static QString toolTip(Preference preference);
    // The label of a key; a null string for a name that is no preference.
    static QString label(const QString &key);

    // The page all of them are on, and the settings group they are saved in.
    static QString page();
    static QString settingsGroup();
    static QString section(Preference preference);

    // Gives every preference property of Owner its default.
    static void applyDefaults(QObject *owner);
    // Reads the saved preferences into Owner's properties, in the settings' order; a preference
    // that was never saved falls back to its default or, for the port display, auto insert,
    // zoom anchor and collapsed state, keeps its value; one of the wrong type converts as the
    // settings store converts it.
    static void load(QObject *owner);
    static void save(const QObject *owner);
    // Registers every preference of Owner with the host's preference manager, in table order.
    static void registerWith(QObject *owner);
};
