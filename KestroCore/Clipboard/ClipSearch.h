#pragma once

#include <QString>
#include <QStringView>
#include <vector>

namespace kestro {

struct ClipEntry;

/// What the user searches for, prepared once for hundreds of long texts. The case does not count, by the rules of the
/// user's language: in Turkish a dotted capital I belongs to "i", and "I" does not.
class ClipSearch {
public:
    /// Blanks at both ends of `query` do not count; an empty one is in everything.
    explicit ClipSearch(const QString& query, bool isTurkic = speaksTurkic());

    bool isIn(const ClipEntry& entry) const;
    bool isIn(QStringView text) const;

    static bool speaksTurkic();

private:
    struct Letter {
        char16_t folded;
        char16_t other; ///< the other case, or the same where there is none
    };
    bool matchesAt(QStringView text, qsizetype at) const;

    QString m_query;
    bool m_isTurkic;
    bool m_isSimple = true; ///< whether each unit of it has at most two cases, both single units
    std::vector<Letter> m_letters;
    qsizetype m_rarest = 0; ///< the place of the letter that is looked for first
};

} // namespace kestro
