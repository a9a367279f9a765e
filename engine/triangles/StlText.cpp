#include "StlText.h"

#include "../frame/WatchedLoop.h"
#include "StlRecord.h"
#include "TextNumbers.h"

#include <algorithm>
#include <limits>

namespace brix {
namespace {

using Point = std::array<double, 3>;

constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";

/// Whether a word is one of small letters, in any case. No other characters than a letter's two become it by the bit 0x20.
bool Is(std::string_view word, std::string_view letters)
{
    if (word.size() != letters.size()) return false;
    for (std::size_t i = 0; i < word.size(); ++i)
        if ((word[i] | 0x20) != letters[i]) return false;
    return true;
}

bool BeginsWith(std::string_view word, std::string_view letters) { return Is(word.substr(0, letters.size()), letters); }

bool BeginsComment(std::string_view word) { return word.starts_with('#') || word.starts_with(';') || word.starts_with("//"); }

bool IsKeyword(std::string_view word)
{
    for (const std::string_view keyword : {"vertex", "endloop", "endfacet", "facet", "outer", "solid", "endsolid"})
        if (Is(word, keyword)) return true;
    return false;
}

std::string_view NextWord(std::string_view text) { return TakeToken(text); }

std::string_view WithoutBlanks(std::string_view text)
{
    while (!text.empty() && IsWhiteSpace(text.front())) text.remove_prefix(1);
    while (!text.empty() && IsWhiteSpace(text.back())) text.remove_suffix(1);
    return text;
}

/// Lines that end with LF, CR or CRLF.
class Lines
{
public:
    explicit Lines(ByteReader& file) : file_(file) {}

    std::uint64_t Number() const { return number_; } // of the line that was taken last, from 1
    bool HasLineBreak() const { return !isLast_ || rest_.data() != nullptr; }

    bool Take(std::string_view& line)
    {
        if (rest_.data() == nullptr && !Refill()) return false;
        const std::size_t length = rest_.find('\r');
        line = rest_.substr(0, length);
        rest_ = length == std::string_view::npos ? std::string_view() : rest_.substr(length + 1);
        if (++number_ == 1 && line.starts_with(byteOrderMark)) line.remove_prefix(byteOrderMark.size());
        return true;
    }

private:
    bool Refill()
    {
        if (isLast_) return false;
        const ByteReader::Line taken = file_.TakeLine();
        isLast_ = !taken.hasLineBreak;
        rest_ = taken.text;
        if (!isLast_ && rest_.ends_with('\r')) rest_.remove_suffix(1);
        return true;
    }

    ByteReader& file_;
    std::string_view rest_; // of what ends with LF; without data when it is used up
    std::uint64_t number_ = 0;
    bool isLast_ = false;
};

/// A number as a word that stands for one, or may stand for one.
enum class Reading
{
    AsNumber,
    AsDecimalComma,
    AsNotFinite,
    AsNothing
};

bool TakesWhole(std::string_view word, double& number) { return TakeNumber(word, number) && word.empty(); }

// 1e400 is a number that no double holds.
bool IsTooLarge(std::string_view word)
{
    const Decimal decimal = TakeDecimal(word);
    return word.empty() && decimal.digitCount > 0 && !decimal.lacksExponentDigits;
}

// As programs print them: inf, -Infinity, NaN, -nan(ind), 1.#QNAN, -1.#IND
bool NamesNotFinite(std::string_view word)
{
    if (word.starts_with('-') || word.starts_with('+')) word.remove_prefix(1);
    return BeginsWith(word, "inf") || BeginsWith(word, "nan") || word.starts_with("1.#");
}

// Digits on both sides of the only comma.
bool ReadDecimalComma(std::string_view word, double& number)
{
    const std::size_t comma = word.find(',');
    const auto isDigitAt = [&](std::size_t i) { return i < word.size() && IsDigit(word[i]); };
    if (comma == std::string_view::npos || comma == 0 || !isDigitAt(comma - 1) || !isDigitAt(comma + 1)) return false;
    std::string withPoint(word);
    withPoint[comma] = '.';
    return TakesWhole(withPoint, number);
}

Reading ReadWord(std::string_view word, double& number)
{
    if (TakesWhole(word, number)) return Reading::AsNumber;
    if (ReadDecimalComma(word, number)) return Reading::AsDecimalComma;
    number = std::numeric_limits<double>::infinity();
    return IsTooLarge(word) || NamesNotFinite(word) ? Reading::AsNotFinite : Reading::AsNothing;
}

/// Takes three numbers that white space ends, which are what nearly all files hold.
bool TakePlainPoint(std::string_view& text, Point& point)
{
    for (double& coordinate : point)
        if (!TakeNumber(text, coordinate) || (!text.empty() && !IsWhiteSpace(text.front()))) return false;
    return true;
}

/// Takes a number that white space ends, without its value.
bool SkipNumber(std::string_view& text)
{
    const Decimal decimal = TakeDecimal(text);
    return decimal.digitCount > 0 && !decimal.lacksExponentDigits && (text.empty() || IsWhiteSpace(text.front()));
}

/// The part of a line from where a facet begins, if one begins on it.
std::string_view FacetIn(std::string_view line)
{
    for (std::string_view rest = line; !rest.empty();) {
        const std::string_view word = TakeToken(rest);
        if (Is(word, "facet") && Is(NextWord(rest), "normal"))
            return line.substr(static_cast<std::size_t>(word.data() - line.data()));
    }
    return {};
}

class Parser
{
public:
    Parser(ByteReader& file, StlIntake& intake) : file_(file), lines_(file), intake_(intake) {}

    void Run()
    {
        constexpr std::size_t bytesPerStep = 1 << 16;
        WatchedLoop loop(static_cast<std::size_t>(file_.ExpectedSize() / bytesPerStep + 1));
        std::size_t nextStep = bytesPerStep;
        for (std::string_view line; lines_.Take(line);) {
            for (; file_.Taken() >= nextStep; nextStep += bytesPerStep) loop.Step();
            ReadLine(line);
        }
        End();
    }

private:
    void ReadLine(std::string_view line)
    {
        while (!line.empty()) {
            const std::string_view word = TakeToken(line);
            if (word.empty() || BeginsComment(word)) return;
            ReadEntry(word, line);
        }
    }

    void ReadEntry(std::string_view word, std::string_view& line)
    {
        if (Is(word, "vertex")) return ReadVertex(line);
        if (Is(word, "outer")) return BeginLoop(line);
        if (Is(word, "endloop")) return EndLoop();
        if (Is(word, "facet")) return BeginFacet(line);
        if (Is(word, "endfacet")) return EndFacet();
        if (Is(word, "solid")) return BeginSolid(line);
        if (Is(word, "endsolid")) return EndSolid(line);
        Find(StlEffect::None, [&] { return Quoted(word) + " is no entry of an STL file; the rest of the line was not read."; });
        line = {};
    }

    void BeginSolid(std::string_view& line)
    {
        EndFacet();
        if (isInSolid_) Find(StlEffect::None, [] { return std::string("a solid begins before the one above ended."); });
        const std::string_view facet = FacetIn(line);
        const std::string_view name = WithoutBlanks(line.substr(0, line.size() - facet.size()));
        if (name.find('\0') != std::string_view::npos)
            Find(StlEffect::None, [] { return std::string("the name of a solid holds a zero byte."); });
        AddSolid(name);
        line = facet;
    }

    void AddSolid(std::string_view name)
    {
        StlReport& report = intake_.result.report;
        ++report.solidCount;
        isInSolid_ = true;
        isListed_ = report.solids.size() < intake_.Options().mostListed;
        if (isListed_) report.solids.push_back({LineText(name), 0});
    }

    // Where a whole file stands on one line, the next solid follows.
    void EndSolid(std::string_view& line)
    {
        EndFacet();
        isInSolid_ = false;
        const std::string_view facet = FacetIn(line);
        const std::string_view whole = line;
        line = facet;
        for (std::string_view name = whole.substr(0, whole.size() - facet.size()); !facet.empty() && !name.empty();) {
            const std::string_view word = TakeToken(name);
            if (!Is(word, "solid")) continue;
            line = whole.substr(static_cast<std::size_t>(word.data() - whole.data()));
            return;
        }
    }

    void BeginFacet(std::string_view& line)
    {
        EndOpenLoop();
        RequireSolid();
        if (isInFacet_) Find(StlEffect::None, [] { return std::string("a facet lacks its endfacet."); });
        isInFacet_ = true;
        if (!TakeNormal(line))
            Find(StlEffect::None, [] { return std::string("the normal of a facet is not three numbers; it is not needed."); });
    }

    static bool TakeNormal(std::string_view& line)
    {
        std::string_view plain = line;
        const bool isNormal = Is(TakeToken(plain), "normal");
        std::string_view words = plain;
        if (isNormal && SkipNumber(plain) && SkipNumber(plain) && SkipNumber(plain)) return line = plain, true;
        if (isNormal && TakeWordsOfPoint(words)) return line = words, true;
        while (!line.empty() && !IsKeyword(NextWord(line)) && !BeginsComment(NextWord(line))) TakeToken(line);
        return false;
    }

    // Three numbers that may be not finite, as normals of triangles without area are.
    static bool TakeWordsOfPoint(std::string_view& text)
    {
        double number = 0;
        for (int i = 0; i < 3; ++i) {
            const Reading reading = ReadWord(TakeToken(text), number);
            if (reading != Reading::AsNumber && reading != Reading::AsNotFinite) return false;
        }
        return true;
    }

    void EndFacet()
    {
        EndOpenLoop();
        isInFacet_ = false;
    }

    void RequireSolid()
    {
        if (isInSolid_) return;
        Find(StlEffect::None, [] { return std::string("a facet stands outside of a solid."); });
        AddSolid({});
    }

    void BeginLoop(std::string_view& line)
    {
        EndOpenLoop();
        RequireSolid();
        if (!isInFacet_) Find(StlEffect::None, [] { return std::string("a loop stands outside of a facet."); });
        std::string_view rest = line;
        if (Is(TakeToken(rest), "loop")) line = rest;
        isInLoop_ = true;
        isDamaged_ = false;
        cornerCount_ = 0;
        loopLine_ = lines_.Number();
    }

    void ReadVertex(std::string_view& line)
    {
        if (!isInLoop_) {
            Find(StlEffect::Dropped, [] { return std::string("a vertex stands outside of a loop; it was left out."); });
            line = {};
            return;
        }
        Point point{};
        std::string_view rest = line;
        if (!TakePlainPoint(rest, point)) {
            rest = line;
            TakeOddPoint(rest, point);
        }
        line = rest;
        hasLineBreak_ = lines_.HasLineBreak();
        if (cornerCount_ < 3) corners_[cornerCount_] = FromFileAxes(point, intake_.Options().swapYZ);
        ++cornerCount_;
    }

    // Finds out what it is that is not three numbers.
    void TakeOddPoint(std::string_view& line, Point& point)
    {
        for (std::size_t i = 0; i < 3; ++i) {
            const std::string_view word = NextWord(line);
            if (word.empty() || BeginsComment(word) || IsKeyword(word)) {
                return Damage([&] { return "a vertex has " + std::to_string(i) + " numbers instead of 3"; });
            }
            TakeToken(line);
            switch (ReadWord(word, point[i])) {
            case Reading::AsDecimalComma:
                Find(StlEffect::Guessed, [&] { return Quoted(word) + " was read as a number with a decimal comma."; });
                break;
            case Reading::AsNothing:
                line = {};
                return Damage([&] { return Quoted(word) + " stands where a number is expected"; });
            case Reading::AsNumber:
            case Reading::AsNotFinite:
                break; // the triangle is left out when it is whole
            }
        }
    }

    template <class MakeText> void Damage(const MakeText& text)
    {
        isDamaged_ = true;
        Find(StlEffect::Dropped, [&] { return text() + "; its triangle was left out."; });
    }

    void EndLoop()
    {
        if (!isInLoop_) return;
        isInLoop_ = false;
        if (!isDamaged_ && cornerCount_ != 3)
            Damage([&] { return "a loop ends with " + std::to_string(cornerCount_) + " vertices instead of 3"; });
        if (isDamaged_) return intake_.TakeIncomplete();
        if (isListed_) ++intake_.result.report.solids.back().triangles;
        intake_.Take(corners_, loopLine_);
    }

    void EndOpenLoop()
    {
        if (!isInLoop_) return;
        if (cornerCount_ == 3 && !isDamaged_) Find(StlEffect::None, [] { return std::string("a loop lacks its endloop."); });
        EndLoop();
    }

    // A number at the very end may have been longer.
    void End()
    {
        if (file_.HasFailed()) Find(StlEffect::Dropped, [] { return std::string("the file cannot be read any further."); });
        if (isInLoop_ && (cornerCount_ < 3 || !hasLineBreak_)) {
            if (!isDamaged_) Damage([] { return std::string("the file ends within a loop"); });
        }
        EndOpenLoop();
        if (isInSolid_) Find(StlEffect::None, [] { return std::string("the file ends before its last solid does."); });
        if (intake_.result.report.found == 0)
            Find(StlEffect::None, [] { return std::string("the file ends without a triangle."); });
    }

    template <class MakeText> void Find(StlEffect effect, const MakeText& text) { intake_.Find(lines_.Number(), effect, text); }

    static std::string Quoted(std::string_view word) { return '"' + LineText(word, 40) + '"'; }

    ByteReader& file_;
    Lines lines_;
    StlIntake& intake_;
    WorldTriangle corners_{};
    std::uint64_t cornerCount_ = 0; // of the loop: more than 3 are counted, not kept
    std::uint64_t loopLine_ = 0;
    bool isInSolid_ = false;
    bool isListed_ = false; // the solid
    bool isInFacet_ = false;
    bool isInLoop_ = false;
    bool isDamaged_ = false;
    bool hasLineBreak_ = false; // after the last vertex
};

// Below the first line.
bool HasFacetLine(std::string_view text)
{
    for (auto end = text.find_first_of("\r\n"); end != std::string_view::npos; end = text.find_first_of("\r\n")) {
        text.remove_prefix(end + 1);
        std::string_view rest = text;
        if (Is(TakeToken(rest), "facet") && Is(TakeToken(rest), "normal")) return true;
    }
    return false;
}

} // namespace

std::string_view FirstWord(std::string_view text)
{
    if (text.starts_with(byteOrderMark)) text.remove_prefix(byteOrderMark.size());
    while (true) {
        const std::string_view word = TakeToken(text);
        if (word.empty() || !BeginsComment(word)) return word;
        text.remove_prefix(std::min(text.find_first_of("\r\n"), text.size()));
    }
}

bool LooksLikeText(std::string_view start)
{
    for (const char c : start.substr(0, 1024))
        if (static_cast<unsigned char>(c) < 0x20 && !IsWhiteSpace(c)) return false;
    return true;
}

// The header of a binary file may begin with the word, too; what follows its 80 bytes holds zeros. A text with some control
// characters in it has lines that no binary file has.
bool LooksLikeStlText(std::string_view start)
{
    const std::string_view word = FirstWord(start);
    if (!BeginsWith(word, "solid") && !Is(word, "facet")) return false;
    return LooksLikeText(start) || HasFacetLine(start);
}

void ReadStlText(ByteReader& file, StlIntake& intake) { Parser(file, intake).Run(); }

} // namespace brix
