/// How long a refresh of Codex's limits takes: it runs once a minute while the dock is open. Against it, interleaved,
/// the standard library's own walk over the same folders, which reads no file.
///
///     CodexBenchmark [LOGS [RUNS]]

#include "KestroCore/Agents/CodexLimitsReader.h"

#include <QTemporaryDir>
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

using namespace kestro;
namespace fs = std::filesystem;

namespace {

constexpr std::uintmax_t newestBytes = 10'000'000'000;

const std::string limitsLine =
    R"({"timestamp":"2026-01-01T00:00:00Z","type":"event_msg","payload":{"type":"token_count","info":null,)"
    R"("rate_limits":{"limit_id":"codex","primary":{"used_percent":28.0,"window_minutes":300,"resets_at":1},)"
    R"("secondary":{"used_percent":9.0,"window_minutes":10080,"resets_at":1}}}})"
    "\n";

/// A line of what a session mostly consists of.
std::string outputLine()
{
    std::string text;
    while (text.size() < 4000)
        text += R"(drwxr-xr-x 2 user \"user\" 4096\n)";
    return R"({"timestamp":"t","type":"response_item","payload":{"type":"function_call_output","output":")" + text
        + "\"}}\n";
}

/// A tail of noted output, with a line of limits every `distance` bytes or none at all.
std::string tail(std::size_t distance)
{
    const std::string output = outputLine();
    std::string bytes;
    std::size_t since = 0;
    while (bytes.size() < CodexLimitsReader::tailBytes) {
        if (distance && since >= distance) {
            bytes += limitsLine;
            since = 0;
        }
        bytes += output;
        since += output.size();
    }
    return bytes;
}

void setNewest(const fs::path& path, const std::string& bytes)
{
    std::ofstream(path) << "";
    fs::resize_file(path, newestBytes - bytes.size());
    std::ofstream(path, std::ios::app) << '\n' << bytes;
    fs::last_write_time(path, fs::file_time_type::clock::now());
}

/// Thirty logs a day.
fs::path makeLogs(const fs::path& root, int count)
{
    fs::path folder;
    for (int i = 0; i < count; ++i) {
        const int day = i / 30;
        folder = root / std::to_string(2020 + day / 360) / std::to_string(day / 30 % 12) / std::to_string(day % 30);
        if (i % 30 == 0)
            fs::create_directories(folder);
        const fs::path path = folder / ("rollout-2026-01-01T00-00-00-" + std::to_string(i) + ".jsonl");
        std::ofstream(path) << limitsLine;
        fs::last_write_time(path, fs::file_time_type::clock::now() - std::chrono::hours(count - i));
    }
    return folder;
}

double walk(const fs::path& root)
{
    fs::file_time_type newest = fs::file_time_type::min();
    for (const auto& entry : fs::recursive_directory_iterator(root)) {
        if (entry.is_regular_file() && entry.path().extension() == ".jsonl")
            newest = std::max(newest, entry.last_write_time());
    }
    return std::chrono::duration<double>(newest.time_since_epoch()).count();
}

template <typename Work> double milliseconds(const Work& work)
{
    const auto start = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count();
}

void print(const char* name, std::vector<double> times)
{
    std::ranges::sort(times);
    std::printf("%-48s median %7.2f ms, 99th percentile %7.2f ms, most %7.2f ms\n", name, times[times.size() / 2],
        times[times.size() * 99 / 100], times.back());
}

} // namespace

int main(int argc, char** argv)
{
    const int count = std::max(3, argc > 1 ? std::atoi(argv[1]) : 10'000);
    const int runs = std::max(1, argc > 2 ? std::atoi(argv[2]) : 200);
    const QTemporaryDir temporary;
    const fs::path root = temporary.path().toStdString();
    const fs::path folder = makeLogs(root, count);
    std::printf("%d logs, the newest of 10 GB, %d runs\n", count, runs);

    const std::tuple<const char*, std::size_t, int> cases[] = {
        { "limits within the last 16 KB", 16'000, 1 },
        { "limits at the start of the tail", 256'000, 1 },
        { "three tails without limits", 0, 3 },
    };
    for (const auto& [name, distance, logs] : cases) {
        for (int i = 0; i < logs; ++i)
            setNewest(folder / ("newest-" + std::to_string(i) + ".jsonl"), tail(distance));
        std::vector<double> ours, bare;
        int found = 0;
        double sink = 0;
        for (int i = 0; i < runs; ++i) {
            ours.push_back(milliseconds([&] { found += CodexLimitsReader::latest(temporary.path()) ? 1 : 0; }));
            bare.push_back(milliseconds([&] { sink += walk(root); }));
        }
        print(name, ours);
        print("  the walk by the standard library alone", bare);
        std::printf("  (limits found in %d runs; sum %g)\n", found, sink);
    }
}
