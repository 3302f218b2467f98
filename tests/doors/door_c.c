/* The doors test's runner for the C interface: answers every case of a
 * corpus (see corpus.py) on one engine, reloading the documents of each
 * group, and writes "ID<TAB>ANSWER" lines.
 *
 *   tov_door_c text|file CORPUS ANSWERS
 *
 * "text" hands each request over as its text (tov_evaluate), "file" as the
 * path of its file (tov_evaluate_file). The documents always go by path. */
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include "tov/tov_c.h"

enum { kLineSize = 4096, kPathSize = 4096 };

static int write_answer(FILE* out, const char* id, char* answer) {
    if (answer == NULL) {
        fprintf(stderr, "tov_door_c: no answer for %s\n", id);
        return 0;
    }
    fprintf(out, "%s\t%s\n", id, answer);
    tov_string_free(answer);
    return 1;
}

/* The whole file as a text; NULL when it cannot be read. */
static char* read_file(const char* path) {
    FILE* file = fopen(path, "rb");
    char* text = NULL;
    long size = 0;
    if (file == NULL) {
        return NULL;
    }
    if (fseek(file, 0, SEEK_END) == 0 && (size = ftell(file)) >= 0 &&
        fseek(file, 0, SEEK_SET) == 0) {
        text = malloc((size_t)size + 1);
        if (text != NULL && fread(text, 1, (size_t)size, file) != (size_t)size) {
            free(text);
            text = NULL;
        }
        if (text != NULL) {
            text[size] = '\0';
        }
    }
    fclose(file);
    return text;
}

/* Splits a manifest line at its tabs; returns the number of fields. */
static int split(char* line, char** fields, int most) {
    int count = 0;
    char* at = line;
    line[strcspn(line, "\n")] = '\0';
    while (count < most) {
        fields[count++] = at;
        at = strchr(at, '\t');
        if (at == NULL) {
            break;
        }
        *at++ = '\0';
    }
    return count;
}

int main(int argc, char** argv) {
    char line[kLineSize];
    char path[kPathSize];
    char id[kLineSize];
    char* fields[6];
    FILE* manifest = NULL;
    FILE* out = NULL;
    tov_engine* engine = NULL;
    int by_file = 0;
    int ok = 1;
    const char* corpus = NULL;
    if (argc != 4 || (strcmp(argv[1], "text") != 0 && strcmp(argv[1], "file") != 0)) {
        fprintf(stderr, "usage: tov_door_c text|file CORPUS ANSWERS\n");
        return 2;
    }
    by_file = strcmp(argv[1], "file") == 0;
    corpus = argv[2];
    snprintf(path, sizeof path, "%s/manifest.tsv", corpus);
    manifest = fopen(path, "r");
    out = fopen(argv[3], "w");
    engine = tov_engine_new();
    if (manifest == NULL || out == NULL || engine == NULL) {
        fprintf(stderr, "tov_door_c: cannot open %s or %s\n", path, argv[3]);
        return 1;
    }
    while (ok && fgets(line, sizeof line, manifest) != NULL) {
        const int count = split(line, fields, 6);
        if (strcmp(fields[0], "group") == 0 && count == 5) {
            snprintf(path, sizeof path, "%s/%s", corpus, fields[3]);
            snprintf(id, sizeof id, "%s/datamodel", fields[1]);
            ok = write_answer(out, id, tov_evaluate_file(engine, "datamodel", path));
            snprintf(path, sizeof path, "%s/%s", corpus, fields[4]);
            snprintf(id, sizeof id, "%s/rules", fields[1]);
            ok = ok && write_answer(out, id, tov_evaluate_file(engine, "rules", path));
        } else if (strcmp(fields[0], "case") == 0 && count == 5) {
            snprintf(path, sizeof path, "%s/%s", corpus, fields[3]);
            if (by_file) {
                if (strstr(fields[4], "empty") == NULL) {
                    ok = write_answer(out, fields[1], tov_evaluate_file(engine, fields[2], path));
                }
            } else {
                char* text = read_file(path);
                ok = text != NULL &&
                     write_answer(out, fields[1], tov_evaluate(engine, fields[2], text));
                free(text);
            }
        }
    }
    tov_engine_free(engine);
    fclose(manifest);
    return fclose(out) == 0 && ok ? 0 : 1;
}
