// The C API: a thin layer over the facade that turns its results into statuses and lets no
// exception out.
#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <new>

#include "modelbridge/modelbridge.h"
#include "modelbridge/modelbridge.hpp"

struct mb_model {
    modelbridge::Model model;
    std::string report;        // of the parse
    modelbridge::Result last;  // of the last write
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
Value entry(const mb_model* model, int index, const List& (*listOf)(const mb_model&), Field field, Value fallback) {
    if (model == nullptr || index < 0) return fallback;
    const List& list = listOf(*model);
    return std::size_t(index) < list.size() ? field(list[std::size_t(index)]) : fallback;
}

const std::vector<std::string>& classesOf(const mb_model& model) { return model.model.classes(); }
const std::vector<modelbridge::Diagnostic>& diagnosticsOf(const mb_model& model) { return model.model.diagnostics(); }
const std::vector<modelbridge::Diagnostic>& resultOf(const mb_model& model) { return model.last.diagnostics; }

template <class Field>
auto diagnostic(const mb_model* model, int index, Field field, decltype(field(modelbridge::Diagnostic())) fallback) {
    return entry(model, index, diagnosticsOf, field, fallback);
}

bool holds(const mb_model& model, const char* name) {
    const std::vector<std::string>& classes = model.model.classes();
    return std::find(classes.begin(), classes.end(), name) != classes.end();
}

int statusOf(const modelbridge::Result& result) { return result.ok ? MB_OK : MB_FAILED; }

}  // namespace

extern "C" {

int mb_parse(const char* path, const mb_options* options, mb_model** model) {
    if (model == nullptr) return MB_INVALID_ARGUMENT;
    *model = nullptr;
    if (path == nullptr) return MB_INVALID_ARGUMENT;
    return guarded([&]() -> int {
        modelbridge::Options chosen;
        if (options != nullptr) {
            chosen.xmi2 = (options->flags & MB_XMI2) != 0;
            chosen.anywhere = (options->flags & MB_ANYWHERE) != 0;
            chosen.reproducible = (options->flags & MB_REPRODUCIBLE) != 0;
            if (options->line_width != 0) chosen.lineWidth = options->line_width;
            if (options->indent != nullptr) chosen.indent = options->indent;
            if (options->file_prefix != nullptr) chosen.filePrefix = options->file_prefix;
        }
        modelbridge::Model parsed = modelbridge::Model::parse(path, chosen);
        *model = new mb_model{parsed, parsed.report(), {}};
        if (parsed.ok()) return MB_OK;
        // A parse that never ran leaves no report: the options were refused.
        return (*model)->report.empty() ? MB_INVALID_ARGUMENT : MB_FAILED;
    });
}

int mb_ok(const mb_model* model) { return model != nullptr && model->model.ok() ? 1 : 0; }

const char* mb_report(const mb_model* model) { return model == nullptr ? nullptr : model->report.c_str(); }

int mb_class_count(const mb_model* model) { return model == nullptr ? 0 : int(model->model.classes().size()); }

const char* mb_class_name(const mb_model* model, int index) {
    return entry(model, index, classesOf, [](const std::string& name) { return name.c_str(); },
                 static_cast<const char*>(nullptr));
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

int mb_write_class(mb_model* model, const char* name, const char* directory) {
    if (model == nullptr || name == nullptr || directory == nullptr) return MB_INVALID_ARGUMENT;
    return guarded([&]() -> int {
        model->last = model->model.writeClass(name, directory);
        return holds(*model, name) ? statusOf(model->last) : MB_NO_SUCH_CLASS;
    });
}

int mb_write_single(mb_model* model, const char* const* names, int count, const char* file) {
    if (model == nullptr || file == nullptr || count < 0 || (count > 0 && names == nullptr)) return MB_INVALID_ARGUMENT;
    return guarded([&]() -> int {
        std::vector<std::string> chosen;
        bool known = true;
        for (int i = 0; i < count; ++i) {
            if (names[i] == nullptr) return MB_INVALID_ARGUMENT;
            chosen.push_back(names[i]);
            known = known && holds(*model, names[i]);
        }
        model->last = model->model.writeClasses(chosen, file);
        return known ? statusOf(model->last) : MB_NO_SUCH_CLASS;
    });
}

int mb_result_count(const mb_model* model) { return model == nullptr ? 0 : int(model->last.diagnostics.size()); }

const char* mb_result_text(const mb_model* model, int index) {
    return entry(model, index, resultOf, [](const modelbridge::Diagnostic& d) { return d.text.c_str(); },
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
