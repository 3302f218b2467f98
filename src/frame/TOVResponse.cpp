#include "tov/TOVResponse.h"

#include <string>
#include <utility>

#include "foundation/log_reading.h"
#include "frame/TOVResponseJsonParser.h"
#include "tov/TOVJsonComposer.h"
#include "tov/TOVLogger.h"
#include "tov/string_helpers.h"

TOVMissingDataForEvaluation::TOVMissingDataForEvaluation()
    : objectFamilyMembersMissing(false), manualLinkAncestorsMissing(false) {}

TOVMissingDataForEvaluation::TOVMissingDataForEvaluation(bool familyMembersMissing,
                                                         bool ancestorsMissing)
    : objectFamilyMembersMissing(familyMembersMissing),
      manualLinkAncestorsMissing(ancestorsMissing) {}

bool TOVMissingDataForEvaluation::areThereAnyMissingData() const {
    return objectFamilyMembersMissing || manualLinkAncestorsMissing;
}

TOVResponse::TOVResponse() : generalResult(false) {
    setGeneralResultComment("");
}

TOVResponse::TOVResponse(const TOVResponse& other) = default;

TOVResponse::TOVResponse(TOVResponse&& other) noexcept
    : generalResult(other.generalResult), comments(std::move(other.comments)) {
    other.comments.clear();
}

TOVResponse& TOVResponse::operator=(const TOVResponse& other) = default;

TOVResponse& TOVResponse::operator=(TOVResponse&& other) noexcept {
    if (this != &other) {
        generalResult = other.generalResult;
        comments = std::move(other.comments);
        other.comments.clear();
    }
    return *this;
}

TOVResponse::~TOVResponse() = default;

void TOVResponse::init() {
    generalResult = false;
    comments.clear();
}

void TOVResponse::setGeneralResultComment(const char* comment) {
    // The keyword is built once rather than for each of the several calls
    // that every answer makes.
    static const std::string keyword = getKeywordOfGeneralResultComment();
    comments[keyword] = comment == nullptr ? "" : comment;
}

std::string TOVResponse::getGeneralResultComment() const {
    std::string comment;
    getCommentUnderKeyword(getKeywordOfGeneralResultComment(), comment);
    return comment;
}

void TOVResponse::appendToGeneralResultComment(const char* sentence) {
    std::string comment = getGeneralResultComment();
    finishPreviousSentenceAndAppendAnother(comment, sentence == nullptr ? "" : sentence);
    setGeneralResultComment(comment.c_str());
}

void TOVResponse::setCommentUnderKeyword(const std::string& keyword, const std::string& comment) {
    comments[keyword] = comment;
}

bool TOVResponse::getCommentUnderKeyword(const std::string& keyword, std::string& comment) const {
    return getValueofKeywordFromStringStringMap(keyword, comments, comment);
}

bool TOVResponse::removeKeyword(const std::string& keyword) {
    return comments.erase(keyword) > 0;
}

void TOVResponse::setThisKeywordToReportMissingData(const std::string& keyword) {
    setCommentUnderKeyword(keyword, TOVResponseValue_MissingData);
}

bool TOVResponse::doesThisKeywordReportMissingData(const std::string& keyword) const {
    std::string comment;
    return getCommentUnderKeyword(keyword, comment) && comment == TOVResponseValue_MissingData;
}

bool TOVResponse::doesAnyKeywordReportMissingData(std::vector<std::string>& keywords) const {
    bool found = false;
    for (const auto& entry : comments) {
        if (entry.second == TOVResponseValue_MissingData) {
            keywords.emplace_back(entry.first);
            found = true;
        }
    }
    return found;
}

bool TOVResponse::getMissingDataReportedForProperEvaluation(
    TOVMissingDataForEvaluation& data) const {
    bool found = false;
    if (doesThisKeywordReportMissingData(TOVResponseKeyword_ObjectFamilyMembers)) {
        data.objectFamilyMembersMissing = true;
        found = true;
    }
    if (doesThisKeywordReportMissingData(TOVResponseKeyword_ManualAncestors)) {
        data.manualLinkAncestorsMissing = true;
        found = true;
    }
    return found;
}

bool TOVResponse::needsReevaluation(TOVMissingDataForEvaluation& data) const {
    if (generalResult) {
        return false;
    }
    return getMissingDataReportedForProperEvaluation(data);
}

void TOVResponse::setAttrToTriggerInitialization(const AttributesMap& attributes) {
    setCommentUnderKeyword(TOVResponseKeyword_TriggerInitialization,
                           createCommaSeparatedStringStringMap(attributes));
}

bool TOVResponse::collectAttrsToTriggerInitialization(AttributesMap& attributes) const {
    std::string text;
    if (!getCommentUnderKeyword(TOVResponseKeyword_TriggerInitialization, text)) {
        return false;
    }
    return createStringStringMapFromCommaSeparatedString(text, attributes);
}

void TOVResponse::setConflictResolutionOptions(const std::vector<std::string>& options) {
    std::string text = createCommaSeparatedListOfStrings(options);
    if (text.empty()) {
        text = "[]";
    }
    setCommentUnderKeyword(TOVResponseKeyword_SelectedVersioningAttribute, text);
}

bool TOVResponse::collectConflictResolutionOptions(std::set<std::string>& options) const {
    std::string text;
    getCommentUnderKeyword(TOVResponseKeyword_SelectedVersioningAttribute, text);
    return createSetFromCommaSeparatedListOfStrings(text, options);
}

bool TOVResponse::collectConflictResolutionOptions(std::vector<std::string>& options) const {
    std::string text;
    getCommentUnderKeyword(TOVResponseKeyword_SelectedVersioningAttribute, text);
    return createVectorFromCommaSeparatedListOfStrings(text, options);
}

void TOVResponse::printContentsDBG(TOVLogger* logger) {
    if (!isLogRead(logger)) {
        return;
    }
    logger->printToLog("*************TOVResponse******************");
    logger->printToLog(
        createCommaSeparatedStringStringMap(getStringStringMapResponseWithGeneralResult()).c_str());
}

void TOVResponse::printContentsForJNIDBG(TOVLogger* logger) {
    if (!isLogRead(logger)) {
        return;
    }
    logger->printToLog("*************JNI_TOVResponse******************");
    logger->printToLog(turnResponseIntoASingleString().c_str());
}

std::map<std::string, std::string> TOVResponse::getStringStringMapResponseWithGeneralResult()
    const {
    std::map<std::string, std::string> map = comments;
    map[getKeywordOfGeneralResult()] = getStringValueOfGeneralResult();
    return map;
}

// A member of the composer, defined beside the record it reads so that the JSON
// layer below knows nothing of responses.
std::string TOVJsonComposer::createJsonResponseFromClass(const TOVResponse* response) const {
    // What getStringStringMapResponseWithGeneralResult holds, written without
    // copying the map: every answer of every door goes out this way.
    static const std::string kResultKeyword = TOVResponse::getKeywordOfGeneralResult();
    return createJsonFromStringStringMapWith(response->comments, kResultKeyword,
                                             response->getStringValueOfGeneralResult());
}

std::string TOVResponse::turnResponseIntoASingleString() const {
    return TOVJsonComposer().createJsonResponseFromClass(this);
}

bool TOVResponse::fillResponseFromASingleString(const char* text) {
    TOVResponseJsonParser parser(this);
    return parser.fill(text);
}

// The installed declaration takes the map by value.
// NOLINTNEXTLINE(performance-unnecessary-value-param)
bool TOVResponse::fillFromStringStringMap(std::map<std::string, std::string> map) {
    for (const auto& entry : map) {
        if (entry.first == getKeywordOfGeneralResult()) {
            fillGeneralResultFromStringValue(entry.second);
        } else if (entry.first == getKeywordOfGeneralResultComment()) {
            setGeneralResultComment(entry.second.c_str());
        } else {
            comments[entry.first] = entry.second;
        }
    }
    return true;
}

bool TOVResponse::fillGeneralResultFromStringValue(const std::string& value) {
    if (areStringsEqualSimple(value, getStringValueOfSuccessfulGeneralResult())) {
        generalResult = true;
        return true;
    }
    if (areStringsEqualSimple(value, getStringValueOfFailedGeneralResult())) {
        generalResult = false;
        return true;
    }
    return false;
}

std::string TOVResponse::createVemoInfoMessage() const {
    return std::string(getStringValueOfGeneralResult()) + "! " +
           getGeneralResultCommentForVemoInfo();
}

std::string TOVResponse::getGeneralResultCommentForVemoInfo() const {
    std::string comment = getGeneralResultComment();
    const std::string any = TOVAttrItemValue_Any;
    const auto position = comment.find(any);
    if (position != std::string::npos) {
        comment.replace(position, any.size(), "any object type");
    }
    return comment;
}

const char* TOVResponse::getKeywordOfGeneralResult() {
    return "Result";
}

const char* TOVResponse::getKeywordOfGeneralResultComment() {
    return "ResultComment";
}

const char* TOVResponse::getStringValueOfGeneralResult() const {
    return generalResult ? getStringValueOfSuccessfulGeneralResult()
                         : getStringValueOfFailedGeneralResult();
}

const char* TOVResponse::getStringValueOfSuccessfulGeneralResult() {
    return "Success";
}

const char* TOVResponse::getStringValueOfFailedGeneralResult() {
    return "Failure";
}
