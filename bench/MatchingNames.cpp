#include "MatchingNames.h"

#include <string_view>
#include <unordered_set>

#include "classify/NameSimilarity.h"
#include "platform/linux/IcuLocaleMap.h"

namespace kinsort {
namespace {

constexpr const char16_t* kEnglish[] = {
    u"the",     u"of",       u"and",     u"night",    u"summer",   u"report",   u"meeting", u"project", u"invoice",
    u"holiday", u"family",   u"photo",   u"music",    u"garden",   u"house",    u"story",   u"history", u"world",
    u"little",  u"blue",     u"red",     u"black",    u"white",    u"king",     u"queen",   u"dragon",  u"star",
    u"moon",    u"river",    u"city",    u"ocean",    u"journey",  u"secret",   u"lost",    u"last",    u"first",
    u"new",     u"old",      u"great",   u"home",     u"school",   u"days",     u"dream",   u"winter",  u"spring",
    u"autumn",  u"island",   u"shadow",  u"light",    u"dark",     u"notes",    u"draft",   u"final",   u"backup",
    u"design",  u"manual",   u"lecture", u"chapter",  u"letter",   u"travel",   u"kitchen", u"recipes", u"wedding",
    u"concert", u"training", u"budget",  u"contract", u"research", u"analysis", u"game"};
constexpr const char16_t* kSyllables[] = {u"ka",  u"ri", u"ton", u"mar", u"el",   u"an",  u"dor", u"vi",
                                          u"sen", u"lo", u"ber", u"ta",  u"ness", u"ing", u"er",  u"con",
                                          u"pro", u"st", u"ch",  u"or",  u"ia",   u"us",  u"mi",  u"gra",
                                          u"ph",  u"ne", u"tro", u"ser", u"val",  u"qu",  u"ex",  u"ly"};
constexpr const char16_t* kExtensions[] = {u".zip", u".rar", u".pdf",  u".epub", u".mkv",
                                           u".mp4", u".mp3", u".flac", u".txt"};

class Generator {
  public:
    explicit Generator(uint32_t seed) : random_(seed) {
        for (size_t i = 0; i < 4000; ++i)
            latin_.push_back(i < std::size(kEnglish) ? kEnglish[i] : MakeLatinWord());
        for (size_t i = 0; i < 6000; ++i)
            japanese_.push_back(MakeJapaneseWord());
    }

    size_t Below(size_t limit) { return random_() % limit; }
    bool Chance(size_t percent) { return Below(100) < percent; }
    std::u16string Number(size_t digits) {
        std::u16string number;
        while (number.size() < digits)
            number += static_cast<char16_t>(u'0' + Below(10));
        return number;
    }

    std::u16string Title() { return Chance(55) ? JapaneseTitle() : LatinTitle(); }

    std::u16string FolderOf(const std::u16string& title) {
        switch (Below(10)) {
            case 0:
                return u"[" + JapaneseWord() + u"] " + title;
            case 1:
                return title + u" (" + Number(4) + u")";
            case 2:
                return title + u" II";
            case 3:
                return title + u" old";
            case 4:
                return title.substr(0, title.size() * 2 / 3 + 1);
            case 5:
                return title + u" " + LatinWord();
            case 6:
                return JapaneseWord() + u"_" + title;
            default:
                return title;
        }
    }

    std::u16string FileOf(const std::u16string& title) {
        switch (Below(6)) {
            case 0:
                return title + u" 第" + Number(2) + u"巻" + Extension();
            case 1:
                return u"[" + JapaneseWord() + u"] " + title + u" v" + Number(2) + Extension();
            case 2:
                return title + u" - S0" + Number(1) + u"E" + Number(2) + u" - " + LatinTitle() + Extension();
            case 3:
                return title + u"_" + Number(3) + Extension();
            case 4:
                return u"(" + JapaneseWord() + u") " + title + u" " + JapaneseWord() + Extension();
            default:
                return title + u" " + Number(2) + Extension();
        }
    }

    std::u16string OtherFile() {
        switch (Below(5)) {
            case 0:
                return u"IMG_20" + Number(6) + u"_" + Number(6) + u".jpg";
            case 1:
                return u"DSC" + Number(5) + u".JPG";
            case 2:
                return u"Screenshot 20" + Number(2) + u"-" + Number(2) + u" " + LatinWord() + u".png";
            case 3:
                return u"lib" + LatinWord() + u"-" + LatinWord() + u"-dev_" + Number(1) + u"." + Number(2) + u"-" +
                       Number(1) + u"_amd64.deb";
            default:
                return LatinTitle() + u" 20" + Number(2) + u" final (" + Number(1) + u").docx";
        }
    }

  private:
    // A few words are in many names and most in few.
    size_t Skewed(size_t limit) { return Below(1 + Below(1 + Below(limit))); }
    std::u16string LatinWord() { return latin_[Skewed(latin_.size())]; }
    std::u16string JapaneseWord() { return japanese_[Skewed(japanese_.size())]; }
    std::u16string Extension() { return kExtensions[Skewed(std::size(kExtensions))]; }

    std::u16string LatinTitle() {
        std::u16string title;
        for (size_t words = 1 + Below(4); words > 0; --words) {
            std::u16string word = LatinWord();
            if (word[0] >= u'a') word[0] = static_cast<char16_t>(word[0] - 0x20);
            title += (title.empty() ? u"" : u" ") + word;
        }
        return title;
    }

    std::u16string JapaneseTitle() {
        constexpr std::u16string_view kParticles = u"のとはがをにへで";
        std::u16string title = JapaneseWord();
        for (size_t words = Below(3); words > 0; --words) {
            if (Chance(70)) title += kParticles[Skewed(kParticles.size())];
            title += JapaneseWord();
        }
        if (Chance(10)) title = u"「" + title + u"」";
        return title;
    }

    std::u16string MakeLatinWord() {
        std::u16string word;
        for (size_t parts = 2 + Below(3); parts > 0; --parts)
            word += kSyllables[Below(std::size(kSyllables))];
        return word;
    }

    std::u16string MakeJapaneseWord() {
        std::u16string word;
        const size_t kind = Below(10);
        for (size_t units = 2 + Below(kind < 6 ? 2 : 4); units > 0; --units) {
            const auto unit = kind < 6   ? 0x4E00 + (Below(1 + Below(2500))) * 7  // spread over the common ideographs
                              : kind < 9 ? 0x30A2 + Below(70)
                                         : 0x3042 + Below(70);
            word += static_cast<char16_t>(unit);
        }
        return word;
    }

    std::mt19937 random_;
    std::vector<std::u16string> latin_;
    std::vector<std::u16string> japanese_;
};

}  // namespace

MatchingNames MakeMatchingNames(size_t files, size_t folders, bool allDistinct, uint32_t seed) {
    Generator generator(seed);
    const NameNormalizer normalizer(*MakeIcuLocaleMap());
    MatchingNames names;
    std::vector<std::u16string> titles;
    for (size_t i = 0; i < folders; ++i) {
        // Every third folder is a variation of a title that is there already.
        if (titles.empty() || !generator.Chance(33)) titles.push_back(generator.Title());
        names.folders.push_back(
            generator.FolderOf(titles[generator.Chance(33) ? generator.Below(titles.size()) : titles.size() - 1]));
    }
    std::unordered_set<std::u16string> seen;
    while (names.files.size() < files) {
        // Files of one title come in runs, as a listing shows them; one in five has no folder that is named after it.
        const std::u16string& title = titles[generator.Below(titles.size())];
        const bool known = generator.Chance(80);
        for (size_t run = 1 + generator.Below(8); run > 0 && names.files.size() < files; --run) {
            std::u16string file = known ? generator.FileOf(title) : generator.OtherFile();
            if (allDistinct) {
                while (!seen.insert(normalizer.Normalize(file)).second)
                    file = generator.Title() + u" " + file;
            }
            names.files.push_back(std::move(file));
        }
    }
    return names;
}

}  // namespace kinsort
