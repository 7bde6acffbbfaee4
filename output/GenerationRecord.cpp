#include "output/GenerationRecord.h"

#include <algorithm>
#include <charconv>
#include <cstring>
#include <unordered_set>
#include <utility>

std::string GeneratedFile::classOf(std::size_t index) const {
    for (std::size_t i = std::min(index + 1, pieces.size()); i > 0; --i)
        if (pieces[i - 1].key.rfind("head ", 0) == 0) return pieces[i - 1].key;
    return {};
}

namespace {

// The lines of a text as a record holds them, each without its "|".
LineViews recordedLines(std::string_view block) {
    LineViews views = lineViews(block);
    for (std::string_view& view : views) view.remove_prefix(1);
    return views;
}

}  // namespace

LineViews GeneratedFile::textLines() const {
    if (unsplit.empty()) return LineViews(lines.begin(), lines.end());
    return recordedLines(unsplit);
}

void GeneratedFile::split() {
    if (unsplit.empty()) return;
    LineViews views = textLines();
    lines.assign(views.begin(), views.end());
    unsplit = std::string();
    unsplitLines = 0;
}

bool GenerationRecord::plainFileName(const std::string& name) {
    if (name.empty() || name == "." || name == ".." || name.size() > 255) return false;
    for (char c : name)
        if (c == '/' || (unsigned char)c < 0x20 || c == 0x7f) return false;
    return true;
}

std::string GenerationRecord::keyText(const std::string& id) {
    static const char digits[] = "0123456789ABCDEF";
    std::string text;
    for (char c : id) {
        auto byte = (unsigned char)c;
        if (byte <= 0x20 || byte == 0x7f || c == '%') {
            text += '%';
            text += digits[byte >> 4];
            text += digits[byte & 15];
        } else {
            text += c;
        }
    }
    return text;
}

std::string GenerationRecord::idOfKeyText(const std::string& text) {
    std::string id;
    for (std::size_t i = 0; i < text.size(); ++i) {
        unsigned value = 0;
        if (text[i] == '%' && i + 2 < text.size() &&
            std::from_chars(text.data() + i + 1, text.data() + i + 3, value, 16).ptr == text.data() + i + 3) {
            id += char(value);
            i += 2;
        } else {
            id += text[i];
        }
    }
    return id;
}

const RecordEntry* GenerationRecord::byName(const std::string& name) const {
    for (const RecordEntry& entry : entries)
        if (entry.file.name == name) return &entry;
    return nullptr;
}

const RecordEntry* GenerationRecord::byClass(const std::string& classId) const {
    for (const RecordEntry& entry : entries)
        if (entry.file.classIds.size() == 1 && entry.file.classIds[0] == classId) return &entry;
    return nullptr;
}

namespace {

const char* const firstLine = "modelbridge-record 1";
const char* const sourceMark = "# from ";

// Where a record's text goes: appended to a string, or compared with a text piece by piece, so
// that a record that would be written as it stands is never built whole.
class RecordText {
public:
    explicit RecordText(std::string& into) : into(&into) {}
    explicit RecordText(std::string_view against) : against(against) {}

    void add(std::string_view piece) {
        if (into != nullptr) {
            into->append(piece);
            return;
        }
        // `at` stays within the text: it moves on only past what matched.
        differs = differs || against.substr(at, piece.size()) != piece;
        if (!differs) at += piece.size();
    }
    void add(std::initializer_list<std::string_view> pieces) {
        for (std::string_view piece : pieces) add(piece);
    }
    void addLines(const Lines& lines) {
        for (const std::string& line : lines) {
            add("|");
            add(std::string_view(line).substr(0, line.empty() || line.back() != '\n' ? line.size() : line.size() - 1));
            add("\n");
        }
    }
    // Compared: whether every piece matched and the text ended with the last.
    bool matched() const { return !differs && at == against.size(); }

private:
    std::string* into = nullptr;
    std::string_view against;
    std::size_t at = 0;
    bool differs = false;
};

void writeRecord(const GenerationRecord& record, RecordText& out) {
    // Numbers are added as they are written: joining them first makes a string of each join.
    auto number = [](std::size_t value, char (&digits)[24]) {
        return std::string_view(digits, std::size_t(std::to_chars(digits, digits + sizeof digits, value).ptr - digits));
    };
    char a[24], b[24];
    out.add({"# What ModelBridge generated last into this folder. Keep it with the generated files:\n"
             "# updates merge the model's changes into your text by it.\n",
             firstLine, "\n"});
    for (const RecordEntry& entry : record.entries) {
        const GeneratedFile& file = entry.file;
        out.add({"file ", file.name, "\n"});
        for (const std::string& id : file.classIds) out.add({"class ", GenerationRecord::keyText(id), "\n"});
        // A comment to readers that don't know it, so that they still read the record.
        if (!file.source.empty()) out.add({sourceMark, file.source, "\n"});
        for (const TextPiece& piece : file.pieces) {
            out.add({"piece ", number(piece.first, a), " ", number(piece.end, b), " ", piece.key, "\n"});
            for (const auto& [line, column] : piece.bodies) out.add({"body ", number(line, a), " ", number(column, b), "\n"});
        }
        out.add({"text ", number(file.lineCount(), a), "\n"});
        if (file.unsplit.empty())
            out.addLines(file.lines);
        else
            out.add(file.unsplit);
        for (const KeptMember& kept : entry.kept) {
            out.add({"kept ", number(kept.lines.size(), a), " ", kept.key, "\n"});
            out.addLines(kept.lines);
        }
        out.add("end\n");
    }
}

}  // namespace

std::string GenerationRecord::text() const {
    std::size_t size = 0;
    for (const RecordEntry& entry : entries) {
        for (const std::string& line : entry.file.lines) size += line.size() + 2;
        size += entry.file.unsplit.size();
        size += 64 * (entry.file.pieces.size() + entry.file.classIds.size() + 4) + entry.file.source.size();
    }
    std::string text;
    text.reserve(size + 256);
    RecordText out(text);
    writeRecord(*this, out);
    return text;
}

bool GenerationRecord::writes(std::string_view text) const {
    RecordText out(text);
    writeRecord(*this, out);
    return out.matched();
}

namespace {

// Reads the lines of a record one by one, in place, knowing where it stands.
class RecordReader {
public:
    RecordReader(std::string_view text, const std::string& path) : text(text), path(path) {}

    bool atEnd() const { return at == text.size(); }
    // The next line without its line end.
    std::string_view line() {
        std::size_t end = text.find('\n', at);
        if (end == std::string_view::npos) end = text.size();
        std::string_view line = text.substr(at, end - at);
        at = end == text.size() ? end : end + 1;
        ++next;
        return line;
    }
    bool fail(const std::string& reason) {
        error = path + ":" + std::to_string(next) + ": " + reason;
        return false;
    }
    // A whole number below `limit`.
    static bool number(std::string_view text, std::size_t limit, std::size_t& value) {
        auto [end, status] = std::from_chars(text.data(), text.data() + text.size(), value);
        return status == std::errc() && end == text.data() + text.size() && value < limit;
    }
    // `count` lines, each "|" and the text of the line, as they stand in the record.
    bool textBlock(std::size_t count, std::string_view& block) {
        std::size_t from = at;
        for (std::size_t i = 0; i < count; ++i) {
            if (atEnd()) return fail("the record ends within a text");
            std::string_view text = line();
            if (text.empty() || text[0] != '|') return fail("a line of text must start with '|'");
        }
        // A record goes on after a text ("end" at least), so its last line has its end too.
        block = text.substr(from, at - from);
        return true;
    }

    // Lines from here on that start with `word`, up to the first that starts with none of
    // `words`: what a list about to be read will hold.
    std::size_t ahead(std::string_view word, std::initializer_list<std::string_view> words) const {
        std::size_t count = 0;
        for (std::size_t from = at; from < text.size();) {
            std::string_view rest = text.substr(from);
            if (rest.starts_with(word)) ++count;
            else if (std::none_of(words.begin(), words.end(), [&](std::string_view each) { return rest.starts_with(each); })) break;
            std::size_t end = text.find('\n', from);
            from = end == std::string_view::npos ? text.size() : end + 1;
        }
        return count;
    }

    std::string error;

private:
    std::string_view text;
    std::size_t at = 0;    // where the next line begins
    std::size_t next = 0;  // lines read
    std::string path;
};

// The word before the first blank, and what follows it.
std::pair<std::string_view, std::string_view> firstWord(std::string_view line) {
    std::size_t blank = line.find(' ');
    if (blank == std::string_view::npos) return {line, {}};
    return {line.substr(0, blank), line.substr(blank + 1)};
}

}  // namespace

bool GenerationRecord::read(const std::string& text, const std::string& path, GenerationRecord& record,
                            std::string& error, bool split) {
    record.entries.clear();
    RecordReader reader(text, path);
    const std::size_t limit = std::size_t(1) << 31;
    bool begun = false;
    RecordEntry* entry = nullptr;
    std::unordered_set<std::string> names;
    std::size_t files = 0;
    for (std::size_t at = text.find("\nfile "); at != std::string::npos; at = text.find("\nfile ", at + 1)) ++files;
    record.entries.reserve(files);
    names.reserve(files);
    bool ok = true;
    while (ok && !reader.atEnd()) {
        std::string_view line = reader.line();
        if (entry != nullptr && line.starts_with(sourceMark)) {
            entry->file.source = line.substr(std::strlen(sourceMark));
            continue;
        }
        if (line.empty() || line[0] == '#') continue;
        if (!begun) {
            ok = line == firstLine || reader.fail("not a record of ModelBridge, or one of a newer version");
            begun = true;
            continue;
        }
        auto [word, rest] = firstWord(line);
        if (word == "file") {
            std::string name(rest);
            // Only an entry closed by "end" has had its pieces checked against its text.
            if (entry != nullptr) {
                ok = reader.fail("the file '" + entry->file.name + "' has no 'end' before the next file");
                break;
            }
            ok = plainFileName(name) ? true : reader.fail("'" + name + "' is not a plain file name");
            if (ok && !names.insert(name).second) ok = reader.fail("the file '" + name + "' is recorded twice");
            record.entries.emplace_back();
            entry = &record.entries.back();
            entry->file.name = name;
            continue;
        }
        if (entry == nullptr) {
            ok = reader.fail("'" + std::string(word) + "' before the first file");
        } else if (word == "class") {
            ok = !rest.empty() || reader.fail("a class without an id");
            entry->file.classIds.push_back(idOfKeyText(std::string(rest)));
        } else if (word == "piece") {
            auto [first, afterFirst] = firstWord(rest);
            auto [end, key] = firstWord(afterFirst);
            // The pieces of a file stand together: room for all of them at once.
            if (entry->file.pieces.empty()) entry->file.pieces.reserve(reader.ahead("piece ", {"body "}) + 1);
            TextPiece piece;
            piece.key = key;
            ok = (RecordReader::number(first, limit, piece.first) && RecordReader::number(end, limit, piece.end) && piece.first < piece.end &&
                  !key.empty()) ||
                 reader.fail("a piece needs its first line, its end and its key");
            entry->file.pieces.push_back(std::move(piece));
        } else if (word == "body") {
            auto [lineText, columnText] = firstWord(rest);
            std::size_t at = 0, column = 0;
            ok = (!entry->file.pieces.empty() && RecordReader::number(lineText, limit, at) && RecordReader::number(columnText, limit, column)) ||
                 reader.fail("a body needs its piece, its line and its column");
            if (ok) entry->file.pieces.back().bodies.emplace_back(at, column);
        } else if (word == "text" || word == "kept") {
            auto [countText, key] = firstWord(rest);
            std::size_t count = 0;
            ok = (RecordReader::number(countText, limit, count) && (word == "text" ? key.empty() : !key.empty())) ||
                 reader.fail("'" + std::string(word) + "' needs its number of lines" + (word == "kept" ? " and its key" : ""));
            if (word == "kept") entry->kept.push_back({std::string(key), {}});
            std::string_view block;
            ok = ok && reader.textBlock(count, block);
            if (ok && word == "text" && !split) {
                entry->file.unsplit += block;
                entry->file.unsplitLines += count;
            } else if (ok) {
                LineViews added = recordedLines(block);
                Lines& into = word == "text" ? entry->file.lines : entry->kept.back().lines;
                into.insert(into.end(), added.begin(), added.end());
            }
        } else if (word == "end") {
            // Each piece must stand within the text, in order, and each body within its piece.
            std::size_t after = 0;
            for (const TextPiece& piece : entry->file.pieces) {
                ok = ok && piece.first >= after && piece.end <= entry->file.lineCount();
                for (const auto& [at, column] : piece.bodies) ok = ok && at >= piece.first && at < piece.end;
                after = piece.end;
            }
            if (!ok) reader.fail("the pieces of '" + entry->file.name + "' don't fit its text");
            entry = nullptr;
        } else {
            ok = reader.fail("unknown item '" + std::string(word) + "'");
        }
    }
    if (ok && entry != nullptr) ok = reader.fail("the record ends within the file '" + entry->file.name + "'");
    if (ok && !begun) ok = reader.fail("an empty record");
    if (!ok) {
        error = reader.error;
        record.entries.clear();
    }
    return ok;
}
