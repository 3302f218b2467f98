// The public words of the library: values that travel in attribute packets,
// keys of the request documents and keywords of responses.
#ifndef TOV_VOCABULARY_H_
#define TOV_VOCABULARY_H_

#include <map>
#include <string>

#include "tov/export.h"

// The attribute packet of one object: attribute name to value, keys in byte order.
using AttributesMap = std::map<std::string, std::string>;

// Pseudo-attribute that says whether an edit updates the representation file.
TOV_API extern const char* const TOVAttrItemName_DoesUploadFile;  // "_file_upload_"

TOV_API extern const char* const TOVAttrItemValue_True;   // "true"
TOV_API extern const char* const TOVAttrItemValue_False;  // "false"
// The wildcard value: equal to every value, the empty one included.
TOV_API extern const char* const TOVAttrItemValue_Any;  // "<any>"
// "Every object type" as the rules document spells it; rewritten to "<any>" on load.
TOV_API extern const char* const TOVAttrItemValue_ALL;        // "ALL"
TOV_API extern const char* const TOVAttrItemValue_Mandatory;  // "MANDATORY"
TOV_API extern const char* const TOVAttrItemValue_Forbidden;  // "FORBIDDEN"
TOV_API extern const char* const TOVAttrItemValue_YES;        // "YES"
TOV_API extern const char* const TOVAttrItemValue_NO;         // "NO"
TOV_API extern const char* const TOVAttrItemValue_N_A;        // "N_A"
TOV_API extern const char* const TOVAttrItemValue_Overwrite;  // "overwrite"
TOV_API extern const char* const TOVAttrItemValue_Spinup;     // "spinup"
// Generic object type that stands for every object type of category RLI.
TOV_API extern const char* const TOVAttrItemValue_Library_Item;  // "Library_Item"
// Reserved for hosts; no logic of the library consults it.
TOV_API extern const char* const TOVAttrItemValue_Reset;  // "Reset"

TOV_API extern const char* const TOVAttrItemKeyword_ServerId;  // "ServerId"
// Abstract attribute of a trigger rule that re-initializes versioning.
TOV_API extern const char* const TOVAttrItemKeyword_ProperVersioningAttribute;

TOV_API extern const char* const TOVResponseKeyword_ObjectFamilyMembers;  // "ObjectFamilyMembers"
TOV_API extern const char* const TOVResponseKeyword_ManualAncestors;      // "ManualLinkAncestors"
TOV_API extern const char* const TOVResponseKeyword_SelectedVersioningAttribute;
TOV_API extern const char* const TOVResponseKeyword_ForcedOverwrite;  // "ForcedOverwrite"
TOV_API extern const char* const TOVResponseKeyword_ForcedSpinup;     // "ForcedSpinup"
TOV_API extern const char* const
    TOVResponseKeyword_TriggerInitialization;                   // "TriggerInitialization"
TOV_API extern const char* const TOVResponseValue_MissingData;  // "MissingData"

// Keys of the request documents.
TOV_API extern const char* const TOVTransitionJson_InitialAttributes;  // "initialAttributes"
TOV_API extern const char* const TOVTransitionJson_TargetAttributes;   // "targetAttributes"
TOV_API extern const char* const TOVTransitionJson_ObjectType;         // "objectType"
TOV_API extern const char* const
    TOVConflictJson_UploadsRepresentationFile;                   // "uploadsRepresentationFile"
TOV_API extern const char* const TOVManualLinksJson_Attributes;  // "attributes"
TOV_API extern const char* const TOVManualLinksJson_Ancestor;    // "ancestor"
TOV_API extern const char* const TOVManualLinksJsonDescendant;   // "descendant"

// The word that sends log output to the console, in any case.
TOV_API extern const char* const TOVLoggingKeyword;  // "console"

#endif  // TOV_VOCABULARY_H_
