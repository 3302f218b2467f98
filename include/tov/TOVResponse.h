// The single result of every request: a general result and an ordered map from
// keyword to comment. The comment for people is the entry "ResultComment"; the
// general result appears as "Result" in the text forms only.
//
// Reading an answer:
//
//   TOVResponse answer = EvaluateTOVEditAttempt(request, &coreData);
//   TOVMissingDataForEvaluation missing;
//   if (answer.needsReevaluation(missing)) {
//       // Fetch the family members and/or the manual link ancestors, add
//       // "membersOfFamily" / "manualLinkAncestors" to the request, call again.
//   } else if (answer.getGeneralResult()) {
//       AttributesMap toInitialize;
//       answer.collectAttrsToTriggerInitialization(toInitialize);
//   } else {
//       std::string why = answer.getGeneralResultComment();
//   }
//   std::string forAnotherLanguage = answer.turnResponseIntoASingleString();
#ifndef TOV_TOVRESPONSE_H_
#define TOV_TOVRESPONSE_H_

#include <map>
#include <set>
#include <string>
#include <vector>

#include "tov/export.h"
#include "tov/vocabulary.h"

class TOVLogger;

// Which extra data a re-evaluation of a failed edit needs.
struct TOV_API TOVMissingDataForEvaluation {
    TOVMissingDataForEvaluation();
    TOVMissingDataForEvaluation(bool objectFamilyMembersMissing, bool manualLinkAncestorsMissing);

    bool areThereAnyMissingData() const;

    bool objectFamilyMembersMissing;
    bool manualLinkAncestorsMissing;
};

class TOV_API TOVResponse {
public:
    // Failed, with an empty "ResultComment".
    TOVResponse();
    TOVResponse(const TOVResponse& other);
    TOVResponse(TOVResponse&& other) noexcept;
    TOVResponse& operator=(const TOVResponse& other);
    TOVResponse& operator=(TOVResponse&& other) noexcept;
    ~TOVResponse();

    // Failed with an empty map: unlike the constructor, no "ResultComment" entry.
    void init();

    void setGeneralResult(bool result) { generalResult = result; }
    bool getGeneralResult() const { return generalResult; }

    // Replaces the comment.
    void setGeneralResultComment(const char* comment);
    // The comment, or the empty string when "ResultComment" is absent.
    std::string getGeneralResultComment() const;
    // Adds a sentence, closing the previous one with a full stop.
    void appendToGeneralResultComment(const char* sentence);

    void setCommentUnderKeyword(const std::string& keyword, const std::string& comment);
    // False, `comment` untouched, when the keyword is absent; keys are exact.
    bool getCommentUnderKeyword(const std::string& keyword, std::string& comment) const;
    bool removeKeyword(const std::string& keyword);

    // Marks a keyword with "MissingData".
    void setThisKeywordToReportMissingData(const std::string& keyword);
    bool doesThisKeywordReportMissingData(const std::string& keyword) const;
    // Appends every keyword marked "MissingData", in key order.
    bool doesAnyKeywordReportMissingData(std::vector<std::string>& keywords) const;

    // True when a failed response asks for family members or manual link
    // ancestors; sets the matching flags and never clears one.
    bool needsReevaluation(TOVMissingDataForEvaluation& data) const;

    // Attributes to initialize, under "TriggerInitialization" in map text form.
    void setAttrToTriggerInitialization(const AttributesMap& attributes);
    bool collectAttrsToTriggerInitialization(AttributesMap& attributes) const;

    // Conflict resolution options, under "SelectedVersioningAttribute" in list
    // text form ("[]" for none).
    void setConflictResolutionOptions(const std::vector<std::string>& options);
    bool collectConflictResolutionOptions(std::set<std::string>& options) const;
    bool collectConflictResolutionOptions(std::vector<std::string>& options) const;

    // Debug lines: a heading, then the map with "Result" in map text form.
    void printContentsDBG(TOVLogger* logger);
    // Debug lines: a heading, then the single JSON string.
    void printContentsForJNIDBG(TOVLogger* logger);

    // --- Text forms ---

    // A copy of the keyword map, without "Result".
    std::map<std::string, std::string> getStringStringMapOfResponse() const { return comments; }
    // The same with "Result" set to "Success" or "Failure".
    std::map<std::string, std::string> getStringStringMapResponseWithGeneralResult() const;
    // One flat JSON object of strings, members in key order, white space in keys
    // and values collapsed to single blanks.
    std::string turnResponseIntoASingleString() const;
    // Merges a single JSON string into this record. False when the text is no
    // JSON object or lacks "Result" or "ResultComment"; the record is then untouched.
    bool fillResponseFromASingleString(const char* text);
    // Merges a map: "Result" sets the general result, the rest become keywords.
    bool fillFromStringStringMap(std::map<std::string, std::string> map);
    // "Success" or "Failure" in any case sets the general result.
    bool fillGeneralResultFromStringValue(const std::string& value);
    // "Success! comment" or "Failure! comment" for a user interface.
    std::string createVemoInfoMessage() const;

private:
    // Writes the map with "Result" without copying it.
    friend class TOVJsonComposer;

    bool getMissingDataReportedForProperEvaluation(TOVMissingDataForEvaluation& data) const;
    std::string getGeneralResultCommentForVemoInfo() const;

    static const char* getKeywordOfGeneralResult();
    static const char* getKeywordOfGeneralResultComment();
    const char* getStringValueOfGeneralResult() const;
    static const char* getStringValueOfSuccessfulGeneralResult();
    static const char* getStringValueOfFailedGeneralResult();

    bool generalResult;
    std::map<std::string, std::string> comments;
};

#endif  // TOV_TOVRESPONSE_H_
