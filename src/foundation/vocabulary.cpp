#include "tov/vocabulary.h"

const char* const TOVAttrItemName_DoesUploadFile = "_file_upload_";
const char* const TOVAttrItemValue_True = "true";
const char* const TOVAttrItemValue_False = "false";
const char* const TOVAttrItemValue_Any = "<any>";
const char* const TOVAttrItemValue_ALL = "ALL";
const char* const TOVAttrItemValue_Mandatory = "MANDATORY";
const char* const TOVAttrItemValue_Forbidden = "FORBIDDEN";
const char* const TOVAttrItemValue_YES = "YES";
const char* const TOVAttrItemValue_NO = "NO";
const char* const TOVAttrItemValue_N_A = "N_A";
const char* const TOVAttrItemValue_Overwrite = "overwrite";
const char* const TOVAttrItemValue_Spinup = "spinup";
const char* const TOVAttrItemValue_Library_Item = "Library_Item";
const char* const TOVAttrItemValue_Reset = "Reset";

const char* const TOVAttrItemKeyword_ServerId = "ServerId";
const char* const TOVAttrItemKeyword_ProperVersioningAttribute = "Proper_Versioning_Attribute";

const char* const TOVResponseKeyword_ObjectFamilyMembers = "ObjectFamilyMembers";
const char* const TOVResponseKeyword_ManualAncestors = "ManualLinkAncestors";
const char* const TOVResponseKeyword_SelectedVersioningAttribute = "SelectedVersioningAttribute";
const char* const TOVResponseKeyword_ForcedOverwrite = "ForcedOverwrite";
const char* const TOVResponseKeyword_ForcedSpinup = "ForcedSpinup";
const char* const TOVResponseKeyword_TriggerInitialization = "TriggerInitialization";
const char* const TOVResponseValue_MissingData = "MissingData";

const char* const TOVTransitionJson_InitialAttributes = "initialAttributes";
const char* const TOVTransitionJson_TargetAttributes = "targetAttributes";
const char* const TOVTransitionJson_ObjectType = "objectType";
const char* const TOVConflictJson_UploadsRepresentationFile = "uploadsRepresentationFile";
const char* const TOVManualLinksJson_Attributes = "attributes";
const char* const TOVManualLinksJson_Ancestor = "ancestor";
const char* const TOVManualLinksJsonDescendant = "descendant";

const char* const TOVLoggingKeyword = "console";
