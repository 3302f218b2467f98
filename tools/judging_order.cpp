#include "judging_order.h"

#include <algorithm>

namespace tovcli {

namespace {

JudgingStep documentStep(const char* words) {
    return {words, false, TOVRuleKind_TransitionFreeze, ""};
}

JudgingStep ruleStep(const char* words, TOVRuleKind kind, const char* aside = "") {
    return {words, true, kind, aside};
}

}  // namespace

const std::vector<JudgingStep>& editJudgingSteps() {
    static const std::vector<JudgingStep> steps = {
        documentStep("rules loaded"),
        ruleStep("transition freeze", TOVRuleKind_TransitionFreeze),
        ruleStep("transition", TOVRuleKind_Transition),
        ruleStep("file constraint", TOVRuleKind_FileConstraint),
        documentStep("data model loaded"),
        ruleStep("conflict resolution", TOVRuleKind_ConflictResolution,
                 "not in the before-resolution flavours, nor when the edit moves the object to "
                 "another family"),
        ruleStep("history link", TOVRuleKind_HistoryLink,
                 "a missing family is asked for and the chain goes on"),
        ruleStep("manual link", TOVRuleKind_ManualLink),
        ruleStep("triggers of an approved attempt", TOVRuleKind_Trigger),
    };
    return steps;
}

const std::vector<JudgingStep>& linkCreationJudgingSteps() {
    static const std::vector<JudgingStep> steps = {
        documentStep("rules loaded"),
        ruleStep("manual link", TOVRuleKind_ManualLink,
                 "the descendant's rules, judging the ancestor"),
    };
    return steps;
}

const std::vector<JudgingStep>& optionsJudgingSteps() {
    static const std::vector<JudgingStep> steps = {
        documentStep("rules loaded"),
        documentStep("data model loaded"),
        ruleStep("conflict resolution", TOVRuleKind_ConflictResolution,
                 "every rule is asked; forced overwrite and spin-up together are a "
                 "contradiction"),
        ruleStep("versioning selection", TOVRuleKind_VersioningSelection,
                 "not when overwrite is forced"),
    };
    return steps;
}

std::string stepsInWords(const std::vector<JudgingStep>& steps) {
    std::string words;
    for (const JudgingStep& step : steps) {
        words += (words.empty() ? "" : "; ") + std::string(step.words);
        if (step.aside[0] != '\0') {
            words += std::string(" (") + step.aside + ")";
        }
    }
    return words;
}

std::vector<TOVRuleKind> ruleKindsInJudgingOrder() {
    std::vector<TOVRuleKind> kinds;
    const auto add = [&kinds](const std::vector<JudgingStep>& steps) {
        for (const JudgingStep& step : steps) {
            if (step.isRuleKind &&
                std::find(kinds.begin(), kinds.end(), step.kind) == kinds.end()) {
                kinds.push_back(step.kind);
            }
        }
    };
    add(editJudgingSteps());
    add(optionsJudgingSteps());
    add(linkCreationJudgingSteps());
    return kinds;
}

}  // namespace tovcli
