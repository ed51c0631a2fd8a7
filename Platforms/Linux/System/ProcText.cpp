#include "Platforms/Linux/System/ProcText.h"

#include "KestroCore/Statistics/StatsMath.h"

#include <algorithm>
#include <charconv>
#include <cmath>

namespace kestro::procText {

namespace {

constexpr quint64 sectorBytes = 512; // of diskstats, whatever the disk's own
constexpr quint64 maxSectors = UINT64_MAX / sectorBytes;

void skipBlanks(std::string_view& text) { text.remove_prefix(std::min(text.find_first_not_of(" \t"), text.size())); }

/// Takes the next word off the front of `text`; empty at the end.
std::string_view takeWord(std::string_view& text)
{
    skipBlanks(text);
    const std::string_view word = text.substr(0, text.find_first_of(" \t\n"));
    text.remove_prefix(word.size());
    return word;
}

template <typename Number = quint64> std::optional<Number> takeNumber(std::string_view& text)
{
    const std::string_view word = takeWord(text);
    Number number = 0;
    const auto [end, fault] = std::from_chars(word.data(), word.data() + word.size(), number);
    if (word.empty() || fault != std::errc() || end != word.data() + word.size())
        return std::nullopt;
    return number;
}

/// Takes the next line off the front of `text`.
std::string_view takeLine(std::string_view& text)
{
    const std::string_view line = text.substr(0, text.find('\n'));
    text.remove_prefix(std::min(line.size() + 1, text.size()));
    return line;
}

std::optional<CPUTicks> ticksOf(std::string_view columns)
{
    enum Column { User, Nice, System, Idle, IoWait, Irq, SoftIrq, Steal, Count };
    std::array<quint64, Count> values{};
    for (int column = User; column < Count; ++column) {
        const auto ticks = takeNumber(columns);
        if (!ticks && column <= Idle)
            return std::nullopt;
        values.at(size_t(column)) = ticks.value_or(0); // an old kernel has fewer
    }
    const auto wrapped = [](quint64 ticks) { return static_cast<quint32>(ticks); };
    return CPUTicks{ .user = wrapped(values[User]),
        .system = wrapped(values[System] + values[Irq] + values[SoftIrq] + values[Steal]),
        .idle = wrapped(values[Idle] + values[IoWait]),
        .nice = wrapped(values[Nice]) };
}

/// The percentage behind "avg10=".
std::optional<double> shareOf(std::string_view line)
{
    constexpr std::string_view key = "avg10=";
    const size_t at = line.find(key);
    if (at == std::string_view::npos)
        return std::nullopt;
    line.remove_prefix(at + key.size());
    return takeNumber<double>(line);
}

/// "\x2d" is how systemd writes a dash within a name.
QByteArray unescaped(std::string_view name)
{
    return QByteArray(name.data(), qsizetype(name.size())).replace("\\x2d", "-").replace("\\x5f", "_");
}

} // namespace

std::optional<CPUTicks> cpuTicks(std::string_view stat)
{
    constexpr std::string_view allCores = "cpu ";
    if (!stat.starts_with(allCores))
        return std::nullopt;
    stat.remove_prefix(allCores.size());
    return ticksOf(takeLine(stat));
}

std::vector<CPUTicks> cores(std::string_view stat)
{
    std::vector<CPUTicks> found;
    while (stat.starts_with("cpu")) {
        std::string_view line = takeLine(stat);
        if (takeWord(line) == "cpu")
            continue;
        if (const auto ticks = ticksOf(line))
            found.push_back(*ticks);
    }
    return found;
}

std::optional<quint64> memory(std::string_view text, std::string_view name)
{
    while (!text.empty()) {
        const bool isWhole = text.find('\n') != std::string_view::npos;
        std::string_view line = takeLine(text);
        if (!line.starts_with(name))
            continue;
        line.remove_prefix(name.size());
        const auto kib = takeNumber(line);
        const std::string_view unit = takeWord(line);
        const bool isCut = !isWhole && unit != "kB";
        if (!kib || unit != "kB" || isCut || *kib > UINT64_MAX / 1024)
            return std::nullopt;
        return *kib * 1024;
    }
    return std::nullopt;
}

std::optional<std::array<double, 3>> load(std::string_view text)
{
    std::array<double, 3> loads{};
    for (double& each : loads) {
        const auto number = takeNumber<double>(text);
        if (!number || !std::isfinite(*number) || *number < 0)
            return std::nullopt;
        each = *number;
    }
    return loads;
}

std::optional<MemoryPressure> pressure(std::string_view text)
{
    std::optional<double> some;
    std::optional<double> full;
    while (!text.empty()) {
        std::string_view line = takeLine(text);
        const std::string_view kind = takeWord(line);
        if (kind == "some")
            some = shareOf(line);
        else if (kind == "full")
            full = shareOf(line);
    }
    if (!some)
        return std::nullopt;
    return StatsMath::memoryPressure(*some, full.value_or(0));
}

std::vector<Disk> disks(std::string_view text)
{
    std::vector<Disk> found;
    while (!text.empty()) {
        std::string_view line = takeLine(text);
        takeWord(line); // major
        takeWord(line); // minor
        const std::string_view name = takeWord(line);
        takeNumber(line); // reads
        takeNumber(line); // merged
        const auto read = takeNumber(line);
        takeNumber(line); // milliseconds
        takeNumber(line); // writes
        takeNumber(line); // merged
        const auto written = takeNumber(line);
        if (!name.empty() && read && written && *read <= maxSectors && *written <= maxSectors)
            found.push_back({ name, *read * sectorBytes, *written * sectorBytes });
    }
    return found;
}

bool looksLikeDisk(std::string_view name)
{
    constexpr std::array others{ "loop", "ram", "zram", "dm-", "md", "sr", "fd", "nbd" };
    if (std::ranges::any_of(others, [&](std::string_view each) { return name.starts_with(each); }))
        return false;
    const auto isDigit = [](char c) { return c >= '0' && c <= '9'; };
    const size_t digits =
        name.size() - size_t(std::ranges::find_if_not(name.rbegin(), name.rend(), isDigit) - name.rbegin());
    if (digits == name.size())
        return true;
    // "nvme0n1" and "mmcblk0" are disks, "nvme0n1p2" and "mmcblk0p1" parts of them; "sda1" and "vda1" are parts, too.
    if (name.starts_with("nvme") || name.starts_with("mmcblk"))
        return digits > 0 && name[digits - 1] != 'p';
    return false;
}

std::vector<InterfaceBytes> interfaces(std::string_view text)
{
    std::vector<InterfaceBytes> found;
    while (!text.empty()) {
        std::string_view line = takeLine(text);
        const size_t colon = line.rfind(':'); // an alias has one in its name
        if (colon == std::string_view::npos)
            continue;
        std::string_view name = line.substr(0, colon);
        skipBlanks(name);
        line.remove_prefix(colon + 1);
        const auto received = takeNumber(line);
        for (int column = 1; column < 8; ++column)
            takeNumber(line);
        const auto sent = takeNumber(line);
        if (!name.empty() && received && sent)
            found.push_back({ printable(name), *received, *sent });
    }
    return found;
}

std::optional<QString> primaryInterface(std::string_view text)
{
    std::optional<QString> primary;
    quint64 lowest = 0;
    takeLine(text); // the titles
    while (!text.empty()) {
        std::string_view line = takeLine(text);
        const std::string_view name = takeWord(line);
        const std::string_view destination = takeWord(line);
        takeWord(line); // gateway
        takeWord(line); // flags
        takeWord(line); // references
        takeWord(line); // uses
        const auto metric = takeNumber(line);
        const std::string_view mask = takeWord(line);
        if (destination != "00000000" || mask != "00000000" || !metric || (primary && *metric >= lowest))
            continue;
        primary = printable(name);
        lowest = *metric;
    }
    return primary;
}

std::optional<Process> process(std::string_view text)
{
    // The name stands in parentheses and may hold some itself, and blanks and newlines: the last one ends it.
    const size_t open = text.find('(');
    const size_t close = text.rfind(')');
    if (open == std::string_view::npos || close == std::string_view::npos || close < open)
        return std::nullopt;
    Process process{ .name = text.substr(open + 1, close - open - 1) };
    text.remove_prefix(close + 1);
    const std::string_view state = takeWord(text);
    if (state.size() != 1)
        return std::nullopt;
    process.state = state.front();
    // Numbered from the parent on, which stands behind the state.
    enum Column { Flags = 5, UserTime = 10, SystemTime = 11, StartTime = 18, Pages = 20, Count };
    std::array<qint64, Count> values{};
    for (qint64& value : values) {
        const std::string_view word = takeWord(text);
        // The virtual size fills all 64 bits for some; what is read here does not.
        const auto [end, fault] = std::from_chars(word.data(), word.data() + word.size(), value);
        if (word.empty() || fault == std::errc::invalid_argument)
            return std::nullopt;
    }
    const auto positive = [&](Column column) { return quint64(std::max<qint64>(values.at(column), 0)); };
    constexpr quint64 kernelThread = 0x200000;
    process.isKernels = (positive(Flags) & kernelThread) != 0;
    process.ticks = positive(UserTime) + positive(SystemTime);
    process.started = positive(StartTime);
    process.pages = positive(Pages);
    return process;
}

std::optional<quint64> diskBytes(std::string_view text)
{
    std::optional<quint64> read;
    std::optional<quint64> written;
    while (!text.empty()) {
        std::string_view line = takeLine(text);
        const std::string_view name = takeWord(line);
        if (name == "read_bytes:")
            read = takeNumber(line);
        else if (name == "write_bytes:")
            written = takeNumber(line);
    }
    if (!read || !written)
        return std::nullopt;
    return *read + *written;
}

QByteArrayList applicationIds(std::string_view text)
{
    QByteArrayList ids;
    while (!text.empty()) {
        std::string_view line = takeLine(text);
        // The innermost group that is an application's: what it starts itself may have a group below.
        while (!line.empty()) {
            const size_t slash = line.rfind('/');
            std::string_view unit = slash == std::string_view::npos ? std::string_view() : line.substr(slash + 1);
            line = line.substr(0, slash == std::string_view::npos ? 0 : slash);
            const bool isScope = unit.ends_with(".scope");
            if (!isScope && !unit.ends_with(".service"))
                continue;
            unit = unit.substr(0, unit.rfind('.'));
            if (unit.starts_with("snap.")) {
                unit = unit.substr(5, unit.find('-') - 5);
                ids.append(unescaped(unit).replace('.', '_'));
                return ids;
            }
            if (!unit.starts_with("app-"))
                continue;
            unit.remove_prefix(4);
            // "LAUNCHER-ID-RANDOM.scope", "LAUNCHER-ID@RANDOM.service"; the launcher may be missing.
            unit = unit.substr(0, isScope ? unit.rfind('-') : unit.rfind('@'));
            ids.append(unescaped(unit));
            if (const size_t dash = unit.find('-'); dash != std::string_view::npos)
                ids.append(unescaped(unit.substr(dash + 1)));
            return ids;
        }
    }
    return ids;
}

QString printable(std::string_view bytes)
{
    QString text = QString::fromUtf8(bytes.data(), qsizetype(bytes.size()));
    for (QChar& each : text) {
        if (each.category() == QChar::Other_Control)
            each = u' ';
    }
    return text;
}

std::optional<qint64> number(std::string_view text)
{
    skipBlanks(text);
    const auto found = takeNumber<qint64>(text);
    skipBlanks(text);
    return text.empty() || text.front() == '\n' ? found : std::nullopt;
}

} // namespace kestro::procText
