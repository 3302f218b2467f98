/* A host written in C. It loads the data model and the rules, then evaluates
 * each request named on the command line and prints the answer on standard
 * output, one line each, exactly as `tov eval` prints it; on standard error it
 * tells what the host would do next.
 *
 *   tov_c_host RULES DATAMODEL [KIND REQUEST]...
 *
 * KIND is edit, edit-before-resolution, save, save-before-resolution, link or
 * options. Exit status: 0 when both documents loaded, 1 when one did not,
 * 2 for bad arguments. */
#include <stdio.h>
#include <string.h>

#include "tov/tov_c.h"

/* The answer is a flat JSON object of strings with its keys in byte order.
 * A quote inside a value is escaped, so a member's key and value, quoted and
 * joined by a colon, can only be found where that member stands. */
static int has_member(const char* answer, const char* member) {
    return strstr(answer, member) != NULL;
}

static int succeeded(const char* answer) {
    return has_member(answer, "\"Result\":\"Success\"");
}

static void tell_next_step(const char* request, const char* answer) {
    if (succeeded(answer)) {
        fprintf(stderr, "%s: approved%s\n", request,
                has_member(answer, "\"TriggerInitialization\":")
                    ? "; initialize what TriggerInitialization names"
                    : "");
    } else if (has_member(answer, "\"ObjectFamilyMembers\":\"MissingData\"") ||
               has_member(answer, "\"ManualLinkAncestors\":\"MissingData\"")) {
        fprintf(stderr, "%s: fetch the objects asked for and send the request again\n", request);
    } else {
        fprintf(stderr, "%s: refused; show ResultComment to the user\n", request);
    }
}

/* Loads one document; tells and returns 0 when it did not load. */
static int load(tov_engine* engine, const char* kind, const char* path) {
    char* answer = tov_evaluate_file(engine, kind, path);
    const int loaded = answer != NULL && succeeded(answer);
    if (!loaded) {
        fprintf(stderr, "tov_c_host: %s did not load: %s\n", path,
                answer == NULL ? "out of memory" : answer);
    }
    tov_string_free(answer);
    return loaded;
}

int main(int argc, char** argv) {
    tov_engine* engine = NULL;
    int status = 0;
    int i = 0;
    if (argc < 3 || argc % 2 == 0) {
        fprintf(stderr, "usage: %s RULES DATAMODEL [KIND REQUEST]...\n", argv[0]);
        return 2;
    }
    engine = tov_engine_new(); /* logs nowhere; tov_set_log chooses otherwise */
    if (engine == NULL) {
        fprintf(stderr, "tov_c_host: out of memory\n");
        return 1;
    }
    if (!load(engine, "datamodel", argv[2]) || !load(engine, "rules", argv[1])) {
        status = 1;
    }
    for (i = 3; status == 0 && i + 1 < argc; i += 2) {
        char* answer = tov_evaluate_file(engine, argv[i], argv[i + 1]);
        if (answer == NULL) {
            fprintf(stderr, "tov_c_host: out of memory\n");
            status = 1;
            break;
        }
        printf("%s\n", answer);
        tell_next_step(argv[i + 1], answer);
        tov_string_free(answer);
    }
    tov_engine_free(engine);
    return status;
}
