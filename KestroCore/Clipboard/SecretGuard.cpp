#include "KestroCore/Clipboard/SecretGuard.h"

#include <algorithm>
#include <array>

namespace kestro::SecretGuard {

namespace {

using Word = QLatin1StringView;

constexpr qsizetype longestLook = 16384;
constexpr qsizetype longestToken = 512;

// The beginnings that makers of tokens agreed on, with the least that follows them.
struct Maker {
    Word prefix;
    qsizetype rest;
};
constexpr std::array makers{ Maker{ Word("ghp_"), 20 }, Maker{ Word("gho_"), 20 }, Maker{ Word("ghu_"), 20 },
    Maker{ Word("ghs_"), 20 }, Maker{ Word("ghr_"), 20 }, Maker{ Word("github_pat_"), 20 }, Maker{ Word("glpat-"), 16 },
    Maker{ Word("sk-"), 20 }, Maker{ Word("sk_live_"), 12 }, Maker{ Word("sk_test_"), 12 },
    Maker{ Word("rk_live_"), 12 }, Maker{ Word("whsec_"), 16 }, Maker{ Word("xoxb-"), 16 }, Maker{ Word("xoxp-"), 16 },
    Maker{ Word("xapp-"), 16 }, Maker{ Word("AKIA"), 16 }, Maker{ Word("ASIA"), 16 }, Maker{ Word("AIza"), 30 },
    Maker{ Word("ya29."), 20 }, Maker{ Word("npm_"), 20 }, Maker{ Word("pypi-"), 20 }, Maker{ Word("hf_"), 20 },
    Maker{ Word("dop_v1_"), 20 }, Maker{ Word("SG."), 20 }, Maker{ Word("AGE-SECRET-KEY-"), 20 } };

constexpr std::array secretNames{ Word("password"), Word("passwd"), Word("passphrase"), Word("secret"), Word("api_key"),
    Word("apikey"), Word("api-key"), Word("access_key"), Word("private_key"), Word("auth_token"), Word("access_token"),
    Word("_token"), Word("client_secret") };

enum class Letters { small, capital, digit, sign };

bool isAsciiGraph(QChar c) { return c.unicode() > 0x20 && c.unicode() < 0x7F; }
bool isDigit(QChar c) { return c >= u'0' && c <= u'9'; }
bool isHex(QChar c) { return isDigit(c) || (c >= u'a' && c <= u'f') || (c >= u'A' && c <= u'F'); }

Letters classOf(QChar c)
{
    if (isDigit(c))
        return Letters::digit;
    if (c >= u'a' && c <= u'z')
        return Letters::small;
    return c >= u'A' && c <= u'Z' ? Letters::capital : Letters::sign;
}

/// A valid checksum over 13 to 19 digits in groups, which begin as those of cards do.
bool isCard(QStringView text)
{
    QString digits;
    for (qsizetype i = 0; i < text.size(); ++i) {
        const bool isGap = (text[i] == u' ' || text[i] == u'-') && i > 0 && isDigit(text[i - 1]);
        if (isDigit(text[i]))
            digits.append(text[i]);
        else if (!isGap || digits.size() > 19)
            return false;
    }
    if (digits.size() < 13 || digits.size() > 19 || digits[0] < u'2' || digits[0] > u'6')
        return false;
    int sum = 0;
    for (qsizetype i = 0; i < digits.size(); ++i) {
        const int digit = digits[digits.size() - 1 - i].unicode() - u'0';
        const int doubled = digit * 2 > 9 ? digit * 2 - 9 : digit * 2;
        sum += i % 2 == 0 ? digit : doubled;
    }
    return sum % 10 == 0;
}

bool hasMaker(QStringView word)
{
    return std::ranges::any_of(makers, [&](const Maker& maker) {
        if (!word.startsWith(maker.prefix) || word.size() < maker.prefix.size() + maker.rest)
            return false;
        return std::ranges::all_of(word.sliced(maker.prefix.size()),
            [](QChar c) { return classOf(c) != Letters::sign || u"-_.=/+"_qs.contains(c); });
    });
}

/// Three parts in base64, the first of which begins an object of JSON.
bool isSignedToken(QStringView word)
{
    return word.startsWith(u"eyJ") && word.count(u'.') == 2 && word.size() > 40
        && std::ranges::all_of(
            word, [](QChar c) { return classOf(c) != Letters::sign || c == u'.' || c == u'-' || c == u'_'; });
}

bool isHexKey(QStringView word)
{
    // 40 are a commit, and 36 with dashes a UUID, which the dashes rule out.
    return (word.size() == 32 || word.size() >= 48) && std::ranges::all_of(word, isHex)
        && std::ranges::any_of(word, isDigit);
}

/// Chance changes the kind of letter again and again, which neither words nor names do.
bool looksRandom(QStringView word)
{
    const bool isPlace = word.contains(u"://") || word.startsWith(u'/') || word.startsWith(u'~')
        || word.startsWith(u'.') || word.contains(u'\\') || word.contains(u"::") || word.contains(u'(');
    if (isPlace || word.size() < 12 || word.size() > longestToken || !std::ranges::all_of(word, isAsciiGraph))
        return false;
    std::array<int, 4> counts{};
    int changes = 0;
    for (qsizetype i = 0; i < word.size(); ++i) {
        ++counts[std::size_t(classOf(word[i]))];
        changes += i > 0 && classOf(word[i]) != classOf(word[i - 1]);
    }
    const auto [small, capital, digit, sign] = counts;
    const double share = double(changes) / double(word.size() - 1);
    const bool mixesCase = small > 1 && capital > 1;
    if (mixesCase && digit > 1 && sign * 3 <= word.size())
        return share > (word.size() >= 20 ? 0.4 : 0.65);
    const bool isOneCase = (small == 0) != (capital == 0);
    return isOneCase && sign == 0 && word.size() >= 24 && digit >= 4 && !std::ranges::all_of(word, isHex)
        && share > 0.3;
}

bool isSecretWord(QStringView word)
{
    return hasMaker(word) || isSignedToken(word) || isHexKey(word) || looksRandom(word);
}

/// NAME=value or name: value, where the name tells.
bool isSecretSetting(QStringView line)
{
    const auto end = std::find_if(line.begin(), line.end(), [](QChar c) { return c == u'=' || c == u':'; });
    if (end == line.end())
        return false;
    QStringView name = line.first(end - line.begin()).trimmed();
    QStringView value = line.sliced(end - line.begin() + 1).trimmed();
    if (name.startsWith(u"export "))
        name = name.sliced(7).trimmed();
    while (!name.isEmpty() && (name.back() == u'"' || name.back() == u'\''))
        name.chop(1);
    while (!name.isEmpty() && (name.front() == u'"' || name.front() == u'\''))
        name = name.sliced(1);
    const bool isName = !name.isEmpty() && name.size() <= 64 && std::ranges::all_of(name, [](QChar c) {
        return classOf(c) != Letters::sign || c == u'_' || c == u'-' || c == u'.';
    });
    const bool isValue = value.size() >= 6 && std::ranges::none_of(value, [](QChar c) { return c.isSpace(); })
        && !value.contains(u'(') && !value.startsWith(u'$') && !value.startsWith(u'<');
    return isName && isValue
        && std::ranges::any_of(secretNames, [&](Word word) { return name.endsWith(word, Qt::CaseInsensitive); });
}

} // namespace

Secret secret(QStringView text)
{
    const QStringView head = text.first(std::min(text.size(), longestLook)).trimmed();
    if (head.isEmpty())
        return Secret::none;
    if (head.contains(u"-----BEGIN ") && head.contains(u"PRIVATE KEY"))
        return Secret::key;
    if (head.size() <= 40 && isCard(head))
        return Secret::card;
    QStringView word = head;
    if (word.startsWith(u"Bearer ", Qt::CaseInsensitive))
        word = word.sliced(7).trimmed();
    if (std::ranges::none_of(word, [](QChar c) { return c.isSpace(); }) && isSecretWord(word))
        return Secret::token;
    for (const QStringView line : head.tokenize(u'\n')) {
        if (isSecretSetting(line))
            return Secret::key;
    }
    return Secret::none;
}

QString masked(QStringView text)
{
    QString dots(12, QChar(0x2022));
    if (secret(text) != Secret::card)
        return dots;
    return dots + u' ' + text.trimmed().last(4).toString();
}

} // namespace kestro::SecretGuard
