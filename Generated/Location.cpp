#include "Generated/Location.h"

#include <cstring>
#include <deque>
#include <unordered_map>

#include "runtime/StringUtils.h"

_eRank Location::rank(const _eAnyBase* other) const {
    const auto* that = dynamic_cast<const Location*>(other);
    if (that == nullptr) return defaultRank(other);
    if (file.isNull() != that->file.isNull()) return file.isNull() ? rankBelow : rankAbove;
    if (!file.isNull()) {
        _eRank byFile = file->rank(that->file.get());
        if (byFile != rankSame) return byFile;
    }
    if (line != that->line) return line < that->line ? rankBelow : rankAbove;
    if (column != that->column) return column < that->column ? rankBelow : rankAbove;
    return rankSame;
}

_eString Location::text(bool shortFileNames) const {
    if (file.isNull()) return L"<no file>";
    return (shortFileNames ? file->fileNameText() : file->fullPathText()) + L" " + positionText();
}

_eString Location::positionText() const {
    return _eString(L"(") + intToString(line) + L"," + intToString(column) + L")";
}

void Location::nextColumn() {
    _eFreeze freeze(this);
    column += 1;
}

void Location::nextLine() {
    _eFreeze freeze(this);
    line += 1;
    column = 1;
}

void Location::nextTabStop(std::int32_t width) {
    _eFreeze freeze(this);
    column = tabStopAfter(column, width);
}

std::int32_t Location::tabStopAfter(std::int32_t column, std::int32_t width) {
    std::int32_t c = column + width - 1;
    std::int32_t remainder = c % width;
    if (remainder < 0) remainder += width;
    return c + 1 - remainder;
}

void Location::passAny(wchar_t character, const unsigned char* bytes, std::int32_t count, std::int32_t tabWidth) {
    pass(character, tabWidth);
    const unsigned char* end = bytes + count;
    // Only the bytes behind the last line end move the column; they count one each, but tabs.
    const unsigned char* lineStart = bytes;
    while (const void* lineEnd = std::memchr(lineStart, 10, std::size_t(end - lineStart))) {
        line += 1;
        column = 1;
        lineStart = static_cast<const unsigned char*>(lineEnd) + 1;
    }
    if (std::memchr(lineStart, 9, std::size_t(end - lineStart)) == nullptr) {
        column += std::int32_t(end - lineStart);
        return;
    }
    for (const unsigned char* at = lineStart; at != end; ++at) pass(*at, tabWidth);
}

namespace {

// The files places have named, each once: number n is `files[n - 1]`. A process names few
// files, and names each when it begins to read it, so they are kept to its end.
struct PlaceFiles {
    std::deque<_eHndl<FileName>> files;  // a deque: what `fileOf` gives stays in place
    std::unordered_multimap<std::size_t, std::uint32_t> byPath;  // hash of the full path, number

    static PlaceFiles& shared() {
        static PlaceFiles kept;
        return kept;
    }
};

}  // namespace

std::uint32_t Position::numberOf(const _eHndl<FileName>& file) {
    if (file.isNull()) return 0;
    PlaceFiles& kept = PlaceFiles::shared();
    std::size_t hash = StringUnitsHash()(file->fullPathText());
    auto [first, last] = kept.byPath.equal_range(hash);
    for (auto at = first; at != last; ++at)
        if (kept.files[at->second - 1] == file) return at->second;
    kept.files.push_back(file);
    auto number = std::uint32_t(kept.files.size());
    kept.byPath.emplace(hash, number);
    return number;
}

const _eHndl<FileName>& Position::fileOf(std::uint32_t number) {
    static const _eHndl<FileName> none;
    return number == 0 ? none : PlaceFiles::shared().files[number - 1];
}
