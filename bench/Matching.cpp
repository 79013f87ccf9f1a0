// How fast the candidate search is, against the readable reference and against a best-match search of other make.
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <numeric>
#include <string>

#include "MatchingNames.h"
#include "classify/CandidateIndex.h"
#include "classify/RowKernels.h"
#include "platform/linux/IcuLocaleMap.h"
#include "text/Utf8.h"

namespace kinsort {
namespace {

constexpr size_t kSampledNames = 1000;
constexpr uint32_t kSeed = 20240601;

const NameNormalizer& Normalizer() {
    static const NameNormalizer normalizer(*MakeIcuLocaleMap());
    return normalizer;
}

double WallSeconds() {
    return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
}
double ProcessorSeconds() {
    return static_cast<double>(std::clock()) / CLOCKS_PER_SEC;
}

// The smallest of several runs: what the code costs when nobody disturbs it.
template <typename Work>
double Smallest(int runs, double (*now)(), const Work& work) {
    double smallest = 1e9;
    for (; runs > 0; --runs) {
        const double start = now();
        work();
        smallest = std::min(smallest, now() - start);
    }
    return smallest;
}

std::vector<size_t> SampleOf(size_t count) {
    std::vector<size_t> sample(std::min(count, kSampledNames));
    for (size_t i = 0; i < sample.size(); ++i)
        sample[i] = i * (count / sample.size());
    return sample;
}

// Processor seconds of the readable reference for all files, scaled from a sample; checks the answers on the way.
double MeasureReference(const MatchingNames& names, std::span<const CandidateMatch> answers) {
    std::vector<std::u16string> folders;
    for (const auto& folder : names.folders)
        folders.push_back(Normalizer().Normalize(folder));
    const std::vector<size_t> sample = SampleOf(names.files.size());
    std::vector<std::u16string> files;
    for (const size_t i : sample)
        files.push_back(Normalizer().Normalize(names.files[i]));

    std::vector<CandidateMatch> picked;
    const double seconds = Smallest(2, ProcessorSeconds, [&] {
        picked.assign(sample.size(), {});
        for (size_t i = 0; i < files.size(); ++i) {
            for (size_t folder = 0; folder < folders.size(); ++folder) {
                const int score = CountSharedPieces(files[i], folders[folder]);
                if (score > picked[i].score) picked[i] = {static_cast<int>(folder), score};
            }
        }
    });
    for (size_t i = 0; i < sample.size(); ++i) {
        if (picked[i] == answers[sample[i]]) continue;
        std::printf("WRONG ANSWER for file %zu\n", sample[i]);
        std::exit(1);
    }
    return seconds * static_cast<double>(names.files.size()) / static_cast<double>(sample.size());
}

void MeasureCase(const char* title, size_t files, size_t folders, bool allDistinct, int runs) {
    const MatchingNames names = MakeMatchingNames(files, folders, allDistinct, kSeed);
    const std::vector<std::u16string_view> views(names.files.begin(), names.files.end());
    std::vector<CandidateMatch> answers(files);
    size_t memory = 0;
    const auto search = [&](unsigned threads) {
        const CandidateIndex index(Normalizer(), names.folders);
        index.FindBestOfAll(views, answers, threads);
        memory = index.MemoryBytes();
    };
    const double build =
        Smallest(runs, ProcessorSeconds, [&] { CandidateIndex(Normalizer(), names.folders).MemoryBytes(); });
    const double one = Smallest(runs, ProcessorSeconds, [&] { search(1); });
    const double two = Smallest(runs * 3, WallSeconds, [&] { search(2); });
    std::vector<CandidatePair> pairs(files);
    const double pair = Smallest(runs, ProcessorSeconds, [&] {
        const CandidateIndex index(Normalizer(), names.folders);
        index.FindBestTwoOfAll(views, pairs, 1);
    });
    const double reference = MeasureReference(names, answers);
    std::printf("%-34s %9.1f %9.2f %9.2f %9.2f %9.2f %8.0fx %8.0fx %7.1f\n", title, reference, build * 1e3, one * 1e3,
                two * 1e3, pair * 1e3, reference / one, reference / two, static_cast<double>(memory) / 1e6);
    std::fflush(stdout);
}

void MeasureKernels() {
    const MatchingNames names = MakeMatchingNames(100000, 10000, true, kSeed);
    const std::vector<std::u16string_view> views(names.files.begin(), names.files.end());
    std::vector<CandidateMatch> answers(views.size());
    std::printf("\nkernels, 1e5 distinct x 1e4, 1 thread, ms:");
    for (const RowKernel& kernel : RowKernels()) {
        const CandidateIndex index(Normalizer(), names.folders, kernel);
        const double seconds = Smallest(3, ProcessorSeconds, [&] { index.FindBestOfAll(views, answers, 1); });
        std::printf("  %s %.1f", kernel.name, seconds * 1e3);
    }
    std::printf("\n");
}

void WriteLines(const std::filesystem::path& path, std::span<const std::u16string> names) {
    std::ofstream out(path, std::ios::binary);
    for (const auto& name : names)
        out << ToUtf8(name) << '\n';
}

// Runs a command and hands its output lines to `line`.
template <typename Line>
void RunCommand(const std::string& command, const Line& line) {
    std::FILE* output = popen(command.c_str(), "r");
    if (output == nullptr) return;
    char buffer[512];
    while (std::fgets(buffer, sizeof buffer, output) != nullptr)
        line(buffer);
    pclose(output);
}

void MeasurePeer() {
    const MatchingNames names = MakeMatchingNames(100000, 10000, false, kSeed);
    const std::vector<std::u16string_view> views(names.files.begin(), names.files.end());
    std::vector<CandidateMatch> answers(views.size());
    const double ours = Smallest(3, ProcessorSeconds,
                                 [&] { CandidateIndex(Normalizer(), names.folders).FindBestOfAll(views, answers, 1); });
    std::vector<std::u16string> sampled;
    for (const size_t i : SampleOf(names.files.size())) {
        if (i % 5000 == 0) sampled.push_back(names.files[i]);
    }
    const auto folder = std::filesystem::temp_directory_path();
    WriteLines(folder / "matching-files.txt", sampled);
    WriteLines(folder / "matching-folders.txt", names.folders);
    std::printf(
        "\npeers, 1e5 x 1e4 scaled from a few names, 1 thread (the best ratio of whole names: a similar question)\n");
    const char* python = std::getenv("KINSORT_PYTHON");  // where another python3 comes first in the path
    const std::string command = std::string(python != nullptr ? python : "python3") + " '" + KINSORT_MATCHING_PEER +
                                "' '" + (folder / "matching-files.txt").string() + "' '" +
                                (folder / "matching-folders.txt").string() + "'";
    RunCommand(command, [&](const char* line) {
        char method[64];
        double count = 0;
        double seconds = 0;
        if (std::sscanf(line, "%63s %lf %lf", method, &count, &seconds) != 3) return;
        const double all = seconds / count * static_cast<double>(names.files.size());
        std::printf("  %-14s %10.0f s %12.0fx\n", method, all, all / ours);
    });
    std::filesystem::remove(folder / "matching-files.txt");
    std::filesystem::remove(folder / "matching-folders.txt");
}

// Matches a million names and says what the process held at most.
int MeasureMemory() {
    const MatchingNames names = MakeMatchingNames(1000000, 10000, false, kSeed);
    const std::vector<std::u16string_view> views(names.files.begin(), names.files.end());
    std::vector<CandidateMatch> answers(views.size());
    const CandidateIndex index(Normalizer(), names.folders);
    const double start = WallSeconds();
    index.FindBestOfAll(views, answers, 2);
    const double seconds = WallSeconds() - start;
    std::ifstream status("/proc/self/status");
    for (std::string line; std::getline(status, line);) {
        if (line.starts_with("VmHWM")) std::printf("%s; matching took %.2f s on 2 threads\n", line.c_str(), seconds);
    }
    return 0;
}

int Run(const char* program) {
    std::printf(
        "candidate search: best kernel '%s'. Reference and 1 thread in processor time, 2 threads in wall time;\n"
        "building the index included, smallest of several runs; reference scaled from %zu names whose answers\n"
        "are compared. 'pairs': the best two with their scores, 1 thread. MB: what the index holds.\n\n",
        RowKernels().front().name, kSampledNames);
    std::printf("%-34s %9s %9s %9s %9s %9s %9s %9s %7s\n", "names x folders", "ref s", "build ms", "1 thr ms",
                "2 thr ms", "pairs ms", "1 thr", "2 thr", "MB");
    MeasureCase("1e4 x 1e3", 10000, 1000, false, 20);
    MeasureCase("1e4 x 1e3, all names distinct", 10000, 1000, true, 20);
    MeasureCase("1e5 x 1e4", 100000, 10000, false, 5);
    MeasureCase("1e5 x 1e4, all names distinct", 100000, 10000, true, 5);
    MeasureCase("1e5 x 1e5", 100000, 100000, false, 3);
    MeasureCase("1e5 x 1e5, all names distinct", 100000, 100000, true, 3);
    MeasureKernels();
    std::printf("\n1e6 x 1e4, the names themselves included: ");
    std::fflush(stdout);
    RunCommand(std::string("'") + program + "' --memory", [](const char* line) { std::fputs(line, stdout); });
    MeasurePeer();
    return 0;
}

}  // namespace
}  // namespace kinsort

int main(int argc, char** argv) {
    if (argc > 1 && std::string_view(argv[1]) == "--memory") return kinsort::MeasureMemory();
    return kinsort::Run(argv[0]);
}
