#include "KestroCore/Clipboard/ClipHistory.h"
#include "KestroCore/Clipboard/ClipSearch.h"
#include "KestroCore/Clipboard/SecretGuard.h"

#include <cstdint>
#include <cstdlib>
#include <cstring>

using namespace kestro;

namespace {

void require(bool holds)
{
    if (!holds)
        std::abort();
}

} // namespace

/// Any code units that a program may copy: halves of pairs, marks without letters, controls.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, size_t size)
{
    QString text(static_cast<qsizetype>(size / 2), Qt::Uninitialized);
    std::memcpy(text.data(), data, size / 2 * 2);

    const auto kind = ClipHistory::kind(text);
    require(kind.has_value() == !text.trimmed().isEmpty());
    const ClipEntry entry{ {}, {}, kind.value_or(ClipEntry::Text{ text }) };
    const QString preview = entry.preview();
    require(ClipText::stats(preview).characters <= 200 || !entry.textStats());
    for (const QChar c : ClipText::shown(preview, 500))
        require(!ClipText::isLineBreak(c));

    const auto stats = ClipText::stats(text);
    require(stats.characters <= text.size());
    require(ClipText::firstCharacters(text, text.size()) == text);
    require(text.startsWith(ClipText::firstCharacters(text, 3)));

    const SecretGuard::Secret secret = SecretGuard::secret(text);
    require(secret == SecretGuard::secret(text + u'\n'));
    static_cast<void>(SecretGuard::masked(text));

    const qsizetype half = text.size() / 2;
    const QStringView front = QStringView(text).first(half), back = QStringView(text).sliced(half);
    require(ClipText::areEquivalent(text, text));
    require(ClipText::areEquivalent(front, back) == ClipText::areEquivalent(back, front));
    require(ClipText::areEquivalent(front, back)
        == (front.toString().normalized(QString::NormalizationForm_D)
            == back.toString().normalized(QString::NormalizationForm_D)));
    // Half a pair is no text that anyone types.
    const QString needle = text.mid(half, 8);
    require(!needle.isValidUtf16() || ClipSearch(needle, false).isIn(text));
    return 0;
}
