# Every source file of the library, by subsystem.
set(TOV_SOURCES
  # Request frame
  frame/entry_points.cpp
  frame/factory.cpp
  frame/TOVActionController.cpp
  frame/TOVFrontdesk.cpp
  frame/TOVResponse.cpp
  frame/TOVResponseJsonParser.cpp
  frame/TOVTransactionController.cpp
  frame/TOVVemoFrontdesk.cpp
  # Foundation
  foundation/attribute_packets.cpp
  foundation/clock.cpp
  foundation/string_helpers.cpp
  foundation/TOVCoreDataControllers.cpp
  foundation/TOVLogger.cpp
  foundation/vocabulary.cpp
  # JSON layer
  json/TOVJsonComposer.cpp
  json/TOVJsonParser.cpp
  # Rules
  rules/TOVConflictResolution.cpp
  rules/TOVConflictResolutionRulesJsonParser.cpp
  rules/TOVFileConstraint.cpp
  rules/TOVFileConstraintsRulesJsonParser.cpp
  rules/TOVHistoryLink.cpp
  rules/TOVInitializationJsonParser.cpp
  rules/TOVInitializerController.cpp
  rules/TOVLifecycleBusinessRules.cpp
  rules/TOVLinkRulesJsonParsers.cpp
  rules/TOVManualLink.cpp
  rules/TOVTransition.cpp
  rules/TOVTransitionFreeze.cpp
  rules/TOVTransitionFreezeRulesJsonParser.cpp
  rules/TOVTransitionRulesJsonParser.cpp
  rules/TOVTrigger.cpp
  rules/TOVTriggersRulesJsonParser.cpp
  rules/TOVVersioningSelection.cpp
  rules/TOVVersioningSelectionRulesJsonParser.cpp
  # Data-model information
  dm/TOV_DMAttribute.cpp
  dm/TOV_DMInfoInitializerController.cpp
  dm/TOV_DMInfoJsonParsers.cpp
  dm/TOV_DMStructure.cpp
  dm/TOV_DMStructureObject.cpp
  # Evaluators
  evaluators/TOVConflictsResolutionOptionsFinder.cpp
  evaluators/TOVConflictsResolutionOptionsFinderParser.cpp
  evaluators/TOVEditController.cpp
  evaluators/TOVEditControllerTriggers.cpp
  evaluators/TOVLinkController.cpp
  evaluators/TOVLinkCreationParser.cpp
  evaluators/TOVSpinupOptionsFinder.cpp
  evaluators/TOVTransitionJsonParsers.cpp
)
