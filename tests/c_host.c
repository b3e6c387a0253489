/* A plain C program converts a file through svgmodule_convert and checks what it gets:
 *   c_host FILE   (an EMF or WMF the contract mode converts) */
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <svgmodule.h>

static int failures = 0;

#define CHECK(condition)                                                          \
    do {                                                                          \
        if (!(condition)) {                                                       \
            fprintf(stderr, "line %d: %s does not hold\n", __LINE__, #condition); \
            ++failures;                                                           \
        }                                                                         \
    } while (0)

int main(int argc, char** argv) {
    FILE* file;
    long size;
    char* data;
    char* svg = NULL;
    size_t length = 0, contractLength;
    int status;
    svgmodule_options options = SVGMODULE_OPTIONS_INIT;

    if (argc != 2 || !(file = fopen(argv[1], "rb")) || fseek(file, 0, SEEK_END) != 0) return 2;
    size = ftell(file);
    rewind(file);
    data = size > 0 ? malloc((size_t)size) : NULL;
    if (!data || fread(data, 1, (size_t)size, file) != (size_t)size) return 2;
    fclose(file);

    /* The defaults: the contract output, unrepaired, NUL-terminated. */
    status = svgmodule_convert(data, (size_t)size, &options, &svg, &length);
    CHECK(status == 1 || status == 2);
    CHECK(svg != NULL && length > 0 && svg[length] == '\0');
    CHECK(svg != NULL && strncmp(svg, "<?xml", 5) == 0 && strstr(svg, "</svg>") != NULL);
    CHECK(svg != NULL && strstr(svg, "xmlns:xlink") == NULL);
    contractLength = length;
    svgmodule_free(svg);

    /* A repair asked for. */
    options.repairs = SVGMODULE_REPAIR_XLINK;
    options.diagnostic_name = argv[1];
    CHECK(svgmodule_convert(data, (size_t)size, &options, &svg, &length) == status);
    CHECK(svg != NULL && strstr(svg, "<svg xmlns:xlink=") != NULL);
    svgmodule_free(svg);

    /* A refusal: no document. */
    CHECK(svgmodule_convert(data, 10, NULL, &svg, &length) == 0 && svg == NULL && length == 0);
    svgmodule_free(NULL);

    free(data);
    if (!failures)
        printf("C host ok: status %d, %lu bytes of SVG\n", status, (unsigned long)contractLength);
    return failures ? 1 : 0;
}
