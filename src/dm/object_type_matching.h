#ifndef TOV_DM_OBJECT_TYPE_MATCHING_H_
#define TOV_DM_OBJECT_TYPE_MATCHING_H_

#include <string>

class TOV_DMStructure;

// Whether a rule's object type covers the asked one: the data model's rule
// when there is a data model, otherwise only equality ignoring case and the
// "<any>" wildcard.
bool objectTypesMatch(const TOV_DMStructure* structure, const std::string& ruleType,
                      const std::string& askedType);

#endif  // TOV_DM_OBJECT_TYPE_MATCHING_H_
