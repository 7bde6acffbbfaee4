/* ModelBridge for C and other languages: parse a UML model saved as XMI, list its classes,
 * read its diagnostics, and write or render Tarvane class declarations.
 *
 * Text is UTF-8 throughout. A model is an opaque handle that one mb_parse makes and one mb_free
 * ends; the strings it gives stay valid until then. Every function may be called from any
 * thread (calls are serialised inside the library), returns a status where it can fail, and
 * never lets an exception out. */
#ifndef MODELBRIDGE_H
#define MODELBRIDGE_H

#if defined(_WIN32)
#define MB_C_API
#else
#define MB_C_API __attribute__((visibility("default")))
#endif

#ifdef __cplusplus
extern "C" {
#endif

typedef struct mb_model mb_model;

/* Statuses. */
enum {
    MB_OK = 0,               /* done */
    MB_FAILED = 1,           /* the parse or the write failed: see the diagnostics */
    MB_NO_SUCH_CLASS = 2,    /* a class name that the model doesn't hold; nothing was written */
    MB_INVALID_ARGUMENT = 3, /* a null pointer, a negative count, options out of bounds */
    MB_NO_MEMORY = 4
};

/* Flags of mb_options. */
enum {
    MB_XMI2 = 1,         /* also read UML 2 models saved as XMI 2.x */
    MB_ANYWHERE = 2,     /* find classes wherever exporters put them */
    MB_REPRODUCIBLE = 4  /* the header's time from SOURCE_DATE_EPOCH when it is set */
};

/* Options of a parse; all zero (or a null pointer) gives the defaults. */
typedef struct mb_options {
    unsigned flags;          /* MB_XMI2 | MB_ANYWHERE | MB_REPRODUCIBLE */
    int line_width;          /* 20 to 10000; 0 for the default, 100 */
    const char* indent;      /* one level of indentation; null for one tab */
    const char* file_prefix; /* before the name of every file written; null for none */
} mb_options;

/* Diagnostic severities. */
enum { MB_INFORMATION = 0, MB_WARNING = 1, MB_ERROR = 2, MB_FATAL = 3 };

/* Parses the file into *model, which is set whenever memory allows, also for a failed parse:
 * MB_OK when it parsed without any error or warning, MB_FAILED (see the diagnostics),
 * MB_INVALID_ARGUMENT (options out of bounds: the reason is the model's one diagnostic). */
MB_C_API int mb_parse(const char* path, const mb_options* options, mb_model** model);
/* 1 when the parse had no error or warning, else 0. */
MB_C_API int mb_ok(const mb_model* model);
/* "Parsed N lines from file 'model.xmi' in 0 seconds". */
MB_C_API const char* mb_report(const mb_model* model);

/* The classes, sorted; a null pointer for an index out of range. */
MB_C_API int mb_class_count(const mb_model* model);
MB_C_API const char* mb_class_name(const mb_model* model, int index);

/* The errors and warnings of the parse, ordered by position; each as its full one-line text,
 * and in parts (an empty file and line 0 where it has no position). */
MB_C_API int mb_diagnostic_count(const mb_model* model);
MB_C_API const char* mb_diagnostic_text(const mb_model* model, int index);
MB_C_API int mb_diagnostic_severity(const mb_model* model, int index);
MB_C_API const char* mb_diagnostic_file(const mb_model* model, int index);
MB_C_API int mb_diagnostic_line(const mb_model* model, int index);
MB_C_API int mb_diagnostic_column(const mb_model* model, int index);
MB_C_API const char* mb_diagnostic_message(const mb_model* model, int index);

/* Writes one class into DIRECTORY/NAME.tv. */
MB_C_API int mb_write_class(mb_model* model, const char* name, const char* directory);
/* Writes the named classes (count 0: every class) into the one file FILE, whose extension
 * becomes ".tv". */
MB_C_API int mb_write_single(mb_model* model, const char* const* names, int count, const char* file);
/* The diagnostics of the last write on this model. */
MB_C_API int mb_result_count(const mb_model* model);
MB_C_API const char* mb_result_text(const mb_model* model, int index);

/* The text that mb_write_class(model, name, ".") would write, into *text, which the caller
 * frees with mb_string_free. */
MB_C_API int mb_render_class(mb_model* model, const char* name, char** text);
MB_C_API void mb_string_free(char* text);

MB_C_API void mb_free(mb_model* model);

#ifdef __cplusplus
}
#endif

#endif
