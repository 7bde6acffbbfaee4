// The C API: a thin layer over the facade that turns its results into statuses and lets no
// exception out.
#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <map>
#include <mutex>
#include <new>
#include <thread>

#include "modelbridge/modelbridge.h"
#include "modelbridge/modelbridge.hpp"

static_assert(int(modelbridge::Severity::information) == MB_INFORMATION && int(modelbridge::Severity::warning) == MB_WARNING &&
                  int(modelbridge::Severity::error) == MB_ERROR && int(modelbridge::Severity::fatal) == MB_FATAL,
              "the C severities are the facade's in order");
static_assert(importSwitches[0].flag == MB_XMI2 && importSwitches[1].flag == MB_ANYWHERE &&
                  importSwitches[2].flag == MB_PLAIN_MODEL_TEXT && importSwitches[3].flag == MB_DECODE_REFERENCES &&
                  importSwitches[4].flag == MB_EVERY_FORM && importSwitches[5].flag == MB_DECODE_ENCODINGS &&
                  importSwitches[6].flag == MB_SAFE_NAMES && importSwitches[7].flag == MB_CROSS_FILE_TYPES &&
                  importSwitches[8].flag == MB_REPORT && importSwitches[9].flag == MB_ENUMERATIONS &&
                  importSwitches[10].flag == MB_INTERFACES && importSwitches[11].flag == MB_ASSOCIATION_CLASSES &&
                  importSwitches[12].flag == MB_DOCUMENTATION && importSwitches[13].flag == MB_CONSTRAINTS,
              "the C flags are the bits of the switches");
static_assert(std::size(importSwitches) == 14, "every switch has its flag in the C header");

static_assert(int(FileOutcome::created) == MB_CREATED && int(FileOutcome::merged) == MB_MERGED &&
                  int(FileOutcome::failed) == MB_WRITE_FAILED,
              "the C outcomes are the facade's in order");

struct mb_update {
    UpdateReport report;
};

struct mb_outcome {
    modelbridge::Result result;
};

struct mb_model {
    modelbridge::Model model;
    std::string report;  // of the parse
    // The last write of each thread through the calls without an outcome; a thread's entry
    // lives until its next such write, or the model's end.
    mutable std::mutex lastLock;
    std::map<std::thread::id, modelbridge::Result> lastByThread;

    mb_model(const modelbridge::Model& model, std::string report) : model(model), report(std::move(report)) {}
};

namespace {

// Runs `call`, turning what it throws into a status.
template <class Call>
int guarded(Call call) {
    try {
        return call();
    } catch (const std::bad_alloc&) {
        return MB_NO_MEMORY;
    } catch (...) {
        return MB_FAILED;
    }
}

// Entry `index` of `list` through `field`, or the fallback where there is none.
template <class List, class Field, class Value>
Value entry(const List* list, int index, Field field, Value fallback) {
    if (list == nullptr || index < 0 || std::size_t(index) >= list->size()) return fallback;
    return field((*list)[std::size_t(index)]);
}

const std::vector<modelbridge::Diagnostic>* diagnosticsOf(const mb_model* model) {
    return model == nullptr ? nullptr : &model->model.diagnostics();
}

const std::vector<modelbridge::Diagnostic>* diagnosticsOf(const mb_outcome* outcome) {
    return outcome == nullptr ? nullptr : &outcome->result.diagnostics;
}

template <class Field>
auto diagnostic(const mb_model* model, int index, Field field, decltype(field(modelbridge::Diagnostic())) fallback) {
    return entry(diagnosticsOf(model), index, field, fallback);
}

bool holds(const mb_model& model, const char* name) {
    const std::vector<std::string>& classes = model.model.classes();
    return std::find(classes.begin(), classes.end(), name) != classes.end();
}

// The options of the facade that the C options choose.
modelbridge::Options optionsOf(const mb_parse_options& options) {
    modelbridge::Options chosen;
    bool specified = (options.flags & MB_SPECIFIED) != 0;
    for (const ImportSwitch& each : importSwitches)
        chosen.extensions.*each.field = !specified && (options.flags & each.flag) != 0;
    chosen.reproducible = (options.flags & MB_REPRODUCIBLE) != 0;
    if (options.line_width != 0) chosen.lineWidth = options.line_width;
    if (options.indent != nullptr) chosen.indent = options.indent;
    if (options.file_prefix != nullptr) chosen.filePrefix = options.file_prefix;
    if (options.library_folders != nullptr && options.library_folder_count > 0) {
        chosen.extensions.libraryFolders = options.library_folders;
        chosen.extensions.libraryFolderCount = std::uint32_t(options.library_folder_count);
    }
    return chosen;
}

// A write of the facade's, as a status, its result handed to `outcome` or kept as the
// calling thread's last.
template <class Write>
int written(mb_model* model, bool known, mb_outcome** outcome, Write write) {
    if (outcome != nullptr) *outcome = nullptr;
    return guarded([&]() -> int {
        auto made = std::make_unique<mb_outcome>();
        made->result = write();
        int status = !known ? MB_NO_SUCH_CLASS : made->result.ok ? MB_OK : MB_FAILED;
        if (outcome != nullptr) {
            *outcome = made.release();
        } else {
            std::lock_guard<std::mutex> lock(model->lastLock);
            model->lastByThread[std::this_thread::get_id()] = std::move(made->result);
        }
        return status;
    });
}

// The calling thread's last write on the model without an outcome.
const std::vector<modelbridge::Diagnostic>* lastOf(const mb_model* model) {
    if (model == nullptr) return nullptr;
    std::lock_guard<std::mutex> lock(model->lastLock);
    auto found = model->lastByThread.find(std::this_thread::get_id());
    return found == model->lastByThread.end() ? nullptr : &found->second.diagnostics;
}

}  // namespace

extern "C" {

void mb_parse_options_init(mb_parse_options* options) {
    if (options == nullptr) return;
    *options = mb_parse_options();
    options->size = sizeof(mb_parse_options);
    for (const ImportSwitch& each : importSwitches) options->flags |= each.flag;
    options->flags |= MB_REPRODUCIBLE;
}

int mb_parse_with(const char* path, const mb_parse_options* options, mb_model** model) {
    if (model == nullptr) return MB_INVALID_ARGUMENT;
    *model = nullptr;
    if (path == nullptr) return MB_INVALID_ARGUMENT;
    mb_parse_options chosen;
    mb_parse_options_init(&chosen);
    if (options != nullptr) {
        if (options->size < offsetof(mb_parse_options, flags) + sizeof(unsigned)) return MB_INVALID_ARGUMENT;
        std::memcpy(&chosen, options, std::min(options->size, sizeof(mb_parse_options)));
    }
    return guarded([&]() -> int {
        modelbridge::Model parsed = modelbridge::Model::parse(path, optionsOf(chosen));
        *model = new mb_model(parsed, parsed.report());
        if (parsed.ok()) return MB_OK;
        // A parse that never ran leaves no report: the options were refused.
        return (*model)->report.empty() ? MB_INVALID_ARGUMENT : MB_FAILED;
    });
}

int mb_parse(const char* path, const mb_options* options, mb_model** model) {
    mb_parse_options chosen;
    mb_parse_options_init(&chosen);
    if (options != nullptr) {
        chosen.flags = options->flags;
        chosen.line_width = options->line_width;
        chosen.indent = options->indent;
        chosen.file_prefix = options->file_prefix;
    }
    return mb_parse_with(path, &chosen, model);
}

int mb_switch_count(void) { return int(std::size(importSwitches)); }

const char* mb_switch_name(int index) {
    return index < 0 || index >= mb_switch_count() ? nullptr : importSwitches[index].name;
}

unsigned mb_switch_flag(int index) { return index < 0 || index >= mb_switch_count() ? 0u : importSwitches[index].flag; }

int mb_ok(const mb_model* model) { return model != nullptr && model->model.ok() ? 1 : 0; }

const char* mb_report(const mb_model* model) { return model == nullptr ? nullptr : model->report.c_str(); }

int mb_class_count(const mb_model* model) { return model == nullptr ? 0 : int(model->model.classes().size()); }

const char* mb_class_name(const mb_model* model, int index) {
    return entry(model == nullptr ? nullptr : &model->model.classes(), index,
                 [](const std::string& name) { return name.c_str(); }, static_cast<const char*>(nullptr));
}

int mb_diagnostic_count(const mb_model* model) {
    return model == nullptr ? 0 : int(model->model.diagnostics().size());
}

const char* mb_diagnostic_text(const mb_model* model, int index) {
    return diagnostic(model, index, [](const modelbridge::Diagnostic& d) { return d.text.c_str(); }, nullptr);
}

int mb_diagnostic_severity(const mb_model* model, int index) {
    return diagnostic(model, index, [](const modelbridge::Diagnostic& d) { return int(d.severity); }, -1);
}

const char* mb_diagnostic_file(const mb_model* model, int index) {
    return diagnostic(model, index, [](const modelbridge::Diagnostic& d) { return d.file.c_str(); }, nullptr);
}

int mb_diagnostic_line(const mb_model* model, int index) {
    return diagnostic(model, index, [](const modelbridge::Diagnostic& d) { return d.line; }, -1);
}

int mb_diagnostic_column(const mb_model* model, int index) {
    return diagnostic(model, index, [](const modelbridge::Diagnostic& d) { return d.column; }, -1);
}

const char* mb_diagnostic_message(const mb_model* model, int index) {
    return diagnostic(model, index, [](const modelbridge::Diagnostic& d) { return d.message.c_str(); }, nullptr);
}

int mb_write_class_outcome(mb_model* model, const char* name, const char* directory, mb_outcome** outcome) {
    if (outcome != nullptr) *outcome = nullptr;
    if (model == nullptr || name == nullptr || directory == nullptr) return MB_INVALID_ARGUMENT;
    return written(model, holds(*model, name), outcome, [&] { return model->model.writeClass(name, directory); });
}

int mb_write_single_outcome(mb_model* model, const char* const* names, int count, const char* file,
                            mb_outcome** outcome) {
    if (outcome != nullptr) *outcome = nullptr;
    if (model == nullptr || file == nullptr || count < 0 || (count > 0 && names == nullptr)) return MB_INVALID_ARGUMENT;
    std::vector<std::string> chosen;
    bool known = true;
    for (int i = 0; i < count; ++i) {
        if (names[i] == nullptr) return MB_INVALID_ARGUMENT;
        chosen.push_back(names[i]);
        known = known && holds(*model, names[i]);
    }
    return written(model, known, outcome, [&] { return model->model.writeClasses(chosen, file); });
}

int mb_outcome_count(const mb_outcome* outcome) {
    return outcome == nullptr ? 0 : int(outcome->result.diagnostics.size());
}

const char* mb_outcome_text(const mb_outcome* outcome, int index) {
    return entry(diagnosticsOf(outcome), index, [](const modelbridge::Diagnostic& d) { return d.text.c_str(); },
                 static_cast<const char*>(nullptr));
}

int mb_outcome_severity(const mb_outcome* outcome, int index) {
    return entry(diagnosticsOf(outcome), index, [](const modelbridge::Diagnostic& d) { return int(d.severity); }, -1);
}

const char* mb_outcome_file(const mb_outcome* outcome, int index) {
    return entry(diagnosticsOf(outcome), index, [](const modelbridge::Diagnostic& d) { return d.file.c_str(); },
                 static_cast<const char*>(nullptr));
}

int mb_outcome_line(const mb_outcome* outcome, int index) {
    return entry(diagnosticsOf(outcome), index, [](const modelbridge::Diagnostic& d) { return d.line; }, -1);
}

int mb_outcome_column(const mb_outcome* outcome, int index) {
    return entry(diagnosticsOf(outcome), index, [](const modelbridge::Diagnostic& d) { return d.column; }, -1);
}

const char* mb_outcome_message(const mb_outcome* outcome, int index) {
    return entry(diagnosticsOf(outcome), index, [](const modelbridge::Diagnostic& d) { return d.message.c_str(); },
                 static_cast<const char*>(nullptr));
}

void mb_outcome_free(mb_outcome* outcome) { delete outcome; }

int mb_write_class(mb_model* model, const char* name, const char* directory) {
    return mb_write_class_outcome(model, name, directory, nullptr);
}

int mb_write_single(mb_model* model, const char* const* names, int count, const char* file) {
    return mb_write_single_outcome(model, names, count, file, nullptr);
}

int mb_result_count(const mb_model* model) {
    const std::vector<modelbridge::Diagnostic>* last = lastOf(model);
    return last == nullptr ? 0 : int(last->size());
}

const char* mb_result_text(const mb_model* model, int index) {
    return entry(lastOf(model), index, [](const modelbridge::Diagnostic& d) { return d.text.c_str(); },
                 static_cast<const char*>(nullptr));
}

int mb_render_class(mb_model* model, const char* name, char** text) {
    if (text != nullptr) *text = nullptr;
    if (model == nullptr || name == nullptr || text == nullptr) return MB_INVALID_ARGUMENT;
    return guarded([&]() -> int {
        if (!holds(*model, name)) return MB_NO_SUCH_CLASS;
        std::string rendered = model->model.renderClass(name);
        char* copy = static_cast<char*>(std::malloc(rendered.size() + 1));
        if (copy == nullptr) return MB_NO_MEMORY;
        std::memcpy(copy, rendered.c_str(), rendered.size() + 1);
        *text = copy;
        return rendered.empty() ? MB_FAILED : MB_OK;
    });
}

void mb_string_free(char* text) { std::free(text); }

void mb_free(mb_model* model) {
    try {
        delete model;
    } catch (...) {
    }
}

}  // extern "C"

int mb_update_folder(mb_model* model, const char* directory, const char* const* names, int count, unsigned flags,
                     mb_update** update) {
    if (update != nullptr) *update = nullptr;
    if (model == nullptr || directory == nullptr || update == nullptr || count < 0 || (count > 0 && names == nullptr))
        return MB_INVALID_ARGUMENT;
    std::vector<std::string> chosen;
    for (int i = 0; i < count; ++i) {
        if (names[i] == nullptr) return MB_INVALID_ARGUMENT;
        chosen.push_back(names[i]);
    }
    UpdateOptions options;
    options.write = (flags & MB_UPDATE_CHECK) == 0;
    options.overwrite = (flags & MB_UPDATE_OVERWRITE) != 0;
    options.prune = (flags & MB_UPDATE_PRUNE) != 0;
    options.conflictMarkers = (flags & MB_UPDATE_CONFLICT_MARKERS) != 0;
    options.diff = (flags & MB_UPDATE_DIFF) != 0;
    for (const std::string& name : chosen)
        if (!holds(*model, name.c_str())) return MB_NO_SUCH_CLASS;
    return guarded([&]() -> int {
        *update = new mb_update{model->model.update(directory, options, chosen)};
        return (*update)->report.ok ? MB_OK : MB_FAILED;
    });
}

namespace {

const std::vector<FileUpdate>* filesOf(const mb_update* update) {
    return update == nullptr ? nullptr : &update->report.files;
}

// The list `list` of file `index`'s report: the names of its members, or null.
const std::vector<std::string>* itemsOf(const mb_update* update, int index, int list) {
    const std::vector<FileUpdate>* files = filesOf(update);
    if (files == nullptr || index < 0 || std::size_t(index) >= files->size()) return nullptr;
    const FileUpdate& file = (*files)[std::size_t(index)];
    if (list == MB_ORPHANED) return &file.orphaned;
    if (list == MB_RESTORED) return &file.restored;
    return nullptr;
}

}  // namespace

const char* mb_update_error(const mb_update* update) { return update == nullptr ? nullptr : update->report.error.c_str(); }

int mb_update_file_count(const mb_update* update) { return update == nullptr ? 0 : int(update->report.files.size()); }

const char* mb_update_file(const mb_update* update, int index) {
    return entry(filesOf(update), index, [](const FileUpdate& f) { return f.file.c_str(); }, static_cast<const char*>(nullptr));
}

int mb_update_outcome(const mb_update* update, int index) {
    return entry(filesOf(update), index, [](const FileUpdate& f) { return int(f.outcome); }, -1);
}

const char* mb_update_outcome_name(int outcome) {
    return outcome < MB_CREATED || outcome > MB_WRITE_FAILED ? nullptr : outcomeName(FileOutcome(outcome));
}

int mb_update_changes(const mb_update* update, int index) {
    return entry(filesOf(update), index, [](const FileUpdate& f) { return f.changes ? 1 : 0; }, -1);
}

const char* mb_update_renamed_from(const mb_update* update, int index) {
    return entry(filesOf(update), index, [](const FileUpdate& f) { return f.renamedFrom.c_str(); },
                 static_cast<const char*>(nullptr));
}

const char* mb_update_message(const mb_update* update, int index) {
    return entry(filesOf(update), index, [](const FileUpdate& f) { return f.message.c_str(); },
                 static_cast<const char*>(nullptr));
}

const char* mb_update_diff(const mb_update* update, int index) {
    return entry(filesOf(update), index, [](const FileUpdate& f) { return f.diff.c_str(); },
                 static_cast<const char*>(nullptr));
}

int mb_update_item_count(const mb_update* update, int index, int list) {
    if (list == MB_CONFLICTS)
        return entry(filesOf(update), index, [](const FileUpdate& f) { return int(f.conflicts.size()); }, -1);
    const std::vector<std::string>* items = itemsOf(update, index, list);
    return items == nullptr ? -1 : int(items->size());
}

const char* mb_update_item(const mb_update* update, int index, int list, int item) {
    if (list == MB_CONFLICTS)
        return entry(filesOf(update), index,
                     [&](const FileUpdate& f) {
                         return entry(&f.conflicts, item, [](const UpdateConflict& c) { return c.member.c_str(); },
                                      static_cast<const char*>(nullptr));
                     },
                     static_cast<const char*>(nullptr));
    return entry(itemsOf(update, index, list), item, [](const std::string& name) { return name.c_str(); },
                 static_cast<const char*>(nullptr));
}

int mb_update_conflict_line(const mb_update* update, int index, int item) {
    return entry(filesOf(update), index,
                 [&](const FileUpdate& f) { return entry(&f.conflicts, item, [](const UpdateConflict& c) { return c.line; }, -1); },
                 -1);
}

void mb_update_free(mb_update* update) { delete update; }
