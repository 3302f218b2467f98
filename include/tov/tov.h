// The whole public API of tov.
#ifndef TOV_TOV_H_
#define TOV_TOV_H_

#include "tov/TOVActionController.h"
#include "tov/TOVConflictResolution.h"
#include "tov/TOVCoreDataControllers.h"
#include "tov/TOVEditController.h"
#include "tov/TOVFileConstraint.h"
#include "tov/TOVFrontdesk.h"
#include "tov/TOVFunctionality.h"
#include "tov/TOVHistoryLink.h"
#include "tov/TOVInitializerController.h"
#include "tov/TOVJsonComposer.h"
#include "tov/TOVLifecycleBusinessRules.h"
#include "tov/TOVLogger.h"
#include "tov/TOVManualLink.h"
#include "tov/TOVResponse.h"
#include "tov/TOVTransactionController.h"
#include "tov/TOVTransition.h"
#include "tov/TOVTransitionFreeze.h"
#include "tov/TOVTrigger.h"
#include "tov/TOVVersioningSelection.h"
#include "tov/TOV_DMAttribute.h"
#include "tov/TOV_DMInfoInitializerController.h"
#include "tov/TOV_DMStructure.h"
#include "tov/TOV_DMStructureObject.h"
#include "tov/attribute_packets.h"
#include "tov/entry_points.h"
#include "tov/export.h"
#include "tov/string_helpers.h"
#include "tov/vocabulary.h"

#endif  // TOV_TOV_H_
