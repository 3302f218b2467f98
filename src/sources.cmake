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
  rules/TOVLifecycleBusinessRules.cpp
  # Data-model information
  dm/TOV_DMStructure.cpp
)
