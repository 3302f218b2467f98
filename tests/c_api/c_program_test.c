/* The C interface from a program compiled as C99: misuse gets its answer, and
 * every example request gets the answer that `tov eval` prints.
 * Run as: c_program_test EXAMPLES_DIR KIND NAME [KIND NAME ...] */
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include "tov/tov_c.h"

static int passed = 0;
static int failed = 0;

/* Compares an answer with what it should be, then frees it. */
static void expect_answer(const char* what, char* answer, const char* expected) {
    if (answer != NULL && expected != NULL && strcmp(answer, expected) == 0) {
        ++passed;
    } else {
        ++failed;
        fprintf(stderr, "%s:\n  got      %s\n  expected %s\n", what,
                answer == NULL ? "(NULL)" : answer, expected == NULL ? "(NULL)" : expected);
    }
    tov_string_free(answer);
}

static void expect_int(const char* what, int got, int expected) {
    if (got == expected) {
        ++passed;
    } else {
        ++failed;
        fprintf(stderr, "%s: got %d, expected %d\n", what, got, expected);
    }
}

/* first + second + third in new memory; NULL when memory runs out. */
static char* join(const char* first, const char* second, const char* third) {
    const size_t length = strlen(first) + strlen(second) + strlen(third);
    char* text = malloc(length + 1);
    if (text != NULL) {
        strcpy(text, first);
        strcat(text, second);
        strcat(text, third);
    }
    return text;
}

/* A whole file without its closing line feed, in new memory; NULL if unreadable. */
static char* read_file(const char* path) {
    FILE* file = fopen(path, "rb");
    char* text = NULL;
    size_t length = 0;
    size_t got = 0;
    char buffer[4096];
    if (file == NULL) {
        return NULL;
    }
    while ((got = fread(buffer, 1, sizeof buffer, file)) > 0) {
        char* longer = realloc(text, length + got + 1);
        if (longer == NULL) {
            free(text);
            fclose(file);
            return NULL;
        }
        text = longer;
        memcpy(text + length, buffer, got);
        length += got;
    }
    fclose(file);
    if (text == NULL) {
        text = calloc(1, 1);
    } else {
        text[length] = '\0';
        if (length > 0 && text[length - 1] == '\n') {
            text[length - 1] = '\0';
        }
    }
    return text;
}

static void check_misuse(tov_engine* engine) {
    tov_engine_free(NULL);
    tov_string_free(NULL);
    expect_answer("null engine", tov_evaluate(NULL, "edit", "{}"),
                  "{\"Result\":\"Failure\",\"ResultComment\":\"No engine given (NULL)\"}");
    expect_answer("null kind", tov_evaluate_file(engine, NULL, "x.json"),
                  "{\"Result\":\"Failure\",\"ResultComment\":\"No request kind given (NULL)\"}");
    expect_answer("null path", tov_evaluate_file(engine, "edit", NULL),
                  "{\"Result\":\"Failure\",\"ResultComment\":"
                  "\"No request file path given (NULL)\"}");
    expect_answer(
        "unknown kind", tov_evaluate(engine, "explain", "{}"),
        "{\"Result\":\"Failure\",\"ResultComment\":\"Unknown request kind \\\"explain\\\": "
        "expected rules, datamodel, edit, edit-before-resolution, save, "
        "save-before-resolution, link or options\"}");
    expect_answer(
        "unreadable path", tov_evaluate_file(engine, "rules", "/nonexistent/rules.json"),
        "{\"Result\":\"Failure\",\"ResultComment\":\"Json has fundamental parsing error\"}");
    expect_int("log nowhere", tov_set_log(engine, ""), TOV_LOG_OK);
    expect_int("log without engine", tov_set_log(NULL, "console"), TOV_LOG_NULL_ARGUMENT);
    if (strcmp(tov_version(), "1.1") != 0) {
        ++failed;
        fprintf(stderr, "version: got %s\n", tov_version());
    }
}

static void check_example(tov_engine* engine, const char* examples, const char* kind,
                          const char* name) {
    char* request_path = join(examples, "/requests/", name);
    char* request_file = request_path == NULL ? NULL : join(request_path, ".json", "");
    char* expected_path = join(examples, "/expected/", name);
    char* expected_file = expected_path == NULL ? NULL : join(expected_path, ".out", "");
    char* expected = expected_file == NULL ? NULL : read_file(expected_file);
    char* request = request_file == NULL ? NULL : read_file(request_file);
    if (request_file == NULL || request == NULL || expected == NULL) {
        ++failed;
        fprintf(stderr, "%s: cannot read the request or its expected answer\n", name);
    } else {
        expect_answer(name, tov_evaluate_file(engine, kind, request_file), expected);
        expect_answer(name, tov_evaluate(engine, kind, request), expected);
    }
    free(request_path);
    free(request_file);
    free(expected_path);
    free(expected_file);
    free(expected);
    free(request);
}

int main(int argc, char** argv) {
    tov_engine* engine = NULL;
    char* datamodel = NULL;
    char* rules = NULL;
    int i = 0;
    if (argc < 2 || argc % 2 != 0) {
        fprintf(stderr, "usage: %s EXAMPLES_DIR KIND NAME [KIND NAME ...]\n", argv[0]);
        return 2;
    }
    engine = tov_engine_new();
    if (engine == NULL) {
        fprintf(stderr, "no engine\n");
        return 1;
    }
    check_misuse(engine);

    datamodel = join(argv[1], "/datamodel.json", "");
    rules = join(argv[1], "/rules.json", "");
    if (datamodel != NULL && rules != NULL) {
        expect_answer(
            "data model", tov_evaluate_file(engine, "datamodel", datamodel),
            "{\"Result\":\"Success\",\"ResultComment\":\"Succesfully initialized DM info\"}");
        expect_answer(
            "rules", tov_evaluate_file(engine, "rules", rules),
            "{\"Result\":\"Success\",\"ResultComment\":\"Successfully initialized TOV rules\"}");
    }
    free(datamodel);
    free(rules);
    for (i = 2; i + 1 < argc; i += 2) {
        check_example(engine, argv[1], argv[i], argv[i + 1]);
    }
    tov_engine_free(engine);
    printf("%d passed, %d failed\n", passed, failed);
    return failed == 0 ? 0 : 1;
}
