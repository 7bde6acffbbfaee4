#include "output/FolderUpdate.h"

#include <algorithm>
#include <exception>
#include <map>
#include <optional>
#include <system_error>
#include <thread>
#include <unordered_map>

#include "environment/PlatformText.h"
#include "output/MemberMerge.h"
#include "output/OutputFolder.h"

GeneratedFile FolderUpdate::generatedFile(const std::string& name, const TarvaneOutput::Layout& layout,
                                          std::size_t headerLines) {
    static const char* const partWords[] = {"head", "section", "member", "accessor", "end"};
    GeneratedFile file;
    file.name = name;
    Lines all = splitLines(layout.bytes);
    headerLines = std::min(headerLines, all.size());
    file.header = joinLines(all, 0, headerLines);
    file.lines.assign(all.begin() + long(headerLines), all.end());
    std::map<std::string, int> seen;
    for (const DeclarationLines& declaration : layout.declarations) {
        if (std::size_t(declaration.firstLine) <= headerLines || std::size_t(declaration.lastLine) > all.size()) continue;
        std::string id = toPlatformText(declaration.id);
        TextPiece piece;
        piece.first = std::size_t(declaration.firstLine) - 1 - headerLines;
        piece.end = std::size_t(declaration.lastLine) - headerLines;
        if (!file.pieces.empty() && piece.first < file.pieces.back().end) continue;
        piece.key = std::string(partWords[int(declaration.part)]) + " " + GenerationRecord::keyText(id);
        if (declaration.part == DeclarationPart::section) {
            std::string keyword = file.lines[piece.first];
            keyword.erase(keyword.find_last_not_of(" \t\r\n") + 1);
            piece.key += " " + GenerationRecord::keyText(keyword);
        }
        if (declaration.part == DeclarationPart::classHead) file.classIds.push_back(id);
        int repeats = ++seen[piece.key];
        if (repeats > 1) piece.key += "#" + std::to_string(repeats);
        for (const BodyPosition& body : declaration.bodies)
            piece.bodies.emplace_back(std::size_t(body.line) - 1 - headerLines, std::size_t(body.column));
        file.pieces.push_back(piece);
    }
    return file;
}

namespace {

// One update, file by file: first everything is decided, then written.
class Update {
public:
    Update(const std::string& folder, const std::set<std::string>& modelClasses, const UpdateOptions& options)
        : folder(folder), modelClasses(modelClasses), options(options) {}

    UpdateReport run(const std::vector<PlannedFile>& planned, const std::function<bool()>& sourcesHold);

private:
    struct Step {
        FileUpdate report;
        std::optional<std::string> write;  // the text the file gets
        std::string remove;                 // a file that goes
        std::string before;                 // the text it had, kept only for a diff
    };

    // What reading a file of the folder found: its bytes, or whether anything stands at its name
    // and why that can't be read.
    struct Read {
        bool read = false;
        bool there = false;
        std::string text;
        std::string error;
    };

    // `header` gives the file's header where `file` holds none, when a write or a merge needs it.
    // `file` is the record's own where it came from there; it moves into the new record. `ahead`
    // is what reading the file of its name found.
    Step settle(GeneratedFile& file, const std::function<std::string()>& header, Read& ahead);
    void stale(const RecordEntry& entry);
    // The file's bytes, with one look.
    Read readNow(const std::string& name) const;
    // The bytes `read` found: false with `there` false where nothing stands at the name, else
    // false with the failure in `step`.
    static bool readFile(Read&& read, std::string& text, bool& there, Step& step);
    // The lines of a file after its header, when it has the header of a generated one, in place.
    static LineViews bodyOf(const std::string& text) {
        LineViews lines = lineViews(text);
        std::size_t header = MemberMerge::headerOf(lines, TarvaneOutput::headerLines);
        return LineViews(lines.begin() + long(header), lines.end());
    }
    static bool same(const LineViews& body, const GeneratedFile& file) {
        LineViews lines = file.textLines();
        return std::equal(body.begin(), body.end(), lines.begin(), lines.end());
    }
    void apply(Step& step);

    // The file of the new generation: the record's own when it was made from the same source,
    // else laid out into `laidOut`.
    GeneratedFile& made(const PlannedFile& planned, std::vector<GeneratedFile>& laidOut);

    OutputFolder folder;
    std::set<std::string> modelClasses;
    const UpdateOptions& options;
    GenerationRecord record;
    // The record's entries by file name, and those of one class by its id: the first of each.
    std::unordered_map<std::string, RecordEntry*> lastByName, lastByClass;
    static RecordEntry* recorded(const std::unordered_map<std::string, RecordEntry*>& index, const std::string& key) {
        auto found = index.find(key);
        return found == index.end() ? nullptr : found->second;
    }
    std::set<std::string> settled;   // recorded files this generation has dealt with
    std::set<std::string> newNames;  // the files of this generation
    std::map<std::string, RecordEntry> entries;  // the new record, by file name
    std::vector<Step> steps;
};

Update::Read Update::readNow(const std::string& name) const {
    Read read;
    read.read = folder.readIfThere(name, read.text, read.there, read.error);
    return read;
}

bool Update::readFile(Read&& read, std::string& text, bool& there, Step& step) {
    text = std::move(read.text);
    there = read.there;
    if (read.read || !there) return read.read;
    step.report.outcome = FileOutcome::failed;
    step.report.message = std::move(read.error);
    return false;
}

Update::Step Update::settle(GeneratedFile& file, const std::function<std::string()>& header, Read& ahead) {
    Step step;
    step.report.file = file.name;
    RecordEntry* last = recorded(lastByName, file.name);
    bool renamed = false;
    if (last == nullptr && file.classIds.size() == 1) {
        last = recorded(lastByClass, file.classIds[0]);
        renamed = last != nullptr && !newNames.count(last->file.name);
        if (!renamed) last = nullptr;
    }
    if (last != nullptr) settled.insert(last->file.name);
    auto headed = [&]() -> const GeneratedFile& {
        if (file.header.empty()) file.header = header();
        return file;
    };
    auto whole = [&] {
        file.split();  // a text from the record, split only where it is written
        return headed().header + joinLines(file.lines);
    };
    // The file goes into the new record, without its header, once nothing else needs it.
    auto keep = [&](std::vector<KeptMember> kept) {
        RecordEntry& entry = entries[file.name];
        entry.file = std::move(file);
        entry.file.header.clear();
        entry.kept = std::move(kept);
    };
    std::string source = renamed ? last->file.name : file.name;
    if (renamed && folder.holdsAnything(file.name)) {
        // A file of the new name stands in the way: both stay until the user moves one.
        step.report.outcome = FileOutcome::foreign;
        step.report.message = "its class was renamed from '" + last->file.name + "', but '" + file.name +
                              "' is already there; both are left as they are";
        entries[last->file.name] = *last;
        return step;
    }
    if (renamed) step.report.renamedFrom = last->file.name;
    std::string text;
    bool there = false;
    if (!readFile(source == file.name ? std::move(ahead) : readNow(source), text, there, step)) {
        if (there) {
            if (last != nullptr) entries[last->file.name] = *last;
            return step;
        }
        step.report.outcome = FileOutcome::created;
        step.report.renamedFrom.clear();
        step.write = whole();
        keep({});
        return step;
    }
    if (options.diff) step.before = text;
    if (renamed) step.remove = source;
    LineViews body = bodyOf(text);
    if (last == nullptr) {
        if (same(body, file)) {
            step.report.outcome = FileOutcome::unchanged;
        } else if (options.overwrite) {
            step.report.outcome = FileOutcome::updated;
            step.write = whole();
        } else {
            step.report.outcome = FileOutcome::foreign;
            step.report.message = "not written by an update here, and not what the model gives; left as it is "
                                  "(--overwrite replaces it)";
            return step;
        }
        keep({});
        return step;
    }
    if (same(body, last->file) && last->kept.empty()) {
        bool unchanged = (&file == &last->file || same(body, file)) && !renamed;
        step.report.outcome = unchanged ? FileOutcome::unchanged : FileOutcome::updated;
        if (!unchanged) step.write = whole();
        keep({});
        return step;
    }
    last->file.split();
    file.split();
    MergeOutcome merged = MemberMerge::merge(*last, text, headed());
    step.report.orphaned = merged.orphaned;
    step.report.restored = merged.restored;
    step.report.conflicts = merged.conflicts;
    if (!merged.settled && !options.conflictMarkers) {
        step.report.outcome = FileOutcome::conflict;
        step.report.message = "the model and your text changed the same lines; left as it is";
        step.remove.clear();
        step.report.renamedFrom.clear();
        entries[last->file.name] = *last;
        return step;
    }
    step.report.outcome = !merged.settled ? FileOutcome::conflict
                          : merged.text == text && !renamed ? FileOutcome::unchanged
                                                            : FileOutcome::merged;
    if (!merged.settled) step.report.message = "written with conflict markers round the lines both changed";
    if (merged.text != text || renamed) step.write = merged.text;
    keep(std::move(merged.kept));
    return step;
}

void Update::stale(const RecordEntry& entry) {
    bool gone = std::none_of(entry.file.classIds.begin(), entry.file.classIds.end(),
                             [&](const std::string& id) { return modelClasses.count(id) != 0; });
    if (!gone) {
        entries[entry.file.name] = entry;  // not generated this time, but still in the model
        return;
    }
    Step step;
    step.report.file = entry.file.name;
    std::string text;
    bool there = false;
    if (!readFile(readNow(entry.file.name), text, there, step)) {
        if (there) steps.push_back(std::move(step));
        return;
    }
    if (options.diff) step.before = text;
    if (options.prune && same(bodyOf(text), entry.file)) {
        step.report.outcome = FileOutcome::pruned;
        step.remove = entry.file.name;
    } else {
        step.report.outcome = FileOutcome::stale;
        step.report.message = std::string("its class is gone from the model") +
                              (options.prune ? "; you changed it, so it stays" : "; --prune removes it");
        entries[entry.file.name] = entry;
    }
    steps.push_back(std::move(step));
}

void Update::apply(Step& step) {
    FileUpdate& report = step.report;
    report.changes = step.write.has_value() || !step.remove.empty();
    if (options.diff && report.changes) {
        std::string after = step.write.value_or(std::string());
        std::string from = step.remove.empty() ? report.file : step.remove;
        report.diff = LineDiff::unified(splitLines(step.before), splitLines(after),
                                        step.before.empty() && !step.write ? "/dev/null" : "a/" + from,
                                        step.write ? "b/" + report.file : "/dev/null");
    }
    if (!options.write || report.outcome == FileOutcome::failed) return;
    std::string error;
    bool done = (!step.write || folder.write(report.file, *step.write, error)) &&
                (step.remove.empty() || folder.remove(step.remove, error));
    if (!done) {
        report.outcome = FileOutcome::failed;
        report.message = error;
    }
}

GeneratedFile& Update::made(const PlannedFile& planned, std::vector<GeneratedFile>& laidOut) {
    RecordEntry* last = planned.source.empty() ? nullptr : recorded(lastByName, planned.name);
    // Without its header, which `settle` asks for only where it is written. No other file of
    // this generation looks at the entry once its own is settled: it goes by this name.
    if (last != nullptr && last->file.source == planned.source) return last->file;
    GeneratedFile& file = laidOut.emplace_back(planned.layOut());
    file.source = planned.source;
    return file;
}

UpdateReport Update::run(const std::vector<PlannedFile>& planned, const std::function<bool()>& sourcesHold) {
    UpdateReport report;
    std::string text, error;
    bool present = false;
    // A folder not made yet is empty to a run that writes nothing.
    if (!folder.usable(report.error) && (options.write || folder.present())) return report;
    report.error.clear();
    // The files of this generation are read by a thread of their own while the record is read
    // and the files are laid out: reading them waits on the system, the rest doesn't. Nothing
    // is written before every file is settled, so each is read as it stands before the writes.
    // Where no thread can be had, the files are read where they are needed; what the thread
    // fails with is thrown where it is joined.
    std::vector<Read> ahead(planned.size());
    std::exception_ptr failed;
    auto readAll = [&] {
        try {
            for (std::size_t i = 0; i < planned.size(); ++i) ahead[i] = readNow(planned[i].name);
        } catch (...) {
            failed = std::current_exception();
        }
    };
    std::jthread reader;
    try {
        reader = std::jthread(readAll);
    } catch (const std::system_error&) {
    }
    if (!folder.readRecord(text, present, report.error)) return report;
    // Only the texts of files to merge are split into lines.
    if (present && !GenerationRecord::read(text, folder.recordPath(), record, report.error, false)) return report;
    for (RecordEntry& entry : record.entries) {
        lastByName.emplace(entry.file.name, &entry);
        if (entry.file.classIds.size() == 1) lastByClass.emplace(entry.file.classIds[0], &entry);
    }
    std::vector<GeneratedFile> laidOut;
    laidOut.reserve(planned.size());  // `files` points into it
    std::vector<GeneratedFile*> files;
    for (const PlannedFile& each : planned) {
        files.push_back(&made(each, laidOut));
        modelClasses.insert(files.back()->classIds.begin(), files.back()->classIds.end());
    }
    for (const GeneratedFile* file : files) newNames.insert(file->name);
    // Recorded files of other names, taken before settling moves files out of the record.
    std::vector<const RecordEntry*> others;
    for (const RecordEntry& entry : record.entries)
        if (!newNames.count(entry.file.name)) others.push_back(&entry);
    steps.reserve(files.size() + others.size());
    if (reader.joinable())
        reader.join();
    else
        readAll();
    if (failed) std::rethrow_exception(failed);
    for (std::size_t i = 0; i < files.size(); ++i) steps.push_back(settle(*files[i], planned[i].header, ahead[i]));
    for (const RecordEntry* entry : others)
        if (!settled.count(entry->file.name)) stale(*entry);
    // Every file is settled: the last record goes before the next one is written out.
    lastByName.clear();
    lastByClass.clear();
    record = GenerationRecord();
    // In the order of the file names; a step is large, so only pointers to them are sorted.
    std::vector<Step*> ordered;
    ordered.reserve(steps.size());
    for (Step& step : steps) ordered.push_back(&step);
    std::sort(ordered.begin(), ordered.end(), [](const Step* a, const Step* b) { return a->report.file < b->report.file; });
    report.ok = true;
    report.files.reserve(ordered.size());
    for (Step* step : ordered) {
        apply(*step);
        FileOutcome outcome = step->report.outcome;
        report.ok = report.ok && outcome != FileOutcome::conflict && outcome != FileOutcome::foreign &&
                    outcome != FileOutcome::failed;
        report.files.push_back(std::move(step->report));
    }
    GenerationRecord next;
    // Texts that depended on more than their source keep none, so that no later run takes a
    // text for what that source gives.
    std::set<std::string> madeFrom;
    if (!sourcesHold())
        for (const PlannedFile& each : planned) madeFrom.insert(each.source);
    for (auto& [name, entry] : entries) {
        if (madeFrom.count(entry.file.source)) entry.file.source.clear();
        next.entries.push_back(std::move(entry));
    }
    if (options.write && (!present || !next.writes(text)) && !folder.writeRecord(next.text(), error)) {
        report.ok = false;
        report.error = error;
    }
    return report;
}

}  // namespace

UpdateReport FolderUpdate::run(const std::string& folder, const std::vector<GeneratedFile>& files,
                               const std::set<std::string>& modelClasses, const UpdateOptions& options) {
    std::vector<PlannedFile> planned;
    for (const GeneratedFile& file : files)
        planned.push_back({file.name, file.source, [file] { return file.header; }, [file] { return file; }});
    return run(folder, planned, modelClasses, options, [] { return true; });
}

UpdateReport FolderUpdate::run(const std::string& folder, const std::vector<PlannedFile>& files,
                               const std::set<std::string>& modelClasses, const UpdateOptions& options,
                               const std::function<bool()>& sourcesHold) {
    return Update(folder, modelClasses, options).run(files, sourcesHold);
}
