#pragma once

#include "OssGuiExport.h"

#include <QHash>
#include <QString>
#include <QStringList>
#include <QVector>

// Ranks node types against what the user typed, for quick creation: a type matches when the
// typed letters (blanks ignored, case ignored) appear in order in its name, or else in its menu
// path. Better matches come first; among matches of the same kind, recent and favourite types
// come first, then the types used most often.
//
// Kinds of match, best first: the name starts with the text; every typed letter lands on the
// start of a word of the name or right after the previous typed letter ("hsat" in "Hue
// Saturation"); the letters lie scattered in the name; the letters are found only in the menu
// path.
class OSSGUI_EXPORT OssNodeTypeMatcher
{
public:
    enum MatchKind
    {
        NoMatch = -1,
        PathMatch = 0,
        ScatteredMatch = 1,
        WordMatch = 2,
        Prefix = 3
    };

    struct Match
    {
        MatchKind kind = NoMatch;
        // Within one kind: letters on word starts and runs of letters score higher, gaps lower.
        int score = 0;
    };

    // Entries are path keys; each is shown by the last component of its menu path.
    void setEntries(const QStringList &pathKeys, const QStringList &menuPaths);
    // Recent types, most recent first; favourites; how often each type was created.
    void setHistory(const QStringList &recent, const QStringList &favourites,
                    const QHash<QString, int> &useCounts);

    // The path keys that match Text, best first. An empty text lists the recent types, then the
    // favourites, then every type by use and name.
    QStringList rank(const QString &text) const;

    // The match of Text against one name and its menu path.
    static Match match(const QString &text, const QString &name, const QString &menuPath);
    // The name shown for a menu path: its last component.
    static QString displayName(const QString &menuPath);

private:
    struct Entry
    {
        QString pathKey;
        QString name;
        QString menuPath;
    };
    QVector<Entry> m_entries;
    QHash<QString, int> m_recentRank;
    QHash<QString, bool> m_favourite;
    QHash<QString, int> m_useCounts;
};
