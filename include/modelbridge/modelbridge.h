/* ModelBridge for C and other languages: parse a UML model saved as XMI, list its classes,
 * read its diagnostics, and write or render Tarvane class declarations.
 *
 * Text is UTF-8 throughout. A model is an opaque handle that one mb_parse (or mb_parse_with)
 * makes and one mb_free ends. Every function may be called from any thread (calls are
 * serialised inside the library), returns a status where it can fail, and never lets an
 * exception out.
 *
 * How long a string lives is said at each function that gives one: the strings of a model
 * (its report, class names and diagnostics) until mb_free; those of an outcome until
 * mb_outcome_free; a rendered text until the caller's mb_string_free. */
#ifndef MODELBRIDGE_H
#define MODELBRIDGE_H

#include <stddef.h>

#if defined(_WIN32)
#define MB_C_API
#else
#define MB_C_API __attribute__((visibility("default")))
#endif

#ifdef __cplusplus
extern "C" {
#endif

typedef struct mb_model mb_model;
/* What one write gave: its status and its own diagnostics. */
typedef struct mb_outcome mb_outcome;

/* Statuses. */
enum {
    MB_OK = 0,               /* done */
    MB_FAILED = 1,           /* the parse or the write failed: see the diagnostics */
    MB_NO_SUCH_CLASS = 2,    /* a class name that the model doesn't hold; nothing was written */
    MB_INVALID_ARGUMENT = 3, /* a null pointer, a negative count, options out of bounds */
    MB_NO_MEMORY = 4
};

/* Flags of the options: the switches of the library's extensions (mb_switch_name tells them
 * all by name), and the header's time. mb_parse_options_init sets every switch and
 * MB_REPRODUCIBLE; MB_SPECIFIED turns the switches all off, for exactly the library's
 * specified results. */
enum {
    MB_XMI2 = 1,               /* also read UML 2 models saved as XMI 2.x */
    MB_ANYWHERE = 2,           /* find classes wherever exporters put them */
    MB_REPRODUCIBLE = 4,       /* the header's time from SOURCE_DATE_EPOCH when it is set */
    MB_PLAIN_MODEL_TEXT = 8,   /* never lay out a text of the model as a comment */
    MB_DECODE_REFERENCES = 16, /* entities and character references read as their characters */
    MB_EVERY_FORM = 32,        /* members in every form exporters write */
    MB_DECODE_ENCODINGS = 64,  /* a byte-order mark, UTF-16, ISO-8859-1 and windows-1252 read */
    MB_SAFE_NAMES = 128,       /* every name an identifier; same-named classes told apart */
    MB_CROSS_FILE_TYPES = 256, /* types in other files and well-known libraries read by name */
    MB_REPORT = 512,           /* what the text leaves out, as diagnostics of information */
    MB_ENUMERATIONS = 1024,    /* enumerations declared as classes of their literals */
    MB_INTERFACES = 2048,      /* interfaces declared as deferred classes, realisations inherited */
    MB_ASSOCIATION_CLASSES = 4096, /* association classes declared with their own members */
    MB_DOCUMENTATION = 8192,   /* the model's documentation as comments before declarations */
    MB_CONSTRAINTS = 16384,    /* the model's constraints as comments before declarations */
    MB_SPECIFIED = 0x40000000  /* no extension, whatever the other flags say */
};

/* Options of a parse, for mb_parse_with. It opens with its own size, so that a library newer
 * than this header reads only the fields this header knows: start from mb_parse_options_init,
 * which sets the size and every default. */
typedef struct mb_parse_options {
    size_t size;             /* sizeof(mb_parse_options) */
    unsigned flags;          /* MB_XMI2 | MB_ANYWHERE | ... */
    int line_width;          /* 20 to 10000; 0 for the default, 100 */
    const char* indent;      /* one level of indentation; null for one tab */
    const char* file_prefix; /* before the name of every file written; null for none */
    const char* const* library_folders; /* where files of types are looked for by name; */
    int library_folder_count;           /* read during mb_parse_with only */
} mb_parse_options;

/* The options of mb_parse: the same fields, without a size; a null pointer for every default. */
typedef struct mb_options {
    unsigned flags;
    int line_width;
    const char* indent;
    const char* file_prefix;
} mb_options;

/* Diagnostic severities. */
enum { MB_INFORMATION = 0, MB_WARNING = 1, MB_ERROR = 2, MB_FATAL = 3 };

/* Sets the size of *options and every field to its default. */
MB_C_API void mb_parse_options_init(mb_parse_options* options);
/* Parses the file into *model, which is set whenever memory allows, also for a failed parse:
 * MB_OK when it parsed without any error or warning, MB_FAILED (see the diagnostics),
 * MB_INVALID_ARGUMENT (options out of bounds: the reason is the model's one diagnostic).
 * A null `options` gives the defaults. */
MB_C_API int mb_parse_with(const char* path, const mb_parse_options* options, mb_model** model);
MB_C_API int mb_parse(const char* path, const mb_options* options, mb_model** model);

/* The switches of the extensions, by name ("decode-references") and flag, for hosts that take
 * them from their users; a null pointer and 0 for an index out of range. The names live as
 * long as the library. */
MB_C_API int mb_switch_count(void);
MB_C_API const char* mb_switch_name(int index);
MB_C_API unsigned mb_switch_flag(int index);

/* 1 when the parse had no error or warning, else 0. */
MB_C_API int mb_ok(const mb_model* model);
/* "Parsed N lines from file 'model.xmi' in 0 seconds"; lives until mb_free. */
MB_C_API const char* mb_report(const mb_model* model);

/* The classes, sorted; a null pointer for an index out of range. Names live until mb_free. */
MB_C_API int mb_class_count(const mb_model* model);
MB_C_API const char* mb_class_name(const mb_model* model, int index);

/* The errors and warnings of the parse, ordered by position; each as its full one-line text,
 * and in parts (an empty file and line 0 where it has no position). Texts live until mb_free. */
MB_C_API int mb_diagnostic_count(const mb_model* model);
MB_C_API const char* mb_diagnostic_text(const mb_model* model, int index);
MB_C_API int mb_diagnostic_severity(const mb_model* model, int index);
MB_C_API const char* mb_diagnostic_file(const mb_model* model, int index);
MB_C_API int mb_diagnostic_line(const mb_model* model, int index);
MB_C_API int mb_diagnostic_column(const mb_model* model, int index);
MB_C_API const char* mb_diagnostic_message(const mb_model* model, int index);

/* Writes one class into DIRECTORY/NAME.tv. With a non-null `outcome`, *outcome receives what
 * this write alone gave, which the caller frees with mb_outcome_free (null when memory ran
 * out). */
MB_C_API int mb_write_class_outcome(mb_model* model, const char* name, const char* directory, mb_outcome** outcome);
/* Writes the named classes (count 0: every class) into the one file FILE, whose extension
 * becomes ".tv"; `outcome` as for mb_write_class_outcome. */
MB_C_API int mb_write_single_outcome(mb_model* model, const char* const* names, int count, const char* file,
                                     mb_outcome** outcome);
/* The diagnostics of one write; texts live until mb_outcome_free. */
MB_C_API int mb_outcome_count(const mb_outcome* outcome);
MB_C_API const char* mb_outcome_text(const mb_outcome* outcome, int index);
MB_C_API int mb_outcome_severity(const mb_outcome* outcome, int index);
/* The parts of one, as for a model's diagnostics: an empty file and line 0 where it has no
 * position. */
MB_C_API const char* mb_outcome_file(const mb_outcome* outcome, int index);
MB_C_API int mb_outcome_line(const mb_outcome* outcome, int index);
MB_C_API int mb_outcome_column(const mb_outcome* outcome, int index);
MB_C_API const char* mb_outcome_message(const mb_outcome* outcome, int index);
MB_C_API void mb_outcome_free(mb_outcome* outcome);

/* mb_write_class_outcome and mb_write_single_outcome without an outcome: the diagnostics of
 * the last such write that the calling thread made on this model are read with
 * mb_result_count and mb_result_text, whose texts live until that thread's next write on the
 * model, or mb_free. */
MB_C_API int mb_write_class(mb_model* model, const char* name, const char* directory);
MB_C_API int mb_write_single(mb_model* model, const char* const* names, int count, const char* file);
MB_C_API int mb_result_count(const mb_model* model);
MB_C_API const char* mb_result_text(const mb_model* model, int index);

/* Brings DIRECTORY (made with its parents when missing) up to date with the named classes
 * (count 0: every class), one file each: what the user wrote in the files stays and what the
 * model changed lands, by the record of the last generation that the folder keeps in
 * ".modelbridge". *update receives the report, freed with mb_update_free. MB_OK when every
 * file was settled; MB_FAILED when a merge was in conflict, a file the record doesn't know was
 * in the way, a write failed or the record can't be read (see the report); MB_NO_SUCH_CLASS
 * with nothing written. */
typedef struct mb_update mb_update;
enum {
    MB_UPDATE_CHECK = 1,            /* write nothing: only tell what an update would do */
    MB_UPDATE_OVERWRITE = 2,        /* replace files the record doesn't know */
    MB_UPDATE_PRUNE = 4,            /* remove files of classes gone from the model, as last generated */
    MB_UPDATE_CONFLICT_MARKERS = 8, /* write files in conflict with markers round the lines */
    MB_UPDATE_DIFF = 16             /* each file's change as a unified diff (mb_update_diff) */
};
/* What happened to a file: the order of the facade's FileOutcome. */
enum {
    MB_CREATED = 0, MB_UNCHANGED, MB_UPDATED, MB_MERGED, MB_CONFLICT, MB_FOREIGN, MB_STALE, MB_PRUNED, MB_WRITE_FAILED
};
/* Lists of one file's report, for mb_update_item_count and mb_update_item. */
enum { MB_ORPHANED = 0, MB_RESTORED = 1, MB_CONFLICTS = 2 };
MB_C_API int mb_update_folder(mb_model* model, const char* directory, const char* const* names, int count,
                              unsigned flags, mb_update** update);
/* Why nothing was done ("FILE:LINE: reason" for a record that can't be read), or "". */
MB_C_API const char* mb_update_error(const mb_update* update);
MB_C_API int mb_update_file_count(const mb_update* update);
/* The file's name in the folder, its outcome (MB_CREATED ...), whether it is or would be
 * written, renamed or removed, the file it was renamed from (or ""), why it was left alone or
 * failed (or ""), and its unified diff with MB_UPDATE_DIFF (or ""). Texts live until
 * mb_update_free; an index out of range gives a null pointer or -1. */
MB_C_API const char* mb_update_file(const mb_update* update, int index);
MB_C_API int mb_update_outcome(const mb_update* update, int index);
MB_C_API const char* mb_update_outcome_name(int outcome);
MB_C_API int mb_update_changes(const mb_update* update, int index);
MB_C_API const char* mb_update_renamed_from(const mb_update* update, int index);
MB_C_API const char* mb_update_message(const mb_update* update, int index);
MB_C_API const char* mb_update_diff(const mb_update* update, int index);
/* The members of a file that are kept commented out (MB_ORPHANED), back in place
 * (MB_RESTORED), or in conflict (MB_CONFLICTS, with mb_update_conflict_line): each by its
 * first line. */
MB_C_API int mb_update_item_count(const mb_update* update, int index, int list);
MB_C_API const char* mb_update_item(const mb_update* update, int index, int list, int item);
MB_C_API int mb_update_conflict_line(const mb_update* update, int index, int item);
MB_C_API void mb_update_free(mb_update* update);

/* The text that mb_write_class(model, name, ".") would write, into *text, which the caller
 * frees with mb_string_free. */
MB_C_API int mb_render_class(mb_model* model, const char* name, char** text);
MB_C_API void mb_string_free(char* text);

MB_C_API void mb_free(mb_model* model);

#ifdef __cplusplus
}
#endif

#endif
