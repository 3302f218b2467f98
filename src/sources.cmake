# Every source file of the library, by folder, lowest layer first.
set(TOV_SOURCES
  # Foundation
  foundation/attribute_packets.cpp
  foundation/clock.cpp
  foundation/string_helpers.cpp
  foundation/TOVLogger.cpp
  foundation/vocabulary.cpp
  # JSON layer
  json/document_walk.cpp
  json/TOVJsonComposer.cpp
  json/TOVJsonParser.cpp
  # Data-model information
  dm/TOV_DMAttribute.cpp
  dm/TOV_DMInfoJsonParsers.cpp
  dm/TOV_DMStructure.cpp
  dm/TOV_DMStructureObject.cpp
  # Rules
  rules/TOVConflictResolution.cpp
  rules/TOVConflictResolutionRulesJsonParser.cpp
  rules/TOVFileConstraint.cpp
  rules/TOVFileConstraintsRulesJsonParser.cpp
  rules/TOVHistoryLink.cpp
  rules/TOVInitializationJsonParser.cpp
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
  rules/rule_kinds.cpp
  rules/rule_section_parser.cpp
  rules/rules_document_walker.cpp
  # Request frame: response, core data, controller base
  frame/TOVActionController.cpp
  frame/TOVDecisionTrace.cpp
  frame/TOVCoreDataControllers.cpp
  frame/TOVResponse.cpp
  frame/TOVResponseJsonParser.cpp
  # Evaluators: every controller
  evaluators/TOVConflictsResolutionOptionsFinder.cpp
  evaluators/TOVConflictsResolutionOptionsFinderParser.cpp
  evaluators/TOVEditController.cpp
  evaluators/TOVEditControllerTriggers.cpp
  evaluators/TOVInitializerController.cpp
  evaluators/TOVLinkController.cpp
  evaluators/TOVLinkCreationParser.cpp
  evaluators/TOVSpinupOptionsFinder.cpp
  evaluators/TOVTransitionJsonParsers.cpp
  evaluators/TOV_DMInfoInitializerController.cpp
  # Entry points, front desks, transaction, factory
  api/entry_points.cpp
  api/factory.cpp
  api/TOVFrontdesk.cpp
  api/TOVTransactionController.cpp
  api/TOVVemoFrontdesk.cpp
  api/TOVEngine.cpp
  api/document_faults.cpp
  api/log_setting.cpp
  api/request_kinds.cpp
  # C interface
  c_api/answers.cpp
  c_api/tov_c.cpp
)
