// Answers whether a manual link may be created between an ancestor and a
// descendant. The descendant stands in for an edited object, so the manual link
// rules that its attributes bring into force judge the ancestor.
#ifndef TOV_TOVLINKCONTROLLER_H_
#define TOV_TOVLINKCONTROLLER_H_

#include <map>
#include <string>
#include <utility>

#include "tov/TOVActionController.h"
#include "tov/export.h"
#include "tov/vocabulary.h"

class TOVManualLink;

class TOV_API TOVLinkController : public TOVActionController {
public:
    TOVLinkController(const std::map<std::string, std::string>& labeledInput,
                      TOVCoreDataControllers* coreData);
    // The same, taking the input over, so that the request is held once.
    TOVLinkController(std::map<std::string, std::string>&& labeledInput,
                      TOVCoreDataControllers* coreData);
    ~TOVLinkController() override;

    // "All_link_creation_values"; the name keeps its historical spelling.
    static std::string getInputDataLabelIndentifierForLinkCreationData();
    // "Input_is_filepath".
    static std::string getInputDataLabelIdentifierForJsonFilepath();

    // The type of the ancestor is demanded by the request but takes no part in
    // the evaluation.
    const std::string& getTypeOfAncestor() const { return typeOfAncestor; }
    void setTypeOfAncestor(const std::string& type) { typeOfAncestor = type; }
    const std::string& getTypeOfDescendant() const { return typeOfDescendant; }
    void setTypeOfDescendant(const std::string& type) { typeOfDescendant = type; }
    const AttributesMap& getAttributesOfAncestor() const { return attributesOfAncestor; }
    void setAttributesOfAncestor(const AttributesMap& attributes) {
        attributesOfAncestor = attributes;
    }
    void setAttributesOfAncestor(AttributesMap&& attributes) {
        attributesOfAncestor = std::move(attributes);
    }
    const AttributesMap& getAttributesOfDescendant() const { return attributesOfDescendant; }
    void setAttributesOfDescendant(const AttributesMap& attributes) {
        attributesOfDescendant = attributes;
    }
    void setAttributesOfDescendant(AttributesMap&& attributes) {
        attributesOfDescendant = std::move(attributes);
    }

protected:
    bool isInputDataSufficient() override;
    bool parseInputData(TOVResponse& response) override;
    // Rules loaded, then the manual link rules; no data-model check, since
    // object types still compare by name without it.
    bool evaluateRequest(TOVResponse& response) override;

private:
    // Refuses with the violated rule in words as the whole comment.
    bool foundManualLinkRuleViolation(TOVResponse& response);
    // Copies the first rule, in store order, that the ancestor violates.
    bool getFirstManualLinkRuleViolation(TOVManualLink& violated);
    void updateResponseOnSuccess(TOVResponse& response);

    std::string typeOfAncestor;
    std::string typeOfDescendant;
    AttributesMap attributesOfAncestor;
    AttributesMap attributesOfDescendant;
};

#endif  // TOV_TOVLINKCONTROLLER_H_
