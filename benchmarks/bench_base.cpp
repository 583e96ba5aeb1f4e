// SPDX-License-Identifier: MIT
#include "code_convert.h"
#include "myfs.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <clocale>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <dirent.h>
#include <filesystem>
#include <fstream>
#include <map>
#include <spawn.h>
#include <string>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

// Every comparison is a pair of benchmarks, "name/ours" and "name/theirs", run in turns in one
// process; at the end come the ratios of their medians and what is aimed at.

extern char** environ;

namespace
{

constexpr std::size_t kMebibyte = 1U << 20U;
constexpr std::size_t kTextBytes = kMebibyte;
constexpr std::size_t kCopiedBytes = 256 * kMebibyte;
constexpr int kListedDirectories = 100;
constexpr int kFilesPerDirectory = 1000;
constexpr int kRepetitions = 9;

struct Target {
    const char* name;
    double atMost;
};

const Target kTargets[] = {
    {"decode ASCII", 1.0},
    {"decode Chinese", 1.0},
    {"decode mixed", 1.0},
    {"encode ASCII", 1.0},
    {"encode Chinese", 1.0},
    {"encode mixed", 1.0},
    {"decode ASCII to a string", 1.0},
    {"decode Chinese to a string", 1.0},
    {"decode mixed to a string", 1.0},
    {"encode ASCII to a string", 1.0},
    {"encode Chinese to a string", 1.0},
    {"encode mixed to a string", 1.0},
    {"copy 256 MiB", 1.2},
    {"list 100000 files", 2.0},
    {"list 100000 files as paths", 2.0},
    {"build a path", 1.0},
    {"build and render a path", 1.0},
};

// Text

std::string repeatedTo(const std::string& piece, std::size_t bytes)
{
    std::string text;
    while (text.size() + piece.size() <= bytes)
        text += piece;
    return text;
}

std::string ascii()
{
    return repeatedTo("The quick brown fox jumps over it. ", kTextBytes);
}

std::string chinese()
{
    return repeatedTo("\xE4\xB8\xAD\xE6\x96\x87\xE5\xB1\x8F\xE5\xB9\x95\xE6\x88\xAA\xE5\x9B\xBE",
                      kTextBytes);
}

std::string mixed()
{
    return repeatedTo("caf\xC3\xA9 \xE4\xB8\xAD\xE6\x96\x87 text, na\xC3\xAFve \xE5\x9B\xBE. ",
                      kTextBytes);
}

/// With the C library's own measuring, so that both sides make a string of the right size.
std::wstring libraryDecode(const std::string& text)
{
    std::wstring wide(std::mbstowcs(nullptr, text.c_str(), 0), L'\0');
    std::mbstowcs(&wide[0], text.c_str(), wide.size());
    return wide;
}

std::string libraryEncode(const std::wstring& wide)
{
    std::string text(std::wcstombs(nullptr, wide.c_str(), 0), '\0');
    std::wcstombs(&text[0], wide.c_str(), text.size());
    return text;
}

/// Into a buffer that is there already, in one pass.
std::size_t libraryDecodeInto(const std::string& text, std::wstring& buffer)
{
    return std::mbstowcs(&buffer[0], text.c_str(), buffer.size());
}

std::size_t libraryEncodeInto(const std::wstring& wide, std::string& buffer)
{
    return std::wcstombs(&buffer[0], wide.c_str(), buffer.size());
}

void addText(const std::string& name, const std::string& text)
{
    const std::wstring wide = CodeCvt::utf8_to_utf16(text);
    const int bytes = static_cast<int>(text.size());
    const int characters = static_cast<int>(wide.size());
    benchmark::RegisterBenchmark(
        ("decode " + name + "/ours").c_str(), [text, bytes](benchmark::State& state) {
            std::wstring buffer(text.size() * 2 + 2, L'\0');
            const int length = static_cast<int>(buffer.size());
            for (auto _ : state)
                benchmark::DoNotOptimize(
                    CodeCvt::_utf8_to_ucs2(text.c_str(), bytes, &buffer[0], length));
        });
    benchmark::RegisterBenchmark(
        ("encode " + name + "/ours").c_str(), [wide, characters](benchmark::State& state) {
            std::string buffer(wide.size() * 3 + 1, '\0');
            const int length = static_cast<int>(buffer.size());
            for (auto _ : state)
                benchmark::DoNotOptimize(
                    CodeCvt::_ucs2_to_utf8(wide.c_str(), characters, &buffer[0], length));
        });
    benchmark::RegisterBenchmark(("decode " + name + " to a string/ours").c_str(),
                                 [text](benchmark::State& state) {
                                     for (auto _ : state)
                                         benchmark::DoNotOptimize(CodeCvt::utf8_to_utf16(text));
                                 });
    benchmark::RegisterBenchmark(("decode " + name + "/theirs").c_str(),
                                 [text](benchmark::State& state) {
                                     std::wstring buffer(text.size() + 1, L'\0');
                                     for (auto _ : state)
                                         benchmark::DoNotOptimize(libraryDecodeInto(text, buffer));
                                 });
    benchmark::RegisterBenchmark(("decode " + name + " to a string/theirs").c_str(),
                                 [text](benchmark::State& state) {
                                     for (auto _ : state)
                                         benchmark::DoNotOptimize(libraryDecode(text));
                                 });
    benchmark::RegisterBenchmark(("encode " + name + " to a string/ours").c_str(),
                                 [wide](benchmark::State& state) {
                                     for (auto _ : state)
                                         benchmark::DoNotOptimize(CodeCvt::utf16_to_utf8(wide));
                                 });
    benchmark::RegisterBenchmark(("encode " + name + "/theirs").c_str(),
                                 [wide](benchmark::State& state) {
                                     std::string buffer(wide.size() * 3 + 1, '\0');
                                     for (auto _ : state)
                                         benchmark::DoNotOptimize(libraryEncodeInto(wide, buffer));
                                 });
    benchmark::RegisterBenchmark(("encode " + name + " to a string/theirs").c_str(),
                                 [wide](benchmark::State& state) {
                                     for (auto _ : state)
                                         benchmark::DoNotOptimize(libraryEncode(wide));
                                 });
}

// Files

class Scratch
{
public:
    Scratch()
    {
        std::string name = (std::filesystem::temp_directory_path() / "bench-XXXXXX").string();
        if (::mkdtemp(&name[0]) == nullptr)
            std::abort();
        m_path = name;
    }
    ~Scratch()
    {
        std::error_code ec;
        std::filesystem::remove_all(m_path, ec);
    }
    Scratch(const Scratch&) = delete;
    Scratch& operator=(const Scratch&) = delete;

    std::string path(const std::string& name) const { return m_path + "/" + name; }

private:
    std::string m_path;
};

void runCp(const std::string& from, const std::string& to)
{
    std::string arguments[] = {"cp", from, to};
    char* argv[] = {&arguments[0][0], &arguments[1][0], &arguments[2][0], nullptr};
    pid_t child = 0;
    int status = 0;
    if (::posix_spawnp(&child, "cp", nullptr, nullptr, argv, environ) != 0 ||
        ::waitpid(child, &status, 0) != child || status != 0)
        std::abort();
}

/// Each round makes the copy anew; what it costs to drop the last one is not counted.
template <typename Copy>
void copyBigFile(benchmark::State& state, const Scratch& scratch, Copy copy)
{
    const std::string to = scratch.path("to");
    for (auto _ : state) {
        state.PauseTiming();
        ::unlink(to.c_str());
        ::sync();
        state.ResumeTiming();
        copy(scratch.path("from"), to);
    }
}

void addCopy(const Scratch& scratch)
{
    std::ofstream from(scratch.path("from"), std::ios::binary);
    for (std::size_t written = 0; written < kCopiedBytes; written += kMebibyte)
        from << std::string(kMebibyte, static_cast<char>(written / kMebibyte));
    from.close();
    benchmark::RegisterBenchmark("copy 256 MiB/ours", [&scratch](benchmark::State& state) {
        copyBigFile(state, scratch, [](const std::string& source, const std::string& target) {
            if (!myfs::copy_regular_file(source, target, true))
                std::abort();
        });
    })->UseRealTime();
    benchmark::RegisterBenchmark("copy 256 MiB/theirs", [&scratch](benchmark::State& state) {
        copyBigFile(state, scratch, runCp);
    })->UseRealTime();
}

void bareWalk(const std::string& dir, std::vector<std::string>& out)
{
    DIR* directory = ::opendir(dir.c_str());
    while (const dirent* entry = ::readdir(directory)) {
        const char* name = entry->d_name;
        if (entry->d_type != DT_DIR)
            out.push_back(dir + "/" + name);
        else if (std::strcmp(name, ".") != 0 && std::strcmp(name, "..") != 0)
            bareWalk(dir + "/" + name, out);
    }
    ::closedir(directory);
}

void addListing(const Scratch& scratch)
{
    const std::string root = scratch.path("tree");
    for (int i = 0; i < kListedDirectories; ++i) {
        const std::string dir = root + "/directory " + std::to_string(i);
        std::filesystem::create_directories(dir);
        for (int k = 0; k < kFilesPerDirectory; ++k)
            std::ofstream(dir + "/file " + std::to_string(k) + ".png");
    }
    std::vector<std::string> ours;
    std::vector<std::string> theirs;
    myfs::u8_file_list(root, ours, true);
    bareWalk(root, theirs);
    if (ours != theirs || ours.size() != std::size_t(kListedDirectories) * kFilesPerDirectory)
        std::abort();

    for (const char* name : {"list 100000 files/theirs", "list 100000 files as paths/theirs"}) {
        benchmark::RegisterBenchmark(name, [root](benchmark::State& state) {
            for (auto _ : state) {
                std::vector<std::string> out;
                bareWalk(root, out);
                benchmark::DoNotOptimize(out);
            }
        });
    }
    benchmark::RegisterBenchmark("list 100000 files/ours", [root](benchmark::State& state) {
        for (auto _ : state) {
            std::vector<std::string> out;
            myfs::u8_file_list(root, out, true);
            benchmark::DoNotOptimize(out);
        }
    });
    benchmark::RegisterBenchmark("list 100000 files as paths/ours",
                                 [root](benchmark::State& state) {
                                     for (auto _ : state) {
                                         std::vector<myfs::path> out;
                                         myfs::file_path_list(myfs::path(root), out, true);
                                         benchmark::DoNotOptimize(out);
                                     }
                                 });
}

// Paths

const std::vector<std::string>& somePaths()
{
    static const std::vector<std::string> paths = {
        "/home/user/.config/screencapture/screencapture.ini",
        "relative/path/to/picture.png",
        "/usr/share/icons/hicolor/scalable/apps/a rather long icon name.svg",
        "/tmp/x",
        "file",
    };
    return paths;
}

template <typename Path>
void buildPaths(benchmark::State& state)
{
    for (auto _ : state) {
        for (const std::string& text : somePaths())
            benchmark::DoNotOptimize(Path(text));
    }
}

template <typename Path>
void buildAndRenderPaths(benchmark::State& state)
{
    for (auto _ : state) {
        for (const std::string& text : somePaths())
            benchmark::DoNotOptimize(Path(text).string());
    }
}

void addPaths()
{
    benchmark::RegisterBenchmark("build a path/ours", buildPaths<myfs::path>);
    benchmark::RegisterBenchmark("build a path/theirs", buildPaths<std::filesystem::path>);
    benchmark::RegisterBenchmark("build and render a path/ours", buildAndRenderPaths<myfs::path>);
    benchmark::RegisterBenchmark("build and render a path/theirs",
                                 buildAndRenderPaths<std::filesystem::path>);
}

// Ratios

/// Remembers the medians on their way to the console.
class MedianReporter : public benchmark::ConsoleReporter
{
public:
    void ReportRuns(const std::vector<Run>& runs) override
    {
        for (const Run& run : runs) {
            if (run.aggregate_name == "median")
                m_medians[run.run_name.function_name] = timeOf(run);
        }
        ConsoleReporter::ReportRuns(runs);
    }

    /// Returns whether all that were measured are within their targets.
    bool printRatios() const
    {
        bool all = true;
        for (const Target& target : kTargets) {
            const auto ours = m_medians.find(std::string(target.name) + "/ours");
            const auto theirs = m_medians.find(std::string(target.name) + "/theirs");
            if (ours == m_medians.end() || theirs == m_medians.end())
                continue;
            const double ratio = ours->second / theirs->second;
            const bool met = ratio <= target.atMost;
            all = all && met;
            std::printf("%-28s %5.2f times theirs, at most %.1f: %s\n", target.name, ratio,
                        target.atMost, met ? "met" : "MISSED");
        }
        return all;
    }

private:
    /// Of the processor, which other programs on the machine do not disturb, save where it is
    /// another process that works.
    static double timeOf(const Run& run)
    {
        const bool byTheClock = !run.run_name.time_type.empty();
        return byTheClock ? run.GetAdjustedRealTime() : run.GetAdjustedCPUTime();
    }

    std::map<std::string, double> m_medians;
};

void configure(std::vector<char*>& arguments)
{
    static char interleaved[] = "--benchmark_enable_random_interleaving=true";
    static char aggregates[] = "--benchmark_report_aggregates_only=true";
    static char repetitions[64];
    std::snprintf(repetitions, sizeof repetitions, "--benchmark_repetitions=%d", kRepetitions);
    arguments.insert(arguments.begin() + 1, {interleaved, aggregates, repetitions});
}

} // namespace

int main(int argc, char** argv)
{
    std::setlocale(LC_ALL, "C.UTF-8");
    std::vector<char*> arguments(argv, argv + argc);
    configure(arguments);
    int count = static_cast<int>(arguments.size());
    benchmark::Initialize(&count, arguments.data());

    const Scratch scratch;
    addText("ASCII", ascii());
    addText("Chinese", chinese());
    addText("mixed", mixed());
    addPaths();
    addListing(scratch);
    addCopy(scratch);

    MedianReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    return reporter.printRatios() ? 0 : 1;
}
