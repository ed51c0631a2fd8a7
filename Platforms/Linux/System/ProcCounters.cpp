#include "ProcCounters.h"

#include "KestroCore/Support/FileDescriptor.h"

#include <array>
#include <charconv>
#include <fcntl.h>
#include <string_view>
#include <unistd.h>

namespace kestro {
namespace {

// The wanted lines are the first of both files; the rest of a many-core /proc/stat is not read.
using Head = std::array<char, 1024>;

std::string_view readHead(const QByteArray& path, Head& buffer)
{
    const FileDescriptor file(::open(path.constData(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    if (!file)
        return {};
    const ssize_t size = ::read(file.get(), buffer.data(), buffer.size());
    return { buffer.data(), size > 0 ? static_cast<size_t>(size) : 0 };
}

// Takes a number, and the blanks before it, off the front of `text`.
std::optional<quint64> takeNumber(std::string_view& text)
{
    text.remove_prefix(std::min(text.find_first_not_of(' '), text.size()));
    quint64 number = 0;
    const auto [end, fault] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (fault != std::errc())
        return std::nullopt;
    text.remove_prefix(static_cast<size_t>(end - text.data()));
    return number;
}

// The bytes behind `name`, which the file counts in KiB. A number that the buffer cuts short is none.
std::optional<quint64> memory(std::string_view text, std::string_view name)
{
    size_t at = 0;
    while (text.substr(at, name.size()) != name) {
        at = text.find('\n', at);
        if (at == std::string_view::npos)
            return std::nullopt;
        ++at;
    }
    text.remove_prefix(at + name.size());
    const auto kib = takeNumber(text);
    if (!kib || !text.starts_with(" kB"))
        return std::nullopt;
    return *kib * 1024;
}

} // namespace

ProcCounters::ProcCounters(const QByteArray& root)
    : m_stat(root + "/proc/stat")
    , m_meminfo(root + "/proc/meminfo")
{
}

std::optional<CPUTicks> ProcCounters::cpuTicks() const
{
    Head buffer;
    std::string_view text = readHead(m_stat, buffer);
    constexpr std::string_view allCores = "cpu ";
    if (!text.starts_with(allCores))
        return std::nullopt;
    text.remove_prefix(allCores.size());

    enum Column { User, Nice, System, Idle, IoWait, Irq, SoftIrq, Steal, Count };
    std::array<quint64, Count> columns{};
    for (int column = User; column < Count; ++column) {
        const auto ticks = takeNumber(text);
        if (!ticks && column <= Idle)
            return std::nullopt;
        columns.at(static_cast<size_t>(column)) = ticks.value_or(0); // an old kernel has fewer
    }
    const auto wrapped = [](quint64 ticks) { return static_cast<quint32>(ticks); };
    return CPUTicks{ .user = wrapped(columns[User]),
        .system = wrapped(columns[System] + columns[Irq] + columns[SoftIrq] + columns[Steal]),
        .idle = wrapped(columns[Idle] + columns[IoWait]),
        .nice = wrapped(columns[Nice]) };
}

std::optional<quint64> ProcCounters::ramUsed() const
{
    Head buffer;
    const std::string_view text = readHead(m_meminfo, buffer);
    const auto total = memory(text, "MemTotal:");
    const auto available = memory(text, "MemAvailable:");
    if (!total || !available || *available > *total)
        return std::nullopt;
    return *total - *available;
}

quint64 ProcCounters::ramTotal() const
{
    Head buffer;
    return memory(readHead(m_meminfo, buffer), "MemTotal:").value_or(0);
}

} // namespace kestro
