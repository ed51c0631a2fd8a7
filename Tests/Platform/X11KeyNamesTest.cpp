#include "Platforms/Linux/X11/X11KeyNames.h"
#include "KestroCore/Shortcuts/KeyCombo.h"

#include <QSet>
#include <gtest/gtest.h>

namespace kestro {
namespace {

TEST(X11KeyNames, EveryKeyThatCanBeShownHasAPlaceOfItsOwn)
{
    const auto& names = x11::keyNames();
    int shown = 0;
    for (quint32 code = 0; code < 128; ++code) {
        if (KeyCombo::keyName(code) == QStringLiteral("Key %1").arg(code))
            continue;
        ++shown;
        EXPECT_TRUE(names.contains(code)) << code;
    }
    EXPECT_EQ(shown, 82);
    const auto places = names.values();
    EXPECT_EQ(QSet<QByteArray>(places.begin(), places.end()).size(), places.size());
}

} // namespace
} // namespace kestro
