/* A C host of the C API, built outside the project: it lists the classes of a model. */
#include <stdio.h>

#include <modelbridge/modelbridge.h>

int main(int argc, char** argv) {
    mb_model* model = NULL;
    int i;
    if (argc != 2) return 2;
    if (mb_parse(argv[1], NULL, &model) != MB_OK) {
        for (i = 0; i < mb_diagnostic_count(model); ++i) fprintf(stderr, "%s\n", mb_diagnostic_text(model, i));
        mb_free(model);
        return 1;
    }
    for (i = 0; i < mb_class_count(model); ++i) printf("%s\n", mb_class_name(model, i));
    mb_free(model);
    return 0;
}
