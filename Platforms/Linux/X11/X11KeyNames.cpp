#include "Platforms/Linux/X11/X11KeyNames.h"

#include <array>
#include <initializer_list>
#include <utility>

namespace kestro::x11 {

namespace {

struct Row {
    const char* prefix;
    std::initializer_list<quint32> codes; ///< of the keys 01, 02 and on
};

constexpr quint32 noKey = ~0U;

QByteArray inRow(const char* prefix, int number) { return prefix + QByteArray::number(number).rightJustified(2, '0'); }

QHash<quint32, QByteArray> namedKeys()
{
    const Row rows[] = {
        { "AE", { 18, 19, 20, 21, 23, 22, 26, 28, 25, 29, 27, 24 } },
        { "AD", { 12, 13, 14, 15, 17, 16, 32, 34, 31, 35, 33, 30 } },
        { "AC", { 0, 1, 2, 3, 5, 4, 38, 40, 37, 41, 39 } },
        { "AB", { 6, 7, 8, 9, 11, 45, 46, 43, 47, 44 } },
        // The keys in the places of 13 to 15 are named below.
        { "FK", { 122, 120, 99, 118, 96, 97, 98, 100, 101, 109, 103, 111, noKey, noKey, noKey, 106, 64, 79, 80, 90 } },
    };
    QHash<quint32, QByteArray> names = { { 50, "TLDE" }, { 42, "BKSL" }, { 10, "LSGT" }, { 49, "SPCE" }, { 36, "RTRN" },
        { 48, "TAB" }, { 51, "BKSP" }, { 53, "ESC" }, { 110, "COMP" }, { 105, "PRSC" }, { 107, "SCLK" },
        { 113, "PAUS" }, { 114, "INS" }, { 117, "DELE" }, { 115, "HOME" }, { 119, "END" }, { 116, "PGUP" },
        { 121, "PGDN" }, { 123, "LEFT" }, { 124, "RGHT" }, { 125, "DOWN" }, { 126, "UP" }, { 71, "NMLK" },
        { 75, "KPDV" }, { 67, "KPMU" }, { 78, "KPSU" }, { 69, "KPAD" }, { 76, "KPEN" }, { 81, "KPEQ" }, { 65, "KPDL" },
        { 82, "KP0" }, { 83, "KP1" }, { 84, "KP2" }, { 85, "KP3" }, { 86, "KP4" }, { 87, "KP5" }, { 88, "KP6" },
        { 89, "KP7" }, { 91, "KP8" }, { 92, "KP9" } };
    for (const Row& row : rows) {
        int number = 0;
        for (const quint32 code : row.codes) {
            ++number;
            if (code != noKey)
                names.insert(code, inRow(row.prefix, number));
        }
    }
    return names;
}

} // namespace

const QHash<quint32, QByteArray>& keyNames()
{
    static const QHash<quint32, QByteArray> names = namedKeys();
    return names;
}

} // namespace kestro::x11
