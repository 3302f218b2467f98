/* The C interface of tov: a door for hosts in any language (C, Python through
 * ctypes, Java through the org.tov package over JNI, C# through P/Invoke).
 * It compiles as C99 and as C++, and only plain C types cross it: texts in,
 * the response's single-string form out.
 *
 * An answer is the flat JSON object of strings that `tov eval` prints, keys in
 * byte order, for instance (on one line)
 *   {"Result":"Success","ResultComment":"Edit attempt approved",
 *    "TriggerInitialization":"{ReleaseDate:Reset}"}
 * "Result" is "Success" or "Failure"; "ResultComment" is for people; the other
 * members are for programs ("ObjectFamilyMembers" and "ManualLinkAncestors"
 * with "MissingData" ask for a second pass with those objects added).
 *
 * Threads: one engine may be shared. Any number of threads may call
 * tov_evaluate and tov_evaluate_file on it at once; evaluations run in
 * parallel and never wait for a load. A load of either document builds the
 * new store beside the current one and then replaces it in one step, so every
 * evaluation is judged wholly by the documents before the load or wholly by
 * those after it, never by a mix or a half-loaded store. Loads and
 * tov_set_log on one engine take turns. Freeing an engine while another
 * thread still calls it is the host's mistake. Different engines share
 * nothing (each has its own rules, data model and logger).
 *
 * No C++ exception leaves these functions. Loading the rules may print notices
 * about rule keywords that tov does not support on standard output. */
#ifndef TOV_TOV_C_H_
#define TOV_TOV_C_H_

#include "tov/export.h"

#ifdef __cplusplus
extern "C" {
#endif

/* One private set of rules, data model and logger, safe to share between
 * threads. Logging starts off. */
/* NOLINTNEXTLINE(modernize-use-using): the header is C as well. */
typedef struct tov_engine tov_engine;

/* A new engine with nothing loaded; NULL only when memory runs out. */
TOV_API tov_engine* tov_engine_new(void);

/* Frees an engine and everything it loaded. NULL is allowed. */
TOV_API void tov_engine_free(tov_engine* engine);

/* Evaluates one request, given as JSON text, and returns the answer in its
 * single-string form, to be freed with tov_string_free.
 *
 * kind is one of the words of `tov eval`, or one of the two documents:
 *   "rules"                   replace the rules (all or nothing)
 *   "datamodel"               replace the data-model information
 *   "edit"                    may this edit be committed?
 *   "edit-before-resolution"  the same, leaving conflict resolution rules out
 *   "save"                    may this save, which uploads the file, be committed?
 *   "save-before-resolution"  the same, leaving conflict resolution rules out
 *   "link"                    may this manual link be created?
 *   "options"                 which conflict resolutions are proper?
 * Words are exact, in small letters.
 *
 * A NULL argument or an unknown kind gets a Failure answer whose comment says
 * so, such as {"Result":"Failure","ResultComment":"Unknown request kind \"x\": ..."}.
 * When memory runs out the answer is
 *   {"Result":"Failure","ResultComment":"Out of memory: tov could not answer"}
 * and the result is NULL only if not even that text can be allocated. A load
 * that runs out of memory leaves its document not loaded, as a load of a
 * faulty document does; the engine stays usable. */
TOV_API char* tov_evaluate(tov_engine* engine, const char* kind, const char* json_text);

/* The same with the path of a file that holds the JSON text. A file that
 * cannot be read is answered like text that is no JSON object:
 * {"Result":"Failure","ResultComment":"Json has fundamental parsing error"}. */
TOV_API char* tov_evaluate_file(tov_engine* engine, const char* kind, const char* path);

/* The same as tov_evaluate, and tells which rules judged the request: *trace
 * (when trace is not NULL) becomes a JSON array, one object per rule in the
 * order of judging, to be freed with tov_string_free, for instance
 *   [{"section":"transitions","number":2,"rule":"For Part: Status can ...",
 *     "outcome":"objected","decisive":true}]
 * "number" is the rule's place in its section of the rules document, from 1;
 * "outcome" is "approved", "objected", "asked for missing data" or "not
 * applicable"; "decisive" tells the rules whose words stand in the comment.
 * A load or a call that judges no rule gives "[]"; *trace is NULL only when
 * the answer is the out-of-memory one or not even that could be made. */
TOV_API char* tov_evaluate_traced(tov_engine* engine, const char* kind, const char* json_text,
                                  char** trace);

/* Frees an answer. NULL is allowed. */
TOV_API void tov_string_free(char* text);

/* The results of tov_set_log. */
enum {
    TOV_LOG_OK = 0,
    TOV_LOG_NULL_ARGUMENT = 1,
    TOV_LOG_UNUSABLE_FOLDER = 2,
    TOV_LOG_OUT_OF_MEMORY = 3
};

/* Where the engine logs, as the --log option of the tov program says it:
 *   "" or "off" (in any case)  nowhere (the default of a new engine)
 *   "console" (in any case)    standard output
 *   anything else              a folder, created if missing; each call starts
 *                              a new file in it, named \TOV_Log_<seconds>.txt
 *                              (the library's file name starts with a back-slash)
 * Returns TOV_LOG_OK; or TOV_LOG_NULL_ARGUMENT; or TOV_LOG_UNUSABLE_FOLDER when
 * the folder cannot be created or is no folder; or TOV_LOG_OUT_OF_MEMORY. After
 * either of the first two failures the engine logs as before. */
TOV_API int tov_set_log(tov_engine* engine, const char* where);

/* The library's version, "1.1"; a static text, not to be freed. */
TOV_API const char* tov_version(void);

#ifdef __cplusplus
}
#endif

#endif /* TOV_TOV_C_H_ */
