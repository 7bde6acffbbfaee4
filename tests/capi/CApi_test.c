/* The C API from C: a model parsed, listed, written, rendered and freed; refusals and
 * diagnostics as statuses. Prints each failed check and exits with 1 when any failed. */
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include "modelbridge/modelbridge.h"

static int failures = 0;

#define CHECK(condition)                                                  \
    do {                                                                  \
        if (!(condition)) {                                               \
            fprintf(stderr, "%s:%d: failed: %s\n", __FILE__, __LINE__, #condition); \
            ++failures;                                                   \
        }                                                                 \
    } while (0)

int main(int argc, char** argv) {
    if (argc != 3) return 2;
    const char* model_path = argv[1]; /* the bank example */
    const char* directory = argv[2];  /* an empty folder */
    mb_model* model = NULL;
    CHECK(mb_parse(model_path, NULL, &model) == MB_OK);
    CHECK(model != NULL && mb_ok(model) == 1);
    CHECK(strncmp(mb_report(model), "Parsed 116 lines from file 'bank.xmi'", 37) == 0);
    CHECK(mb_class_count(model) == 3);
    CHECK(strcmp(mb_class_name(model, 0), "Account") == 0);
    CHECK(strcmp(mb_class_name(model, 2), "SavingsAccount") == 0);
    CHECK(mb_class_name(model, 3) == NULL && mb_class_name(model, -1) == NULL);
    CHECK(mb_diagnostic_count(model) == 1 && mb_diagnostic_severity(model, 0) == MB_INFORMATION &&
          strncmp(mb_diagnostic_text(model, 0), "Left out: 4 data types", 22) == 0 && mb_diagnostic_text(model, 1) == NULL);

    CHECK(mb_write_class(model, "Customer", directory) == MB_OK);
    CHECK(mb_write_class(model, "Nobody", directory) == MB_NO_SUCH_CLASS);
    CHECK(mb_result_count(model) == 1 && strcmp(mb_result_text(model, 0), "the model has no class 'Nobody'") == 0);
    const char* both[] = {"SavingsAccount", "Account"};
    char single[4096];
    snprintf(single, sizeof single, "%s/both", directory);
    CHECK(mb_write_single(model, both, 2, single) == MB_OK);
    CHECK(mb_write_single(model, NULL, 1, single) == MB_INVALID_ARGUMENT);
    char missing[4096];
    snprintf(missing, sizeof missing, "%s/no/such", directory);
    CHECK(mb_write_class(model, "Account", missing) == MB_FAILED);
    CHECK(mb_result_count(model) == 1 &&
          strstr(mb_result_text(model, 0), "for 'write' access: No such file or directory.") != NULL);
    /* A write with an outcome of its own leaves the thread's last write as it was. */
    mb_outcome* outcome = NULL;
    CHECK(mb_write_class_outcome(model, "Customer", directory, &outcome) == MB_OK);
    CHECK(outcome != NULL && mb_outcome_count(outcome) == 0 && mb_outcome_text(outcome, 0) == NULL);
    mb_outcome_free(outcome);
    CHECK(mb_write_single_outcome(model, both, 2, missing, &outcome) == MB_FAILED);
    CHECK(mb_outcome_count(outcome) == 1 && mb_outcome_severity(outcome, 0) == MB_FATAL);
    CHECK(strncmp(mb_outcome_text(outcome, 0), "Fatal error! Unable to open file", 32) == 0);
    CHECK(strcmp(mb_outcome_file(outcome, 0), "") == 0 && mb_outcome_line(outcome, 0) == 0 &&
          mb_outcome_column(outcome, 0) == 0);
    CHECK(strstr(mb_outcome_message(outcome, 0), "for 'write' access: No such file or directory.") != NULL);
    CHECK(mb_outcome_message(outcome, 1) == NULL && mb_outcome_line(outcome, 1) == -1);
    mb_outcome_free(outcome);
    CHECK(mb_result_count(model) == 1);

    char* text = NULL;
    CHECK(mb_render_class(model, "Account", &text) == MB_OK);
    CHECK(text != NULL && strstr(text, "class Account ^=\n") != NULL);
    mb_string_free(text);
    CHECK(mb_render_class(model, "Nobody", &text) == MB_NO_SUCH_CLASS && text == NULL);
    mb_free(model);

    mb_options narrow = {0, 5, NULL, NULL};
    CHECK(mb_parse(model_path, &narrow, &model) == MB_INVALID_ARGUMENT);
    CHECK(mb_diagnostic_count(model) == 1 && strstr(mb_diagnostic_text(model, 0), "line width 5") != NULL);
    mb_free(model);

    /* Options that open with their size; the switches known by name and flag. */
    mb_parse_options options;
    mb_parse_options_init(&options);
    CHECK(options.size == sizeof options && options.line_width == 0 &&
          options.flags == (MB_XMI2 | MB_ANYWHERE | MB_PLAIN_MODEL_TEXT | MB_DECODE_REFERENCES | MB_EVERY_FORM |
                            MB_DECODE_ENCODINGS | MB_SAFE_NAMES | MB_CROSS_FILE_TYPES |
                            MB_REPORT | MB_ENUMERATIONS | MB_INTERFACES | MB_ASSOCIATION_CLASSES |
                            MB_DOCUMENTATION | MB_CONSTRAINTS | MB_REPRODUCIBLE));
    options.line_width = 5;
    CHECK(mb_parse_with(model_path, &options, &model) == MB_INVALID_ARGUMENT);
    mb_free(model);
    options.size = 1;
    CHECK(mb_parse_with(model_path, &options, &model) == MB_INVALID_ARGUMENT && model == NULL);
    CHECK(mb_switch_count() == 14 && strcmp(mb_switch_name(3), "decode-references") == 0);
    CHECK(mb_switch_flag(4) == MB_EVERY_FORM && mb_switch_name(14) == NULL && mb_switch_flag(-1) == 0);

    /* Every extension by default: a class in a subsystem is found; MB_SPECIFIED turns them all off. */
    char nested[4096];
    snprintf(nested, sizeof nested, "%s/nested.xmi", directory);
    FILE* nestedFile = fopen(nested, "w");
    fputs("<XMI><XMI.content><UML:Model><UML:Namespace.ownedElement><UML:Subsystem><UML:Class xmi.id='n' name='Inner'/>"
          "</UML:Subsystem></UML:Namespace.ownedElement></UML:Model></XMI.content></XMI>\n", nestedFile);
    fclose(nestedFile);
    CHECK(mb_parse(nested, NULL, &model) == MB_OK && mb_class_count(model) == 1);
    mb_free(model);
    mb_parse_options_init(&options);
    options.flags |= MB_SPECIFIED;
    CHECK(mb_parse_with(nested, &options, &model) == MB_OK && mb_class_count(model) == 0);
    mb_free(model);

    char bad[4096];
    snprintf(bad, sizeof bad, "%s/bad.xmi", directory);
    FILE* out = fopen(bad, "w");
    fputs("<XMI>\n<a b=c/>\n</XMI>\n", out);
    fclose(out);
    CHECK(mb_parse(bad, NULL, &model) == MB_FAILED);
    CHECK(mb_ok(model) == 0 && mb_class_count(model) == 0 && mb_diagnostic_count(model) == 1);
    CHECK(mb_diagnostic_severity(model, 0) == MB_FATAL);
    CHECK(mb_diagnostic_line(model, 0) == 2 && mb_diagnostic_column(model, 0) == 6);
    CHECK(strcmp(mb_diagnostic_file(model, 0), bad) == 0);
    CHECK(strcmp(mb_diagnostic_message(model, 0), "Syntax error at ''c''.") == 0);
    mb_free(model);

    CHECK(mb_parse(NULL, NULL, &model) == MB_INVALID_ARGUMENT && model == NULL);
    mb_free(NULL);

    /* An update: every file created, then a check that finds nothing to change. */
    char folder[4096];
    snprintf(folder, sizeof folder, "%s/updated", directory);
    CHECK(mb_parse(argv[1], NULL, &model) == MB_OK);
    mb_update* update = NULL;
    CHECK(mb_update_folder(model, folder, NULL, 0, 0, &update) == MB_OK && mb_update_file_count(update) == 3);
    CHECK(strcmp(mb_update_error(update), "") == 0 && strcmp(mb_update_file(update, 0), "Account.tv") == 0);
    CHECK(mb_update_outcome(update, 0) == MB_CREATED && mb_update_changes(update, 0) == 1);
    CHECK(strcmp(mb_update_outcome_name(mb_update_outcome(update, 0)), "created") == 0);
    CHECK(mb_update_item_count(update, 0, MB_ORPHANED) == 0 && mb_update_item(update, 0, MB_CONFLICTS, 0) == NULL);
    CHECK(mb_update_outcome(update, 3) == -1 && mb_update_file(update, -1) == NULL);
    mb_update_free(update);
    CHECK(mb_update_folder(model, folder, NULL, 0, MB_UPDATE_CHECK, &update) == MB_OK);
    CHECK(mb_update_outcome(update, 2) == MB_UNCHANGED && mb_update_changes(update, 2) == 0);
    mb_update_free(update);
    const char* nobody[] = {"Nobody"};
    CHECK(mb_update_folder(model, folder, nobody, 1, 0, &update) == MB_NO_SUCH_CLASS && update == NULL);
    CHECK(mb_update_folder(model, NULL, NULL, 0, 0, &update) == MB_INVALID_ARGUMENT);
    mb_free(model);
    if (failures == 0) printf("C API: every check passed\n");
    return failures == 0 ? 0 : 1;
}
