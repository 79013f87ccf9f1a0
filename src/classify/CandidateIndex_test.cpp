#include "classify/CandidateIndex.h"

#include <algorithm>
#include <random>

#include <gtest/gtest.h>

#include "classify/RowKernels.h"
#include "platform/fake/FakeLocaleMap.h"
#include "text/Utf8.h"

namespace kinsort {
namespace {

using Names = std::vector<std::u16string>;

const NameNormalizer& Normalizer() {
    static const NameNormalizer normalizer{FakeLocaleMap()};
    return normalizer;
}

Names Normalized(const Names& names) {
    Names normalized;
    for (const auto& name : names)
        normalized.push_back(Normalizer().Normalize(name));
    return normalized;
}

// The answer by the definition, on names that are normalised already.
CandidatePair PickTwo(const std::u16string& file, const Names& folders) {
    std::vector<CandidateMatch> matches;
    for (size_t i = 0; i < folders.size(); ++i) {
        const int score = CountSharedPieces(file, folders[i]);
        if (score > 0) matches.push_back({static_cast<int>(i), score});
    }
    std::stable_sort(matches.begin(), matches.end(), [](const auto& a, const auto& b) { return a.score > b.score; });
    matches.resize(2);
    return {matches[0], matches[1]};
}

std::string Describe(const CandidatePair& pair) {
    const auto one = [](CandidateMatch m) { return std::to_string(m.folder) + ":" + std::to_string(m.score); };
    return one(pair.best) + " " + one(pair.runnerUp);
}

// Every kernel, both questions, against the definition.
void ExpectSameAnswers(const Names& files, const Names& folders, unsigned threads, const std::string& trace) {
    const Names normalizedFiles = Normalized(files);
    const Names normalizedFolders = Normalized(folders);
    const std::vector<std::u16string_view> views(files.begin(), files.end());
    for (const RowKernel& kernel : RowKernels()) {
        const CandidateIndex index(Normalizer(), folders, kernel);
        std::vector<CandidateMatch> matches(files.size(), CandidateMatch{-7, -7});
        std::vector<CandidatePair> pairs(files.size());
        index.FindBestOfAll(views, matches, threads);
        index.FindBestTwoOfAll(views, pairs, threads);
        for (size_t i = 0; i < files.size(); ++i) {
            const CandidatePair expected = PickTwo(normalizedFiles[i], normalizedFolders);
            const auto where = [&] {
                return trace + ", kernel " + kernel.name + ", file " + std::to_string(i) + " " +
                       ToUtf8(files[i].substr(0, 80));
            };
            ASSERT_EQ(Describe({matches[i], {}}), Describe({expected.best, {}})) << where();
            ASSERT_EQ(Describe(pairs[i]), Describe(expected)) << where();
        }
    }
}

// How a set of random names is made: few letters make scores collide, many make lists short.
struct Shape {
    const char16_t* alphabet;
    size_t files, folders, longestFile, longestFolder;
    int sharedPercent;  // of the files that are cut from a folder's name
};

std::u16string RandomName(std::mt19937& random, std::u16string_view alphabet, size_t longest) {
    std::u16string name(random() % (longest + 1), u'\0');
    for (char16_t& unit : name)
        unit = alphabet[random() % alphabet.size()];
    return name;
}

void FillRandomNames(std::mt19937& random, const Shape& shape, Names& files, Names& folders) {
    while (folders.size() < shape.folders) {
        folders.push_back(RandomName(random, shape.alphabet, shape.longestFolder));
        if (random() % 8 == 0) folders.push_back(folders[random() % folders.size()]);
    }
    while (files.size() < shape.files) {
        std::u16string name = RandomName(random, shape.alphabet, shape.longestFile);
        if (static_cast<int>(random() % 100) < shape.sharedPercent) {
            name.insert(random() % (name.size() + 1), folders[random() % folders.size()]);
        }
        files.push_back(std::move(name));
    }
}

TEST(CandidateIndex, EqualsTheReferenceOnRandomNames) {
    static constexpr char16_t kLone[] = u"ab\xD800\xDC00\xDBFF\xFFFF\xFFFE";
    static constexpr char16_t kMixed[] =
        u"abcdefghijklmnopqrstuvwxyzぁあぃいぅうぇえぉおかがきぎくぐけげこごさざしじすず";
    const Shape shapes[] = {
        {u"ab", 60, 700, 12, 6, 20},        {u"abc", 60, 1100, 40, 12, 20},
        {u"abcdefgh", 60, 3000, 20, 8, 50}, {u"abcdefghijklmnopqrstuvwxyz.-", 100, 2500, 20, 12, 70},
        {kMixed, 100, 5000, 16, 8, 70},   // lists and rows
        {kMixed, 20, 6000, 20, 40, 70},   // so many rows that they are added up block by block
        {u"aヷ1 (", 60, 600, 12, 8, 30},  // units that vanish or become two
        {kLone, 60, 900, 10, 5, 30},        {u"abcd", 12, 1500, 900, 40, 30},  // more pieces than the planes can count
        {u"abcdef", 300, 3, 6, 4, 10},      {u"ab", 40, 513, 300, 3, 0},
    };
    const unsigned firstSeed = 20240101;
    for (const Shape& shape : shapes) {
        for (unsigned seed = firstSeed; seed < firstSeed + 3; ++seed) {
            std::mt19937 random(seed);
            Names files;
            Names folders;
            FillRandomNames(random, shape, files, folders);
            ExpectSameAnswers(files, folders, 1,
                              "seed " + std::to_string(seed) + ", alphabet " + ToUtf8(shape.alphabet));
            if (HasFatalFailure()) return;
        }
    }
}

TEST(CandidateIndex, EqualsTheReferenceOnNamesMadeToCollide) {
    Names same(3000, u"abcd");
    same[2999] = u"abcde";
    Names digits(600, u"2024 (1)");
    Names rising;  // each folder beats the one before
    for (size_t i = 0; i < 600; ++i)
        rising.push_back(std::u16string(u"abcdefghijklmnopqrstuvwxyz").substr(0, i / 23));
    Names falling(rising.rbegin(), rising.rend());
    Names lastWord(6000, u"zz");  // one folder of the last stripe has a piece of its own
    lastWord[5999] = u"qx";
    lastWord[3000] = u"zzqx";
    const Names files = {u"abcde",
                         u"abcd.txt",
                         u"qx",
                         u"zzqx",
                         u"qxqxqx zz",
                         u"",
                         u"a",
                         u"7a",
                         u"(x)",
                         u"zz.zz.zz",
                         u"abcdefghijklmnopqrstuvwxyz",
                         std::u16string(254, u'z'),
                         std::u16string(255, u'z'),
                         std::u16string(256, u'z'),
                         std::u16string(257, u'z'),
                         std::u16string(5000, u'z') + u"qx",
                         std::u16string(8000, u'a')};
    for (const Names& folders :
         {Names{}, Names{u""}, Names{u"z"}, Names{u"zz"}, same, digits, rising, falling, lastWord}) {
        ExpectSameAnswers(files, folders, 1, std::to_string(folders.size()) + " folders");
        if (HasFatalFailure()) return;
    }
}

TEST(CandidateIndex, ThreadsShareTheNamesWithoutMixingThem) {
    std::mt19937 random(7);
    Names files;
    Names folders;
    FillRandomNames(random, {u"abcdefghij", 9000, 60, 12, 8, 50}, files, folders);
    for (const unsigned threads : {0U, 2U, 5U})
        ExpectSameAnswers(files, folders, threads, std::to_string(threads));
    ExpectSameAnswers({}, folders, 2, "no files");
}

TEST(CandidateIndex, AnswersOneNameAtATime) {
    const Names folders = {u"ab", u"Report", u"Reports", u"report 2023"};
    const CandidateIndex index(Normalizer(), folders);
    EXPECT_EQ(index.FindBest(u"reports.docx"), (CandidateMatch{2, 6}));
    EXPECT_EQ(index.FindBestTwo(u"reports.docx"), (CandidatePair{{2, 6}, {1, 5}}));
    EXPECT_EQ(index.FindBest(u"x"), CandidateMatch{});
    EXPECT_EQ(index.FindBestTwo(u"abba"), (CandidatePair{{0, 1}, {}}));
    EXPECT_GT(index.MemoryBytes(), 0U);
}

}  // namespace
}  // namespace kinsort
