#include "OssNodeTypeMatcher.h"

#include <QVarLengthArray>

#include <algorithm>
#include <climits>

namespace {

constexpr int Unreachable = INT_MIN / 4;
constexpr int LetterScore = 16;
constexpr int WordStartBonus = 24;
constexpr int FirstLetterBonus = 8;
constexpr int RunBonus = 12;
constexpr int GapOpening = 2;
constexpr int MaxLeadingPenalty = 15;

bool isSeparator(QChar c)
{
    return !c.isLetterOrNumber();
}

// The letters and digits of a text, lower case, each marked when it starts a word: after a
// separator, at a lower-to-upper case change or at a letter/digit change.
struct Compact
{
    QVarLengthArray<QChar, 64> letters;
    QVarLengthArray<bool, 64> wordStart;

    explicit Compact(const QString &text)
    {
        QChar previous;
        for (const QChar c : text) {
            if (isSeparator(c)) {
                previous = QChar();
                continue;
            }
            const bool start = previous.isNull() || (previous.isLower() && c.isUpper()) ||
                               (previous.isDigit() != c.isDigit());
            letters.append(c.toLower());
            wordStart.append(start);
            previous = c;
        }
    }
    int size() const { return letters.size(); }
};

bool isSubsequence(const Compact &query, const Compact &text)
{
    int i = 0;
    for (int j = 0; j < text.size() && i < query.size(); ++j)
        if (text.letters[j] == query.letters[i])
            ++i;
    return i == query.size();
}

bool startsWith(const Compact &text, const Compact &query)
{
    if (query.size() > text.size())
        return false;
    for (int i = 0; i < query.size(); ++i)
        if (text.letters[i] != query.letters[i])
            return false;
    return true;
}

// The best alignment of the query's letters in the text: each letter scores, more on a word
// start and in a run, and each gap costs by its length.
int bestAlignment(const Compact &query, const Compact &text)
{
    const int m = text.size();
    QVarLengthArray<int, 64> previous(m);
    QVarLengthArray<int, 64> current(m);
    for (int j = 0; j < m; ++j)
        current[j] = text.letters[j] == query.letters[0]
                         ? LetterScore + (text.wordStart[j] ? WordStartBonus : 0) +
                               (j == 0 ? FirstLetterBonus : 0) - qMin(j, MaxLeadingPenalty)
                         : Unreachable;
    for (int i = 1; i < query.size(); ++i) {
        std::swap(previous, current);
        // The best of previous[k] + k over k <= j - 2, for a gap of j - k - 1 letters.
        int gapBase = Unreachable;
        for (int j = 0; j < m; ++j) {
            if (j >= 2 && previous[j - 2] > Unreachable)
                gapBase = qMax(gapBase, previous[j - 2] + (j - 2));
            if (text.letters[j] != query.letters[i]) {
                current[j] = Unreachable;
                continue;
            }
            int before = Unreachable;
            if (j >= 1 && previous[j - 1] > Unreachable)
                before = previous[j - 1] + RunBonus;
            if (gapBase > Unreachable)
                before = qMax(before, gapBase - j - GapOpening);
            current[j] = before > Unreachable
                             ? before + LetterScore + (text.wordStart[j] ? WordStartBonus : 0)
                             : Unreachable;
        }
    }
    int best = Unreachable;
    for (int j = 0; j < m; ++j)
        best = qMax(best, current[j]);
    return best;
}

// Whether the query's letters can all land on word starts or right after the letter before.
bool wordAligned(const Compact &query, const Compact &text)
{
    const int m = text.size();
    QVarLengthArray<bool, 64> previous(m);
    QVarLengthArray<bool, 64> current(m);
    for (int j = 0; j < m; ++j)
        current[j] = text.wordStart[j] && text.letters[j] == query.letters[0];
    for (int i = 1; i < query.size(); ++i) {
        std::swap(previous, current);
        bool anyBefore = false;
        for (int j = 0; j < m; ++j) {
            const bool ok = text.letters[j] == query.letters[i] &&
                            ((j >= 1 && previous[j - 1]) || (text.wordStart[j] && anyBefore));
            anyBefore = anyBefore || previous[j];
            current[j] = ok;
        }
    }
    for (int j = 0; j < m; ++j)
        if (current[j])
            return true;
    return false;
}

OssNodeTypeMatcher::Match matchCompact(const Compact &query, const Compact &name,
                                       const Compact &path)
{
    OssNodeTypeMatcher::Match result;
    if (query.size() == 0) {
        result.kind = OssNodeTypeMatcher::Prefix;
        return result;
    }
    if (isSubsequence(query, name)) {
        result.score = bestAlignment(query, name);
        if (startsWith(name, query))
            result.kind = OssNodeTypeMatcher::Prefix;
        else if (wordAligned(query, name))
            result.kind = OssNodeTypeMatcher::WordMatch;
        else
            result.kind = OssNodeTypeMatcher::ScatteredMatch;
    } else if (isSubsequence(query, path)) {
        result.kind = OssNodeTypeMatcher::PathMatch;
        result.score = bestAlignment(query, path);
    }
    return result;
}

} // namespace

QString OssNodeTypeMatcher::displayName(const QString &menuPath)
{
    return menuPath.section(QLatin1Char('/'), -1);
}

OssNodeTypeMatcher::Match OssNodeTypeMatcher::match(const QString &text, const QString &name,
                                                    const QString &menuPath)
{
    return matchCompact(Compact(text), Compact(name), Compact(menuPath));
}

void OssNodeTypeMatcher::setEntries(const QStringList &pathKeys, const QStringList &menuPaths)
{
    m_entries.clear();
    m_entries.reserve(pathKeys.size());
    for (int i = 0; i < pathKeys.size(); ++i) {
        const QString menuPath = menuPaths.value(i).isEmpty() ? pathKeys.at(i) : menuPaths.at(i);
        m_entries.append(Entry{pathKeys.at(i), displayName(menuPath), menuPath});
    }
}

void OssNodeTypeMatcher::setHistory(const QStringList &recent, const QStringList &favourites,
                                    const QHash<QString, int> &useCounts)
{
    m_recentRank.clear();
    for (int i = 0; i < recent.size(); ++i)
        if (!m_recentRank.contains(recent.at(i)))
            m_recentRank.insert(recent.at(i), i);
    m_favourite.clear();
    for (const QString &key : favourites)
        m_favourite.insert(key, true);
    m_useCounts = useCounts;
}

QStringList OssNodeTypeMatcher::rank(const QString &text) const
{
    struct Ranked
    {
        const Entry *entry;
        Match match;
        // Recent types by recency, then favourites, then the rest.
        int preference;
        int uses;
    };
    const Compact query(text);
    QVector<Ranked> ranked;
    ranked.reserve(m_entries.size());
    for (const Entry &entry : m_entries) {
        const Match m = matchCompact(query, Compact(entry.name), Compact(entry.menuPath));
        if (m.kind == NoMatch)
            continue;
        int preference = 0;
        const auto recent = m_recentRank.constFind(entry.pathKey);
        if (recent != m_recentRank.constEnd())
            preference = 2 * m_entries.size() + 2 * m_recentRank.size() - recent.value();
        else if (m_favourite.contains(entry.pathKey))
            preference = 1;
        ranked.append(Ranked{&entry, m, preference, m_useCounts.value(entry.pathKey)});
    }
    const bool typed = query.size() > 0;
    std::stable_sort(ranked.begin(), ranked.end(), [typed](const Ranked &a, const Ranked &b) {
        if (a.match.kind != b.match.kind)
            return a.match.kind > b.match.kind;
        if (a.preference != b.preference)
            return a.preference > b.preference;
        if (a.uses != b.uses)
            return a.uses > b.uses;
        if (a.match.score != b.match.score)
            return a.match.score > b.match.score;
        // Of two equal matches the shorter name is the closer one.
        if (typed && a.entry->name.size() != b.entry->name.size())
            return a.entry->name.size() < b.entry->name.size();
        return a.entry->name.compare(b.entry->name, Qt::CaseInsensitive) < 0;
    });
    QStringList keys;
    keys.reserve(ranked.size());
    for (const Ranked &r : qAsConst(ranked))
        keys.append(r.entry->pathKey);
    return keys;
}
