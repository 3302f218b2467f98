#ifndef TOV_FRAME_INPUT_LABELS_H_
#define TOV_FRAME_INPUT_LABELS_H_

// Labels under which a front desk files the incoming string for its controller.
constexpr const char* kLabelAllRules = "All_TOV_rules";
constexpr const char* kLabelAllDMInfo = "All_DM_Info";
constexpr const char* kLabelTransitionData = "All_transition_values";
constexpr const char* kLabelConflictsResolutionOptionsQuery =
    "Conflicts_Resolution_Options_query_data";
constexpr const char* kLabelLinkCreationData = "All_link_creation_values";
// Its presence, whatever its value, makes the input the path of a JSON file.
constexpr const char* kLabelInputIsFilepath = "Input_is_filepath";

// The comment for a request whose input is missing under its label, or empty.
constexpr const char* kInsufficientInputData = "Insufficient input data";

#endif  // TOV_FRAME_INPUT_LABELS_H_
